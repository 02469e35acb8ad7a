#include "support.h"

#include "KestaDate.h"

#include <climits>

static std::string fields(const CKestaDate& date)
{
    return std::to_string(date.getMonth()) + "/" + std::to_string(date.getDay()) + "/" +
           std::to_string(date.getYear());
}

TEST(Date, Texts)
{
    const char* rows[][2] = {{"7/4/2010", "7/4/2010"}, {"12/25/07", "12/25/7"},
        {"12/25", "12/25/25"}, {"7/", "7/7/7"}, {"12252007", "0/0/0"}, {"", "0/0/0"},
        {"1/2/3/4", "1/2/3"}, {"x/ 5y/-3", "0/5/-3"}};
    for (const auto& [text, want] : rows)
        EXPECT_EQ(fields(CKestaDate(text)), want) << text;
}

TEST(Date, ClampedFields)
{
    const std::tuple<int, int, int, int, const char*> rows[] = {{2, 29, 2024, 1, "2/28/2024"},
        {2, 29, 2000, 0, "2/29/2000"}, {2, 29, 1900, 1, "2/28/1900"}, {0, 0, 1200, 1, "1/1/1500"},
        {13, 40, 5000, 1, "12/31/4000"}, {4, 31, 2007, 1, "4/30/2007"},
        {12, 31, 4000, 0, "12/31/4000"}, {1, -1, 1500, 1, "1/1/1500"}};
    for (const auto& [month, day, year, result, want] : rows)
    {
        CKestaDate date;
        EXPECT_EQ(date.setDate(month, day, year), result) << want;
        EXPECT_EQ(fields(date), want);
    }
}

TEST(Date, Formats)
{
    const std::tuple<const char*, int, const char*> rows[] = {{"3/5/2007", 1, "05/03/07"},
        {"3/5/2007", 2, "05/03/2007"}, {"3/5/2007", 3, "03/05/07"}, {"3/5/2007", 4, "03/05/2007"},
        {"3/5/2007", 5, "Mar 5, 2007"}, {"3/5/2007", 6, "5 Mar 2007"},
        {"3/5/2007", 9, "Mar 5, 2007"}, {"3/5/2007", 0, "Mar 5, 2007"}, {"0/5/7", 5, "  5, 0007"},
        {"13/5/7", 6, "5   0007"}, {"1/2/-103", 1, "02/01/-3"}};
    for (const auto& [date, format, want] : rows)
        EXPECT_EQ(CKestaDate(date).getDateString(format), want) << date << " in format " << format;
    std::ostringstream out;
    out << CKestaDate("3/5/2007");
    EXPECT_EQ(out.str(), "03/05/2007");
    EXPECT_EQ(CKestaDate("-1/1/1").DaysThisMonth(), 0);
}

TEST(Date, Arithmetic)
{
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);   // has days of 23 and of 25 hours
    tzset();
    const std::tuple<const char*, unsigned, const char*> rows[] = {{"1/31/2007", 1, "2/1/2007"},
        {"12/31/2007", 1, "1/1/2008"}, {"2/28/2007", 1, "3/1/2007"}, {"2/28/2024", 1, "2/29/2024"},
        {"1/1/2007", 365, "1/1/2008"}, {"1/32/2007", 0, "2/1/2007"}, {"3/25/2007", 1, "3/26/2007"},
        {"10/28/2007", 1, "10/29/2007"},
        {"3/1/2007", 4294967295u, "2/28/2007"}};   // wraps: the day before
    for (const auto& [text, days, want] : rows)
    {
        const CKestaDate from(text), to(want);
        const int difference = static_cast<int>(days);
        EXPECT_EQ(fields(from + days), want) << text;
        EXPECT_EQ(to - from, difference) << text;
        EXPECT_EQ(from.compare(to), difference == 0 ? 0 : difference > 0 ? -1 : 1) << text;
        EXPECT_EQ(to.compare(from), -from.compare(to)) << text;
        EXPECT_FALSE(from == to) << text;
        EXPECT_TRUE(CKestaDate(to.getTime()) == to) << want;
    }
    EXPECT_EQ(fields(CKestaDate(LONG_MAX)), "0/0/0");
    unsetenv("TZ");
    tzset();
}
