#ifndef KESTA_IPV4_ADDRESS_H
#define KESTA_IPV4_ADDRESS_H

#include "KestaAddressNumber.h"
#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaString.h"

#include <cstddef>
#include <string_view>

#include <netinet/in.h>

class CKestaExc;

/// An IPv4 address value; see `KestaIPAddress` for what all addresses have in common.
///
/// The four flags name the classes of addresses that the application wants excluded from ranges and
/// from filtered host addresses. Thread contract: they are process-wide and unguarded; set them
/// before any thread makes ranges or queries the host.
class KESTA_API KestaIPv4Address : public KestaIPAddress
{
public:
    /// Intended: no check reads this flag. Ranges may contain loopback addresses, and filtered host
    /// addresses never do, whatever it says.
    static bool m_bIPv4LoopBack;
    /// Excludes 224.0.0.0/4. ("Mutli" is the flag's established spelling.)
    static bool m_bIPv4MutliCast;
    /// Excludes 169.254.0.0/16.
    static bool m_bIPv4LinkLocal;
    /// Excludes 10.0.0.0/8, 172.16.0.0/12 and 192.168.0.0/16.
    static bool m_bIPv4SiteLocal;

    /// Reads a text as `inet_aton` does: one to four parts in decimal, octal or hexadecimal, so
    /// "10.1" is 10.0.0.1. White space ends the address, and what follows it is ignored; so is a
    /// "%" and what follows that. Both stay in the stored text.
    ///
    /// Throws: `CKestaExc`, "Passed string is not a valid IPv4 address " and the text.
    KestaIPv4Address(const CKestaString& strAddress);

    /// The address of a socket, in network byte order; its text is that of `inet_ntop`. Nothing is
    /// traced.
    explicit KestaIPv4Address(const in_addr& address);

    KestaIPv4Address(const KestaIPv4Address& other) = default;
    KestaIPv4Address& operator=(const KestaIPv4Address& other) = default;
    ~KestaIPv4Address() override;

    bool operator<=(KestaIPAddress* pAddress) override;
    bool operator>=(KestaIPAddress* pAddress) override;
    bool operator==(KestaIPAddress* pAddress) override;
    using KestaIPAddress::operator<=;
    using KestaIPAddress::operator>=;
    using KestaIPAddress::operator==;

    /// -1, 0 or 1: this address is below, equal to or above the other; 0 for a null pointer.
    int compareTwoIPv4Addresses(const sockaddr_in* other) const;

    /// True for 10.0.0.0/8, 172.16.0.0/12 and 192.168.0.0/16. The address is in network byte order,
    /// here and below.
    static bool isIPv4SiteLocalAddress(in_addr address);
    /// True for 127.0.0.0/8.
    static bool isIPv4LoopbackAddress(in_addr address);
    /// True for 169.254.0.0/16.
    static bool isIPv4LinkLocalAddress(in_addr address);
    /// True for 224.0.0.0/4.
    static bool isIPv4MulticastAddress(in_addr address);
    /// True for 0.0.0.0.
    static bool isIPv4AnyLocalAddress(in_addr address);

    /// True when the address must not be used: it is of a class that a flag excludes, or 0.0.0.0.
    /// REQUIRES: the pointer is not null.
    static bool CheckUnAllowedIPv4AddressTypes(const sockaddr_in* sa);

private:
    friend class KestaIPRange;

    KESTA_LOCAL KestaIPv4Address();   // for a `read` that follows

    KESTA_LOCAL bool read(std::string_view address);
    KESTA_LOCAL bool read();
    KESTA_LOCAL CKestaExc refusal() const;   // the error of a text that was not read
};

// These are templates, so that a host's own operators win, as everywhere.

/// True when two addresses have the same bytes.
template <int = 0>
bool operator==(KestaOperand<KestaIPv4Address> left, KestaOperand<KestaIPv4Address> right)
{
    return KestaAddressNumber::in<KestaIPv4Number>(left.value.viewSockAddress()) ==
           KestaAddressNumber::in<KestaIPv4Number>(right.value.viewSockAddress());
}
template <int = 0>
bool operator!=(KestaOperand<KestaIPv4Address> left, KestaOperand<KestaIPv4Address> right)
{
    return !(left == right);
}

/// True when the left address comes before the right one; the other orderings follow from this.
template <int = 0>
bool operator<(KestaOperand<KestaIPv4Address> left, KestaOperand<KestaIPv4Address> right)
{
    return KestaAddressNumber::in<KestaIPv4Number>(left.value.viewSockAddress()) <
           KestaAddressNumber::in<KestaIPv4Number>(right.value.viewSockAddress());
}
template <int = 0>
bool operator>(KestaOperand<KestaIPv4Address> left, KestaOperand<KestaIPv4Address> right)
{
    return right < left;
}
template <int = 0>
bool operator<=(KestaOperand<KestaIPv4Address> left, KestaOperand<KestaIPv4Address> right)
{
    return !(right < left);
}
template <int = 0>
bool operator>=(KestaOperand<KestaIPv4Address> left, KestaOperand<KestaIPv4Address> right)
{
    return !(left < right);
}

/// Hashes the address bytes, which `==` compares.
template <>
struct std::hash<KestaIPv4Address>
{
    /// The hash of an address.
    std::size_t operator()(const KestaIPv4Address& address) const noexcept
    {
        return KestaAddressNumber::in<KestaIPv4Number>(address.viewSockAddress());
    }
};

#endif
