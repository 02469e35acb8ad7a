#include "KestaCommands.h"
#include "KestaConfiguration.h"
#include "KestaInput.h"
#include "KestaLogFollower.h"
#include "KestaLogPrinter.h"
#include "KestaOutput.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

namespace
{

/// Where the configuration has the library write its log. The library names its files itself, and
/// tells nobody.
struct CConfiguredLog
{
    std::string strCurrent;
    std::string strRolledOver;

    CConfiguredLog()
    {
        std::string strDirectory = CKestaConfiguration::getDebugFile();
        std::string strOldDirectory = CKestaConfiguration::getNewFile();
        if (strDirectory.empty())
            strDirectory = strOldDirectory = CKestaConfiguration::getDataDir() + "log";
        strCurrent = strDirectory + "/KestaDebug_C.log";
        strRolledOver = strOldDirectory + "/KestaDebugOld_C.log";
    }

    CKestaLogFiles files() const
    {
        return {strCurrent, strRolledOver, CKestaConfiguration::getDebugSize() * 1000L};
    }

    /// Where a user who does not find the lines that she looks for may go on.
    std::string advice() const
    {
        std::string strAdvice;
        if (CKestaConfiguration::getDebugLevel() == 0)
            strAdvice = "tracing is off (DEBUGLEVEL is 0 or absent); ";
        if (access(strRolledOver.c_str(), F_OK) == 0)
            return strAdvice + "older lines were rolled over to " + strRolledOver;
        return strAdvice + "nothing was rolled over to " + strRolledOver + " either";
    }
};

/// Writes a log to its end; returns false when it was empty.
bool copyLog(CKestaInput& input, CKestaOutput& output)
{
    CKestaLogPrinter printer(output);
    bool bSome = false;
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
    {
        printer.print(bytes);
        output.flush();
        bSome = true;
    }
    printer.finish();
    return bSome;
}

int showConfigured(CKestaOutput& output)
{
    const CConfiguredLog log;
    const std::unique_ptr<CKestaInput> pInput = CKestaInput::openIfThere(log.strCurrent);
    if (pInput == nullptr)
        throw CKestaToolError(log.strCurrent + ": there is no such log; " + log.advice());
    if (!copyLog(*pInput, output))
        report(log.strCurrent + ": the log is empty; " + log.advice());
    return iStatusYes;
}

CKestaLogFiles filesOf(const std::string& strLog)
{
    return {strLog, "", std::nullopt};
}

class CLogCommand : public CKestaCommand
{
public:
    explicit CLogCommand(CLI::App& root);

    /// Showing a log must not change it.
    bool isEntry() const override { return false; }

    int run(CKestaOutput& output) override;

private:
    std::string m_strFile;
    bool m_bFollow = false;
};

CLogCommand::CLogCommand(CLI::App& root)
    : CKestaCommand(root, "log", "Show a trace log as plain text",
                    "Shows a log in either form, the framing taken out. A log that a host's own "
                    "cipher wrote stays enciphered.")
{
    m_app
        .add_option("FILE", m_strFile,
                    "The log, \"-\" for standard input; the configured log when "
                    "left out")
        ->type_name("");
    m_app.add_flag("-f,--follow", m_bFollow,
                   "Go on with what is added, also after a roll-over, until interrupted");
}

int CLogCommand::run(CKestaOutput& output)
{
    CKestaConfiguration::initialize("KestaDebug.ini");
    const bool bConfigured = !has("FILE");
    if (m_bFollow)
    {
        if (m_strFile == "-")
            throw CKestaToolError("--follow: needs a file, not standard input");
        CKestaLogFollower(bConfigured ? CConfiguredLog().files() : filesOf(m_strFile), output)
            .run();
    }
    if (bConfigured)
        return showConfigured(output);
    CKestaInput input(m_strFile);
    copyLog(input, output);
    return iStatusYes;
}

}   // namespace

std::unique_ptr<CKestaCommand> makeLogCommand(CLI::App& root)
{
    return std::make_unique<CLogCommand>(root);
}
