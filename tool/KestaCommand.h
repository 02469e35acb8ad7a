#ifndef KESTA_COMMAND_H
#define KESTA_COMMAND_H

namespace CLI
{
class App;
}

class CKestaOutput;

/// A subcommand. Its constructor declares its options and arguments.
class CKestaCommand
{
public:
    virtual ~CKestaCommand() = default;

    CKestaCommand(const CKestaCommand&) = delete;
    CKestaCommand& operator=(const CKestaCommand&) = delete;

    /// True when the user named this subcommand.
    bool isChosen() const;

    /// True when it may run within an entry into the library, so that the library can trace.
    virtual bool mayTrace() const { return true; }

    /// Runs the subcommand, and returns the exit status.
    ///
    /// Throws: `CKestaToolError` with the message for the user.
    virtual int run(CKestaOutput& output) = 0;

protected:
    CKestaCommand(CLI::App& root, const char* pszName, const char* pszHelp, const char* pszFooter);

    /// True when the user gave this option or argument.
    bool has(const char* pszName) const;

    CLI::App& m_app;
};

#endif
