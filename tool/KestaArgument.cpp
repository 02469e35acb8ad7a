#include "KestaArgument.h"

#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaString.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <charconv>
#include <cstdio>
#include <ctime>
#include <system_error>

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
