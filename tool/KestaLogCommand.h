#ifndef KESTA_LOG_COMMAND_H
#define KESTA_LOG_COMMAND_H

#include "KestaCommand.h"

/// kesta log: shows a trace log as plain text.
class CKestaLogCommand : public CKestaCommand
{
public:
    explicit CKestaLogCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    std::string m_strFile;
    bool m_bFollow = false;
};

#endif
