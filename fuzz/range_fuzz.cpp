#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPRangeSet.h"
#include "KestaIPUtilities.h"
#include "fuzz.h"

#include <algorithm>
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

bool isUnallowed(const std::string& bytes, int flags)
{
    static const struct
    {
        int flag, family, prefix;
        const char* start;
    } blocks[] = {{-1, 4, 32, "0.0.0.0"}, {1, 4, 4, "224.0.0.0"},   {2, 4, 16, "169.254.0.0"},
                  {4, 4, 8, "10.0.0.0"},  {4, 4, 12, "172.16.0.0"}, {4, 4, 16, "192.168.0.0"},
                  {-1, 6, 96, "::"},      {1, 6, 8, "ff00::"},      {2, 6, 10, "fe80::"},
                  {4, 6, 10, "fec0::"}};
    for (const auto& block : blocks)
        if (((flags | 16) & block.flag) &&
            blockEnd(bytes, block.prefix, false) == bytesOf(block.start, block.family))
            return bytes != bytesOf("::1", 6);
    return false;
}

Ends screened(const std::string& start, const std::string& end, int flags)
{
    if (start.empty() || end.empty() || isUnallowed(start, flags) ||
        (end.size() == 4 && isUnallowed(end, flags)))
        return {};
    return {start, end};
}

std::string starsAs(std::string text, const char* number)
{
    while (text.find('*') != text.npos)
        text.replace(text.find('*'), 1, number);
    return text;
}

Ends expectedEnds(std::string text, int flags)
{
    if (text.find('.') != text.npos)
    {
        const std::size_t colon = text.rfind(':');
        if (colon != text.npos &&
            bytesOf(text.substr(0, colon) + ":0:0", 6) != bytesOf("::ffff:0:0", 6))
            return {};
        text.erase(0, colon + 1);
        return screened(bytesOf(starsAs(text, "0"), 4), bytesOf(starsAs(text, "255"), 4), flags);
    }
    const std::size_t star = text.find('*'), slash = text.find('/');
    if (star == text.npos)
    {
        const int prefix = slash == text.npos ? 128 : std::atoi(&text[slash + 1]);
        const std::string start = bytesOf(text.substr(0, slash), 6);
        if (prefix < 0 || prefix > 128 || start != blockEnd(start, prefix, false))
            return {};
        return screened(start, blockEnd(start, prefix, true), flags);
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

void checkPrefix(const KestaIPRange& range, const std::string& bytes, int prefix)
{
    const std::string first = blockEnd(bytes, prefix, false), last = blockEnd(bytes, prefix, true);
    sockaddr_storage storage = range.getStartAddress()->getSockAddress();
    auto* socket = reinterpret_cast<sockaddr_in6*>(&storage);
    KestaIPAddress* end = nullptr;
    KestaIPUtilities::InitialiseIPv6EndAddress(socket, &end, prefix);
    const std::unique_ptr<KestaIPAddress> owned(end);
    char text[INET6_ADDRSTRLEN];
    inet_ntop(AF_INET6, last.data(), text, sizeof text);
    CHECK(bytesOf(end, 6) == last && end->getStrAddress() == text);
    CHECK(KestaIPUtilities::ValidateIPv6StartAddress(socket, prefix) == (bytes == first));
    for (std::size_t i = 0; i < 16; ++i)   // of which the part after the prefix is left
        CHECK(socket->sin6_addr.s6_addr[i] == static_cast<unsigned char>(bytes[i] ^ first[i]));
}

/// A set answers as its ranges do, and names the first; the null ones are left out.
void checkSet(std::vector<const KestaIPRange*> ranges)
{
    ranges.erase(std::remove(ranges.begin(), ranges.end(), nullptr), ranges.end());
    KestaIPRangeSet set;
    for (const KestaIPRange* range : ranges)
        set.add(*range);
    set.build();
    for (const KestaIPRange* asked : ranges)
        for (const KestaIPAddress* address : {asked->getStartAddress(), asked->getEndAddress()})
        {
            const auto holds = [&](const KestaIPRange* range)
            {
                return range->getAddressFamily() == asked->getAddressFamily() &&
                       range->isMember(address);
            };
            const auto first = std::find_if(ranges.begin(), ranges.end(), holds);
            CHECK(set.indexOf(address) == first - ranges.begin());
        }
}

void check(const std::string& text, const std::string& otherText, int prefix, int flags)
{
    const Ends ends = expectedEnds(text, flags), others = expectedEnds(otherText, flags);
    const auto range = made(text, ends), other = made(otherText, others);
    if (range && range->getAddressFamily() == 6)
        checkPrefix(*range, ends.first, prefix);
    checkSet({range.get(), other.get()});
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

/// A digit of flags and the text of a range; another range; a prefix length.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fields(data, size, 3);
    const int flags = input[0].c_str()[0];
    KestaIPv4Address::m_bIPv4MutliCast = KestaIPv6Address::m_bIPv6MutliCast = flags & 1;
    KestaIPv4Address::m_bIPv4LinkLocal = KestaIPv6Address::m_bIPv6LinkLocal = flags & 2;
    KestaIPv4Address::m_bIPv4SiteLocal = KestaIPv6Address::m_bIPv6SiteLocal = flags & 4;
    KestaIPv4Address::m_bIPv4LoopBack = KestaIPv6Address::m_bIPv6LoopBack = flags & 8;   // not read
    const auto checkInput = [&]
    {
        check(upToNul(input[0]).substr(flags != 0), upToNul(input[1]), std::atoi(input[2].c_str()),
              flags);
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
