#include "support.h"

#include "KestaDate.h"

#include <climits>
#include <ctime>

static std::string fields(const CKestaDate& date)
{
    return std::to_string(date.getMonth()) + "/" + std::to_string(date.getDay()) + "/" +
           std::to_string(date.getYear());
}

TEST(Date, Months)
{
    std::string months;
    for (int month = -1; month <= 13; ++month)
    {
        const CKestaDate date(CKestaString(month) + "/1/2007");
        months += date.getMonthString() + CKestaString(date.DaysThisMonth()) + ' ';
    }
    EXPECT_EQ(months,
        " 0  0 Jan31 Feb28 Mar31 Apr30 May31 Jun30 Jul31 Aug31 Sep30 Oct31 Nov30 Dec31  0 ");
}

TEST(Date, Formats)
{
    const std::string lowest = "-2147483648/-2147483648/-2147483648";
    const CKestaDate date("3/5/2007"), wrong("13/5/-103"), far(lowest);
    const std::tuple<CKestaDate, int, const char*> rows[] = {{date, 0, "Mar 5, 2007"},
        {date, CKestaDate::DDMMYY, "05/03/07"}, {date, CKestaDate::DDMMYYYY, "05/03/2007"},
        {date, CKestaDate::MMDDYY, "03/05/07"}, {date, CKestaDate::MMDDYYYY, "03/05/2007"},
        {date, CKestaDate::MonDDYYYY, "Mar 5, 2007"}, {date, CKestaDate::DDMonYYYY, "5 Mar 2007"},
        {date, 7, "Mar 5, 2007"}, {wrong, 6, "5   -103"}, {wrong, 1, "05/13/-3"},
        {far, CKestaDate::DDMMYYYY, lowest.c_str()}};
    for (const auto& [from, format, want] : rows)
        EXPECT_EQ(from.getDateString(format), want) << format;
}

TEST(Date, SystemTime)
{
    const CKestaDate before(std::time(nullptr)), today, after(std::time(nullptr));
    EXPECT_GE(today, before);
    EXPECT_LE(today, after);
    EXPECT_EQ(fields(CKestaDate(LONG_MAX)), "0/0/0");
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    EXPECT_EQ(CKestaDate("7/1/2007").getTime(), 1183240800);
    EXPECT_EQ(fields(CKestaDate(1183240800L - 1)), "6/30/2007");
}
