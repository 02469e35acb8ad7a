#ifndef KESTA_RANGE_LIST_H
#define KESTA_RANGE_LIST_H

#include "KestaIPRangeSet.h"

#include <string>

/// The ranges of arguments and of files. A text that is not a range is reported on standard error,
/// and reading continues, so that the user sees all errors at once.
class CKestaRangeList
{
public:
    /// Adds a range. `strPlace` says where the text stands, such as "ranges.txt:3: ".
    void add(const std::string& strText, const std::string& strPlace = "");

    /// Adds the ranges of a file, one per line. "#" begins a comment, and blank lines are skipped.
    ///
    /// Throws: `CKestaInputError` when the file can't be read.
    void addFile(const std::string& strPath);

    /// False when a text was not a range.
    bool isComplete() const { return m_bComplete; }

    /// All ranges, ready to be asked.
    const KestaIPRangeSet& build();

private:
    KestaIPRangeSet m_ranges;
    bool m_bComplete = true;
};

#endif
