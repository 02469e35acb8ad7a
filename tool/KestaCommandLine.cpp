#include "KestaCommandLine.h"

#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaEntry.h"
#include "KestaException.h"
#include "KestaHostSetup.h"
#include "KestaOutput.h"
#include "KestaOutputToError.h"
#include "KestaString.h"
#include "KestaToolError.h"
#include "KestaToolText.h"
#include "KestaVersion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace
{

const std::string strVersion = "kesta " + std::to_string(KESTA_VERSION_MAJOR) + "." +
                               std::to_string(KESTA_VERSION_MINOR) + "." +
                               std::to_string(KESTA_VERSION_PATCH);

/// The options and arguments of the command, and their values.
class CKestaCommandLine
{
public:
    CKestaCommandLine()
        : m_root("kesta - IP ranges, dates, host facts and trace logs of the Kesta library",
                 "kesta")
    {
        m_root.require_subcommand(1);
        m_root.fallthrough();   // --data-dir may come after the subcommand, too
        m_root
            .add_option("--installed-dir", m_strInstalledDir,
                        "The installation directory, which contains conf/KestaDebug.ini")
            ->type_name("DIR");
        m_root.add_option("--data-dir", m_strDataDir, "The data directory, which contains log/")
            ->type_name("DIR");
        m_root.add_flag("--trace", m_bTrace, "Trace what the library does into the configured log");
        m_root.set_version_flag("--version", strVersion, "Show the version");
        m_root.footer("See 'kesta SUBCOMMAND --help'. Exit status: 0 for yes or success, 1 for "
                      "no, 2 for an error.");
        for (const auto make : {&makeRangeCommand, &makeHostCommand, &makeDateCommand,
                                &makeLogCommand, &makeFilterCommand})
            m_commands.push_back(make(m_root));
        m_pHelp = m_root.add_subcommand("help", "Show help for a subcommand");
        m_pHelp->add_option("SUBCOMMAND", m_strHelp, "The subcommand; by default, kesta itself")
            ->type_name("");
    }

    /// Returns the subcommand that the user named, or null if only help or the version was asked
    /// for, which is then in the output. Throws: `CKestaToolError`.
    CKestaCommand* parse(int argc, char** argv, CKestaOutput& output)
    {
        refuseBrackets(argc, argv);
        try
        {
            m_root.parse(argc, argv);
        }
        catch (const CLI::CallForHelp&)
        {
            output.write(m_root.help());
            return nullptr;
        }
        catch (const CLI::CallForVersion&)
        {
            output.write(strVersion + "\n");
            return nullptr;
        }
        catch (const CLI::ParseError& error)
        {
            throw CKestaToolError(whatIsWrong(error) + "; see '" + chosenName() + " --help'");
        }
        if (m_pHelp->parsed())
        {
            output.write(helpOf(m_strHelp));
            return nullptr;
        }
        setDirectory("--installed-dir", CKestaHostSetup::KESTA_INSTALLED_DIR, m_strInstalledDir);
        setDirectory("--data-dir", CKestaHostSetup::KESTA_DATA_DIR, m_strDataDir);
        return chosenCommand();
    }

    /// True if the user wants a trace. Without being told, the command leaves the host's log alone:
    /// it would create it with the wrong owner, or roll it over.
    bool isTraceWanted() const { return m_bTrace; }

private:
    // The parser would take a text in brackets for a list of texts.
    static void refuseBrackets(int argc, char** argv)
    {
        const std::vector<std::string_view> arguments(argv, argv + argc);
        const auto takesFiles = [](std::string_view text)
        {
            return text == "filter" || text == "log";
        };
        for (const std::string_view text : arguments)
        {
            if (text.empty() || text.front() != '[' || text.back() != ']')
                continue;
            const bool bFiles = std::any_of(arguments.begin(), arguments.end(), takesFiles);
            throw CKestaToolError("argument " + inQuotes(text) +
                                  ": write addresses without brackets" +
                                  (bFiles ? ", and ./ before the name of a file" : ""));
        }
    }

    std::string whatIsWrong(const CLI::ParseError& error) const
    {
        const std::vector<std::string> unknown = m_root.remaining();
        for (const std::string& strText : unknown)
        {
            if (strText.size() > 1 && strText.front() == '-')
                return "unknown option " + inQuotes(strText);
        }
        if (!unknown.empty() && m_root.get_subcommands().empty())
            return unknownSubcommand(unknown.front());
        if (!unknown.empty())
            return "unexpected argument " + inQuotes(unknown.front());
        return plainly(error);
    }

    // The parser's own text, except where it is hard to understand.
    std::string plainly(const CLI::ParseError& error) const
    {
        std::string strText = error.what();
        const std::size_t ulColon = strText.find(':');
        if (error.get_name() == "RequiredError" && m_root.get_subcommands().empty())
            return "no subcommand given";
        if (error.get_name() == "ConversionError")
            return "invalid value" + strText.substr(ulColon);
        if (error.get_name() != "ArgumentMismatch")
            return strText;
        const bool bMissing = strText.find("missing") != std::string::npos;
        return strText.substr(0, ulColon) +
               (bMissing ? ": value missing" : ": given more than once");
    }

    std::string helpOf(const std::string& strName)
    {
        const auto isMeant = [&](const CLI::App* pApp)
        {
            return pApp->get_name() == strName;
        };
        std::vector<CLI::App*> subcommands = m_root.get_subcommands(isMeant);
        if (strName.empty())
            subcommands = {&m_root};
        if (subcommands.empty())
            throw CKestaToolError(unknownSubcommand(strName) + "; see 'kesta --help'");
        // Not the application's help(), which shows the help of the subcommand that was parsed.
        return m_root.get_formatter()->make_help(subcommands.front(),
                                                 strName.empty() ? "kesta" : "kesta " + strName,
                                                 CLI::AppFormatMode::Normal);
    }

    std::string unknownSubcommand(const std::string& strName) const
    {
        return "unknown subcommand " + inQuotes(strName) + " (" + subcommandNames() + ")";
    }

    std::string subcommandNames() const
    {
        std::string strNames;
        for (const CLI::App* pSubcommand : m_root.get_subcommands({}))
            strNames += (strNames.empty() ? "" : ", ") + pSubcommand->get_name();
        return strNames;
    }

    std::string chosenName() const
    {
        const std::vector<CLI::App*> subcommands = m_root.get_subcommands();
        return subcommands.empty() ? "kesta" : "kesta " + subcommands.front()->get_name();
    }

    // The library appends file names directly to a directory, so a missing "/" is added here.
    void setDirectory(const char* pszOption, int iParameter, std::string strDirectory) const
    {
        if (m_root.count(pszOption) == 0)
            return;
        if (strDirectory.empty())
            throw CKestaToolError(std::string(pszOption) + ": directory is empty");
        if (strDirectory.back() != '/')
            strDirectory += '/';
        if (!CKestaHostSetup::setParameter(iParameter, strDirectory))
            throw CKestaToolError(std::string(pszOption) + ": directory is longer than " +
                                  std::to_string(CKestaHostSetup::KESTA_LONGEST_PARAMETER) +
                                  " bytes, its last \"/\" included");
    }

    // There is always one: without it, parsing fails.
    CKestaCommand* chosenCommand() const
    {
        return std::find_if(m_commands.begin(), m_commands.end(),
                            [](const auto& pCommand) { return pCommand->isChosen(); })
            ->get();
    }

    CLI::App m_root;
    std::string m_strInstalledDir;
    std::string m_strDataDir;
    bool m_bTrace = false;
    std::vector<std::unique_ptr<CKestaCommand>> m_commands;
    CLI::App* m_pHelp = nullptr;
    std::string m_strHelp;
};

int run(CKestaCommand& command, bool bTrace, CKestaOutput& output)
{
    std::optional<CKestaEntry> entry;
    if (bTrace && command.mayTrace())
    {
        const CKestaOutputToError redirection;
        entry.emplace();
    }
    try
    {
        const int iStatus = command.run(output);
        output.flush();
        return iStatus;
    }
    catch (const CKestaExc& exc)   // no subcommand lets one through today
    {
        CKestaDebug::logMessage(exc);
        throw CKestaToolError(exc.GetErrorMessage());
    }
}

}   // namespace

int runKesta(int argc, char** argv)
{
    try
    {
        CKestaOutput output;
        CKestaCommandLine commandLine;
        CKestaCommand* const pCommand = commandLine.parse(argc, argv, output);
        if (pCommand != nullptr)
            return run(*pCommand, commandLine.isTraceWanted(), output);
        output.flush();
        return iStatusYes;
    }
    catch (const CKestaReaderGone&)
    {
        return iStatusError;
    }
    catch (const std::bad_alloc&)
    {
        report("there is not enough memory");
        return iStatusError;
    }
    catch (const std::exception& error)
    {
        report(error.what());
        return iStatusError;
    }
}
