#ifndef KESTA_COMMAND_H
#define KESTA_COMMAND_H

namespace CLI
{
class App;
}

class CKestaOutput;

/// A subcommand: its constructor tells the command line what it takes.
class CKestaCommand
{
public:
    virtual ~CKestaCommand() = default;

    CKestaCommand(const CKestaCommand&) = delete;
    CKestaCommand& operator=(const CKestaCommand&) = delete;

    /// True when the user asks for this command.
    bool isChosen() const;

    /// True when it runs within an entry into the library, as what the library traces must.
    virtual bool isEntry() const { return true; }

    /// Does it, and returns the exit status.
    ///
    /// Throws: `CKestaToolError` for what the user is to be told.
    virtual int run(CKestaOutput& output) = 0;

protected:
    CKestaCommand(CLI::App& root, const char* pszName, const char* pszHelp, const char* pszFooter);

    /// True when the user gave this option or argument.
    bool has(const char* pszName) const;

    CLI::App& m_app;
};

#endif
