#ifndef KESTA_RANGE_COMMAND_H
#define KESTA_RANGE_COMMAND_H

#include "KestaCommand.h"

/// kesta range: asks whether addresses and ranges lie inside a range.
class CKestaRangeCommand : public CKestaCommand
{
public:
    explicit CKestaRangeCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    struct CMember
    {
        std::string strText;
        bool bInside;
    };

    std::vector<CMember> judgeArguments(const KestaIPRange& range) const;
    static std::vector<CMember> judgeHost(const KestaIPRange& range);
    static void print(const KestaIPRange& range, const std::vector<CMember>& members,
                      CKestaOutput& output);
    void printAsJson(const KestaIPRange& range, const std::vector<CMember>& members,
                     CKestaOutput& output) const;

    std::string m_strRange;
    std::vector<std::string> m_arguments;
    std::string m_strExcluded;
    bool m_bJson = false;
};

#endif
