#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaFilterScanner.h"
#include "KestaInput.h"
#include "KestaOutput.h"
#include "KestaProgress.h"
#include "KestaRangeList.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

namespace
{

/// What is written of the selected lines.
struct CFilterStyle
{
    bool bCount = false;     // only their number
    bool bQuiet = false;     // nothing at all
    bool bNames = false;     // the file's name in front
    bool bNumbers = false;   // the line's number in front
};

/// Writes what was found, and reports the lines that can't be read.
class CFilterSink : public CKestaFilterScanner::CSink
{
public:
    CFilterSink(const CFilterStyle& style, CKestaOutput& output) : m_style(style), m_output(output)
    {
    }

    void beginFile(const std::string& strName) { m_strFile = strName; }

    void endFile(std::uint64_t ullSelected)
    {
        if (m_style.bCount && !m_style.bQuiet)
            m_output.write(namePrefix() + std::to_string(ullSelected) + "\n");
    }

    void selected(std::uint64_t ullLine, std::string_view bytes) override
    {
        if (m_style.bCount || m_style.bQuiet)
            return;
        if (m_style.bNames || m_style.bNumbers)
            writeLines(ullLine, bytes);
        else
            m_output.write(bytes);
    }

    void unreadable(std::uint64_t ullLine, std::string_view text) override
    {
        constexpr std::size_t ulShown = 64;
        const std::string strShown(text.substr(0, ulShown));
        report(m_strFile + ":" + std::to_string(ullLine) +
               ": not an IP address: " + inQuotes(strShown + (text.size() > ulShown ? "..." : "")));
    }

private:
    std::string namePrefix() const { return m_style.bNames ? m_strFile + ":" : ""; }

    // The bytes start a line, or continue one that an earlier call has started.
    void writeLines(std::uint64_t ullLine, std::string_view bytes)
    {
        while (!bytes.empty())
        {
            if (m_bLineStart)
            {
                m_output.write(namePrefix());
                if (m_style.bNumbers)
                    m_output.write(std::to_string(ullLine) + ":");
            }
            const std::size_t ulNewline = bytes.find('\n');
            m_bLineStart = ulNewline != std::string_view::npos;
            const std::size_t ulLength = m_bLineStart ? ulNewline + 1 : bytes.size();
            m_output.write(bytes.substr(0, ulLength));
            bytes.remove_prefix(ulLength);
            ++ullLine;
        }
    }

    const CFilterStyle m_style;
    CKestaOutput& m_output;
    std::string m_strFile;
    bool m_bLineStart = true;
};

class CFilterCommand : public CKestaCommand
{
public:
    explicit CFilterCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    void sortArguments();
    void scan(const std::string& strPath, CKestaFilterScanner& scanner, CFilterSink& sink,
              CKestaOutput& output) const;
    bool isAnswered(const CKestaFilterScanner& scanner) const;

