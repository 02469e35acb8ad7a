#include "KestaIPRange.h"

#include "KestaAddressDetail.h"
#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPUtilities.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <string_view>

namespace
{

constexpr std::size_t npos = CKestaString::npos;

// Not one word of these is to be changed: users and scripts know them as they are. The last of the
// errors is the one that no blank parts from the address.
constexpr char szNotAllowed[] = "This address as not allowed as per current IP filter settings!!!";
constexpr char szNotAllowedTrace[] = "KestaIPRange::KestaIPRange(): This address as not allowed as "
                                     "per current IP filter settings!!!";
constexpr char szNotAllowedIPv6Trace[] =
    "KestaIPRange::KestaIPRange():This address as not allowed as per current IP filter settings!!!";

bool holds(std::string_view text, char c)
{
    return text.find(c) != npos;
}

// The lowest and the highest text that a text with stars stands for.
CKestaString withStarsLowest(const CKestaString& strText)
{
    CKestaString strResult(strText);
    std::replace(strResult.begin(), strResult.end(), '*', '0');
    return strResult;
}

CKestaString withStarsHighest(const CKestaString& strText)
{
    CKestaString strResult;
    for (const char c : strText)
    {
        if (c == '*')
            strResult += "255";
        else
            strResult += c;
    }
    return strResult;
}

bool isUnallowedIPv4(const KestaIPAddress& address)
{
    return KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(asIPv4(address.viewSockAddress()));
}

bool isUnallowedIPv6(const KestaIPAddress& address)
{
    return KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(asIPv6(address.viewSockAddress()));
}

[[noreturn]] void refuse(const CKestaString& strError, const CKestaString& strRange)
{
    throw CKestaExc(strError + strRange);
}

// Everything after the last ":" of a text such as ::ffff:10.1.*.*
CKestaString mappedIPv4Part(const CKestaString& strRange)
{
    const std::size_t ulColon = strRange.rfind(':');
    const KestaIPv6Address prefix(CKestaString(strRange.substr(0, ulColon)) + ":0:0");
    const KestaIPv6Address mappedPrefix("::ffff:0:0");
    if (mappedPrefix.compareTwoIPv6Addresses(asIPv6(prefix.viewSockAddress())) != 0)
    {
        KESTA_DEBUG2("KestaIPRange::KestaIPRange().Not a valid IPv4MappedIPv6 address", strRange,
                     3);
        refuse("Not a valid IPv4MappedIPv6 address ", strRange);
    }
    return strRange.substr(ulColon + 1);
}

}   // namespace

KestaIPRange::KestaIPRange(CKestaString strRange)
{
    KESTA_DEBUG1("In KestaIPRange::KestaIPRange()", 3);
    try
    {
        build(strRange);
    }
    catch (const CKestaExc& refException)
    {
        throw CKestaExc(refException);
    }
    catch (const std::exception&)
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Unknown Error", 3);
        throw CKestaExc("Unknown Error");
    }
    KESTA_DEBUG1("Out KestaIPRange::KestaIPRange()", 3);
}

KestaIPRange::KestaIPRange() = default;

KestaIPRange::~KestaIPRange() = default;

void KestaIPRange::build(CKestaString& strRange)
{
    if (strRange.empty())
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-IPAddres is an empty string", 3);
        refuse("IPAddres is an empty string ", strRange);
    }
    const bool bColon = holds(strRange, ':');
    const bool bStar = holds(strRange, '*');
    if (holds(strRange, '.'))
    {
        if (bColon)
            strRange = mappedIPv4Part(strRange);   // errors name this part alone from here on
        buildIPv4(strRange);
    }
    else if (bStar)
        buildIPv6Wildcard(strRange);
    else if (bColon && holds(strRange, '/'))
        buildIPv6Prefix(strRange);
    else if (bColon)
        buildIPv6Address(strRange);
    else
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange().Not a valid IP address", 3);
        refuse("Not a valid IP address ", strRange);
    }
}

void KestaIPRange::buildIPv4(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV4_FAMILY;
    if (!holds(strRange, '*'))
    {
        m_startAddress = std::make_unique<KestaIPv4Address>(strRange);
        m_endAddress = std::make_unique<KestaIPv4Address>(strRange);
    }
    else
    {
        m_startAddress = std::make_unique<KestaIPv4Address>(withStarsLowest(strRange));
        m_endAddress = std::make_unique<KestaIPv4Address>(withStarsHighest(strRange));
        traceEnds("KestaIPRange::KestaIPRange()- m_startAddress:-",
                  "KestaIPRange::KestaIPRange()- m_endAddress:-");
    }

    traceEnds("KestaIPRange::KestaIPRange()-Before the filter check startAddress: ",
              "KestaIPRange::KestaIPRange()-Before the filter check endAddress: ");
    for (const KestaIPAddress* pAddress : {m_startAddress.get(), m_endAddress.get()})
    {
        if (isUnallowedIPv4(*pAddress))
        {
            traceAddress(szNotAllowedTrace, *pAddress);
            refuse(szNotAllowed, strRange);
        }
    }
}

