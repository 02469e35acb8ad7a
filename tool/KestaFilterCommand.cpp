#include "KestaArgument.h"
#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaFilterLine.h"
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
#include <optional>
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
    bool bRanges = false;    // the range that the address is in, in front of everything
};

/// Writes what was found, and reports the lines that can't be read.
class CFilterSink : public CKestaFilterScanner::CSink
{
public:
    CFilterSink(const CFilterStyle& style, const CKestaFilterRules& rules,
                const CKestaRangeList& ranges, CKestaOutput& output)
        : m_style(style), m_strField("field " + std::to_string(rules.field.ulNumber)),
          m_ranges(ranges), m_output(output)
    {
    }

    void beginFile(const std::string& strName) { m_strFile = strName; }

    void endFile(std::uint64_t ullSelected)
    {
        if (m_style.bCount && !m_style.bQuiet)
            m_output.write(namePrefix() + std::to_string(ullSelected) + "\n");
    }

    void selected(std::uint64_t ullLine, long lRange, std::string_view bytes) override
    {
        if (m_style.bCount || m_style.bQuiet)
            return;
        if (m_bLineStart && m_style.bRanges)
            m_output.write(m_ranges.textAt(lRange) + "\t");
        if (m_bLineStart && m_style.bNames)
            m_output.write(namePrefix());
        if (m_bLineStart && m_style.bNumbers)
            m_output.write(std::to_string(ullLine) + ":");
        m_bLineStart = bytes.back() == '\n';
        m_output.write(bytes);
    }

    void unreadable(std::uint64_t ullLine, std::string_view text) override
    {
        if (++m_ullUnreadable <= uReported)
            report(
                m_strFile + ":" + std::to_string(ullLine) + ": " +
                (text.empty() ? m_strField + " is empty" : "not an IP address: " + inQuotes(text)));
    }

    /// Tells how many lines could not be read, if not all were reported.
    void summarise(std::uint64_t ullLines) const
    {
        if (m_ullUnreadable <= uReported)
            return;
        report(std::to_string(m_ullUnreadable) + " of " + std::to_string(ullLines) +
               " lines have no IP address in " + m_strField);
        if (m_ullUnreadable * 10 >= ullLines * 9)
            report("lines begin with their address, unless --field N names another field; "
                   "--anywhere finds addresses in any text");
    }

private:
    static constexpr std::uint64_t uReported = 10;

    std::string namePrefix() const { return m_style.bNames ? m_strFile + ":" : ""; }

    const CFilterStyle m_style;
    const std::string m_strField;
    const CKestaRangeList& m_ranges;
    CKestaOutput& m_output;
    std::string m_strFile;
    bool m_bLineStart = true;
    std::uint64_t m_ullUnreadable = 0;
};

class CFilterCommand : public CKestaCommand
{
public:
    explicit CFilterCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    void sortArguments();
    void readField();
    void scan(const std::string& strPath, CKestaFilterScanner& scanner, CFilterSink& sink,
              CKestaOutput& output) const;
    bool isAnswered(const CKestaFilterScanner& scanner) const;

    std::string m_strRange;
    std::vector<std::string> m_ranges;
    std::vector<std::string> m_rangeFiles;
    std::vector<std::string> m_files;
    std::string m_strField;
    std::string m_strSeparator;
    CKestaFilterRules m_rules;
    CFilterStyle m_style;
    bool m_bNoNames = false;
};

CFilterCommand::CFilterCommand(CLI::App& root)
    : CKestaCommand(
          root, "filter", "Write the lines whose address lies in any of the ranges",
          "The address of a line is its first field, which ends at white space or a comma,\n"
          "unless --field or --anywhere is given. Lines whose address can't be read are\n"
          "reported, and never written. With -e or -f, all arguments are files.\n\n"
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
                    "Read ranges from a file, one per line; \"#\" and \";\" begin comments")
        ->type_name("FILE")
        ->allow_extra_args(false);
    CLI::Option* const pField =
        m_app.add_option("-k,--field", m_strField, "Read the address from field N of each line")
            ->type_name("N");
    CLI::Option* const pSeparator =
        m_app
            .add_option("-t,--field-separator", m_strSeparator,
                        "Fields end at the character C, except within quotes")
            ->type_name("C");
    m_app
        .add_flag("-a,--anywhere", m_rules.bAnywhere,
                  "Select the lines that contain an address in a range")
        ->excludes(pField)
        ->excludes(pSeparator);
    CLI::Option* const pInvert = m_app.add_flag("-v,--invert-match", m_rules.bInvert,
                                                "Select the lines whose address lies in no range");
    m_app
        .add_flag("-r,--show-range", m_style.bRanges,
                  "Prefix each line with the first range that contains its address, and a tab")
        ->excludes(pInvert);
    m_app.add_flag("-c,--count", m_style.bCount,
                   "Write only the number of selected lines per file");
    m_app.add_flag("-n,--line-number", m_style.bNumbers, "Prefix each line with its line number");
    m_app.add_flag("-q,--quiet,--silent", m_style.bQuiet,
                   "Write nothing; stop at the first selected line");
    m_app.add_flag("-H,--with-filename", m_style.bNames, "Prefix each line with its file name");
    m_app.add_flag("--no-filename", m_bNoNames, "Never prefix lines with file names");
    m_app.add_flag("--mapped", m_rules.bMapped, "Treat IPv4-mapped addresses as IPv4 addresses");
}

int CFilterCommand::run(CKestaOutput& output)
{
    sortArguments();
    readField();
    CKestaRangeList ranges(m_style.bRanges);
    for (const std::string& strRange : m_ranges)
        ranges.add(strRange);
    for (const std::string& strPath : m_rangeFiles)
        ranges.addFile(strPath);
    if (!ranges.allRead())
        return iStatusError;

    CFilterSink sink(m_style, m_rules, ranges, output);
    CKestaFilterScanner scanner(ranges.build(), m_rules, sink);
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
    sink.summarise(scanner.lines());
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

void CFilterCommand::readField()
{
    if (has("--field"))
        m_rules.field.ulNumber = static_cast<std::size_t>(
            readNumber("--field", m_strField, 1, static_cast<long>(m_rules.ulJudged)));
    if (!has("--field-separator"))
        return;
    if (m_strSeparator.size() != 1)
        throw CKestaToolError("--field-separator " + inQuotes(m_strSeparator) +
                              ": expected one character, such as , or $'\\t' for a tab");
    m_rules.field.separator = m_strSeparator.front();
}

void CFilterCommand::scan(const std::string& strPath, CKestaFilterScanner& scanner,
                          CFilterSink& sink, CKestaOutput& output) const
{
    CKestaInput input(strPath);
    CKestaProgress progress(input);
    const std::uint64_t ullBefore = scanner.selectedLines();
    sink.beginFile(input.name());
    for (std::string_view bytes = input.readFirst(); !bytes.empty(); bytes = input.read())
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
