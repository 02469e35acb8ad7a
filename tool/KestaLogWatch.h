#ifndef KESTA_LOG_WATCH_H
#define KESTA_LOG_WATCH_H

#include "KestaDescriptor.h"

#include <string>

/// Notices changes in the directory of a trace log and in that of its old log, as far as the system
/// reports them.
class CKestaLogWatch
{
public:
    CKestaLogWatch(const std::string& strLog, const std::string& strOldLog);

    /// Waits for a change, but not for long, because not every file system reports changes. Returns
    /// false when none was reported.
    ///
    /// Throws: `CKestaReaderGone` when nobody reads standard output any more.
    bool wait();

    /// How many times a file was renamed to the old log since the last call, as far as the system
    /// has reported it.
    long takeRollOvers();

    /// False when the system could not report all changes.
    bool isComplete() const { return m_bComplete; }

private:
    void watch();

    CKestaDescriptor m_events;
    std::string m_strDirectory;
    std::string m_strOldDirectory;
    std::string m_strOldName;
    int m_iOldDirectory = -1;   // its watch descriptor
    bool m_bComplete;
};

#endif
