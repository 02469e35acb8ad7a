#include "KestaIPRange.h"

#include "KestaAddressCodec.h"
#include "KestaAddressDetail.h"
#include "KestaAddressNumber.h"
#include "KestaException.h"
#include "KestaIPUtilities.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include <netinet/in.h>

namespace
{

constexpr std::size_t npos = CKestaString::npos;

// Fixed texts; do not edit. There is no blank between the error and the text that follows it.
constexpr char szNotAllowed[] = "This address as not allowed as per current IP filter settings!!!";
constexpr char szNotAllowedTrace[] = "KestaIPRange::KestaIPRange(): This address as not allowed as "
                                     "per current IP filter settings!!!";
constexpr char szNotAllowedAddressTrace[] =
    "KestaIPRange::KestaIPRange():This address as not allowed as per current IP filter settings!!!";

// The characters that tell the forms of a text apart, each as a bit.
constexpr unsigned char cDot = 1;
constexpr unsigned char cColon = 2;
constexpr unsigned char cStar = 4;
constexpr unsigned char cSlash = 8;

constexpr std::array<unsigned char, 256> markerTable()
{
    std::array<unsigned char, 256> table{};
    table['.'] = cDot;
    table[':'] = cColon;
    table['*'] = cStar;
    table['/'] = cSlash;
    return table;
}

// Which of these characters a text contains.
class CMarkers
{
public:
    explicit CMarkers(const CKestaString& strText)
    {
        static constexpr std::array<unsigned char, 256> table = markerTable();
        for (const char c : strText)
            m_uKinds |= table[static_cast<unsigned char>(c)];
    }

    bool has(unsigned char cKind) const { return (m_uKinds & cKind) != 0; }

private:
    unsigned int m_uKinds = 0;
};

// A text with each of its stars replaced.
std::string starsAs(std::string_view number, const CKestaString& strPattern)
{
    std::string strText;
    for (const char c : strPattern)
        if (c == '*')
            strText += number;
        else
            strText += c;
    return strText;
}

// Traces a conversion that is skipped because the number is known: the lines are part of the
// interface.
void traceIPv4Reading()
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv4StringToAddress() ", iTraceLevel);
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv4StringToAddress ", iTraceLevel);
}

bool isUnallowedIPv4(const KestaIPAddress& address)
{
    return KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(asIPv4(address.viewSockAddress()));
}

bool isUnallowedIPv6(const KestaIPAddress& address)
{
    return KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(asIPv6(address.viewSockAddress()));
}

// Everything after the last ":" of a text such as ::ffff:10.1.*.*
CKestaString mappedIPv4Part(const CKestaString& strRange)
{
    constexpr KestaIPv6Number mappedPrefix = KestaIPv6Number{0xFFFF} << 32;   // ::ffff:0:0
    const std::size_t ulColon = strRange.rfind(':');
    const KestaIPv6Address prefix(CKestaString(strRange.substr(0, ulColon)) + ":0:0");
    traceIPv6Reading();
    if (compareIPv6(mappedPrefix,
                    KestaAddressNumber::in<KestaIPv6Number>(prefix.viewSockAddress())) != 0)
    {
        KESTA_DEBUG2("KestaIPRange::KestaIPRange().Not a valid IPv4MappedIPv6 address", strRange,
                     iTraceLevel);
        throw errorNaming("Not a valid IPv4MappedIPv6 address ", strRange);
    }
    return strRange.substr(ulColon + 1);
}

}   // namespace

template <class TAddress, class... TArguments>
TAddress& KestaIPRange::CEnd::make(const TArguments&... arguments)
{
    static_assert(sizeof(TAddress) == sizeof m_place);
    auto* const pAddress = new (m_place) TAddress(arguments...);
    m_pAddress = pAddress;
    return *pAddress;
}

// Constructed first, then parsed in place, and inlined: the error of a text that can't be read has
// fewer frames to unwind. Each would cost it a third more, which is more than parsing a range.
template <class TAddress>
[[gnu::always_inline]] inline TAddress& KestaIPRange::CEnd::read(std::string_view text)
{
    auto& address = make<TAddress>();
    if (!address.read(text))
        throw address.refusal();
    return address;
}

void KestaIPRange::CEnd::takeOver(CEnd& other, int iFamily) noexcept
{
    clear();
    if (other.m_pAddress == nullptr)
        return;
    if (iFamily == KESTA_IPV4_FAMILY)
        make<KestaIPv4Address>();
    else
        make<KestaIPv6Address>();
    m_pAddress->takeOver(*other.m_pAddress);
    other.clear();
}

