#ifndef KESTA_RANGE_LIST_H
#define KESTA_RANGE_LIST_H

#include "KestaIPRangeSet.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The ranges of arguments and of files. A text that is not a range is reported on standard error,
/// and reading continues, so that the user sees all errors at once.
class CKestaRangeList
{
public:
    /// `textAt` needs the texts.
    explicit CKestaRangeList(bool bKeepTexts) : m_bKeepTexts(bKeepTexts) {}

    /// Adds an entry: a range, a block or a span. Reports name the file and the line.
    void add(std::string_view text, const std::string& strFile = "", std::size_t ulLine = 0);

    /// Adds the entries of a file, one per line. "#" and ";" begin comments, and blank lines are
    /// skipped.
    ///
    /// Throws: `CKestaInputError` when the file can't be read.
    void addFile(const std::string& strPath);

    /// False when a text was not a range.
    bool allRead() const { return m_bAllRead; }

    /// A range as it was written, by its index in the set.
    const std::string& textAt(long lRange) const
    {
        return m_texts[static_cast<std::size_t>(lRange)];
    }

    /// All ranges, ready to be asked.
    const KestaIPRangeSet& build();

private:
    KestaIPRangeSet m_ranges;
    const bool m_bKeepTexts;
    std::vector<std::string> m_texts;
    bool m_bAllRead = true;
};

#endif
