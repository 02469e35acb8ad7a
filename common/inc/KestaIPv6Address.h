#ifndef KESTA_IPV6_ADDRESS_H
#define KESTA_IPV6_ADDRESS_H

#include "KestaAddressNumber.h"
#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaString.h"

#include <cstddef>
#include <string_view>

#include <netinet/in.h>

class CKestaExc;

/// An IPv6 address value; see `KestaIPAddress` for what all addresses have in common.
///
/// The four flags name the classes of addresses that the application wants excluded from ranges and
/// from filtered host addresses. Thread contract: they are process-wide and unguarded; set them
/// before any thread makes ranges or queries the host.
class KESTA_API KestaIPv6Address : public KestaIPAddress
{
public:
    /// Intended: no check reads this flag. Ranges may contain ::1, and filtered host addresses
    /// never do, whatever it says.
    static bool m_bIPv6LoopBack;
    /// Excludes ff00::/8. ("Mutli" is the flag's established spelling.)
    static bool m_bIPv6MutliCast;
    /// Excludes fe80::/10.
    static bool m_bIPv6LinkLocal;
    /// Excludes fec0::/10.
    static bool m_bIPv6SiteLocal;

    /// Reads a text as `inet_pton` does. A "%" and what follows it is ignored, but stays in the
    /// stored text; the scope is not kept.
    ///
    /// Throws: `CKestaExc`, "KestaIPv6Address::KestaIPv6Address.Passed string is not a valid IPv6
    /// address " and the text.
    KestaIPv6Address(const CKestaString& strAddress);

    /// The address of a socket, in network byte order; its text is that of `inet_ntop`, without a
    /// scope. Nothing is traced.
    explicit KestaIPv6Address(const in6_addr& address);

    KestaIPv6Address(const KestaIPv6Address& other) = default;
    KestaIPv6Address& operator=(const KestaIPv6Address& other) = default;
    ~KestaIPv6Address() override;

    bool operator<=(KestaIPAddress* pAddress) override;
    bool operator>=(KestaIPAddress* pAddress) override;
    bool operator==(KestaIPAddress* pAddress) override;
    using KestaIPAddress::operator<=;
    using KestaIPAddress::operator>=;
    using KestaIPAddress::operator==;

    /// -1, 0 or 1: this address is below, equal to or above the other; 0 for a null pointer.
    int compareTwoIPv6Addresses(const sockaddr_in6* other) const;

    /// True when the address must not be used: it is of a class that a flag excludes, an
    /// IPv4-compatible address (::10.1.2.3 is one, ::1 is not), or ::. IPv4-mapped addresses
    /// and ::1 pass. REQUIRES: the pointer is not null.
    static bool CheckUnAllowedIPv6AddressTypes(const sockaddr_in6* sa);

private:
    friend class KestaIPRange;

    KESTA_LOCAL KestaIPv6Address();   // for a `read` that follows

    KESTA_LOCAL bool read(std::string_view address);
    KESTA_LOCAL bool read();
    KESTA_LOCAL CKestaExc refusal() const;   // the error of a text that was not read
};

// These are templates, so that a host's own operators win, as everywhere.

/// True when two addresses have the same bytes.
template <int = 0>
bool operator==(KestaOperand<KestaIPv6Address> left, KestaOperand<KestaIPv6Address> right)
{
    return KestaAddressNumber::in<KestaIPv6Number>(left.value.viewSockAddress()) ==
           KestaAddressNumber::in<KestaIPv6Number>(right.value.viewSockAddress());
}
template <int = 0>
bool operator!=(KestaOperand<KestaIPv6Address> left, KestaOperand<KestaIPv6Address> right)
{
    return !(left == right);
}

/// True when the left address comes before the right one; the other orderings follow from this.
template <int = 0>
bool operator<(KestaOperand<KestaIPv6Address> left, KestaOperand<KestaIPv6Address> right)
{
    return KestaAddressNumber::in<KestaIPv6Number>(left.value.viewSockAddress()) <
           KestaAddressNumber::in<KestaIPv6Number>(right.value.viewSockAddress());
}
template <int = 0>
bool operator>(KestaOperand<KestaIPv6Address> left, KestaOperand<KestaIPv6Address> right)
{
    return right < left;
}
template <int = 0>
bool operator<=(KestaOperand<KestaIPv6Address> left, KestaOperand<KestaIPv6Address> right)
{
    return !(right < left);
}
template <int = 0>
bool operator>=(KestaOperand<KestaIPv6Address> left, KestaOperand<KestaIPv6Address> right)
{
    return !(left < right);
}

/// Hashes the address bytes, which `==` compares.
template <>
struct std::hash<KestaIPv6Address>
{
    /// The hash of an address.
    std::size_t operator()(const KestaIPv6Address& address) const noexcept
    {
        const KestaIPv6Number number =
            KestaAddressNumber::in<KestaIPv6Number>(address.viewSockAddress());
        const std::string_view bytes(reinterpret_cast<const char*>(&number), sizeof number);
        return std::hash<std::string_view>()(bytes);
    }
};

#endif
