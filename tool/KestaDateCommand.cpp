#include "KestaArgument.h"
#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaDate.h"
#include "KestaJson.h"
#include "KestaOutput.h"
#include "KestaString.h"
#include "KestaTable.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <climits>
#include <memory>
#include <stdexcept>

namespace
{

constexpr int iFirstFormat = CKestaDate::DDMMYY;
constexpr int iLastFormat = CKestaDate::DDMonYYYY;

constexpr const char* formatNames[] = {"",         "DDMMYY",    "DDMMYYYY", "MMDDYY",
                                       "MMDDYYYY", "MonDDYYYY", "DDMonYYYY"};

// The library adds days to the day of the month in 32 bits that wrap. So a negative number counts
// backwards, and a large one is added in two halves, lest it wrap.
CKestaDate later(const CKestaDate& date, int iDays)
{
    const int iHalf = iDays / 2;
    return date + static_cast<unsigned int>(iHalf) + static_cast<unsigned int>(iDays - iHalf);
}

class CDateCommand : public CKestaCommand
{
public:
    explicit CDateCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    CKestaDate readDates(long& lDays) const;
    void print(const CKestaDate& date, CKestaOutput& output) const;
    void printAsJson(const CKestaDate& date, long lDays, CKestaOutput& output) const;
    bool isWanted(int iFormat) const;

    std::string m_strDate;
    std::string m_strPlus;
    std::string m_strMinus;
    std::string m_strFormat;
    int m_iFormat = 0;   // 0: all
    bool m_bJson = false;
};

CDateCommand::CDateCommand(CLI::App& root)
    : CKestaCommand(
          root, "date", "Print a date; add or subtract days",
          "Prints the date in all six formats, or in one of them.\n\nFormats: 1 DDMMYY, 2 "
          "DDMMYYYY, 3 MMDDYY, 4 MMDDYYYY, 5 MonDDYYYY, 6 DDMonYYYY")
{
    m_app.add_option("TEXT", m_strDate, "The date, month/day/year; today by default")
        ->type_name("");
    m_app.add_option("--plus", m_strPlus, "Add DAYS days, or subtract them when negative")
        ->type_name("DAYS");
    CLI::Option* const pMinus =
        m_app
            .add_option("--minus", m_strMinus,
                        "Print the number of days since the date TEXT instead")
            ->type_name("TEXT");
    m_app.add_option("--format", m_strFormat, "Print only this format, 1 to 6")
        ->type_name("N")
        ->excludes(pMinus);
    m_app.add_flag("--json", m_bJson, "Write JSON");
}

int CDateCommand::run(CKestaOutput& output)
{
    if (has("--format"))
        m_iFormat =
            static_cast<int>(readNumber("--format", m_strFormat, iFirstFormat, iLastFormat));
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

CKestaDate CDateCommand::readDates(long& lDays) const
{
    CKestaDate date = has("TEXT") ? readDate("date", m_strDate) : CKestaDate();
    if (has("--plus"))
        date = later(date, static_cast<int>(readNumber("--plus", m_strPlus, INT_MIN, INT_MAX)));
    if (has("--minus"))
        lDays = static_cast<long>(date - readDate("--minus", m_strMinus));
    return date;
}

void CDateCommand::print(const CKestaDate& date, CKestaOutput& output) const
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

void CDateCommand::printAsJson(const CKestaDate& date, long lDays, CKestaOutput& output) const
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

bool CDateCommand::isWanted(int iFormat) const
{
    return m_iFormat == 0 || m_iFormat == iFormat;
}

}   // namespace

std::unique_ptr<CKestaCommand> makeDateCommand(CLI::App& root)
{
    return std::make_unique<CDateCommand>(root);
}