void KestaIPRange::buildIPv6Address(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV6_FAMILY;
    m_startAddress = std::make_unique<KestaIPv6Address>(strRange);
    m_endAddress = std::make_unique<KestaIPv6Address>(strRange);

    traceEnds("KestaIPRange::KestaIPRange()-Before the filter check startAddress: ",
              "KestaIPRange::KestaIPRange()-Before the filter check endAddress: ");
    if (isUnallowedIPv6(*m_startAddress))
    {
        KESTA_DEBUG2(szNotAllowedIPv6Trace, strRange, 3);
        refuse(szNotAllowed, strRange);
    }
}

void KestaIPRange::buildIPv6Prefix(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV6_FAMILY;
    const std::size_t ulSlash = strRange.find('/');
    const int iPrefixLength = std::atoi(strRange.c_str() + ulSlash + 1);
    if (iPrefixLength < 0 || iPrefixLength > 128)
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Not a Valid prefix for IPv6 Address", 3);
        refuse("Not a Valid prefix for IPv6 Address ", strRange);
    }

    CKestaString strStart;
    strStart.assign(strRange, 0, ulSlash);
    m_startAddress = std::make_unique<KestaIPv6Address>(strStart);
    sockaddr_in6 scratch = *asIPv6(m_startAddress->viewSockAddress());   // the check clears it
    if (!KestaIPUtilities::ValidateIPv6StartAddress(&scratch, iPrefixLength))
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Not a Valid Ipv6 Address", 3);
        refuse("Not a valid IPv6 address ", strRange);
    }
    makeIPv6End(iPrefixLength);

    traceEnds("KestaIPRange::KestaIPRange()-Before the filter check startAddress: ",
              "KestaIPRange::KestaIPRange()-Before the filter check endAddress: ");
    if (isUnallowedIPv6(*m_startAddress))
    {
        KESTA_DEBUG1(szNotAllowedTrace, 3);
        throw CKestaExc(szNotAllowed);   // this form alone does not name the text, on purpose
    }
}

// Neither checked for being the start of a block nor screened, on purpose: "*" is all of IPv6.
void KestaIPRange::buildIPv6Wildcard(const CKestaString& strRange)
{
    iFamilyType = KESTA_IPV6_FAMILY;
    const std::size_t ulStar = strRange.find('*');
    if (ulStar != strRange.size() - 1)
    {
        KESTA_DEBUG1("KestaIPRange::KestaIPRange()-Not a valid IPv6 Wild Card Address", 3);
        refuse("Not a valid IPv6 Wild Card Address ", strRange);
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
        lPrefixLength = (4 * lGroups + lDigits) * 4 - 16;
    else if (!bAll)
        lPrefixLength = 16 * lGroups;

    m_startAddress = std::make_unique<KestaIPv6Address>(strStart);
    makeIPv6End(static_cast<int>(lPrefixLength));
    traceEnds("KestaIPRange::KestaIPRange()- m_startAddress:-",
              "KestaIPRange::KestaIPRange()- m_endAddress:-");
}

void KestaIPRange::makeIPv6End(int iPrefixLength)
{
    KestaIPAddress* pEnd = nullptr;
    KestaIPUtilities::InitialiseIPv6EndAddress(asIPv6(m_startAddress->viewSockAddress()), &pEnd,
                                               iPrefixLength);
    m_endAddress.reset(pEnd);
}

void KestaIPRange::traceEnds(const char* pszStart, const char* pszEnd) const
{
    traceAddress(pszStart, *m_startAddress);
    traceAddress(pszEnd, *m_endAddress);
}

// A range without ends contains nothing, and nothing contains it.
bool KestaIPRange::isMemberByOperators(const KestaIPAddress* address) const
{
    KESTA_DEBUG1("In KestaIPRange::isMember()", 3);
    return m_startAddress != nullptr && address != nullptr && *m_startAddress <= address &&
           *m_endAddress >= address;
}

bool KestaIPRange::isMemberByOperators(const KestaIPRange& other) const
{
    // The line says "by value"; it is fixed, although the range comes by reference.
    KESTA_DEBUG1("In KestaIPRange::isMember(KestaIPRange anIPRange)", 3);
    if (iFamilyType != other.iFamilyType || m_startAddress == nullptr)
        return false;
    const KestaIPAddress* pOtherStart = other.getStartAddress();
    const KestaIPAddress* pOtherEnd = other.getEndAddress();
    return (*m_startAddress <= pOtherStart && *m_endAddress >= pOtherEnd) ||
           (*m_startAddress >= pOtherStart && *m_endAddress <= pOtherEnd);
}
