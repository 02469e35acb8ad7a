#ifndef KESTA_IP_RANGE_H
#define KESTA_IP_RANGE_H

#include "KestaDebug.h"
#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaString.h"

#include <memory>

#include <netinet/in.h>

/// A range of IP addresses of one family, both ends included, made from one text:
///
///     10.1.2.3          one IPv4 address
///     10.1.*.*          every "*" read as 0 for the start and as 255 for the end
///     ::ffff:10.1.*.*   an IPv4-mapped text: read as its IPv4 part
///     2001:db8::1       one IPv6 address
///     2001:db8::/32     an IPv6 block; the address must be its first
///     2001:db8:1*       the IPv6 block whose prefix is the digits before the star: 2001:db8:1000::
///                       to 2001:db8:1fff:ffff:...; "*" alone is all of IPv6
///
/// There is no form with a dash, and no IPv4 prefix. Every range but one of a trailing IPv6 "*" is
/// screened against the exclusion flags of the address classes; the screening always refuses
/// 0.0.0.0 and ::, so "*.*.*.*" and "::/0" are refused.
///
/// The range owns its two addresses. It can't be copied.
///
/// Thread contract: does not change once it is made; any number of threads may ask one range.
class KESTA_API KestaIPRange
{
public:
    /// The library's own codes of the families, not those of the sockets.
    static constexpr int KESTA_IPV6_FAMILY = 6;
    static constexpr int KESTA_IPV4_FAMILY = 4;   ///< The code of IPv4.

    /// Reads a text.
    ///
    /// Throws: `CKestaExc` for every failure, with a message that says what is wrong and ends in
    /// the text, or in its IPv4 part for an IPv4-mapped one:
    ///
    ///     IPAddres is an empty string
    ///     Not a valid IP address localhost
    ///     Not a valid IPv4MappedIPv6 address ::fffe:10.1.2.3
    ///     Not a Valid prefix for IPv6 Address 2001:db8::/129
    ///     Not a valid IPv6 address 2001:db8::1/32
    ///     Not a valid IPv6 Wild Card Address 2001:*:1
    ///     This address as not allowed as per current IP filter settings!!!0.0.0.0
    ///
    /// or with the message of the address class that could not read an end of the range. Any other
    /// exception becomes "Unknown Error".
    KestaIPRange(CKestaString strRange);

    /// A range that contains nothing: no ends, family 0.
    KestaIPRange();

    KestaIPRange(const KestaIPRange&) = delete;
    KestaIPRange& operator=(const KestaIPRange&) = delete;
    ~KestaIPRange();

    /// True when one of the two ranges contains the other. Intended: it does not matter which; and
    /// ranges that merely overlap do not count.
    bool isMember(const KestaIPRange& other) const;

    /// True when the address, which stays the caller's, lies inside the range. The families are not
    /// compared: ask for like with like. False for a null pointer.
    bool isMember(const KestaIPAddress* address) const;

    /// `KESTA_IPV4_FAMILY` or `KESTA_IPV6_FAMILY`; 0 for a range that contains nothing.
    int getAddressFamily() const { return iFamilyType; }

    /// The lowest address, which stays the range's; null for a range that contains nothing.
    KestaIPAddress* getStartAddress() const { return m_startAddress.get(); }

    /// The highest address, which stays the range's; null for a range that contains nothing.
    KestaIPAddress* getEndAddress() const { return m_endAddress.get(); }

private:
    void build(CKestaString& strRange);
    void buildIPv4(const CKestaString& strRange);
    void buildIPv6Address(const CKestaString& strRange);
    void buildIPv6Prefix(const CKestaString& strRange);
    void buildIPv6Wildcard(const CKestaString& strRange);
    void makeIPv6End(int iPrefixLength);
    void traceEnds(const char* pszStart, const char* pszEnd) const;
    bool isMemberByOperators(const KestaIPAddress* address) const;
    bool isMemberByOperators(const KestaIPRange& other) const;

    template <class TSocketAddress>
    bool spans(const KestaIPAddress& first, const KestaIPAddress& last) const
    {
        return m_startAddress->number<TSocketAddress>() <= first.number<TSocketAddress>() &&
               m_endAddress->number<TSocketAddress>() >= last.number<TSocketAddress>();
    }

    template <class TSocketAddress>
    bool spans(const KestaIPRange& other) const
    {
        return spans<TSocketAddress>(*other.m_startAddress, *other.m_endAddress);
    }

    std::unique_ptr<KestaIPAddress> m_startAddress;
    std::unique_ptr<KestaIPAddress> m_endAddress;
    int iFamilyType = 0;
};

// Membership is what hosts ask for most, and nearly always with tracing off. So with nothing to
// trace the bytes of the family are compared in place; the operators, which trace each comparison,
// are for the rest.
inline bool KestaIPRange::isMember(const KestaIPAddress* address) const
{
    if (CKestaDebug::isTraced(3) || m_startAddress == nullptr || address == nullptr)
        return isMemberByOperators(address);
    return iFamilyType == KESTA_IPV4_FAMILY ? spans<sockaddr_in>(*address, *address)
                                            : spans<sockaddr_in6>(*address, *address);
}

inline bool KestaIPRange::isMember(const KestaIPRange& other) const
{
    if (CKestaDebug::isTraced(3) || m_startAddress == nullptr || iFamilyType != other.iFamilyType)
        return isMemberByOperators(other);
    return iFamilyType == KESTA_IPV4_FAMILY
               ? spans<sockaddr_in>(other) || other.spans<sockaddr_in>(*this)
               : spans<sockaddr_in6>(other) || other.spans<sockaddr_in6>(*this);
}

#endif
