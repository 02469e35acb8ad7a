#ifndef KESTA_HOST_COMMAND_H
#define KESTA_HOST_COMMAND_H

#include "KestaCommand.h"

/// kesta host: what the library finds out about the host.
class CKestaHostCommand : public CKestaCommand
{
public:
    explicit CKestaHostCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    struct CHost;
    static void print(const CHost& host, CKestaOutput& output);
    static void printAsJson(const CHost& host, CKestaOutput& output);

    std::string m_strExcluded;
    bool m_bJson = false;
};

#endif
