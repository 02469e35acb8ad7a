#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "fuzz.h"

#include <filesystem>
#include <memory>

#include <arpa/inet.h>

namespace
{

/// The bytes of an address in network order, as the system reads it; empty where it can't.
std::string bytesOf(const std::string& text, int family)
{
    char bytes[16];
    const std::string address = text.substr(0, text.find('%'));
    if (family == 4)
        return inet_aton(address.c_str(), reinterpret_cast<in_addr*>(bytes)) != 0
                   ? std::string(bytes, 4)
                   : "";
    return inet_pton(AF_INET6, address.c_str(), bytes) == 1 ? std::string(bytes, 16) : "";
}

/// The bytes of an address that a comparison by this family looks at.
std::string bytesOf(const KestaIPAddress* address, int family)
{
    const sockaddr_storage storage = address->getSockAddress();
    const char* bytes = reinterpret_cast<const char*>(&storage);
    return family == 4 ? std::string(bytes + 4, 4) : std::string(bytes + 8, 16);
}

std::string starsAs(std::string text, const char* number)
{
    while (text.find('*') != text.npos)
        text.replace(text.find('*'), 1, number);
    return text;
}

/// The number of leading bits that all addresses between two share; -1 if they are not a block.
int blockPrefix(const std::string& start, const std::string& end)
{
    int prefix = 0;
    bool differ = false;
    for (std::size_t bit = 0; bit < start.size() * 8; ++bit)
    {
        const int mask = 0x80 >> bit % 8, first = start[bit / 8] & mask, last = end[bit / 8] & mask;
        differ = differ || first != last;
        prefix += differ ? 0 : 1;
        if (differ && (first != 0 || last == 0))
            return -1;
    }
    return prefix;
}

typedef std::pair<std::string, std::string> Ends;

void checkEnds(const std::string& text, const Ends& ends)
{
    const std::size_t slash = text.find('/');
    if (ends.first.size() == 4)
    {
        const std::string part = text.substr(text.rfind(':') + 1);
        CHECK(ends == Ends(bytesOf(starsAs(part, "0"), 4), bytesOf(starsAs(part, "255"), 4)));
    }
    else if (text.find('*') != text.npos)
        // A scope hides the groups behind it, so that the start need not be the first of its block.
        CHECK(text.find('%') != text.npos || blockPrefix(ends.first, ends.second) % 4 == 0);
    else
    {
        const int prefix = slash == text.npos ? 128 : std::atoi(&text[slash + 1]);
        CHECK(ends.first == bytesOf(text.substr(0, slash), 6));
        CHECK(blockPrefix(ends.first, ends.second) == prefix);
    }
}

/// A range and the bytes of its ends; null for a text that is refused.
std::unique_ptr<KestaIPRange> made(const std::string& text, Ends& ends)
try
{
    auto range = std::make_unique<KestaIPRange>(text);
    const int family = range->getAddressFamily();
    ends = {bytesOf(range->getStartAddress(), family), bytesOf(range->getEndAddress(), family)};
    checkEnds(text, ends);
    return range;
}
catch (const CKestaExc& refusal)
{
    CHECK(refusal.GetErrorMessage() != "Unknown Error");
    return nullptr;
}

void check(const std::string& text, const std::string& otherText)
{
    Ends ends, others;
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

/// Input: a digit of flags and the text of a range; another range.
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

    // Again with everything traced, into a log that keeps nothing.
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
