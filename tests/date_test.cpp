#include "support.h"

#include "KestaDate.h"

#include <climits>

static std::string fields(const CKestaDate& date)
{
    return std::to_string(date.getMonth()) + "/" + std::to_string(date.getDay()) + "/" +
           std::to_string(date.getYear());
}

TEST(Date, TextsAndClampedFields)
{
    CKestaDate date("12/25");
    EXPECT_EQ(fields(date), "12/25/25") << "a missing part repeats the last";
    EXPECT_EQ(fields(CKestaDate("12252007")), "0/0/0");
    EXPECT_EQ(fields(CKestaDate("x/ 5y/-3/4")), "0/5/-3");
    EXPECT_TRUE(date.setDate(2, 29, 2024) == 1 && fields(date) == "2/28/2024");
    EXPECT_TRUE(date.setDate(2, 29, 2000) == 0 && fields(date) == "2/29/2000");
    EXPECT_TRUE(date.setDate(0, 0, 1200) == 1 && fields(date) == "1/1/1500");
    EXPECT_TRUE(date.setDate(13, 40, 5000) == 1 && fields(date) == "12/31/4000");
    EXPECT_EQ(CKestaDate("-1/1/1").DaysThisMonth(), 0);
}

TEST(Date, Formats)
{
    const CKestaDate date("3/5/2007"), wrong("13/5/-103");
    EXPECT_TRUE(date.getDateString(0) == "Mar 5, 2007" && date.getDateString(7) == "Mar 5, 2007");
    EXPECT_EQ(date.getDateString(CKestaDate::MMDDYYYY), "03/05/2007");
    EXPECT_EQ(wrong.getDateString(CKestaDate::DDMonYYYY), "5   -103");
    EXPECT_EQ(wrong.getDateString(CKestaDate::DDMMYY), "05/13/-3");
}

TEST(Date, Arithmetic)
{
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);   // has days of 23 and of 25 hours
    const std::tuple<const char*, unsigned, const char*> rows[] = {{"12/31/2007", 1, "1/1/2008"},
        {"1/32/2007", 0, "2/1/2007"}, {"3/25/2007", 1, "3/26/2007"},
        {"10/28/2007", 1, "10/29/2007"}, {"3/1/2024", 4294967295u, "2/29/2024"}};
    for (const auto& [text, days, want] : rows)
    {
        const CKestaDate from(text), to(want);
        const int difference = static_cast<int>(days);   // the last one wraps
        EXPECT_EQ(fields(from + days), want) << text;
        EXPECT_TRUE(to - from == difference && to.compare(from) == difference) << text;
        EXPECT_FALSE(from == to) << text;
    }
    EXPECT_EQ(fields(CKestaDate(LONG_MAX)), "0/0/0");
}
