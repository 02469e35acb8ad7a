#ifndef KESTA_FILTER_SCANNER_H
#define KESTA_FILTER_SCANNER_H

#include "KestaAddresses.h"
#include "KestaFilterLine.h"
#include "KestaIPRangeSet.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Which lines a filter selects.
struct CKestaFilterRules
{
    CKestaFilterField field;   ///< has the address of a line
    bool bAnywhere = false;    ///< All addresses of a line count; selected if any is inside.
    bool bInvert = false;      ///< Selected if none is inside.
    bool bMapped = false;      ///< IPv4-mapped addresses are IPv4 addresses.

    /// Addresses must end within so many bytes of a line, so that memory stays the same.
    std::size_t ulJudged = 65536;
};

/// Selects lines by their addresses. Bytes go in as pieces of any size; selected lines come out in
/// the same order.
///
/// A line whose field is no address is reported, and never selected; so is, without a report, a
/// line that contains no address anywhere.
class CKestaFilterScanner
{
public:
    /// Receives what the scanner finds. Lines are numbered from 1. Texts and bytes are valid during
    /// the call only.
    class CSink
    {
    public:
        virtual ~CSink() = default;

        /// A selected line with its newline, or a piece of a long one. `lRange` is the first range
        /// that contains the first address that is inside; -1 if none is.
        virtual void selected(std::uint64_t ullLine, long lRange, std::string_view bytes) = 0;

        /// A line whose field, with this text, is no address.
        virtual void unreadable(std::uint64_t ullLine, std::string_view text) = 0;
    };

    /// REQUIRES: the set is built; set and sink outlive the scanner.
    CKestaFilterScanner(const KestaIPRangeSet& set, const CKestaFilterRules& rules, CSink& sink);

    /// Scans the next bytes of the file.
    void feed(std::string_view bytes);

    /// The end of the file: a last line without a newline is judged, and given one. The scanner can
    /// then start with another file, whose lines are counted from 1 again.
    void finish();

    /// The number of lines that were selected, in all files.
    std::uint64_t selectedLines() const { return m_ullSelected; }

    /// The number of lines in all files that are finished.
    std::uint64_t lines() const { return m_ullLines; }

private:
    const char* continueLine(const char* pByte, const char* pEnd);
    void scanLines(const char* pLine, const char* pEnd);
    void decideLongLine();
    bool judgeLine(const char* pLine, const char* pLimit, const char** ppStop);
    bool judgeSlowly(std::string_view line);
    bool judgeField(std::string_view line);
    bool judgeAnywhere(const char* pLine);
    bool isSelected(const CKestaAddress& address);
    long rangeOf(const CKestaAddress& address) const;

    const KestaIPRangeSet& m_set;
    const CKestaFilterRules m_rules;
    const bool m_bFirstField;
    CSink& m_sink;

    std::uint64_t m_ullLine = 0;    // the number of the current line
    std::uint64_t m_ullLines = 0;   // of the files before
    std::uint64_t m_ullSelected = 0;
    long m_lRange = -1;        // that the current line's address is in
    std::string m_strBegun;    // the start of a line that continues in the next piece
    bool m_bDecided = false;   // the current line is already judged; its remaining bytes follow
    bool m_bDecidedSelected = false;   // and is selected
};

#endif
