#include "KestaRangeArgument.h"

#include "KestaAddressNumber.h"
#include "KestaAddresses.h"
#include "KestaArgument.h"
#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaString.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <sys/stat.h>

namespace
{

std::string withStarsZero(std::string strText)
{
    std::replace(strText.begin(), strText.end(), '*', '0');
    return strText;
}

std::string endsOf(const CKestaAddressInterval& interval)
{
    const std::string strFirst = textOf({interval.bIPv6, interval.first});
    return interval.first == interval.last
               ? strFirst
               : strFirst + " to " + textOf({interval.bIPv6, interval.last});
}

// What an IPv4 text means, if that is not what it seems to mean.
std::string explanation(const std::string& strText, const CKestaAddressInterval& interval)
{
    if (interval.bIPv6)
        return "";
    const std::string strIPv4 = strText.substr(strText.rfind(':') + 1);   // also when mapped
    if (withStarsZero(strIPv4) != textOf({false, interval.first}))
    {
        std::string strReading = "is read as " + endsOf(interval);
        const std::size_t ulLast = strIPv4.rfind(".*");
        if (ulLast == std::string::npos || ulLast + 2 != strIPv4.size())
            return strReading;
        std::string strBlock = strIPv4;
        for (auto lDots = std::count(strIPv4.begin(), strIPv4.end(), '.'); lDots < 3; ++lDots)
            strBlock += ".*";
        return strReading + "; for the whole block write " + strBlock;
    }
    const std::size_t ulStar = strIPv4.find('*');
    if (ulStar != std::string::npos && strIPv4.find_first_not_of(".*", ulStar) != std::string::npos)
        return "holds every address from " + endsOf(interval);
    return "";
}

// The text of an IPv4 address, its last `iStars` parts replaced by stars.
std::string starForm(KestaIPv6Number address, int iStars)
{
    std::string strText = textOf({false, address});
    for (int i = 0; i < iStars; ++i)
        strText.erase(strText.rfind('.'));
    for (int i = 0; i < iStars; ++i)
        strText += ".*";
    return strText;
}

// The range texts that hold exactly these IPv4 addresses, if they differ in one part only.
std::string starForms(const CKestaAddressInterval& interval)
{
    if (interval.first == 0)
        return "several ranges, none of which may begin with 0.0.0.0";
    for (int iStars = 3; iStars >= 0; --iStars)
    {
        const KestaIPv6Number rest = (KestaIPv6Number{1} << 8 * iStars) - 1;
        if ((interval.first & rest) != 0 || (interval.last & rest) != rest ||
            interval.first >> 8 >> 8 * iStars != interval.last >> 8 >> 8 * iStars)
            continue;
        std::string strForms = starForm(interval.first, iStars);
        const std::string strLast = starForm(interval.last, iStars);
        if (strForms != strLast)
            strForms.insert(0, "each of ").append(" to ").append(strLast);
        return strForms;
    }
    return "several ranges";
}

// Reads a whole text as an address in one of the usual forms.
bool isAddress(const std::string& strText, CKestaAddress& address)
{
    const char* const pEnd = scanAddress(strText.c_str(), address);
    return pEnd != nullptr && *pEnd == '\0';
}

// What to write instead of ADDRESS/LENGTH; empty for any other text.
std::string insteadOfPrefix(const std::string& strText)
{
    const std::size_t ulSlash = strText.find('/');
    CKestaAddress address;
    if (ulSlash == std::string::npos || !isAddress(strText.substr(0, ulSlash), address))
        return "";
    long lLength = 0;
    if (!scanNumber(strText.substr(ulSlash + 1), 0, address.bIPv6 ? 128 : 32, lLength))
        return "";
    const CKestaAddressInterval block =
        blockAt(address.bIPv6, address.number, static_cast<int>(lLength));
    if (block.bIPv6 && block.first == address.number)
        return "";
    if (block.bIPv6)
        return "the address must be the first of its block; write " + blocksOf(block).front();
    return "IPv4 ranges take no prefix length; write " + starForms(block);
}

// What to write instead of ADDRESS-ADDRESS; empty for any other text.
std::string insteadOfDash(const std::string& strText)
{
    const std::size_t ulDash = strText.find('-');
    CKestaAddress first;
    CKestaAddress last;
    if (ulDash == std::string::npos || !isAddress(strText.substr(0, ulDash), first) ||
        !isAddress(strText.substr(ulDash + 1), last) || first.bIPv6 != last.bIPv6 ||
        first.number > last.number)
        return "";
    const CKestaAddressInterval interval{first.bIPv6, first.number, last.number};
    const std::vector<std::string> blocks = blocksOf(interval);
    return "ranges can't be written with a dash; write " + (!interval.bIPv6 ? starForms(interval)
                                                            : blocks.size() == 1
                                                                ? blocks.front()
                                                                : "several ranges");
}

std::string whatIsWrong(const std::string& strText, const CKestaExc& exc)
{
    struct stat file;
    if (!strText.empty() && stat(strText.c_str(), &file) == 0)
        return "this is a file; kesta filter expects RANGE before FILE, or -f FILE for a file of "
               "ranges";
    for (const auto instead : {&insteadOfPrefix, &insteadOfDash})
    {
        if (std::string strInstead = instead(strText); !strInstead.empty())
            return strInstead;
    }
    return std::string(withoutBlanks(exc.GetErrorMessage())) + "; see 'kesta range --help'";
}

}   // namespace

std::unique_ptr<KestaIPRange> readRange(const std::string& strText, const std::string& strPlace)
{
    const auto name = [&]
    {
        return strPlace + "range " + inQuotes(strText);
    };
    try
    {
        auto pRange = std::make_unique<KestaIPRange>(strText);
        const std::string strExplanation = explanation(strText, intervalOf(*pRange));
        if (!strExplanation.empty())
            report(name() + " " + strExplanation);
        return pRange;
    }
    catch (const CKestaExc& exc)
    {
        CKestaDebug::logMessage(exc);
        throw CKestaToolError(name() + ": " + whatIsWrong(strText, exc));
    }
}
