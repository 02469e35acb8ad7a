#include "support.h"

static const std::string withNul("ab\0cd", 5);

TEST(String, NumbersBecomeText)
{
    const std::pair<CKestaString, const char*> rows[] = {{-7, "-7"}, {true, "True"},
        {9223372036854775807L, "9223372036854775807"}, {false, "False"}, {std::size_t{7}, "7"},
        {std::size_t{4294967295}, "-1"}, {std::size_t{4294967296}, "0"}, {-0.1, "-0.100000"}};
    for (const auto& [got, want] : rows)
        EXPECT_EQ(got, want);
    EXPECT_EQ(CKestaString(1e300).size(),
        308u);   // 301 digits, the point and six decimals
    EXPECT_THROW(CKestaString(static_cast<const char*>(nullptr)), std::logic_error);
}

TEST(String, CopiesAndComparisonsStopAtNul)
{
    CKestaString text, assigned("before");
    text.assign(withNul);
    assigned = text;
    EXPECT_TRUE(CKestaString(text).size() == 2 && assigned.size() == 2);
    EXPECT_EQ((CKestaString("x") + text).size(), 6u);   // the right side is taken whole
    EXPECT_EQ((text + "x").size(), 3u);                 // the left side is a copy
    EXPECT_TRUE(text == "ab" && text.equals("AB", false) && !text.equals("AB", true));
}

TEST(String, Searching)
{
    const CKestaString text("a,,,b,"), none;
    EXPECT_TRUE(text.countDelims(",") == 4 && text.countTokens(",,") == 2);
    EXPECT_TRUE(text.countTokens(";") == 0 && text.countTokens("") == 0);
    EXPECT_TRUE(text.beginsWith("a,") && text.beginsWith("") && !text.beginsWith(",,"));
    EXPECT_TRUE(text.endsWith(",;") && !text.endsWith("b") && !text.endsWith(""));
    EXPECT_TRUE(none.endsWith("") && none.endsWith("z")) << "it ends with everything";
}

/// The tokens from the cursor on, each in brackets.
static std::string rest(const CKestaString& text)
{
    std::string all;
    for (CKestaString token; text.getNextToken(token, "");)
        all += "[" + token + "]";
    return all;
}

TEST(String, Tokens)
{
    CKestaString text(",a,,bc,"), other("x::y"), token("kept");
    EXPECT_FALSE(text.getNextToken(token, ";") || other.getNextToken(token, ""));
    EXPECT_EQ(token, "kept");
    EXPECT_TRUE(text.getNextToken(token, ",") && other.getNextToken(token, "::"));
    EXPECT_EQ(token + rest(text) + rest(other), "x[a][][bc][y]");
    EXPECT_TRUE(text.getNextToken(token, ",") && other.getNextToken(token, ":"));
    other = text;
    EXPECT_EQ(rest(CKestaString(text)) + rest(other), "") << "copies have no state";
    const CKestaString& itself = text;
    text = itself;
    EXPECT_EQ(rest(text), "[a][][bc]") << "an assignment to itself changes nothing";
}

TEST(String, WhiteSpaceAndNumbers)
{
    CKestaString text(" \v2.5e1 \tx\f\r\n"), cut(" \t ");
    EXPECT_EQ(text.toDouble() + text.toInt(), 27.0);
    EXPECT_EQ(text.trim() + "|" + text, "2.5e1 \tx|2.5e1 \tx");
    EXPECT_EQ(text.removeSpaces() + "|" + text, "2.5e1x|2.5e1x");
    EXPECT_EQ(cut.trim(), "");
    cut.assign(" " + withNul);
    EXPECT_EQ(cut.trim().size(), 2u);
}
