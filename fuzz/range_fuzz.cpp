#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "fuzz.h"

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <sstream>

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

typedef std::pair<std::string, std::string> Ends;   // the bytes of the first and the last address

/// Whether the flags exclude an address, or it is never allowed.
bool isExcluded(const std::string& bytes)
{
    const auto starts = [&](int prefix, std::initializer_list<int> wanted)
    {
        std::string masked = bytes.substr(0, wanted.size());
        masked.back() = static_cast<char>(masked.back() & 0xFF << (-prefix & 7));
        return masked == std::string(wanted.begin(), wanted.end());
    };
    const std::string zeros(bytes.size(), '\0');
    if (bytes.size() == 4)
        return bytes == zeros || (KestaIPv4Address::m_bIPv4MutliCast && starts(4, {0xE0})) ||
               (KestaIPv4Address::m_bIPv4LinkLocal && starts(16, {169, 254})) ||
               (KestaIPv4Address::m_bIPv4SiteLocal &&
                (starts(8, {10}) || starts(12, {172, 16}) || starts(16, {192, 168})));
    const bool isLoopback = bytes == zeros.substr(1) + '\1';
    return (bytes.compare(0, 12, zeros, 0, 12) == 0 && !isLoopback) ||
           (KestaIPv6Address::m_bIPv6MutliCast && starts(8, {0xFF})) ||
           (KestaIPv6Address::m_bIPv6LinkLocal && starts(10, {0xFE, 0x80})) ||
           (KestaIPv6Address::m_bIPv6SiteLocal && starts(10, {0xFE, 0xC0}));
}

/// The block of this prefix length that contains an address.
Ends blockOf(Ends ends, int prefix)
{
    for (auto bit = static_cast<std::size_t>(prefix); bit < 128; ++bit)
    {
        const int mask = 0x80 >> bit % 8;
        char &first = ends.first[bit / 8], &last = ends.second[bit / 8];
        first = static_cast<char>(first & ~mask);
        last = static_cast<char>(last | mask);
    }
    return ends;
}

/// The block of all addresses whose hexadecimal digits begin with those before the star.
std::optional<Ends> wildcard(const std::string& head)
{
    std::istringstream groups(head);
    std::string digits, group;
    while (std::getline(groups, group, ':'))
    {
        const bool isLast = groups.eof();   // no ":" follows it
        if (group.size() > 4 || group.find_first_not_of("0123456789abcdefABCDEF") != group.npos)
            return {};
        digits += (isLast ? "" : std::string(4 - group.size(), '0')) + group;
    }
    const int prefix = static_cast<int>(digits.size()) * 4;
    if (prefix > 128)
        return {};
    digits.resize(32, '0');
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return blockOf({bytes, bytes}, prefix);
}

/// The ends of the range that a text means; none for a text that must be refused.
std::optional<Ends> expected(std::string text)
{
    const auto has = [&](char c)
    {
        return text.find(c) != text.npos;
    };
    if (has('.'))
    {
        if (has(':'))
        {
            const std::size_t colon = text.rfind(':');
            if (bytesOf(text.substr(0, colon) + ":0:0", 6) != bytesOf("::ffff:0:0", 6))
                return {};
            text.erase(0, colon + 1);
        }
        const Ends ends(bytesOf(starsAs(text, "0"), 4), bytesOf(starsAs(text, "255"), 4));
        if (ends.first.empty() || ends.second.empty() || isExcluded(ends.first) ||
            isExcluded(ends.second))
            return {};
        return ends;
    }
    if (has('*'))
        return text.find('*') == text.size() - 1 ? wildcard(text.substr(0, text.size() - 1))
                                                 : std::nullopt;
    const std::size_t slash = text.find('/');
    const int prefix = slash == text.npos ? 128 : std::atoi(&text[slash + 1]);
    const std::string start = bytesOf(text.substr(0, slash), 6);
    if (prefix < 0 || prefix > 128 || start.empty() || isExcluded(start) ||
        blockOf({start, start}, prefix).first != start)
        return {};
    return blockOf({start, start}, prefix);
}

/// Whether the digits before a star tell the start: they do not behind an empty group or a scope.
bool isJudged(const std::string& text)
{
    const bool isWildcard = text.find('*') != text.npos && text.find('.') == text.npos;
    return !isWildcard || (text.find('%') == text.npos && (":" + text).find("::") == text.npos);
}

/// A range and its ends; null for a text that is refused.
std::unique_ptr<KestaIPRange> made(const std::string& text, Ends& ends)
{
    std::unique_ptr<KestaIPRange> range;
    try
    {
        range = std::make_unique<KestaIPRange>(text);
        const int family = range->getAddressFamily();
        ends = {bytesOf(range->getStartAddress(), family), bytesOf(range->getEndAddress(), family)};
    }
    catch (const CKestaExc& refusal)
    {
        CHECK(refusal.GetErrorMessage() != "Unknown Error");
    }
    if (isJudged(text))
    {
        const auto wanted = expected(text);
        CHECK((range != nullptr) == wanted.has_value());
        CHECK(!wanted || ends == *wanted);
    }
    return range;
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
