#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "fuzz.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

#include <arpa/inet.h>

namespace
{

/// The bytes of both ends in network order; empty for a text that is refused.
typedef std::pair<std::string, std::string> Ends;

std::string bytesOf(const std::string& text, int family)
{
    char bytes[16];
    const std::string address = text.substr(0, text.find('%'));
    if (family == 4 ? inet_aton(address.c_str(), reinterpret_cast<in_addr*>(bytes)) == 0
                    : inet_pton(AF_INET6, address.c_str(), bytes) != 1)
        return "";
    return std::string(bytes, family == 4 ? 4 : 16);
}

/// The bytes that an address shows to a comparison by this family.
std::string bytesOf(const KestaIPAddress* address, int family)
{
    const sockaddr_storage storage = address->getSockAddress();
    const char* bytes = reinterpret_cast<const char*>(&storage);
    return family == 4 ? std::string(bytes + 4, 4) : std::string(bytes + 8, 16);
}

/// The first or the last address of the block of an address.
std::string blockEnd(std::string bytes, int prefix, bool last)
{
    for (std::size_t bit = static_cast<std::size_t>(std::max(prefix, 0)); bit < bytes.size() * 8;
         ++bit)
    {
        const int mask = 0x80 >> bit % 8;
        bytes[bit / 8] = static_cast<char>(last ? bytes[bit / 8] | mask : bytes[bit / 8] & ~mask);
    }
    return bytes;
}

/// Which addresses the flags exclude is for a unit test to show, under all of them.
bool isUnallowed(const std::string& bytes)
{
    sockaddr_in in = {};
    sockaddr_in6 in6 = {};
    if (bytes.size() == 4)
    {
        std::memcpy(&in.sin_addr, bytes.data(), 4);
        return KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(&in);
    }
    std::memcpy(&in6.sin6_addr, bytes.data(), 16);
    return KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(&in6);
}

Ends screened(const std::string& start, const std::string& end)
{
    const bool isRefused =
        start.empty() || end.empty() || isUnallowed(start) || (end.size() == 4 && isUnallowed(end));
    return isRefused ? Ends() : Ends(start, end);
}

std::string starsAs(std::string text, const char* number)
{
    while (text.find('*') != text.npos)
        text.replace(text.find('*'), 1, number);
    return text;
}

Ends expectedEnds(std::string text)
{
    if (text.find('.') != text.npos)
    {
        const std::size_t colon = text.rfind(':');
        if (colon != text.npos &&
            bytesOf(text.substr(0, colon) + ":0:0", 6) != bytesOf("::ffff:0:0", 6))
            return {};
        text.erase(0, colon + 1);
        return screened(bytesOf(starsAs(text, "0"), 4), bytesOf(starsAs(text, "255"), 4));
    }
    const std::size_t star = text.find('*'), slash = text.find('/');
    if (star == text.npos)
    {
        const int prefix = slash == text.npos ? 128 : std::atoi(&text[slash + 1]);
        const std::string start = bytesOf(text.substr(0, slash), 6);
        if (prefix < 0 || prefix > 128 || start != blockEnd(start, prefix, false))
            return {};
        return screened(start, blockEnd(start, prefix, true));
    }
    std::string head = text.substr(0, star);
    const int digits = static_cast<int>(star - head.rfind(':') - 1);
    if (digits != 0 || star == 0)
        head.append(static_cast<std::size_t>(std::max(4 - digits, 0)), '0');
    else
        head.pop_back();
    const int groups = 1 + static_cast<int>(std::count(head.begin(), head.end(), ':'));
    head += groups <= 6 ? "::" : groups == 7 ? ":0000" : "";
    const int prefix = star == 0 ? 0 : digits == 0 ? 16 * groups : (4 * groups + digits) * 4 - 16;
    const std::string start = bytesOf(head, 6);
    return star + 1 < text.size() || start.empty() ? Ends()
                                                   : Ends(start, blockEnd(start, prefix, true));
}

std::unique_ptr<KestaIPRange> made(const std::string& text, const Ends& expected)
{
    try
    {
        auto range = std::make_unique<KestaIPRange>(text);
        const int family = range->getAddressFamily();
        CHECK(bytesOf(range->getStartAddress(), family) == expected.first);
        CHECK(bytesOf(range->getEndAddress(), family) == expected.second);
        return range;
    }
    catch (const CKestaExc& refusal)
    {
        CHECK(expected.first.empty() && refusal.GetErrorMessage() != "Unknown Error");
        return nullptr;
    }
}

void check(const std::string& text, const std::string& otherText)
{
    const Ends ends = expectedEnds(text), others = expectedEnds(otherText);
    const auto range = made(text, ends), other = made(otherText, others);
    if (!range || !other)
        return;
    for (const KestaIPAddress* address : {other->getStartAddress(), other->getEndAddress()})
    {
        const std::string bytes = bytesOf(address, range->getAddressFamily());
        CHECK(range->isMember(address) == (ends.first <= bytes && bytes <= ends.second));
    }
    const bool isWithin = ends.first <= others.first && others.second <= ends.second;
    const bool isAround = others.first <= ends.first && ends.second <= others.second;
    CHECK(range->isMember(*other) ==
          (ends.first.size() == others.first.size() && (isWithin || isAround)));
}

}   // namespace

/// A digit of flags and the text of a range; another range.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fields(data, size, 2);
    const int flags = input[0].c_str()[0];
    KestaIPv4Address::m_bIPv4MutliCast = KestaIPv6Address::m_bIPv6MutliCast = flags & 1;
    KestaIPv4Address::m_bIPv4LinkLocal = KestaIPv6Address::m_bIPv6LinkLocal = flags & 2;
    KestaIPv4Address::m_bIPv4SiteLocal = KestaIPv6Address::m_bIPv6SiteLocal = flags & 4;
    KestaIPv4Address::m_bIPv4LoopBack = KestaIPv6Address::m_bIPv6LoopBack = flags & 8;   // not read
    const auto checkInput = [&]
    {
        check(upToNul(input[0]).substr(flags != 0), upToNul(input[1]));
    };
    checkInput();

    // Once more with everything traced, into a log that keeps nothing.
    std::error_code isThere;
    std::filesystem::create_directory("traced", isThere);
    std::filesystem::create_symlink("/dev/null", "traced/KestaDebug_C.log", isThere);
    CKestaDebug::initialize("traced", true, 3);
    CKestaDebug::enable(true);
    CHECK(CKestaDebug::isTraced(3));
    checkInput();
    CKestaDebug::unInitialize();
    return 0;
}
