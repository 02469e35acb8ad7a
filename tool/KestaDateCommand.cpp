#include "KestaDateCommand.h"

#include "KestaDate.h"
#include "KestaJson.h"
#include "KestaTable.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>

#include <charconv>

namespace
{

constexpr int iFirstFormat = CKestaDate::DDMMYY;
constexpr int iLastFormat = CKestaDate::DDMonYYYY;

constexpr const char* formatNames[] = {"",         "DDMMYY",    "DDMMYYYY", "MMDDYY",
                                       "MMDDYYYY", "MonDDYYYY", "DDMonYYYY"};

template <class TNumber>
TNumber readNumber(const std::string& strName, const std::string& strText, TNumber lowest,
                   TNumber highest)
{
    TNumber number = 0;
    const char* const pEnd = strText.data() + strText.size();
    const auto result = std::from_chars(strText.data(), pEnd, number);
    if (result.ec != std::errc() || result.ptr != pEnd || number < lowest || number > highest)
        throw CKestaToolError(strName + " " + inQuotes(strText) + ": is no number from " +
                              std::to_string(lowest) + " to " + std::to_string(highest));
    return number;
}

// The library reads any text somehow; one without a "/" would give 0/0/0, which nobody means.
CKestaDate readDate(const std::string& strName, const std::string& strText)
{
    if (strText.find('/') == std::string::npos)
        throw CKestaToolError(strName + " " + inQuotes(strText) +
                              ": is no month/day/year, such as 2/29/2000");
    return CKestaDate(strText);
}

}   // namespace

CKestaDateCommand::CKestaDateCommand(CLI::App& root)
    : CKestaCommand(root, "date", "Show a date, and count with it",
                    "Shows the date in all six formats, or in one of them.\n\nFormats: 1 DDMMYY, 2 "
                    "DDMMYYYY, 3 MMDDYY, 4 MMDDYYYY, 5 MonDDYYYY, 6 DDMonYYYY")
{
    m_app.add_option("TEXT", m_strDate, "The date, month/day/year; today when left out")
        ->type_name("");
    m_app.add_option("--plus", m_strPlus, "Go on by so many days")->type_name("DAYS");
    CLI::Option* const pMinus =
        m_app.add_option("--minus", m_strMinus, "Show the days since this date instead")
            ->type_name("TEXT");
    m_app.add_option("--format", m_strFormat, "Show this format alone, 1 to 6")
        ->type_name("N")
        ->excludes(pMinus);
    m_app.add_flag("--json", m_bJson, "Write JSON");
}

int CKestaDateCommand::run(CKestaOutput& output)
{
    if (has("--format"))
        m_iFormat = readNumber("--format", m_strFormat, iFirstFormat, iLastFormat);
    long lDays = 0;
    const CKestaDate date = readDates(lDays);
    if (m_bJson)
        printAsJson(date, lDays, output);
    else if (has("--minus"))
        output.write(std::to_string(lDays) + "\n");
    else
        print(date, output);
    return iStatusYes;
}

CKestaDate CKestaDateCommand::readDates(long& lDays) const
{
    CKestaDate date = has("TEXT") ? readDate("date", m_strDate) : CKestaDate();
    if (has("--plus"))
        date = date + readNumber("--plus", m_strPlus, 0u, ~0u);
    if (has("--minus"))
        lDays = static_cast<long>(date - readDate("--minus", m_strMinus));
    return date;
}

void CKestaDateCommand::print(const CKestaDate& date, CKestaOutput& output) const
{
    if (m_iFormat != 0)
    {
        output.write(date.getDateString(m_iFormat) + "\n");
        return;
    }
    CKestaTable table;
    for (int i = iFirstFormat; i <= iLastFormat; ++i)
        table.add(CKestaTable::EColour::plain,
                  {std::to_string(i), formatNames[i], date.getDateString(i)});
    table.print(output);
}

void CKestaDateCommand::printAsJson(const CKestaDate& date, long lDays, CKestaOutput& output) const
{
    CKestaJson json = {
        {"month", date.getMonth()}, {"day", date.getDay()}, {"year", date.getYear()}};
    for (int i = iFirstFormat; i <= iLastFormat; ++i)
    {
        if (isWanted(i))
            json["formats"][formatNames[i]] = std::string(date.getDateString(i));
    }
    if (has("--minus"))
        json["days"] = lDays;
    printJson(json, output);
}

bool CKestaDateCommand::isWanted(int iFormat) const
{
    return m_iFormat == 0 || m_iFormat == iFormat;
}

bool CKestaDateCommand::has(const char* pszOption) const
{
    return m_app.count(pszOption) > 0;
}
