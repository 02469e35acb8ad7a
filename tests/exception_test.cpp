#include "support.h"

static std::string printed(const CKestaExc& exc)
{
    std::ostringstream out;
    out << exc;
    return out.str();
}

TEST(Exception, ConstructorsAndCatalogue)
{
    const std::pair<CKestaExc, const char*> rows[] = {{CKestaExc(), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc_ArrayOutOfBound(), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc_FileNotFound(), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc_FileNotFound("ignored"), "-9999;Kesta_Fernhold;\n"},
        {CKestaExc("Invalid address"), "-9999;Fernhold;Invalid address\n"},
        {CKestaExc(-1, "here", "m"), "-1;here;Unknown Error:m\n"},
        {CKestaExc(1008, "s", ""), "1008;s;Error in Opening the file:\n"},
        {CKestaExc(1009, "s", ""), "1009;s;File not open:\n"},
        {CKestaExc(-9985, "s", ""), "-9985;s;Error Occurred in Opening Input File:\n"},
        {CKestaExc(-9986, "s", ""),
            "-9986;s;The value passed for one of the parameter to API is not allowed:\n"},
        {CKestaExc(7777, "", ""), "7777;;:\n"}};
    for (const auto& [exc, want] : rows)
        EXPECT_EQ(printed(exc), want);
    char text[512] = "untouched";
    EXPECT_EQ(CKestaExc::getErrMessage(7777, text), -1) << "which ends the catalogue";
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(CKestaExc::getErrMessage(1009, text), 0);
}

struct Counting : CKestaExc
{
    std::string calls;
    void SetErrorNumber(long n) override { calls += 'n', CKestaExc::SetErrorNumber(n); }
    void SetErrorSource(CKestaString s) override { calls += 's', CKestaExc::SetErrorSource(s); }
    void SetErrorMessage(CKestaString m) override { calls += 'm', CKestaExc::SetErrorMessage(m); }
};

TEST(Exception, SettersOneAfterTheOther)
{
    Counting exc;
    exc.SetErrorMessage("a");
    exc.SetErrorMessage("b");
    EXPECT_EQ(exc.GetErrorMessage(), ":a:b") << "appended";
    exc.SetErrorNumber(1009);
    exc.SetErrorSource("there");
    EXPECT_EQ(printed(exc), "1009;there;File not open\n");
    exc.SetError(1115, "s", "m");
    EXPECT_EQ(printed(exc), "1115;s;Memory allocation failed:m\n");
    EXPECT_EQ(exc.calls, "mmnsnsm") << "which SetError calls in its order";
}
