#include "KestaAddresses.h"

#include "KestaAddressCodec.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <tuple>

#include <netinet/in.h>

namespace
{

constexpr CKestaAddressInterval ipv4(std::uint32_t uAddress, int iPrefixLength)
{
    return blockAt(false, uAddress, iPrefixLength);
}

// Takes the first 32 bits of the address; the others are 0.
constexpr CKestaAddressInterval ipv6(std::uint32_t uStart, int iPrefixLength)
{
    return blockAt(true, KestaIPv6Number{uStart} << 96, iPrefixLength);
}

struct CClass
{
    CKestaAddressInterval addresses;
    const char* pszName;
};

// Where blocks overlap, the smaller one comes first.
constexpr CClass classes[] = {
    {ipv4(0, 32), "unspecified"},
    {ipv4(0, 8), "reserved"},
    {ipv4(0x0A000000, 8), "private"},
    {ipv4(0x64400000, 10), "shared"},
    {ipv4(0x7F000000, 8), "loopback"},
    {ipv4(0xA9FE0000, 16), "link-local"},
    {ipv4(0xAC100000, 12), "private"},
    {ipv4(0xC0000200, 24), "documentation"},
    {ipv4(0xC0A80000, 16), "private"},
    {ipv4(0xC6336400, 24), "documentation"},
    {ipv4(0xCB007100, 24), "documentation"},
    {ipv4(0xE0000000, 4), "multicast"},
    {ipv4(0xFFFFFFFF, 32), "broadcast"},
    {ipv4(0xF0000000, 4), "reserved"},
    {ipv6(0, 128), "unspecified"},
    {blockAt(true, 1, 128), "loopback"},
    {ipv6(0, 96), "IPv4-compatible"},
    {blockAt(true, 0xFFFF00000000, 96), "IPv4-mapped"},
    {ipv6(0x20010DB8, 32), "documentation"},
    {ipv6(0xFC000000, 7), "unique-local"},
    {ipv6(0xFE800000, 10), "link-local"},
    {ipv6(0xFEC00000, 10), "site-local"},
    {ipv6(0xFF000000, 8), "multicast"},
};

}   // namespace

const char* scanAddress(const char* pText, CKestaAddress& address)
{
    KestaIPv4Number ipv4 = 0;
    const char* const pEnd = CKestaAddressCodec::scanIPv4(pText, ipv4);
    address = {pEnd == nullptr, ipv4};
    return pEnd != nullptr ? pEnd : CKestaAddressCodec::scanIPv6(pText, address.number);
}

bool readAddress(std::string_view text, CKestaAddress& address)
{
    const std::string strText(text);
    if (text.find('\0') != std::string_view::npos)
        return false;   // the library's texts end there
    address.bIPv6 = text.find(':') != std::string_view::npos;
    in_addr ipv4 = {};
    in6_addr ipv6 = {};
    const bool bRead = address.bIPv6 ? CKestaAddressCodec::readIPv6(strText.c_str(), ipv6)
                                     : CKestaAddressCodec::readIPv4(strText.c_str(), ipv4);
    address.number = address.bIPv6 ? KestaAddressNumber::of(ipv6) : KestaAddressNumber::of(ipv4);
    return bRead;
}

std::string textOf(const KestaIPAddress& address)
{
    const CKestaAddressInterval interval = intervalOf(address);
    return addressText(interval.bIPv6, interval.first);
}

const char* familyOf(const CKestaAddressInterval& interval)
{
    return interval.bIPv6 ? "IPv6" : "IPv4";
}

bool contains(const CKestaAddressInterval& outer, const CKestaAddressInterval& inner)
{
    return outer.bIPv6 == inner.bIPv6 && outer.first <= inner.first && inner.last <= outer.last;
}

std::vector<CKestaAddressInterval> joined(std::vector<CKestaAddressInterval> intervals)
{
    const auto isBefore = [](const CKestaAddressInterval& left, const CKestaAddressInterval& right)
    {
        return std::tie(left.bIPv6, left.first) < std::tie(right.bIPv6, right.first);
    };
    std::sort(intervals.begin(), intervals.end(), isBefore);
    std::vector<CKestaAddressInterval> result;
    for (const CKestaAddressInterval& next : intervals)
    {
        const bool bTouches = !result.empty() && result.back().bIPv6 == next.bIPv6 &&
                              (next.first == 0 || next.first - 1 <= result.back().last);
        if (bTouches)
            result.back().last = std::max(result.back().last, next.last);
        else
            result.push_back(next);
    }
    return result;
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
        blocks.push_back(addressText(interval.bIPv6, first) + "/" + std::to_string(iPrefixLength));
        if (rest == interval.last - first)
            return blocks;
        first += rest + 1;
    }
}

const char* classOf(const CKestaAddressInterval& interval)
{
    for (const CClass& known : classes)
    {
        const CKestaAddressInterval& all = known.addresses;
        if (all.bIPv6 != interval.bIPv6 || interval.last < all.first || interval.first > all.last)
            continue;
        return interval.first >= all.first && interval.last <= all.last ? known.pszName : "mixed";
    }
    return "global";
}
