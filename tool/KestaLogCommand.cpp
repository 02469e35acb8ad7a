#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaConfiguration.h"
#include "KestaDebug.h"
#include "KestaFileFacts.h"
#include "KestaInput.h"
#include "KestaLogFacts.h"
#include "KestaLogFollower.h"
#include "KestaLogPrinter.h"
#include "KestaLogReport.h"
#include "KestaLogVerdict.h"
#include "KestaOutput.h"
#include "KestaProgress.h"
#include "KestaString.h"
#include "KestaToolError.h"
#include "KestaTraceSettings.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <stdexcept>

namespace
{

/// Writes a log to its end; returns false when it was empty.
bool copyLog(CKestaInput& input, CKestaOutput& output)
{
    CKestaLogPrinter printer(output);
    CKestaProgress progress(input);
    bool bSome = false;
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
    {
        printer.print(bytes);
        output.flush();
        progress.advance(bytes.size());
        bSome = true;
    }
    printer.finish();
    return bSome;
}

/// Why the lines that the user expects are not in the log.
std::string advice()
{
    const CKestaLogFacts facts;
    const CKestaLogVerdict verdict(facts);
    std::string strAdvice;
    if (!verdict.bTraced)
        strAdvice += "; " + verdict.finding.strWhat;
    if (facts.oldLog.isThere())
        strAdvice += "; older lines were rolled over to " + facts.oldLog.strPath;
    return strAdvice + "; see 'kesta log --check'";
}

void showConfigured(CKestaOutput& output)
{
    const std::string strLog = CKestaDebug::getLogFile();
    const std::unique_ptr<CKestaInput> pInput = CKestaInput::openIfThere(strLog);
    if (pInput == nullptr)
        throw CKestaToolError(strLog + ": the log does not exist" + advice());
    if (!copyLog(*pInput, output))
        report(strLog + ": the log is empty" + advice());
}

int check(bool bJson, CKestaOutput& output)
{
    const CKestaLogFacts facts;
    const CKestaLogVerdict verdict(facts);
    if (bJson)
        printReportAsJson(facts, verdict, output);
    else
        printReport(facts, verdict, output);
    return verdict.bTraced ? iStatusYes : iStatusNo;
}

CKestaFollowedLog configuredLog()
{
    return {CKestaDebug::getLogFile(), CKestaDebug::getOldLogFile(),
            sizeLimit(CKestaConfiguration::getDebugSize())};
}

/// For a log elsewhere only the paths are known.
CKestaFollowedLog logAt(const std::string& strPath)
{
    CKestaFollowedLog configured = configuredLog();
    if (strPath == configured.strLog)
        return configured;
    if (fileNameOf(strPath) != fileNameOf(configured.strLog))
        return {strPath, "", std::nullopt};
    return {strPath, directoryOf(strPath) + fileNameOf(configured.strOldLog), std::nullopt};
}

[[noreturn]] void followConfigured(CKestaOutput& output)
{
    const CKestaFollowedLog log = configuredLog();
    const CKestaLogVerdict verdict{CKestaLogFacts()};
    if (!verdict.bTraced)
        report(log.strLog + ": no lines will be added: " + verdict.finding.strWhat +
               "; see 'kesta log --check'");
    CKestaLogFollower(log, output).run();
}

class CLogCommand : public CKestaCommand
{
public:
    explicit CLogCommand(CLI::App& root);

    /// Showing a log must not change it.
    bool mayTrace() const override { return false; }

    int run(CKestaOutput& output) override;

private:
    std::string m_strFile;
    bool m_bFollow = false;
    bool m_bCheck = false;
    bool m_bJson = false;
};

CLogCommand::CLogCommand(CLI::App& root)
    : CKestaCommand(root, "log", "Show a trace log as plain text",
                    "Shows a log in either form, without the framing. Lines that a host's own "
                    "cipher wrote stay enciphered.")
{
    m_app
        .add_option("FILE", m_strFile,
                    "The log, \"-\" for standard input; by default, the configured log")
        ->type_name("");
    CLI::Option* const pFollow =
        m_app.add_flag("-f,--follow", m_bFollow,
                       "Keep showing new lines, also after a roll-over, until interrupted");
    CLI::Option* const pCheck =
        m_app.add_flag("--check", m_bCheck, "Say whether lines are traced, and if not, why")
            ->excludes("FILE")
            ->excludes(pFollow);
    m_app.add_flag("--json", m_bJson, "Write the result of --check as JSON")->needs(pCheck);
}

int CLogCommand::run(CKestaOutput& output)
{
    if (m_bCheck)
        return check(m_bJson, output);
    CKestaConfiguration::setDebugInfo(CKestaConfiguration::getConfigurationFile());
    if (m_bFollow && m_strFile == "-")
        throw CKestaToolError("--follow: needs a file, not standard input");
    if (m_bFollow && has("FILE"))
        CKestaLogFollower(logAt(m_strFile), output).run();
    if (m_bFollow)
        followConfigured(output);
    if (has("FILE"))
    {
        CKestaInput input(m_strFile);
        copyLog(input, output);
    }
    else
        showConfigured(output);
    return iStatusYes;
}

}   // namespace

std::unique_ptr<CKestaCommand> makeLogCommand(CLI::App& root)
{
    return std::make_unique<CLogCommand>(root);
}
