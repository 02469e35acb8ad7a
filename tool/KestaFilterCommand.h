#ifndef KESTA_FILTER_COMMAND_H
#define KESTA_FILTER_COMMAND_H

#include "KestaCommand.h"

class CKestaFilterScanner;

/// kesta filter: picks the lines that begin with an address of a range.
class CKestaFilterCommand : public CKestaCommand
{
public:
    explicit CKestaFilterCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    std::vector<std::string> m_ranges;
    std::vector<std::string> m_files;
    bool m_bInvert = false;
    bool m_bCount = false;
};

#endif
