// kesta log: the text that it makes of a log's bytes.

#include "KestaLogDecoder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

static std::string decoded(const std::string& log, std::size_t block)
{
    CKestaLogDecoder decoder;
    std::string text;
    for (std::size_t at = 0; at < log.size(); at += block)
        decoder.feed(std::string_view(log).substr(at, block), text);
    decoder.finish(text);
    return text;
}

TEST(LogDecoder, Bytes)
{
    const std::string end("\n\0\n", 3), nul(1, '\0'), mark = "\xFE\xFF", a = mark + "[MSG]:a";
    const std::pair<std::string, std::string> rows[] = {{"", ""}, {"\n\n", "\n\n"},
        {"plain", "plain\n"}, {a + end + "[MSG]:b" + end, "[MSG]:a\n[MSG]:b\n"},
        {mark + "cipher" + nul + "\nmore" + nul + "\n", "cipher\nmore\n"},
        // torn, and continued by another process
        {a + a + end, "[MSG]:a\n[MSG]:a\n"}, {a + "\n" + nul + a + end, "[MSG]:a\n[MSG]:a\n"},
        {"\xFE" + a + end, "[MSG]:a\n"}, {a + end + "\xFE", "[MSG]:a\n"}, {"\xFE" + nul, ""},
        {a + end + nul + "\n", "[MSG]:a\n"}, {"a" + nul + nul + "b", "a\nb\n"},
        // not a mark: no item type follows
        {"a" + mark + "b\xFE", "a" + mark + "b\xFE\n"}, {"a" + mark + "[MS", "a" + mark + "[MS\n"},
        {"a" + mark + "[MsG]:", "a" + mark + "[MsG]:\n"},
        {"a" + mark + "[]:", "a" + mark + "[]:\n"}, {"a" + mark + "[Z[]:", "a" + mark + "[Z[]:\n"},
        {"a" + mark + "[9:]:", "a" + mark + "[9:]:\n"}, {"a" + mark + "[AZ]:", "a\n[AZ]:\n"},
        {"a" + mark + "[A]x", "a" + mark + "[A]x\n"}, {"a" + mark + mark, "a" + mark + mark + "\n"},
        {"a" + mark + "[ABCDEFGHIJ_09876]:", "a\n[ABCDEFGHIJ_09876]:\n"},
        {"a" + mark + "[ABCDEFGHIJ_098765]:", "a" + mark + "[ABCDEFGHIJ_098765]:\n"}};
    for (const auto& [log, want] : rows)
        for (const std::size_t block : {1UL, 2UL, 1000UL})
            EXPECT_EQ(decoded(log, block), want) << testing::PrintToString(log) << " by " << block;
}