void KestaIPRange::CEnd::clear() noexcept
{
    if (m_pAddress != nullptr)
        m_pAddress->~KestaIPAddress();
    m_pAddress = nullptr;
}

KestaIPRange::KestaIPRange(CKestaString strRange)
{
    KESTA_DEBUG1("In KestaIPRange::KestaIPRange()", iTraceLevel);
    asErrorObjects("KestaIPRange::KestaIPRange()-Unknown Error", "Unknown Error",
                   [&] { build(strRange); });
    KESTA_DEBUG1("Out KestaIPRange::KestaIPRange()", iTraceLevel);
}

KestaIPRange::KestaIPRange() = default;

KestaIPRange::KestaIPRange(KestaIPRange&& other) noexcept
{
    takeOver(other);
}

KestaIPRange& KestaIPRange::operator=(KestaIPRange&& other) noexcept
{
    if (this != &other)
        takeOver(other);
    return *this;
}

KestaIPRange::~KestaIPRange() = default;

void KestaIPRange::takeOver(KestaIPRange& other) noexcept
{
    m_startAddress.takeOver(other.m_startAddress, other.iFamilyType);
    m_endAddress.takeOver(other.m_endAddress, other.iFamilyType);
    iFamilyType = std::exchange(other.iFamilyType, 0);
}

void KestaIPRange::build(CKestaString& strRange)
{
    if (*strRange.c_str() == '\0')
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-IPAddres is an empty string", iTraceLevel);
        throw CKestaExc("IPAddres is an empty string ");
    }
    CMarkers markers(strRange);
    if (markers.has(cDot))
    {
        if (markers.has(cColon))
        {
            strRange = mappedIPv4Part(strRange);   // from here on errors name this part only
            markers = CMarkers(strRange);
        }
        buildIPv4(strRange, markers.has(cStar));
    }
    else if (markers.has(cStar))
        buildIPv6Wildcard(strRange);
    else if (markers.has(cColon) && markers.has(cSlash))
        buildIPv6Prefix(strRange);
    else if (markers.has(cColon))
        buildIPv6Address(strRange);
    else
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange().Not a valid IP address", iTraceLevel);
        throw errorNaming("Not a valid IP address ", strRange);
    }
}

void KestaIPRange::buildIPv4(const CKestaString& strRange, bool bStars)
{
    iFamilyType = KESTA_IPV4_FAMILY;
    if (bStars)
    {
        makeIPv4Ends(strRange);
        traceMade();
    }
    else
    {
        m_endAddress.make<KestaIPv4Address>(m_startAddress.read<KestaIPv4Address>(strRange));
        traceIPv4Reading();
    }

    traceScreening();
    for (const CEnd* pEnd : {&m_startAddress, &m_endAddress})
    {
        if (isUnallowedIPv4(*pEnd->get()))
        {
            traceAddress(szNotAllowedTrace, *pEnd->get());
            throw errorNaming(szNotAllowed, strRange);
        }
    }
}

void KestaIPRange::makeIPv4Ends(const CKestaString& strPattern)
{
    KestaIPv4Number first;
    KestaIPv4Number last;
    const char* const pEnd = CKestaAddressCodec::scanIPv4Pattern(strPattern.c_str(), first, last);
    if (pEnd == strPattern.c_str() + strPattern.size())
    {
        m_startAddress.make<KestaIPv4Address>(KestaAddressNumber::toIPv4(first));
        traceIPv4Reading();
        m_endAddress.make<KestaIPv4Address>(KestaAddressNumber::toIPv4(last));
        traceIPv4Reading();
    }
    else   // such as 10.1* or 0x0A.*
    {
        m_startAddress.read<KestaIPv4Address>(starsAs("0", strPattern));
        m_endAddress.read<KestaIPv4Address>(starsAs("255", strPattern));
    }
}

void KestaIPRange::buildIPv6Address(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV6_FAMILY;
    m_endAddress.make<KestaIPv6Address>(m_startAddress.read<KestaIPv6Address>(strRange));
    traceIPv6Reading();

    traceScreening();
    if (isUnallowedIPv6(*m_startAddress.get()))
    {
        KESTA_DEBUG2(szNotAllowedAddressTrace, strRange, iTraceLevel);
        throw errorNaming(szNotAllowed, strRange);
    }
}

