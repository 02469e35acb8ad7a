#include "bench.h"

#include "KestaDate.h"

#include <cmath>
#include <ctime>

#ifdef BENCH_WITH_DATE
#include <date/date.h>
#endif

namespace
{

struct Day
{
    int month;
    int day;
    int year;

    bool operator==(const Day& other) const
    {
        return month == other.month && day == other.day && year == other.year;
    }
};

const std::vector<Day> starts = {{1, 31, 2007}, {12, 31, 2007}, {2, 20, 2024}, {7, 4, 2010}};
const std::vector<Day> thirtyDaysLater = {{3, 2, 2007}, {1, 30, 2008}, {3, 21, 2024}, {8, 3, 2010}};
constexpr Day epoch = {1, 1, 2000};
const std::vector<double> daysSinceEpoch = {2587, 2921, 8816, 3837};

template <class Date, class Make>
std::vector<Date> made(Make make)
{
    std::vector<Date> dates;
    for (const Day& start : starts)
        dates.push_back(make(start));
    return dates;
}

CKestaDate kestaDate(const Day& day)
{
    CKestaDate date(0L);
    date.setDate(day.month, day.day, day.year);
    return date;
}

Day dayOf(const CKestaDate& date)
{
    return {date.getMonth(), date.getDay(), date.getYear()};
}

std::time_t bareTime(const Day& day, int plusDays = 0)
{
    std::tm parts = {};
    parts.tm_mday = day.day + plusDays;
    parts.tm_mon = day.month - 1;
    parts.tm_year = day.year - 1900;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

Day barePlus(const Day& day)
{
    const std::time_t time = bareTime(day, 30);
    std::tm parts;
    localtime_r(&time, &parts);
    return {parts.tm_mon + 1, parts.tm_mday, parts.tm_year + 1900};
}

double bareDifference(const Day& day)
{
    return std::floor(0.5 + std::difftime(bareTime(day), bareTime(epoch)) / 86400);
}

#ifdef BENCH_WITH_DATE
date::year_month_day hinnantDate(const Day& day)
{
    return date::year(day.year) / day.month / day.day;
}

Day dayOf(const date::year_month_day& date)
{
    return {static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())), static_cast<int>(date.year())};
}
#endif

}   // namespace

void addDateWork()
{
    // A zone with daylight-saving time, in a form that needs no look at a file for each date, which
    // would hide the rest of the work.
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();

    const Work<Day> plus("date plus 30 days", thirtyDaysLater);
    const Work<double> difference("date difference", daysSinceEpoch);
    plus.by("floor", starts, barePlus);
    difference.by("floor", starts, bareDifference);

    const auto kestaDates = made<CKestaDate>(kestaDate);
    plus.by(
        "kesta", kestaDates, [](const CKestaDate& date) { return date + 30u; },
        [](const CKestaDate& date) { return dayOf(date); });
    difference.by("kesta", kestaDates,
                  [from = kestaDate(epoch)](const CKestaDate& date) { return date - from; });

#ifdef BENCH_WITH_DATE
    const auto hinnantDates = made<date::year_month_day>(hinnantDate);
    plus.by(
        "date.h", hinnantDates,
        [](const date::year_month_day& date) -> date::year_month_day
        { return date::sys_days(date) + date::days(30); },
        [](const date::year_month_day& date) { return dayOf(date); });
    difference.by(
        "date.h", hinnantDates,
        [from = hinnantDate(epoch)](const date::year_month_day& date)
        { return static_cast<double>((date::sys_days(date) - date::sys_days(from)).count()); });
#endif
}
