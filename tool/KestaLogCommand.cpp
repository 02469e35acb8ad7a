#include "KestaCommands.h"
#include "KestaConfiguration.h"
#include "KestaInput.h"
#include "KestaLogDecoder.h"
#include "KestaLogFollower.h"
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
    CKestaLogDecoder decoder;
    std::string strText;
    bool bSome = false;
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
    {
        decoder.feed(bytes, strText);
        output.write(strText);
        output.flush();
        strText.clear();
        bSome = true;
    }
    decoder.finish(strText);
    output.write(strText);
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

class CLogCommand : public CKestaCommand
{
public:
    explicit CLogCommand(CLI::App& root);

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
    const bool bConfigured = !has("FILE");
    if (m_bFollow)
    {
        if (m_strFile == "-")
            throw CKestaToolError("--follow: needs a file, not standard input");
        CKestaLogFollower(bConfigured ? CConfiguredLog().strCurrent : m_strFile, output).run();
        return iStatusYes;
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
