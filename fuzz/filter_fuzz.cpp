// Fuzzes the scanner of kesta filter: whatever the size of the pieces, it must select the lines
// that a slow model selects, which tries all parts of a line with the system's own functions and
// the library's classes, and asks one range after the other. Each text is read as two files.
//
// Input: a line with options, "v" to invert, "m" to map, "a" for anywhere, "s" to judge only the
// start of a line, a digit for the field, "t" and its separator; a line with the sizes of the
// pieces, one byte each; two lines with ranges; the rest is the text.

#include "fuzz.h"

#include "KestaException.h"
#include "KestaFilterScanner.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <algorithm>
#include <memory>
#include <regex>

#include <arpa/inet.h>

namespace
{

typedef std::unique_ptr<KestaIPAddress> Address;

/// Collects what a scanner finds: selected lines and unreadable texts, with their line numbers.
struct Found : CKestaFilterScanner::CSink
{
    void selected(std::uint64_t line, long range, std::string_view bytes) override
    {
        if (lines.empty() || lines.back() == '\n')
            lines += std::to_string(line) + ":" + std::to_string(range) + ":";
        lines += bytes;
    }
    void unreadable(std::uint64_t line, std::string_view text) override
    {
        errors += std::to_string(line) + ":" + std::string(text) + "\n";
    }

