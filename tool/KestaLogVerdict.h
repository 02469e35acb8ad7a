#ifndef KESTA_LOG_VERDICT_H
#define KESTA_LOG_VERDICT_H

#include <string>
#include <vector>

struct CKestaLogFacts;

/// A fact that the user should know, and what to do about it.
struct CKestaFinding
{
    std::string strWhat;
    std::string strNext;
};

/// Whether a traced line would be written.
struct CKestaLogVerdict
{
    /// Judges as the library does: the first obstacle to writing a line decides.
    explicit CKestaLogVerdict(const CKestaLogFacts& facts);

    bool bTraced = false;
    CKestaFinding finding;              ///< Where the line goes, or why it is not written.
    std::vector<CKestaFinding> notes;   ///< What else may surprise.
};

#endif
