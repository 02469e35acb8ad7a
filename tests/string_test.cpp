#include "support.h"

#include <clocale>

static const std::string withNul("ab\0cd", 5);

TEST(String, NumbersBecomeText)
{
    const std::pair<CKestaString, const char*> rows[] = {{-7, "-7"}, {true, "True"},
        {9223372036854775807L, "9223372036854775807"}, {false, "False"}, {std::size_t{7}, "7"},
        {std::size_t{4294967295}, "-1"}, {std::size_t{4294967296}, "0"}, {-0.1, "-0.100000"}};
    for (const auto& [got, want] : rows)
        EXPECT_EQ(got, want);
    EXPECT_EQ(CKestaString(1e300).size(), 308u);   // 301 digits, the point and six decimals
    EXPECT_THROW(CKestaString(static_cast<const char*>(nullptr)), std::logic_error);
}

TEST(String, DigitsOfTheLocale)
{
    if (std::setlocale(LC_ALL, "fa_IR.UTF-8") == nullptr)
        GTEST_SKIP() << "there is no locale fa_IR.UTF-8";
    const CKestaString size(std::size_t{17}), number(17);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(size, "\u06F1\u06F7");
    EXPECT_EQ(number, "17");
}

TEST(String, CopiesAndComparisonsStopAtNul)
{
    CKestaString text, assigned("before");
    text.assign(withNul);
    assigned = text;
    const std::pair<std::string, std::size_t> rows[] = {{CKestaString(text), 2}, {assigned, 2},
        {CKestaString(withNul), 2}, {CKestaString(std::string_view(withNul)), 2},
        {CKestaString("x") + text, 6}, {text + "x", 3}};   // the right side keeps its NUL bytes
    for (const auto& [got, size] : rows)
        EXPECT_EQ(got.size(), size) << got;
    EXPECT_EQ(text, "ab");
}

TEST(String, BeginsEndsAndCounts)
{
    const struct
    {
        const char *text, *other;
        bool begins, ends;
        int delims, tokens;
    } rows[] = {{"alpha", "xa", false, true, 0, 0}, {"alpha", "ph", false, false, 1, 2},
        {"alpha", "al", true, true, 1, 2}, {"alpha", "", true, false, 0, 0},
        {"", "z", false, true, 0, 0}, {"a,b,", ",", false, true, 2, 3},
        {"aaa", "aa", true, true, 1, 2}};
    for (const auto& row : rows)
    {
        const CKestaString text(row.text), other(row.other);
        const std::string shown = text + "/" + other;
        EXPECT_EQ(text.beginsWith(other), row.begins) << shown;
        EXPECT_EQ(text.endsWith(other), row.ends) << shown;
        EXPECT_EQ(text.countDelims(other), row.delims) << shown;
        EXPECT_EQ(text.countTokens(other), row.tokens) << shown;
    }
}

TEST(String, NumbersSpacesAndCase)
{
    const std::pair<const char*, int> numbers[] = {
        {"12abc", 12}, {" -7", -7}, {"0x10", 0}, {"abc", 0}, {"", 0}};
    for (const auto& [text, want] : numbers)
        EXPECT_EQ(CKestaString(text).toInt(), want) << text;
    EXPECT_EQ(CKestaString("1.5e2x").toDouble(), 150);
    const char* const spaces[][3] = {
        {" \t a b\v\n", "a b", "ab"}, {"a\fb", "a\fb", "ab"}, {" \r\n", "", ""}};
    for (const auto& [text, trimmed, removed] : spaces)
    {
        CKestaString first(text), second(text);
        EXPECT_EQ(first.trim(), trimmed);
        EXPECT_EQ(first, trimmed) << "in place, too";
        EXPECT_EQ(second.removeSpaces(), removed);
        EXPECT_EQ(second, removed);
    }
    EXPECT_TRUE(CKestaString("Text").equals("tEXT", false));
    EXPECT_FALSE(CKestaString("Text").equals("tEXT", true));
    EXPECT_FALSE(CKestaString("Text").equals("Texts", false));
}

/// The tokens from the cursor on, each in square brackets.
static std::string rest(const CKestaString& text)
{
    std::string all;
    for (CKestaString token; text.getNextToken(token, "");)
        all += "[" + token + "]";
    return all;
}

TEST(String, Tokens)
{
    CKestaString list("a,,b,"), token("before");
    EXPECT_TRUE(list.getNextToken(token, ","));
    EXPECT_EQ(token, "a");
    EXPECT_EQ(rest(list), "[][b]") << "and none behind the last delimiter";
    EXPECT_FALSE(list.getNextToken(token, ";")) << "no delimiter, no tokens";
    EXPECT_EQ(token, "a");
}

TEST(String, TokensOfCopies)
{
    CKestaString text("a,b"), token, other("c,d");
    text.getNextToken(token, ",");
    other.getNextToken(token, ",");
    other = text;
    EXPECT_EQ(rest(CKestaString(text)), "") << "a copy has no state";
    EXPECT_EQ(rest(other), "") << "nor has what is assigned to";
    const CKestaString& itself = text;
    text = itself;
    EXPECT_EQ(rest(text), "[b]") << "an assignment to itself changes nothing";
}
