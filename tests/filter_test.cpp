// The scanner of kesta filter, fed with pieces of any size.

#include "filter_sink.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

enum Fate
{
    in,
    out,
    mapped,
    unread
};

struct Row
{
    std::string line;
    Fate fate;
    std::string address = "";   // of an unreadable line
};

static const std::string long4095 = "10.1.2.3%" + std::string(4086, 'x'), long4096 = long4095 + "x";
static const Row rows[] = {{"10.1.2.3 a", in}, {"10.1.255.255,", in}, {"10.2.0.1\tb", out},
    {"10.3.4.5\r", in}, {"x", unread, "x"}, {"", unread}, {"2001:db8::\v", in},
    {"2001:db9:: c", out}, {"::ffff:a01:203", mapped}, {"10.1.256.1", unread, "10.1.256.1"},
    {"10.259", out}, {" 10.1.2.3", unread}, {"::ffff:10.1.2.3\f", mapped}, {"10.0x1.2.3 d", in},
    {"10.200.0.1 " + std::string(5000, 'z'), in}, {long4095 + " e", in},
    {long4096 + " f", unread, long4096}, {"2001:db8:0:0:0:0:0:1", in},
    {"10.1.2.3.", unread, "10.1.2.3."}, {"\xEF\xBB\xBF", unread, "\xEF\xBB\xBF"},
    {std::string("10.1.2.3\0 x", 11), unread, std::string("10.1.2.3\0", 9)},
    {"1:2::3:10.1.2.3", out}, {"10.1.2.3", in}};

/// Scans the rows, in pieces that end at the given places, and then a second file.
static Found scan(
    bool invert, bool asMapped, std::vector<std::size_t> ends, const std::string& text)
{
    KestaIPRangeSet ranges;
    for (const char* range : {"10.1.*.*", "10.3.4.5", "2001:db8::/32", "::ffff:10.200.*.*"})
        ranges.add(KestaIPRange(range));
    ranges.build();
    Found found;
    CKestaFilterScanner scanner(ranges, invert, asMapped, found);
    std::size_t start = 0;
    ends.push_back(text.size());
    for (const std::size_t end : ends)
    {
        scanner.feed(std::string(text, start, end - start));   // a temporary: gone after the call
        start = end;
    }
    scanner.finish();
    scanner.feed("\n9.9.9.9");
    scanner.finish();
    return found;
}

TEST(Filter, EverySplitOfEveryLine)
{
    for (const auto& [invert, asMapped] : {std::pair{false, false}, {false, true}, {true, false}})
    {
        std::string text = "\xEF\xBB\xBF", lines, errors;
        int number = 0;
        for (const Row& row : rows)
        {
            const std::string prefix = std::to_string(++number) + ":";
            text += (number == 1 ? "" : "\n") + row.line;
            if (row.fate == unread)
                errors += prefix + row.address + "\n";
            else if ((row.fate == in || (row.fate == mapped && asMapped)) != invert)
                lines += prefix + row.line + "\n";
        }
        errors += "1:\n";
        lines += invert ? "2:9.9.9.9\n" : "";
        for (std::size_t at = 0; at < text.size(); at += invert || asMapped ? 997 : 1)
        {
            const Found found =
                scan(invert, asMapped, {at, std::min(at + at % 7, text.size())}, text);
            ASSERT_EQ(found.lines, lines) << "split at " << at;
            ASSERT_EQ(found.errors, errors) << "split at " << at;
        }
    }
}
