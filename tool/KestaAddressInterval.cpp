#include "KestaAddressInterval.h"

#include "KestaAddressText.h"

#include <algorithm>

CKestaAddressInterval intervalOf(const KestaIPRange& range)
{
    const CKestaAddress first = numberOf(*range.getStartAddress());
    return {first.bIPv6, first.number, numberOf(*range.getEndAddress()).number};
}

CKestaAddressInterval intervalOf(const KestaIPAddress& address)
{
    const CKestaAddress number = numberOf(address);
    return {number.bIPv6, number.number, number.number};
}

std::string sizeOf(const CKestaAddressInterval& interval)
{
    KestaIPv6Number size = interval.last - interval.first + 1;
    if (size == 0)
        return "340282366920938463463374607431768211456";   // 2^128, which the number can't hold
    std::string strDigits;
    for (; size != 0; size /= 10)
        strDigits += static_cast<char>('0' + static_cast<int>(size % 10));
    std::reverse(strDigits.begin(), strDigits.end());
    return strDigits;
}

std::vector<std::string> blocksOf(const CKestaAddressInterval& interval)
{
    const int iBits = interval.bIPv6 ? 128 : 32;
    std::vector<std::string> blocks;
    for (KestaIPv6Number first = interval.first;;)
    {
        // The largest block that begins here and does not reach beyond the end.
        KestaIPv6Number rest = 0;
        int iPrefixLength = iBits;
        while (iPrefixLength > 0 && (first & (rest << 1 | 1)) == 0 &&
               (rest << 1 | 1) <= interval.last - first)
        {
            rest = rest << 1 | 1;
            --iPrefixLength;
        }
        blocks.push_back(textOf({interval.bIPv6, first}) + "/" + std::to_string(iPrefixLength));
        if (rest == interval.last - first)
            return blocks;
        first += rest + 1;
    }
}
