#include "KestaCommands.h"
#include "KestaFilterScanner.h"
#include "KestaInput.h"
#include "KestaOutput.h"
#include "KestaProgress.h"
#include "KestaRangeArgument.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <CLI/CLI.hpp>

namespace
{

/// Hands on the selected lines, and reports the unreadable ones.
class CFilterSink : public CKestaFilterScanner::CSink
{
public:
    /// Without an output the lines are dropped.
    explicit CFilterSink(CKestaOutput* pOutput) : m_pOutput(pOutput) {}

    void setFile(const std::string& strName) { m_strFile = strName; }

    void flush()
    {
        if (m_pOutput != nullptr)
            m_pOutput->flush();
    }

    void selected(std::string_view bytes) override
    {
        if (m_pOutput != nullptr)
            m_pOutput->write(bytes);
    }

    void unreadable(std::uint64_t ullLine, std::string_view text) override
    {
        constexpr std::size_t ulShown = 64;
        const std::string strShown(text.substr(0, ulShown));
        report(m_strFile + ":" + std::to_string(ullLine) + ": " +
               "not an IP address: " + inQuotes(strShown + (text.size() > ulShown ? "..." : "")));
    }

private:
    CKestaOutput* m_pOutput;
    std::string m_strFile;
};

void scan(const std::string& strPath, CKestaFilterScanner& scanner, CFilterSink& sink)
{
    CKestaInput input(strPath);
    CKestaProgress progress(input);
    sink.setFile(input.name());
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
    {
        scanner.feed(bytes);
        progress.advance(bytes.size());
        sink.flush();   // what a slow writer sends is not kept waiting for a whole block
    }
    scanner.finish();
}

class CFilterCommand : public CKestaCommand
{
public:
    explicit CFilterCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    std::vector<std::string> m_ranges;
    std::vector<std::string> m_files;
    bool m_bInvert = false;
    bool m_bCount = false;
};

CFilterCommand::CFilterCommand(CLI::App& root)
    : CKestaCommand(
          root, "filter", "Write the lines whose address lies in any of the ranges",
          "Each line begins with an address, which ends at the first white space or comma."
          "\nLines whose address can't be read are reported, and never written.\n\nExit "
          "status: 0 when some line was selected, 1 when none was, 2 after an error")
{
    m_app.add_option("RANGE", m_ranges, "The ranges, as \"kesta range\" takes them")
        ->type_name("")
        ->required();
    m_app
        .add_option("-f,--file", m_files,
                    "Read this file instead of standard input; may be given several times")
        ->type_name("FILE")
        ->allow_extra_args(false);
    m_app.add_flag("-v,--invert", m_bInvert, "Select the lines whose address lies in no range");
    m_app.add_flag("-c,--count", m_bCount, "Write the number of selected lines only");
}

int CFilterCommand::run(CKestaOutput& output)
{
    CKestaAddressSet set;
    for (const std::string& strRange : m_ranges)
        set.add(*readRange(strRange));
    if (m_files.empty())
        m_files.emplace_back("-");

    CFilterSink sink(m_bCount ? nullptr : &output);
    CKestaFilterScanner scanner(set, m_bInvert, sink);
    bool bFailed = false;
    for (const std::string& strPath : m_files)
    {
        try
        {
            scan(strPath, scanner, sink);
        }
        catch (const CKestaInputError& error)
        {
            // The other files are still worth reading.
            report(error.what());
            scanner.finish();
            bFailed = true;
        }
    }
    if (m_bCount)
        output.write(std::to_string(scanner.selectedLines()) + "\n");
    if (bFailed)
        return iStatusError;
    return scanner.selectedLines() > 0 ? iStatusYes : iStatusNo;
}

}   // namespace

std::unique_ptr<CKestaCommand> makeFilterCommand(CLI::App& root)
{
    return std::make_unique<CFilterCommand>(root);
}
