#ifndef KESTA_COMMANDS_H
#define KESTA_COMMANDS_H

#include "KestaCommand.h"

#include <memory>

/// The subcommands, each in a source of its name. Making one declares its options and arguments.

/// kesta range: describes a range, and tests addresses and ranges against it.
std::unique_ptr<CKestaCommand> makeRangeCommand(CLI::App& root);

/// kesta host: shows the host's name, system and addresses.
std::unique_ptr<CKestaCommand> makeHostCommand(CLI::App& root);

/// kesta date: prints a date; adds and subtracts days.
std::unique_ptr<CKestaCommand> makeDateCommand(CLI::App& root);

/// kesta log: shows a trace log as plain text; says why there is none.
std::unique_ptr<CKestaCommand> makeLogCommand(CLI::App& root);

/// kesta filter: writes the lines that begin with an address in any of several ranges.
std::unique_ptr<CKestaCommand> makeFilterCommand(CLI::App& root);

#endif
