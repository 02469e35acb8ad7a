#ifndef KESTA_DATE_COMMAND_H
#define KESTA_DATE_COMMAND_H

#include "KestaCommand.h"

class CKestaDate;

/// kesta date: shows a date, and counts with it.
class CKestaDateCommand : public CKestaCommand
{
public:
    explicit CKestaDateCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    CKestaDate readDates(long& lDays) const;
    void print(const CKestaDate& date, CKestaOutput& output) const;
    void printAsJson(const CKestaDate& date, long lDays, CKestaOutput& output) const;
    bool isWanted(int iFormat) const;
    bool has(const char* pszOption) const;

    std::string m_strDate;
    std::string m_strPlus;
    std::string m_strMinus;
    std::string m_strFormat;
    int m_iFormat = 0;   // 0: all
    bool m_bJson = false;
};

#endif
