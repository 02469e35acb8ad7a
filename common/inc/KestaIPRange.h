#ifndef KESTA_IP_RANGE_H
#define KESTA_IP_RANGE_H

#include "KestaAddressNumber.h"
#include "KestaDebug.h"
#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaString.h"

#include <iosfwd>
#include <string_view>
#include <type_traits>

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
/// The range holds its two addresses. It can be moved, and not copied.
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

    /// Takes over the ends of the other range, which contains nothing afterwards. Pointers to its
    /// ends are no longer valid.
    KestaIPRange(KestaIPRange&& other) noexcept;
    /// The same; the addresses that this range had are gone.
    KestaIPRange& operator=(KestaIPRange&& other) noexcept;

    ~KestaIPRange();

    /// True when one of the two ranges contains the other. Intended: it does not matter which; and
    /// ranges that merely overlap do not count.
    bool isMember(const KestaIPRange& other) const;

    /// True when the address, which stays the caller's, lies inside the range. The families are not
    /// compared: ask for like with like. False for a null pointer.
    bool isMember(const KestaIPAddress* address) const;

    /// A text is no address: it would become a range, and be asked the symmetric question above.
    /// Make an address value of it.
    template <class TText,
              std::enable_if_t<std::is_convertible_v<const TText&, std::string_view> &&
                                   !std::is_convertible_v<const TText&, const KestaIPAddress*> &&
                                   !std::is_base_of_v<KestaIPRange, TText>,
                               int> = 0>
    bool isMember(const TText& text) const = delete;

    /// `KESTA_IPV4_FAMILY` or `KESTA_IPV6_FAMILY`; 0 for a range that contains nothing.
    int getAddressFamily() const { return iFamilyType; }

    /// The lowest address, which stays the range's; null for a range that contains nothing.
    KestaIPAddress* getStartAddress() const { return m_startAddress.get(); }

    /// The highest address, which stays the range's; null for a range that contains nothing.
    KestaIPAddress* getEndAddress() const { return m_endAddress.get(); }

private:
    // An end of the range, held in place.
    class KESTA_LOCAL CEnd
    {
    public:
        CEnd() = default;
        CEnd(const CEnd&) = delete;
        CEnd& operator=(const CEnd&) = delete;
        ~CEnd() { clear(); }

        KestaIPAddress* get() const { return m_pAddress; }

        template <class TAddress, class... TArguments>
        TAddress& make(const TArguments&... arguments);
        template <class TAddress, class... TText>
        TAddress& read(const TText&... text);
        void takeOver(CEnd& other, int iFamily) noexcept;
        void clear() noexcept;

    private:
        KestaIPAddress* m_pAddress = nullptr;
        alignas(KestaIPAddress) unsigned char m_place[sizeof(KestaIPAddress)];
    };

    KESTA_LOCAL void build(CKestaString& strRange);
    KESTA_LOCAL void buildIPv4(const CKestaString& strRange, std::size_t ulStars);
    KESTA_LOCAL void buildIPv6Address(const CKestaString& strRange);
    KESTA_LOCAL void buildIPv6Prefix(const CKestaString& strRange);
    KESTA_LOCAL void buildIPv6Wildcard(const CKestaString& strRange);
    KESTA_LOCAL void makeIPv6End(int iPrefixLength);
    KESTA_LOCAL void traceEnds(const char* pszStart, const char* pszEnd) const;
    KESTA_LOCAL void takeOver(KestaIPRange& other) noexcept;
    bool isMemberByOperators(const KestaIPAddress* address) const;
    bool isMemberByOperators(const KestaIPRange& other) const;

    template <class TNumber>
    static TNumber numberOf(const KestaIPAddress* pAddress)
    {
        return KestaAddressNumber::in<TNumber>(pAddress->viewSockAddress());
    }

    template <class TNumber>
    bool spans(const KestaIPAddress* pFirst, const KestaIPAddress* pLast) const
    {
        return numberOf<TNumber>(m_startAddress.get()) <= numberOf<TNumber>(pFirst) &&
               numberOf<TNumber>(m_endAddress.get()) >= numberOf<TNumber>(pLast);
    }

    template <class TNumber>
    bool spans(const KestaIPRange& other) const
    {
        return spans<TNumber>(other.m_startAddress.get(), other.m_endAddress.get());
    }

    CEnd m_startAddress;
    CEnd m_endAddress;
    int iFamilyType = 0;
};

// Membership is what hosts ask for most, and nearly always with tracing off. So with nothing to
// trace the bytes of the family are compared in place; the operators, which trace each comparison,
// are for the rest.
inline bool KestaIPRange::isMember(const KestaIPAddress* address) const
{
    if (CKestaDebug::isTraced(KestaIPAddress::KESTA_TRACE_LEVEL) || iFamilyType == 0 ||
        address == nullptr)
        return isMemberByOperators(address);
    return iFamilyType == KESTA_IPV4_FAMILY ? spans<KestaIPv4Number>(address, address)
                                            : spans<KestaIPv6Number>(address, address);
}

inline bool KestaIPRange::isMember(const KestaIPRange& other) const
{
    if (CKestaDebug::isTraced(KestaIPAddress::KESTA_TRACE_LEVEL) || iFamilyType == 0 ||
        iFamilyType != other.iFamilyType)
        return isMemberByOperators(other);
    return iFamilyType == KESTA_IPV4_FAMILY
               ? spans<KestaIPv4Number>(other) || other.spans<KestaIPv4Number>(*this)
               : spans<KestaIPv6Number>(other) || other.spans<KestaIPv6Number>(*this);
}

/// Writes a range as its two ends: "10.1.0.0 - 10.1.255.255". A range that contains nothing is the
/// empty text.
template <class TTraits>
std::basic_ostream<char, TTraits>& operator<<(std::basic_ostream<char, TTraits>& os,
                                              KestaOperand<KestaIPRange> range)
{
    CKestaString strEnds;
    if (range.value.getAddressFamily() != 0)
        strEnds = range.value.getStartAddress()->getStrAddress() + " - " +
                  range.value.getEndAddress()->getStrAddress();
    return os << strEnds.c_str();
}

#endif
