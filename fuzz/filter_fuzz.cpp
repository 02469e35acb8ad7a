// Fuzzes the scanner of kesta filter: whatever the size of the pieces, it must select the lines
// that the library's own address and range classes select.
//
// Input: a line with "v" to invert and "m" to map; a line with the sizes of the pieces, one byte
// each; two lines with ranges; the rest is the text.

#include "fuzz.h"

#include "../tests/filter_sink.h"

#include "KestaException.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <memory>

#include <arpa/inet.h>

namespace
{

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

    Found found;
    CKestaFilterScanner scanner(set, invert, asMapped, found);
    std::size_t at = 0;
    for (const char piece : input[1])
    {
        const std::size_t length = static_cast<unsigned char>(piece);
        scanner.feed(std::string(input[4], std::min(at, input[4].size()), length));
        at += length;
    }
    scanner.feed(std::string(input[4], std::min(at, input[4].size())));
    scanner.finish();
    CHECK(found.lines == expected.lines);
    CHECK(found.errors == expected.errors);
    return 0;
}
