#ifndef KESTA_FILTER_SCANNER_H
#define KESTA_FILTER_SCANNER_H

#include "KestaAddressText.h"
#include "KestaIPRangeSet.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Selects lines by the address that each begins with. Bytes go in as pieces of any size; selected
/// lines come out in the same order, as pieces that span as many lines as possible.
///
/// The address ends at the first white space or comma, or with the line, and may have any form that
/// the library's address classes read; it must end within the first 4096 bytes of its line. Lines
/// may be of any length: memory stays the same.
///
/// A line whose address can't be read is reported, and never selected. A byte-order mark at the
/// start of a file is skipped.
class CKestaFilterScanner
{
public:
    /// Receives what the scanner finds.
    class CSink
    {
    public:
        virtual ~CSink() = default;

        /// Bytes of selected lines, newlines included, and the number of the first of these lines,
        /// counted from 1. A long line may come in several pieces. The bytes are the scanner's, or
        /// the caller's of `feed`: valid during the call only.
        virtual void selected(std::uint64_t ullLine, std::string_view bytes) = 0;

        /// A line that does not begin with an address: its number, counted from 1, and the text at
        /// its start.
        virtual void unreadable(std::uint64_t ullLine, std::string_view text) = 0;
    };

    /// Selects the lines whose address is in the set, or, inverted, those whose address is not. An
    /// IPv4-mapped address is an IPv6 address, or, mapped, the IPv4 address that it stands for.
    /// REQUIRES: the set is built; set and sink outlive the scanner.
    CKestaFilterScanner(const KestaIPRangeSet& set, bool bInvert, bool bMapped, CSink& sink);

    /// Looks at the next bytes of the file.
    void feed(std::string_view bytes);

    /// The end of the file: a last line without a newline is judged, and given one. The scanner can
    /// then start with another file, whose lines are counted from 1 again.
    void finish();

    /// The number of lines that were selected, in all files.
    std::uint64_t selectedLines() const { return m_ullSelected; }

private:
    std::string_view skipMark(std::string_view bytes);
    const char* finishLine(const char* pByte, const char* pEnd);
    void scanLines(const char* pLine, const char* pEnd);
    void beginLine(std::string_view bytes);
    bool judgeLine(const char* pLine, const char* pLimit, const char** ppStop);
    bool judgeSlowly(std::string_view line);
    bool isSelected(const CKestaAddress& address);

    const KestaIPRangeSet& m_set;
    const bool m_bInvert;
    const bool m_bMapped;
    CSink& m_sink;

    std::size_t m_ulMark = 0;      // how many bytes of a byte-order mark the file began with
    std::uint64_t m_ullLine = 0;   // the number of the current line
    std::uint64_t m_ullSelected = 0;
    std::string m_strBegun;    // the start of a line that continues in the next piece
    bool m_bDecided = false;   // the current line is already judged; its remaining bytes follow
    bool m_bDecidedSelected = false;   // and is selected
};

#endif
