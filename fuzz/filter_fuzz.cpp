// Fuzzes the scanner of kesta filter: whatever the size of the pieces, it must select the lines
// that the library's own address and range classes select. Each text is read as two files.
//
// Input: a line with "v" to invert and "m" to map; a line with the sizes of the pieces, one byte
// each; two lines with ranges; the rest is the text.

#include "fuzz.h"

#include "KestaException.h"
#include "KestaFilterScanner.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <memory>

#include <arpa/inet.h>

namespace
{

/// Collects what a scanner finds: selected lines and unreadable texts, with their line numbers.
struct Found : CKestaFilterScanner::CSink
{
    void selected(std::uint64_t line, std::string_view bytes) override
    {
        for (const char c : bytes)
        {
            if (lines.empty() || lines.back() == '\n')
                lines += std::to_string(line++) + ":";
            lines += c;
        }
    }
    void unreadable(std::uint64_t line, std::string_view text) override
    {
        errors += std::to_string(line) + ":" + std::string(text) + "\n";
    }

    std::string lines, errors;
};

std::unique_ptr<KestaIPAddress> readAddress(const std::string& text, bool asMapped)
try
{
    if (text.size() >= 4096 || text.find('\0') != text.npos)
        return nullptr;
    if (text.find(':') == text.npos)
        return std::make_unique<KestaIPv4Address>(text);
    auto address = std::make_unique<KestaIPv6Address>(text);
    const sockaddr_storage storage = address->getSockAddress();
    const in6_addr& bytes = reinterpret_cast<const sockaddr_in6&>(storage).sin6_addr;
    if (!asMapped || !IN6_IS_ADDR_V4MAPPED(&bytes))
        return address;
    char mapped[INET_ADDRSTRLEN];
    return std::make_unique<KestaIPv4Address>(
        inet_ntop(AF_INET, bytes.s6_addr + 12, mapped, sizeof mapped));
}
catch (const CKestaExc&)
{
    return nullptr;
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::string> input = fields(data, size, 5);
    const bool invert = input[0].find('v') != std::string::npos;
    const bool asMapped = input[0].find('m') != std::string::npos;
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
    std::string rest = input[4].substr(input[4].compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0);
    if (!rest.empty() && rest.back() != '\n')
        rest += '\n';
    std::uint64_t number = 0;
    for (std::size_t at = 0, end; (end = rest.find('\n', at)) != rest.npos; at = end + 1)
    {
        const std::string line = rest.substr(at, end - at);
        const std::string start = line.substr(0, line.find_first_of(" \t\v\f\r,"));
        ++number;
        const auto address = readAddress(start, asMapped);
        if (address == nullptr)
        {
            expected.unreadable(number, start.substr(0, 4096));
            continue;
        }
        const int family = address->getSockAddress().ss_family == AF_INET ? 4 : 6;
        bool inside = false;
        for (const auto& range : ranges)
            inside =
                inside || (range->getAddressFamily() == family && range->isMember(address.get()));
        if (inside != invert)
            expected.selected(number, line + "\n");
    }

    const auto compare = [&](const std::string& pieces)
    {
        Found found;
        CKestaFilterScanner scanner(set, invert, asMapped, found);
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
