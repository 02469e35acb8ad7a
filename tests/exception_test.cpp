#include "support.h"

static std::string printed(const CKestaExc& exc)
{
    std::ostringstream out;
    out << exc;
    return out.str();
}

TEST(Exception, ConstructorsPrintOnOneLine)
{
    const std::pair<CKestaExc, const char*> rows[] = {{CKestaExc(), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc_ArrayOutOfBound(), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc_FileNotFound("ignored"), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc("Invalid address"), "-9999;Fernhold;Invalid address\n"},
        {CKestaExc(-1, "here", "m"), "-1;here;Unknown Error:m\n"},
        {CKestaExc(424242, "", "m"), "424242;;:m\n"}, {CKestaExc(7777, "s", ""), "7777;s;:\n"}};
    for (const auto& [exc, want] : rows)
        EXPECT_EQ(printed(exc), want);
}

TEST(Exception, SettersOneAfterTheOther)
{
    struct Counting : CKestaExc
    {
        std::string calls;
        void SetErrorNumber(long n) override { calls += 'n', CKestaExc::SetErrorNumber(n); }
        void SetErrorMessage(CKestaString m) override
        {
            calls += 'm', CKestaExc::SetErrorMessage(m);
        }
    } exc;
    exc.SetErrorMessage("a");
    exc.SetErrorMessage("b");
    EXPECT_EQ(exc.GetErrorMessage(), ":a:b") << "appended";
    exc.SetErrorNumber(1009);
    exc.SetErrorSource("there");
    EXPECT_EQ(printed(exc), "1009;there;File not open\n");
    exc.SetError(1115, "s", "m");
    EXPECT_EQ(printed(exc) + exc.calls, "1115;s;Memory allocation failed:m\nmmnnm");
}

TEST(Exception, Catalogue)
{
    const std::pair<long, const char*> rows[] = {{-1, "Unknown Error"},
        {1008, "Error in Opening the file"}, {1009, "File not open"},
        {1115, "Memory allocation failed"}, {-9985, "Error Occurred in Opening Input File"},
        {-9986, "The value passed for one of the parameter to API is not allowed"}, {7777, nullptr},
        {0, nullptr}};
    for (const auto& [number, want] : rows)
    {
        char text[512] = "untouched";
        EXPECT_EQ(CKestaExc::getErrMessage(number, text), want ? 0 : -1) << number;
        EXPECT_STREQ(text, want ? want : "untouched") << number;
    }
}
