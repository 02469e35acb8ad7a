#include "KestaArgument.h"

#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <charconv>

namespace
{

template <class TAction>
auto readArgument(const std::string& strName, const char* pszRight, TAction action)
{
    try
    {
        return action();
    }
    catch (const CKestaExc& exc)
    {
        CKestaDebug::logMessage(exc);
        throw CKestaToolError(strName + ": " + withoutEndBlanks(exc.GetErrorMessage()) + "; " +
                              pszRight);
    }
}

}   // namespace

std::unique_ptr<KestaIPRange> readRange(const std::string& strText)
{
    return readArgument("range " + inQuotes(strText),
                        "a range is an address, 10.1.*.*, 2001:db8::/32 (from the first address of "
                        "its block) or 2001:db8:1*; 0.0.0.0, :: and excluded classes are refused",
                        [&] { return std::make_unique<KestaIPRange>(strText); });
}

std::unique_ptr<KestaIPAddress> readAddressArgument(const std::string& strText)
{
    return readArgument("address " + inQuotes(strText),
                        "an address is 10.1.2.3 or 2001:db8::1, and a range holds \"*\" or \"/\"",
                        [&]() -> std::unique_ptr<KestaIPAddress>
                        {
                            if (strText.find(':') != std::string::npos)
                                return std::make_unique<KestaIPv6Address>(strText);
                            return std::make_unique<KestaIPv4Address>(strText);
                        });
}

// The library reads any text somehow; one without a "/" would give 0/0/0, which nobody means.
CKestaDate readDate(const std::string& strName, const std::string& strText)
{
    if (strText.find('/') == std::string::npos)
        throw CKestaToolError(strName + " " + inQuotes(strText) +
                              ": expected month/day/year, such as 2/29/2000");
    return CKestaDate(strText);
}

long readNumber(const std::string& strName, const std::string& strText, long lLowest, long lHighest)
{
    long lNumber = 0;
    const char* const pEnd = strText.data() + strText.size();
    const auto result = std::from_chars(strText.data(), pEnd, lNumber);
    if (result.ec != std::errc() || result.ptr != pEnd || lNumber < lLowest || lNumber > lHighest)
        throw CKestaToolError(strName + " " + inQuotes(strText) + ": expected a number from " +
                              std::to_string(lLowest) + " to " + std::to_string(lHighest));
    return lNumber;
}
