#include "KestaAddressClass.h"

#include "KestaAddressNumber.h"

#include <cstdint>

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