void KestaIPRange::buildIPv6Prefix(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV6_FAMILY;
    const std::size_t ulSlash = strRange.find('/');
    const int iPrefixLength = std::atoi(strRange.c_str() + ulSlash + 1);
    if (iPrefixLength < 0 || iPrefixLength > 128)
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Not a Valid prefix for IPv6 Address",
                     iTraceLevel);
        throw errorNaming("Not a Valid prefix for IPv6 Address ", strRange);
    }

    m_startAddress.read<KestaIPv6Address>(std::string_view(strRange).substr(0, ulSlash));
    sockaddr_in6 scratch = *asIPv6(
        m_startAddress.get()->viewSockAddress());   // ValidateIPv6StartAddress clears its prefix
    if (!KestaIPUtilities::ValidateIPv6StartAddress(&scratch, iPrefixLength))
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Not a Valid Ipv6 Address", iTraceLevel);
        throw errorNaming("Not a valid IPv6 address ", strRange);
    }
    makeIPv6End(iPrefixLength);

    traceScreening();
    if (isUnallowedIPv6(*m_startAddress.get()))
    {
        KESTA_DEBUG1(szNotAllowedTrace, iTraceLevel);
        throw CKestaExc(szNotAllowed);   // only this form does not name the text, on purpose
    }
}

// Neither checked for being the start of a block nor screened, on purpose: "*" is all of IPv6.
void KestaIPRange::buildIPv6Wildcard(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV6_FAMILY;
    const std::size_t ulStar = strRange.find('*');
    if (ulStar != strRange.size() - 1)
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Not a valid IPv6 Wild Card Address",
                     iTraceLevel);
        throw errorNaming("Not a valid IPv6 Wild Card Address ", strRange);
    }

    const bool bAll = strRange == "*";
    CKestaString strStart(strRange.substr(0, ulStar));
    const std::size_t ulColon = strStart.rfind(':');
    const std::size_t ulLastGroup = ulColon == npos ? 0 : ulColon + 1;
    const long lDigits = static_cast<long>(ulStar - ulLastGroup);
    if (lDigits != 0 || bAll)
        strStart.append(static_cast<std::size_t>(std::max(4 - lDigits, 0L)), '0');
    else
        strStart.erase(ulColon);

    const long lGroups = std::count(strStart.begin(), strStart.end(), ':') + 1;
    if (lGroups <= 6)
        strStart += "::";
    else if (lGroups == 7)
        strStart += ":0000";

    long lPrefixLength = 0;
    if (lDigits != 0)
        lPrefixLength = 16 * (lGroups - 1) + 4 * lDigits;
    else if (!bAll)
        lPrefixLength = 16 * lGroups;

    m_startAddress.read<KestaIPv6Address>(strStart);
    makeIPv6End(static_cast<int>(lPrefixLength));
    traceMade();
}

void KestaIPRange::makeIPv6End(int iPrefixLength)
{
    KESTA_DEBUG1("In KestaIPUtilities::InitialiseIPv6EndAddress() ", iTraceLevel);
    makeBlockEnd(asIPv6(m_startAddress.get()->viewSockAddress())->sin6_addr, iPrefixLength,
                 [this](const in6_addr& last) { m_endAddress.make<KestaIPv6Address>(last); });
    KESTA_DEBUG1("Out KestaIPUtilities::InitialiseIPv6EndAddress()", iTraceLevel);
}

void KestaIPRange::traceMade() const
{
    traceAddress("KestaIPRange::KestaIPRange()- m_startAddress:-", *m_startAddress.get());
    traceAddress("KestaIPRange::KestaIPRange()- m_endAddress:-", *m_endAddress.get());
}

void KestaIPRange::traceScreening() const
{
    traceAddress("KestaIPRange::KestaIPRange()-Before the filter check startAddress: ",
                 *m_startAddress.get());
    traceAddress("KestaIPRange::KestaIPRange()-Before the filter check endAddress: ",
                 *m_endAddress.get());
}

// A range without ends contains nothing, and nothing contains it.
bool KestaIPRange::isMemberByOperators(const KestaIPAddress* address) const
{
    KESTA_DEBUG1("In KestaIPRange::isMember()", iTraceLevel);
    return iFamilyType != 0 && address != nullptr && *m_startAddress.get() <= address &&
           *m_endAddress.get() >= address;
}

bool KestaIPRange::isMemberByOperators(const KestaIPRange& other) const
{
    // The line says "by value"; it is fixed, although the range comes by reference.
    KESTA_DEBUG1("In KestaIPRange::isMember(KestaIPRange anIPRange)", iTraceLevel);
    if (iFamilyType != other.iFamilyType || iFamilyType == 0)
        return false;
    KestaIPAddress& start = *m_startAddress.get();
    KestaIPAddress& end = *m_endAddress.get();
    KestaIPAddress* const pOtherStart = other.getStartAddress();
    KestaIPAddress* const pOtherEnd = other.getEndAddress();
    return (start <= pOtherStart && end >= pOtherEnd) || (start >= pOtherStart && end <= pOtherEnd);
}
