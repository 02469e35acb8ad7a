#include "support.h"

static const std::string withNul("ab\0cd", 5);

TEST(String, NumbersBecomeText)
{
    const std::pair<CKestaString, const char*> rows[] = {{7, "7"}, {-5L, "-5"},
        {9223372036854775807L, "9223372036854775807"}, {true, "True"}, {std::size_t{7}, "7"},
        {std::size_t{2147483648}, "-2147483648"}, {false, "False"}, {std::size_t{4294967295}, "-1"},
        {std::size_t{4294967296}, "0"}, {1.5, "1.500000"}, {-0.25, "-0.250000"}, {0.1, "0.100000"}};
    for (const auto& [got, want] : rows)
        EXPECT_EQ(got, want);
    EXPECT_EQ(CKestaString(1e300).size(), 308u);   // 301 digits, the point and six decimals
    EXPECT_THROW(CKestaString(static_cast<const char*>(nullptr)), std::logic_error);
}

TEST(String, CopiesAndComparisonsStopAtNul)
{
    CKestaString text, assigned("before");
    text.assign(withNul);
    assigned = text;
    EXPECT_EQ(CKestaString(text).size(), 2u);
    EXPECT_EQ(assigned.size(), 2u);
    EXPECT_EQ((CKestaString("x") + text).size(), 6u);   // the right side is taken whole
    EXPECT_EQ((text + "x").size(), 3u);                 // the left side is a copy
    EXPECT_TRUE(text == CKestaString("ab"));
    EXPECT_TRUE(text.equals("AB", false) && !text.equals("AB", true));
    EXPECT_FALSE(CKestaString("ABC") == CKestaString("abc"));
}

TEST(String, Searching)
{
    const std::tuple<const char*, const char*, bool, bool, int, int> rows[] = {
        {"a,b,c", ",", false, false, 2, 3}, {"a,,b", ",", false, false, 2, 3},
        {"a,b,", ",", false, true, 2, 3}, {",", ",", true, true, 1, 2},
        {"abc", ",", false, false, 0, 0}, {"", "z", false, true, 0, 0}, {"", "", true, true, 0, 0},
        {"abc", "", true, false, 0, 0}, {"aaaa", "aa", true, true, 2, 3},
        {"alpha", "xa", false, true, 0, 0}, {"alpha", "ph", false, false, 1, 2},
        {"abc", "abcd", false, true, 0, 0}, {"abd", "bc", false, false, 0, 0},
        {"abc", "cz", false, true, 0, 0}};
    for (const auto& [chars, with, begins, ends, delims, tokens] : rows)
    {
        const CKestaString text(chars);
        EXPECT_EQ(text.beginsWith(with), begins) << chars << " with " << with;
        EXPECT_EQ(text.endsWith(with), ends) << chars << " with " << with;
        EXPECT_EQ(text.countDelims(with), delims) << chars << " with " << with;
        EXPECT_EQ(text.countTokens(with), tokens) << chars << " with " << with;
    }
}

TEST(String, Tokens)
{
    const std::tuple<std::string, const char*, Lines> rows[] = {{"a,b,c", ",", {"a", "b", "c"}},
        {",a", ",", {"", "a"}}, {"a,,b", ",", {"a", "", "b"}}, {"a,b,", ",", {"a", "b"}},
        {"abc", ",", {}}, {"", ",", {}}, {"x::y", "::", {"x", "y"}},
        {withNul + ",e", ",", {"ab", "e"}}};
    for (const auto& [bytes, delimiter, want] : rows)
    {
        CKestaString text, token("kept");
        text.assign(bytes);
        Lines got;
        for (const char* next = delimiter; text.getNextToken(token, next); next = "")
            got.push_back(token);
        EXPECT_EQ(got, want) << bytes;
        EXPECT_FALSE(text.getNextToken(token, "")) << bytes;
        EXPECT_EQ(token, want.empty() ? "kept" : want.back());
    }
}

TEST(String, TokeniserState)
{
    CKestaString text("a,b,c"), token;
    EXPECT_FALSE(text.getNextToken(token, "")) << "no delimiter was ever named";
    EXPECT_TRUE(text.getNextToken(token, ",") && text.getNextToken(token, ","));
    EXPECT_EQ(token, "a") << "naming a delimiter starts again";
    const CKestaString& itself = text;
    text = itself;
    EXPECT_TRUE(text.getNextToken(token, "")) << "an assignment to itself changes nothing";
    CKestaString assigned("x,y"), trimmed("x,y ");
    EXPECT_TRUE(assigned.getNextToken(token, ",") && trimmed.getNextToken(token, ","));
    assigned = text;
    trimmed.trim();
    const CKestaString copy(text);
    EXPECT_FALSE(copy.getNextToken(token, "") || assigned.getNextToken(token, "") ||
                 trimmed.getNextToken(token, ""));
    text.erase(1);
    EXPECT_FALSE(text.getNextToken(token, "")) << "the text ends before the cursor";
}

TEST(String, WhiteSpaceAndNumbers)
{
    const std::tuple<const char*, const char*, const char*, int, double> rows[] = {
        {"  a b \t\n", "a b", "ab", 0, 0.0}, {" \v\f\r ", "", "", 0, 0.0}, {"", "", "", 0, 0.0},
        {" -7 ", "-7", "-7", -7, -7.0}, {"42abc", "42abc", "42abc", 42, 42.0},
        {"2.5e1x", "2.5e1x", "2.5e1x", 2, 25.0}};
    for (const auto& [chars, whole, without, number, real] : rows)
    {
        CKestaString trimmed(chars), removed(chars);
        EXPECT_EQ(trimmed.toInt(), number) << chars;
        EXPECT_EQ(trimmed.toDouble(), real) << chars;
        EXPECT_EQ(trimmed.trim() + "|" + trimmed, std::string(whole) + "|" + whole) << chars;
        EXPECT_EQ(removed.removeSpaces() + "|" + removed, std::string(without) + "|" + without);
    }
    CKestaString cut;
    cut.assign(" " + withNul);
    EXPECT_EQ(cut.trim().size(), 2u);
}
