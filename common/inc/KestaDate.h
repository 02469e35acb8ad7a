#ifndef KESTA_DATE_H
#define KESTA_DATE_H

#include "KestaExport.h"
#include "KestaString.h"

#include <ctime>
#include <iosfwd>

class CKestaDate;

/// Writes `getDateString(CKestaDate::MMDDYYYY)`.
KESTA_API std::ostream& operator<<(std::ostream& os, CKestaDate& date);

/// A calendar date: month, day and year as plain numbers.
///
/// Only `setDate(int, int, int)` checks them; texts and day arithmetic store whatever results, and
/// arithmetic on the fields wraps as 32-bit two's complement. A day beyond the end of its month is
/// left to the system's local time (`mktime`, `localtime`), always at midnight: day 32 of January
/// is 1 February. The system converts years from about -2^31 + 1900 to 2^31 + 1899.
///
/// Thread contract: distinct objects are independent; several threads may read one date while
/// nobody changes the time zone.
///
/// Throws: nothing of its own.
class KESTA_API CKestaDate
{
public:
    /// The codes of `getDateString`. Examples: 5 March 2007.
    static constexpr int DDMMYY = 1;      ///< 05/03/07
    static constexpr int DDMMYYYY = 2;    ///< 05/03/2007
    static constexpr int MMDDYY = 3;      ///< 03/05/07
    static constexpr int MMDDYYYY = 4;    ///< 03/05/2007
    static constexpr int MonDDYYYY = 5;   ///< Mar 5, 2007
    static constexpr int DDMonYYYY = 6;   ///< 5 Mar 2007

    /// Today, in local time.
    CKestaDate();

    /// The local date at a time value, in seconds since the epoch; 0, 0, 0 for a value that the
    /// system cannot convert.
    CKestaDate(long lTime);

    /// The date in a text, read as `setDate(strDate)` reads it. Only a variable converts
    /// implicitly. Constants and temporaries do not, so that a host's overloads for `CKestaDate`
    /// and `CKestaExc` are not ambiguous for them.
    CKestaDate(CKestaString& strDate);
    template <class = void>
    explicit CKestaDate(const CKestaString& strDate)
        : CKestaDate(const_cast<CKestaString&>(strDate))
    {
    }

    CKestaDate(const CKestaDate& other) = default;
    CKestaDate& operator=(const CKestaDate& other) = default;

    /// The month, 1 to 12 when valid.
    int getMonth() const { return iMonth; }
    /// The day of the month, 1 to 31 when valid.
    int getDay() const { return iDay; }
    /// The full year, such as 2007.
    int getYear() const { return iYear; }

    /// Reads month, day and year, in this order, separated by "/". Nothing is checked, and a
    /// two-digit year stays as it is.
    ///
    /// Intended: a part that is missing takes the number of the part before it, and a text without
    /// any "/" has no parts at all.
    ///
    ///     7/4/2010   month 7, day 4, year 2010
    ///     12/25      month 12, day 25, year 25
    ///     12252007   month 0, day 0, year 0
    void setDate(const CKestaString& strDate);

    /// Sets the date; a value out of range becomes the nearest valid one. Years go from 1500 to
    /// 4000, days to `DaysThisMonth()`. Returns 1 if anything was corrected, else 0.
    int setDate(int in_month, int in_day, int in_year);

    /// The number of days of the month, 0 for a month outside 1 to 12.
    ///
    /// Intended: a February has 29 days in the years divisible by 400 only (2000, not 2024).
    int DaysThisMonth() const;

    /// The date as text; any code other than 1 to 6 counts as `MonDDYYYY`. The two-digit year is
    /// the remainder by 100, negative for a negative year.
    CKestaString getDateString(int iFormat) const;

    /// "Jan" to "Dec"; a blank for a month outside 1 to 12.
    CKestaString getMonthString() const;

    /// Midnight, local time, at the start of the date, in seconds since the epoch; -1 for a date
    /// that the system cannot convert.
    long getTime() const;

    /// -1, 0 or 1: this date starts before, with or after the other. 32 January and 1 February
    /// start together.
    int compare(const CKestaDate& other) const;

    /// True when month, day and year are the same numbers.
    bool operator==(const CKestaDate& other) const;

    /// The opposite of `==`. This and the orderings are templates, so that a host's own operators
    /// win.
    template <class = void>
    bool operator!=(const CKestaDate& other) const
    {
        return !(*this == other);
    }

    /// The orderings use `compare`: 32 January is neither before nor after 1 February, although
    /// the two are not equal.
    template <class = void>
    bool operator<(const CKestaDate& other) const
    {
        return compare(other) < 0;
    }
    template <class = void>
    bool operator<=(const CKestaDate& other) const
    {
        return compare(other) <= 0;
    }
    template <class = void>
    bool operator>(const CKestaDate& other) const
    {
        return compare(other) > 0;
    }
    template <class = void>
    bool operator>=(const CKestaDate& other) const
    {
        return compare(other) >= 0;
    }

    /// The days from the other date to this one, rounded: a whole number.
    ///
    /// Not for going back: `date - 30` compiles, but is the difference to the date of the time
    /// value 30, half a minute after the epoch. See `+` for going back.
    double operator-(const CKestaDate& other) const;

    /// The date that many days later. The sum wraps, so a negative number converted to unsigned
    /// goes back:
    ///
    ///     date + 30
    ///     date + static_cast<unsigned int>(-30)   // 30 days earlier
    ///
    /// A date that the system cannot convert gives the date of time value -1, the second before
    /// the epoch.
    CKestaDate operator+(unsigned int days) const;

    /// Writes a const date, as the operator above does. A template, so that a host's own operator
    /// wins.
    template <class = void>
    friend std::ostream& operator<<(std::ostream& os, const CKestaDate& date)
    {
        return os << const_cast<CKestaDate&>(date);
    }

private:
    KESTA_LOCAL std::time_t timeAt(int iDayOfMonth) const;
    KESTA_LOCAL void setTime(std::time_t lTime);

    int iMonth;
    int iDay;
    int iYear;
};

#endif
