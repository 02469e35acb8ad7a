#ifndef KESTA_TOOL_ERROR_H
#define KESTA_TOOL_ERROR_H

#include <exception>
#include <stdexcept>
#include <string>

/// The exit statuses, those of grep.
constexpr int iStatusYes = 0;     ///< Something is inside; or the command did what it was asked to.
constexpr int iStatusNo = 1;      ///< Nothing is inside.
constexpr int iStatusError = 2;   ///< Something went wrong, and a line on standard error says what.

/// What ends a command: the message is shown to the user, as one line.
class CKestaToolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The reader of standard output went away: nothing to say, and nobody to say it to.
class CKestaReaderGone : public std::exception
{
};

/// Writes "kesta: ", a message and a newline to standard error, by one write. It stays one line,
/// whatever the message holds.
void report(const std::string& strMessage);

/// What the system says about a failure: "NAME: No such file or directory".
std::string systemError(const std::string& strName, int iError);

#endif
