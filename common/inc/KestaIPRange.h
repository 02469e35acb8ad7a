#ifndef KESTA_IP_RANGE_H
#define KESTA_IP_RANGE_H

#include "KestaAddressNumber.h"
#include "KestaDebug.h"
#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaString.h"

#include <iosfwd>
#include <new>
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
/// There is no form with a dash, and no IPv4 prefix; `KestaIPRangeSet` takes both. But white space
/// ends an IPv4 text, as in `KestaIPv4Address`: "10.1.0.0 - 10.1.255.255" is the one address
/// 10.1.0.0, and so is what `<<` writes of a range. Every range except an IPv6 one with "*" is
/// screened against the exclusion flags of the address classes. The screening always refuses
/// 0.0.0.0, :: and IPv4-compatible addresses, so "*.*.*.*" and "::/0" throw.
///
/// The range owns its two addresses. It can be moved, but not copied.
///
/// Thread contract: any number of threads may use one range, as long as nobody moves it.
class KESTA_API KestaIPRange
{
public:
    /// The library's own family codes, which are not those of the socket interface.
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
    /// or with the message of the address class that could not read an end of the range, which ends
    /// in the text of this end. Intended: the message for an IPv6 prefix that is refused by the
    /// exclusion flags names no text. Any other exception becomes "Unknown Error".
    KestaIPRange(CKestaString strRange);

    /// A range that contains nothing: no ends, family 0.
    KestaIPRange();

    KestaIPRange(const KestaIPRange&) = delete;
    KestaIPRange& operator=(const KestaIPRange&) = delete;

    /// Takes over the ends of the other range, which contains nothing afterwards. Pointers to its
    /// ends are no longer valid.
    KestaIPRange(KestaIPRange&& other) noexcept;
    /// Also invalidates pointers to this range's previous ends.
    KestaIPRange& operator=(KestaIPRange&& other) noexcept;

    ~KestaIPRange();

    /// True when one of the two ranges contains the other. Intended: it does not matter which; and
    /// ranges that merely overlap do not count.
    bool isMember(const KestaIPRange& other) const;

    /// True when the address, which stays the caller's, lies inside the range. Families are not
    /// compared: pass an address of the range's family. False for a null pointer.
    bool isMember(const KestaIPAddress* address) const;

    /// Deleted: a text would convert to a range, and `isMember(range)` is symmetric. Construct an
    /// address or a range explicitly.
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
    // An end of the range, stored in place.
    class KESTA_LOCAL CEnd
    {
    public:
        CEnd() = default;
        CEnd(const CEnd&) = delete;
        CEnd& operator=(const CEnd&) = delete;
        ~CEnd() { clear(); }

        KestaIPAddress* get() const { return m_pAddress; }

        // The same for an end that exists, without loading the pointer to it.
        const KestaIPAddress& inPlace() const
        {
            return *std::launder(reinterpret_cast<const KestaIPAddress*>(m_place));
        }

        template <class TAddress, class... TArguments>
        TAddress& make(const TArguments&... arguments);
        template <class TAddress>
        TAddress& read(std::string_view text);
        void takeOver(CEnd& other, int iFamily) noexcept;
        void clear() noexcept;

    private:
        KestaIPAddress* m_pAddress = nullptr;
        alignas(KestaIPAddress) unsigned char m_place[sizeof(KestaIPAddress)];
    };

    KESTA_LOCAL void build(CKestaString& strRange);
    KESTA_LOCAL void buildIPv4(const CKestaString& strRange, bool bStars);
    KESTA_LOCAL void makeIPv4Ends(const CKestaString& strPattern);
    KESTA_LOCAL void buildIPv6Address(const CKestaString& strRange);
    KESTA_LOCAL void buildIPv6Prefix(const CKestaString& strRange);
    KESTA_LOCAL void buildIPv6Wildcard(const CKestaString& strRange);
    KESTA_LOCAL void makeIPv6End(int iPrefixLength);
    KESTA_LOCAL void traceMade() const;
    KESTA_LOCAL void traceScreening() const;
    KESTA_LOCAL void takeOver(KestaIPRange& other) noexcept;
    bool isMemberByOperators(const KestaIPAddress* address) const;
    bool isMemberByOperators(const KestaIPRange& other) const;

    template <class TNumber>
    static TNumber numberOf(const KestaIPAddress& address)
    {
        return KestaAddressNumber::in<TNumber>(address.viewSockAddress());
    }

    template <class TNumber>
    bool spans(const KestaIPAddress& first, const KestaIPAddress& last) const
    {
        return numberOf<TNumber>(m_startAddress.inPlace()) <= numberOf<TNumber>(first) &&
               numberOf<TNumber>(m_endAddress.inPlace()) >= numberOf<TNumber>(last);
    }

    template <class TNumber>
    bool spans(const KestaIPRange& other) const
    {
        return spans<TNumber>(other.m_startAddress.inPlace(), other.m_endAddress.inPlace());
    }

    CEnd m_startAddress;
    CEnd m_endAddress;
    int iFamilyType = 0;
};

// Membership is what hosts query most, nearly always with tracing off. While nothing is traced, the
// address bytes are compared here, inline; otherwise by the operators, which trace each comparison.
inline bool KestaIPRange::isMember(const KestaIPAddress* address) const
{
    if (address != nullptr && !CKestaDebug::isTraced(KestaIPAddress::KESTA_TRACE_LEVEL))
    {
        if (iFamilyType == KESTA_IPV4_FAMILY)
            return spans<KestaIPv4Number>(*address, *address);
        if (iFamilyType == KESTA_IPV6_FAMILY)
            return spans<KestaIPv6Number>(*address, *address);
    }
    return isMemberByOperators(address);
}

inline bool KestaIPRange::isMember(const KestaIPRange& other) const
{
    if (iFamilyType == other.iFamilyType &&
        !CKestaDebug::isTraced(KestaIPAddress::KESTA_TRACE_LEVEL))
    {
        if (iFamilyType == KESTA_IPV4_FAMILY)
            return spans<KestaIPv4Number>(other) || other.spans<KestaIPv4Number>(*this);
        if (iFamilyType == KESTA_IPV6_FAMILY)
            return spans<KestaIPv6Number>(other) || other.spans<KestaIPv6Number>(*this);
    }
    return isMemberByOperators(other);
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
