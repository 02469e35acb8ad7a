#ifndef KESTA_COMMANDS_H
#define KESTA_COMMANDS_H

#include "KestaCommand.h"

#include <memory>

/// The subcommands, each in a source of its name. What makes one tells the command line what the
/// subcommand takes.

/// kesta range: asks whether addresses and ranges lie inside a range.
std::unique_ptr<CKestaCommand> makeRangeCommand(CLI::App& root);

/// kesta host: what the library finds out about the host.
std::unique_ptr<CKestaCommand> makeHostCommand(CLI::App& root);

/// kesta date: prints a date; adds and subtracts days.
std::unique_ptr<CKestaCommand> makeDateCommand(CLI::App& root);

/// kesta log: shows a trace log as plain text.
std::unique_ptr<CKestaCommand> makeLogCommand(CLI::App& root);

/// kesta filter: picks the lines that begin with an address of a range.
std::unique_ptr<CKestaCommand> makeFilterCommand(CLI::App& root);

#endif
