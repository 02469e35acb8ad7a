#include "KestaDate.h"
#include "fuzz.h"

#include <algorithm>
#include <ctime>
#include <tuple>

namespace
{

typedef std::tuple<int, int, int> Fields;   // month, day, year

Fields fieldsOf(const CKestaDate& date)
{
    return {date.getMonth(), date.getDay(), date.getYear()};
}

int wrapped(long number)
{
    return static_cast<int>(static_cast<unsigned int>(number));
}

Fields parsed(const std::string& text)
{
    int numbers[3];
    std::string part;
    std::size_t at = text.find('/') == text.npos ? text.size() : 0;
    for (int& number : numbers)
    {
        if (at < text.size())
            part = text.substr(at, text.find('/', at) - at);
        at += part.size() + 1;
        number = std::atoi(part.c_str());
    }
    return {numbers[0], numbers[1], numbers[2]};
}

/// Midnight UTC a number of days after a date; -1 if there is none.
long timeOf(const Fields& fields, long days)
{
    std::tm time = {};
    time.tm_mon = wrapped(std::get<0>(fields) - 1L);
    time.tm_mday = wrapped(std::get<1>(fields) + days);
    time.tm_year = wrapped(std::get<2>(fields) - 1900L);
    return timegm(&time);
}

Fields dateAt(long seconds)
{
    std::tm time;
    if (gmtime_r(&seconds, &time) == nullptr)
        return {0, 0, 0};
    return {time.tm_mon + 1, time.tm_mday, wrapped(time.tm_year + 1900L)};
}

void checkClamping(int month, int day, int year)
{
    CKestaDate date(0L);
    const bool corrected = date.setDate(month, day, year) == 1;
    const int inYear = std::clamp(year, 1500, 4000), inMonth = std::clamp(month, 1, 12);
    const int february = inYear % 400 == 0 ? 29 : 28;
    const int length = inMonth == 2 ? february : 30 + (inMonth + inMonth / 8) % 2;
    const Fields clamped(inMonth, std::clamp(day, 1, length), inYear);
    CHECK(fieldsOf(date) == clamped);
    CHECK(corrected == (clamped != Fields(month, day, year)));
}

}   // namespace

/// Input: two dates; a number of days, and one of seconds.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto input = fields(data, size, 4);
    const CKestaDate date(input[0]), other(input[1]);
    const auto days = static_cast<unsigned int>(std::atol(input[2].c_str()));
    const long seconds = std::atol(input[3].c_str());
    const Fields own = fieldsOf(date), others = fieldsOf(other);
    CHECK(own == parsed(upToNul(input[0])));
    CHECK((date == other) == (own == others));
    CHECK(CKestaDate(date.getDateString(CKestaDate::MMDDYYYY)) == date);
    checkClamping(date.getMonth(), date.getDay(), date.getYear());

    const long time = timeOf(own, 0), otherTime = timeOf(others, 0), later = timeOf(own, days);
    for (const char* zone : {"CET-1CEST,M3.5.0,M10.5.0/3", "UTC0"})
    {
        setenv("TZ", zone, 1);   // with daylight-saving time, and without
        const long midnight = date.getTime();
        std::tm local = {};
        CHECK(time == -1 || (localtime_r(&midnight, &local) != nullptr && local.tm_hour == 0));
        CHECK(time == -1 || fieldsOf(CKestaDate(midnight)) == dateAt(time));
        if (time != -1 && otherTime != -1)
            CHECK(date - other == static_cast<double>(time / 86400 - otherTime / 86400));
        if (later != -1)
            CHECK(fieldsOf(date + days) == dateAt(later));
    }
    CHECK(date.getTime() == time);
    CHECK(fieldsOf(CKestaDate(seconds)) == dateAt(seconds));
    const int order = (time > otherTime) - (time < otherTime);
    CHECK(date.compare(other) == order);
    CHECK((date < other) == (order < 0));
    CHECK((date > other) == (order > 0));
    CHECK((date <= other) == (order <= 0));
    CHECK((date >= other) == (order >= 0));
    return 0;
}
