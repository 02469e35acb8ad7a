#ifndef KESTA_LOG_WATCH_H
#define KESTA_LOG_WATCH_H

#include "KestaDescriptor.h"

#include <string>

/// Hears of what happens in the directory of a trace log and in that of its old log, where the
/// system reports it.
class CKestaLogWatch
{
public:
    CKestaLogWatch(const std::string& strLog, const std::string& strOldLog);

    /// Waits for a change; for a moment only, as not every file system reports changes. Returns
    /// false when none was reported.
    ///
    /// Throws: `CKestaReaderGone` when nobody reads standard output any more.
    bool wait();

    /// How often a file was renamed to the old log since the last call, as far as it was reported.
    long takeRollOvers();

    /// False when more happened than the system could report.
    bool isComplete() const { return m_bComplete; }

private:
    void watch();

    CKestaDescriptor m_events;
    std::string m_strDirectory;
    std::string m_strOldDirectory;
    std::string m_strOldName;
    int m_iOldDirectory = -1;   // its number among the watched ones
    bool m_bComplete;
};

#endif
