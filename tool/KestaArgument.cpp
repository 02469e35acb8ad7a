#include "KestaArgument.h"

#include "KestaAddressCodec.h"
#include "KestaAddressNumber.h"
#include "KestaAddresses.h"
#include "KestaDebug.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaString.h"
#include "KestaTextDetail.h"
#include "KestaToolText.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/stat.h>

namespace
{

// True when a text is month/day/year, and there is such a day.
bool isDate(const std::string& strText)
{
    std::tm tmDate = {};
    char cRest;
    if (std::sscanf(strText.c_str(), "%9d/%9d/%9d%c", &tmDate.tm_mon, &tmDate.tm_mday,
                    &tmDate.tm_year, &cRest) != 3)
        return false;
    tmDate.tm_mon -= 1;
    tmDate.tm_year -= 1900;
    std::tm tmReal = tmDate;
    timegm(&tmReal);   // turns 30 February into a day in March
    return tmReal.tm_mon == tmDate.tm_mon && tmReal.tm_mday == tmDate.tm_mday;
}

// The IPv4 part of an IPv4-mapped text, or the whole.
const char* ipv4Part(const std::string& strText)
{
    const char* const pszColon = std::strrchr(strText.c_str(), ':');
    const char* pszPart = pszColon != nullptr ? pszColon + 1 : strText.c_str();
    while (KestaTextDetail::isSpace(*pszPart))
        ++pszPart;
    return pszPart;
}

// True for four parts that are stars or decimal numbers without leading zeros.
bool isUsual(const char* pszIPv4, KestaIPv4Number& first, KestaIPv4Number& last)
{
    const char* const pszEnd = CKestaAddressCodec::scanIPv4Pattern(pszIPv4, first, last);
    return pszEnd != nullptr && *pszEnd != '%' && *pszEnd != '*';
}

std::string endsOf(const CKestaAddressInterval& addresses)
{
    const std::string strFirst = addressText(addresses.bIPv6, addresses.first);
    return addresses.first == addresses.last
               ? strFirst
               : strFirst + " to " + addressText(addresses.bIPv6, addresses.last);
}

void explain(const char* pszWhat, const std::string& strText,
             const CKestaAddressInterval& addresses)
{
    const std::string strExplanation = explanation(strText, addresses);
    if (!strExplanation.empty())
        report(std::string(pszWhat) + " " + inQuotes(strText) + " " + strExplanation);
}

// The range that hosts make of a text, or null. What the system would ignore after white space is
// part of the text here.
std::unique_ptr<KestaIPRange> rangeOfHosts(const std::string& strText)
{
    if (std::any_of(strText.begin(), strText.end(), &KestaTextDetail::isSpace))
        return nullptr;
    try
    {
        return std::make_unique<KestaIPRange>(strText);
    }
    catch (const CKestaExc&)
    {
        return nullptr;
    }
}

// What to write instead of an IPv6 prefix that does not begin its block, or else the library's
// message, which may repeat the text.
std::string whatIsWrong(const std::string& strText, const CKestaExc& exc)
{
    struct stat file;
    if (!strText.empty() && stat(strText.c_str(), &file) == 0)
        return "this is a file; kesta filter expects RANGE before FILE, or -f FILE for ranges";
    CKestaAddress address;
    const char* const pEnd = scanAddress(strText.c_str(), address);
    int iLength = 0;
    if (address.bIPv6 && pEnd != nullptr && std::sscanf(pEnd, "/%3d", &iLength) == 1 &&
        iLength >= 0 && iLength <= 128)
    {
        const CKestaAddressInterval block = blockAt(true, address.number, iLength);
        if (block.first != address.number)
            return "not the first address of its block, " + blocksOf(block).front();
    }
    constexpr std::size_t ulShown = 160;
    const std::string strMessage(withoutBlanks(exc.GetErrorMessage()));
    const std::string strRepeated = shortened(strText) + ": ";
    const bool bRepeated = strMessage.compare(0, strRepeated.size(), strRepeated) == 0;
    return shortened(strMessage.substr(bRepeated ? strRepeated.size() : 0), ulShown);
}

struct CAddressClass
{
    const char* pszName;
    bool* pIPv4Flag;
    bool* pIPv6Flag;
};

const CAddressClass addressClasses[] = {
    {"loopback", &KestaIPv4Address::m_bIPv4LoopBack, &KestaIPv6Address::m_bIPv6LoopBack},
    {"multicast", &KestaIPv4Address::m_bIPv4MutliCast, &KestaIPv6Address::m_bIPv6MutliCast},
    {"link-local", &KestaIPv4Address::m_bIPv4LinkLocal, &KestaIPv6Address::m_bIPv6LinkLocal},
    {"site-local", &KestaIPv4Address::m_bIPv4SiteLocal, &KestaIPv6Address::m_bIPv6SiteLocal},
    {"private", &KestaIPv4Address::m_bIPv4SiteLocal, &KestaIPv6Address::m_bIPv6SiteLocal},
};

std::string allNames()
{
    std::string strNames;
    for (const CAddressClass& known : addressClasses)
        strNames += (strNames.empty() ? "" : ", ") + std::string(known.pszName);
    return strNames;
}

const CAddressClass& findClass(std::string_view name)
{
    for (const CAddressClass& known : addressClasses)
    {
        if (name == known.pszName)
            return known;
    }
    throw CKestaToolError("--exclude: unknown class " + inQuotes(name) + " (" + allNames() + ")");
}

}   // namespace