    std::string m_strRange;
    std::vector<std::string> m_ranges;
    std::vector<std::string> m_rangeFiles;
    std::vector<std::string> m_files;
    CFilterStyle m_style;
    bool m_bNoNames = false;
    bool m_bInvert = false;
    bool m_bMapped = false;
};

CFilterCommand::CFilterCommand(CLI::App& root)
    : CKestaCommand(
          root, "filter", "Write the lines whose address lies in any of the ranges",
          "Each line begins with an address, which ends at the first white space or comma.\n"
          "Lines whose address can't be read are reported, and never written. With -e or\n"
          "-f, all arguments are files.\n\n"
          "Exit status: 0 if a line was selected, 1 if none was, 2 after an error")
{
    m_app.add_option("RANGE", m_strRange, "The range; see \"kesta range --help\"")->type_name("");
    m_app
        .add_option("FILE", m_files, "The files to read; by default, or for \"-\", standard input")
        ->type_name("");
    m_app.add_option("-e,--range", m_ranges, "A range; may be given several times")
        ->type_name("RANGE")
        ->allow_extra_args(false);
    m_app
        .add_option("-f,--file", m_rangeFiles,
                    "Read ranges from a file, one per line; \"#\" begins a comment")
        ->type_name("FILE")
        ->allow_extra_args(false);
    m_app.add_flag("-v,--invert-match", m_bInvert,
                   "Select the lines whose address lies in no range");
    m_app.add_flag("-c,--count", m_style.bCount,
                   "Write only the number of selected lines per file");
    m_app.add_flag("-n,--line-number", m_style.bNumbers, "Prefix each line with its line number");
    m_app.add_flag("-q,--quiet,--silent", m_style.bQuiet,
                   "Write nothing; stop at the first selected line");
    m_app.add_flag("-H,--with-filename", m_style.bNames, "Prefix each line with its file name");
    m_app.add_flag("--no-filename", m_bNoNames, "Never prefix lines with file names");
    m_app.add_flag("--mapped", m_bMapped, "Treat IPv4-mapped addresses as IPv4 addresses");
}

int CFilterCommand::run(CKestaOutput& output)
{
    sortArguments();
    CKestaRangeList ranges;
    for (const std::string& strRange : m_ranges)
        ranges.add(strRange);
    for (const std::string& strPath : m_rangeFiles)
        ranges.addFile(strPath);
    if (!ranges.isComplete())
        return iStatusError;

    CFilterSink sink(m_style, output);
    CKestaFilterScanner scanner(ranges.build(), m_bInvert, m_bMapped, sink);
    bool bFailed = false;
    for (const std::string& strPath : m_files)
    {
        try
        {
            scan(strPath, scanner, sink, output);
        }
        catch (const CKestaInputError& error)
        {
            // The other files are still worth reading.
            report(error.what());
            scanner.finish();
            bFailed = true;
        }
        if (isAnswered(scanner))
            return iStatusYes;
    }
    if (bFailed)
        return iStatusError;
    return scanner.selectedLines() > 0 ? iStatusYes : iStatusNo;
}

// Whether the first argument is a range or a file depends on the options.
void CFilterCommand::sortArguments()
{
    if (!has("--range") && !has("--file"))
    {
        if (!has("RANGE"))
            throw CKestaToolError("no range given; see 'kesta filter --help'");
        m_ranges.push_back(m_strRange);
    }
    else if (has("RANGE"))
        m_files.insert(m_files.begin(), m_strRange);
    if (m_files.empty())
        m_files.emplace_back("-");
    const auto isStandardInput = [](const std::string& strPath)
    {
        return strPath == "-";
    };
    if (std::any_of(m_files.begin(), m_files.end(), isStandardInput) &&
        std::any_of(m_rangeFiles.begin(), m_rangeFiles.end(), isStandardInput))
        throw CKestaToolError("standard input can't provide both ranges and lines; name a FILE");
    m_style.bNames = (m_style.bNames || m_files.size() > 1) && !m_bNoNames;
}

void CFilterCommand::scan(const std::string& strPath, CKestaFilterScanner& scanner,
                          CFilterSink& sink, CKestaOutput& output) const
{
    CKestaInput input(strPath);
    CKestaProgress progress(input);
    const std::uint64_t ullBefore = scanner.selectedLines();
    sink.beginFile(input.name());
    for (std::string_view bytes = input.read(); !bytes.empty(); bytes = input.read())
    {
        scanner.feed(bytes);
        if (isAnswered(scanner))
            return;
        output.flush();   // lines from a slow writer do not wait until a block is full
        progress.advance(bytes.size());
    }
    scanner.finish();
    sink.endFile(scanner.selectedLines() - ullBefore);
}

// With -q the first selected line is the answer, whatever comes after it.
bool CFilterCommand::isAnswered(const CKestaFilterScanner& scanner) const
{
    return m_style.bQuiet && scanner.selectedLines() > 0;
}

}   // namespace

std::unique_ptr<CKestaCommand> makeFilterCommand(CLI::App& root)
{
    return std::make_unique<CFilterCommand>(root);
}