    std::string lines, errors;
};

// An address in any form that the library reads.
Address readAddress(const std::string& text)
try
{
    if (text.find_first_of(".:") == text.npos ||
        text.find_first_of(std::string(" \t\v\f\r\0", 6)) != text.npos)
        return nullptr;
    if (text.find(':') == text.npos)
        return std::make_unique<KestaIPv4Address>(text);
    return std::make_unique<KestaIPv6Address>(text);
}
catch (const CKestaExc&)
{
    return nullptr;
}

std::string fieldOf(const std::string& line, const CKestaFilterField& field)
{
    if (!field.separator)
    {
        static const std::regex separators("[ \t\v\f\r]*,[ \t\v\f\r]*|[ \t\v\f\r]+");
        const std::string text = trimmed(line);
        const std::vector<std::string> found(
            std::sregex_token_iterator(text.begin(), text.end(), separators, -1), {});
        return field.ulNumber <= found.size() ? found[field.ulNumber - 1] : "";
    }
    std::vector<std::string> found(1);
    for (const char c : line)
    {
        const bool inQuotes = *field.separator != '"' &&
                              trimmed(found.back()).substr(0, 1) == "\"" &&
                              std::count(found.back().begin(), found.back().end(), '"') % 2 == 1;
        if (c == *field.separator && !inQuotes)
            found.emplace_back();
        else
            found.back() += c;
    }
    const std::string text =
        field.ulNumber <= found.size() ? trimmed(found[field.ulNumber - 1]) : "";
    const bool quoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    return quoted ? trimmed(text.substr(1, text.size() - 2)) : text;
}

Address addressOfField(const std::string& text)
{
    static const std::regex inBrackets(R"(\[([^\]]*)\](:\d{0,5})?)"),
        withPort(R"(([^:]*):\d{0,5})");
    std::smatch match;
    if (std::regex_match(text, match, inBrackets) || std::regex_match(text, match, withPort))
        return readAddress(match[1]);
    return readAddress(text);
}

bool isAddress(int family, const std::string& text)
{
    in6_addr address;
    return inet_pton(family, text.c_str(), &address) == 1;
}

bool stopsAtColon(const std::string& text, std::size_t at)
{
    return at == text.npos || text[at] == ':';
}

// The addresses of a word: every part of it that is one, if what is around it may be there.
std::vector<Address> addressesOf(const std::string& word)
{
    const std::string otherLetters = "GHIJKLMNOPQRSTUVWXYZghijklmnopqrstuvwxyz";
    std::vector<Address> ipv4, ipv6;
    for (std::size_t start = 0; start < word.size(); ++start)
        for (std::size_t end = start + 1; end <= std::min(word.size(), start + 45); ++end)
        {
            const std::string part = word.substr(start, end - start);
            if (isAddress(AF_INET, part))
            {
                const std::string before = word.substr(0, start), after = word.substr(end);
                if (stopsAtColon(before, before.find_last_not_of('.')) &&
                    stopsAtColon(after, after.find_first_not_of('.')))
                    ipv4.push_back(readAddress(part));
            }
            if (isAddress(AF_INET6, part) && part != "::")
            {
                std::string before = word.substr(0, start), after = word.substr(end);
                before.erase(before.find_last_not_of('.') + 1);
                const std::size_t name = before.find_last_of(otherLetters);
                const bool named =
                    name != before.npos && before.find(':', name) == before.size() - 1;
                if (part.back() != ':' && after.substr(0, 1) == ":")
                    after.erase(0, 1);
                if ((before.empty() || named) && after.find_first_not_of('.') == after.npos)
                    ipv6.push_back(readAddress(part));
            }
        }
    return ipv6.empty() ? std::move(ipv4) : std::move(ipv6);
}

std::vector<Address> addressesAnywhere(const std::string& line)
{
    static const std::string inWord =
        ".0123456789:ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::vector<Address> found;
    for (std::size_t at = 0, end; (at = line.find_first_of(inWord, at)) != line.npos; at = end)
    {
        end = std::min(line.find_first_not_of(inWord, at), line.size());
        for (Address& address : addressesOf(line.substr(at, end - at)))
            found.push_back(std::move(address));
    }
    return found;
}

Address unmapped(Address address)
{
    const sockaddr_storage storage = address->getSockAddress();
    const in6_addr& bytes = reinterpret_cast<const sockaddr_in6&>(storage).sin6_addr;
    char text[INET_ADDRSTRLEN];
    if (storage.ss_family != AF_INET6 || !IN6_IS_ADDR_V4MAPPED(&bytes))
        return address;
    return std::make_unique<KestaIPv4Address>(
        inet_ntop(AF_INET, bytes.s6_addr + 12, text, sizeof text));
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::string> input = fields(data, size, 5);
    CKestaFilterRules rules;
    for (std::size_t at = 0; at < input[0].size(); ++at)
    {
        const char option = input[0][at];
        rules.bInvert = rules.bInvert || option == 'v';
        rules.bMapped = rules.bMapped || option == 'm';
        rules.bAnywhere = rules.bAnywhere || option == 'a';
        rules.ulJudged = option == 's' ? 40 : rules.ulJudged;
        if (option >= '1' && option <= '9')
            rules.field.ulNumber = static_cast<std::size_t>(option - '0');
        if (option == 't' && at + 1 < input[0].size())
            rules.field.separator = input[0][++at];
    }
    std::vector<std::unique_ptr<KestaIPRange>> ranges;
    KestaIPRangeSet set;
    for (const std::string& text : {input[2], input[3]})
        try
        {
            ranges.push_back(std::make_unique<KestaIPRange>(text));
            set.add(*ranges.back());
        }
        catch (const CKestaExc&)
        {
        }
    set.build();

    Found expected;
    std::string rest = input[4];
    if (!rest.empty() && rest.back() != '\n')
        rest += '\n';
    std::uint64_t number = 0;
    for (std::size_t at = 0, end; (end = rest.find('\n', at)) != rest.npos; at = end + 1)
    {
        const std::string line = rest.substr(at, end - at);
        const bool cut = line.size() > rules.ulJudged;
        const std::string start = line.substr(0, rules.ulJudged);
        ++number;
        std::vector<Address> addresses;
        if (rules.bAnywhere)
            addresses = addressesAnywhere(cut ? start + "x" : start);
        else
        {
            std::string text = fieldOf(cut ? start + "x" : start, rules.field);
            if (Address address = addressOfField(text))
                addresses.push_back(std::move(address));
            else
            {
                if (cut && fieldOf(start + "y", rules.field) != text)
                    text.pop_back();
                expected.unreadable(number, text);
            }
        }
        long inside = -1;
        for (std::size_t which = 0; which < addresses.size() && inside < 0; ++which)
        {
            if (rules.bMapped)
                addresses[which] = unmapped(std::move(addresses[which]));
            const int family = addresses[which]->getSockAddress().ss_family == AF_INET ? 4 : 6;
            for (std::size_t range = 0; range < ranges.size() && inside < 0; ++range)
                if (ranges[range]->getAddressFamily() == family &&
                    ranges[range]->isMember(addresses[which].get()))
                    inside = static_cast<long>(range);
        }
        if (!addresses.empty() && (inside >= 0) != rules.bInvert)
            expected.selected(number, inside, line + "\n");
    }

    const auto compare = [&](const std::string& pieces)
    {
        Found found;
        CKestaFilterScanner scanner(set, rules, found);
        for (int file = 0; file < 2; ++file)
        {
            std::string text = input[4];
            for (const char piece : pieces)
            {
                const std::size_t length =
                    std::min<std::size_t>(static_cast<unsigned char>(piece), text.size());
                scanner.feed(std::string(text, 0, length));   // a temporary: gone after the call
                text.erase(0, length);
            }
            scanner.feed(text);
            scanner.finish();
        }
        CHECK(found.lines == expected.lines + expected.lines);
        CHECK(found.errors == expected.errors + expected.errors);
    };
    compare(input[1]);
    for (std::size_t cut = 0; cut < input[4].size() && input[4].size() < 64; ++cut)
        compare(std::string(1, static_cast<char>(cut)));
    return 0;
}