std::unique_ptr<KestaIPAddress> readAddressArgument(const std::string& strText)
{
    std::unique_ptr<KestaIPAddress> pAddress;
    try
    {
        if (strText.find(':') != std::string::npos)
            pAddress = std::make_unique<KestaIPv6Address>(strText);
        else if (strText.find('.') != std::string::npos)
            pAddress = std::make_unique<KestaIPv4Address>(strText);
    }
    catch (const CKestaExc& exc)
    {
        CKestaDebug::logMessage(exc);
    }
    if (pAddress == nullptr)
        throw CKestaToolError("not an IP address: " + inQuotes(strText));
    explain("address", strText, intervalOf(*pAddress));
    return pAddress;
}

CKestaRangeArgument readRangeArgument(const std::string& strText)
{
    CKestaRangeArgument argument;
    try
    {
        argument.pRange = rangeOfHosts(strText);
        argument.addresses =
            argument.pRange != nullptr ? intervalOf(*argument.pRange) : parseEntry(strText);
    }
    catch (const CKestaExc& exc)
    {
        throw rangeError(strText, exc);
    }
    explain("range", strText, argument.addresses);
    return argument;
}

std::string explanation(const std::string& strText, const CKestaAddressInterval& addresses)
{
    if (isPlain(strText))
        return "";
    std::string strBlock(withoutBlanks(ipv4Part(strText)));
    KestaIPv4Number first;
    KestaIPv4Number last;
    if (isUsual(strBlock.c_str(), first, last))
        return "holds every address from " + endsOf(addresses);
    std::string strReading = "is read as " + endsOf(addresses);
    const std::size_t ulLast = strBlock.rfind(".*");
    if (ulLast == std::string::npos || ulLast + 2 != strBlock.size())
        return strReading;
    for (auto lDots = std::count(strBlock.begin(), strBlock.end(), '.'); lDots < 3; ++lDots)
        strBlock += ".*";
    return strReading + "; for the whole block write " + strBlock;
}

bool isPlain(std::string_view text)
{
    if (text.find('/') != std::string_view::npos)
        return true;   // a block, whose address has its usual form
    const std::string strText(text);
    const char* const pszIPv4 = ipv4Part(strText);
    if (std::strchr(pszIPv4, '.') == nullptr)
        return true;
    KestaIPv4Number first = 0;
    KestaIPv4Number last = 0;
    if (!isUsual(pszIPv4, first, last))
        return false;
    const KestaIPv4Number stars = first ^ last;
    return (stars & (stars + 1)) == 0;   // no number follows a star
}

CKestaToolError rangeError(const std::string& strText, const CKestaExc& exc)
{
    CKestaDebug::logMessage(exc);
    return CKestaToolError("range " + inQuotes(strText) + ": " + whatIsWrong(strText, exc) +
                           "; see 'kesta range --help'");
}

CKestaDate readDate(const std::string& strName, const std::string& strText)
{
    if (!isDate(strText))
        throw CKestaToolError(strName + " " + inQuotes(strText) +
                              ": expected month/day/year, such as 2/29/2024");
    return CKestaDate(strText);
}

long readNumber(const std::string& strName, const std::string& strText, long lLowest, long lHighest)
{
    long lNumber = 0;
    const char* const pEnd = strText.data() + strText.size();
    const auto [pStop, error] = std::from_chars(strText.data(), pEnd, lNumber);
    if (error != std::errc() || pStop != pEnd || lNumber < lLowest || lNumber > lHighest)
        throw CKestaToolError(strName + " " + inQuotes(strText) + ": expected a number from " +
                              std::to_string(lLowest) + " to " + std::to_string(lHighest));
    return lNumber;
}

std::string exclusionHelp()
{
    return "Comma-separated classes of addresses to exclude: " + allNames();
}

void excludeClasses(const std::string& strClasses)
{
    std::vector<const CAddressClass*> excluded;
    std::size_t ulComma;
    for (std::size_t ulName = 0; ulName <= strClasses.size(); ulName = ulComma + 1)
    {
        ulComma = std::min(strClasses.find(',', ulName), strClasses.size());
        excluded.push_back(&findClass(strClasses.substr(ulName, ulComma - ulName)));
    }
    for (const CAddressClass* pClass : excluded)
        *pClass->pIPv4Flag = *pClass->pIPv6Flag = true;
}
