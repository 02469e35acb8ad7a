#ifndef KESTA_TOOL_ERROR_H
#define KESTA_TOOL_ERROR_H

#include <exception>
#include <stdexcept>
#include <string>

/// The exit statuses, those of grep.
constexpr int iStatusYes = 0;     ///< Something is inside, or the command did what it was told.
constexpr int iStatusNo = 1;      ///< Nothing is inside.
constexpr int iStatusError = 2;   ///< Something went wrong, and a line on standard error says what.

/// Ends the command. The message is shown to the user, as one line.
class CKestaToolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The reader of standard output has gone away. The command ends without a message.
class CKestaReaderGone : public std::exception
{
};

/// Writes "kesta: ", a message and a newline to standard error, with one write. It is one line,
/// whatever the message holds.
void report(const std::string& strMessage);

/// A name and the system's text for an errno: "NAME: No such file or directory".
std::string systemError(const std::string& strName, int iError);

#endif
