#include "KestaArgument.h"

#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaString.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <string_view>
#include <system_error>
#include <vector>

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
    try
    {
        if (strText.find(':') != std::string::npos)
            return std::make_unique<KestaIPv6Address>(strText);
        return std::make_unique<KestaIPv4Address>(strText);
    }
    catch (const CKestaExc& exc)
    {
        CKestaDebug::logMessage(exc);
        throw CKestaToolError("not an IP address: " + inQuotes(strText));
    }
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
    if (!scanNumber(strText, lLowest, lHighest, lNumber))
        throw CKestaToolError(strName + " " + inQuotes(strText) + ": expected a number from " +
                              std::to_string(lLowest) + " to " + std::to_string(lHighest));
    return lNumber;
}

bool scanNumber(const std::string& strText, long lLowest, long lHighest, long& lNumber)
{
    const char* const pEnd = strText.data() + strText.size();
    const auto [pStop, error] = std::from_chars(strText.data(), pEnd, lNumber);
    return error == std::errc() && pStop == pEnd && lNumber >= lLowest && lNumber <= lHighest;
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
