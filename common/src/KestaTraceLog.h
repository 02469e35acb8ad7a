#ifndef KESTA_TRACE_LOG_H
#define KESTA_TRACE_LOG_H

#include "KestaLineFile.h"
#include "KestaString.h"
#include "KestaTraceSettings.h"

#include <string>
#include <string_view>

/// The paths of an entry's log, before and after it is rolled over.
struct CKestaLogFiles
{
    CKestaString strLog;
    CKestaString strOldLog;
};

/// The files for the configured directories. If `strFilePath` is empty, both are in "log/" below
/// the data directory, whatever `strNewFile` is.
CKestaLogFiles logFiles(const CKestaString& strFilePath, const CKestaString& strNewFile);

/// The log of the entry in progress: its settings, and the open file.
///
/// It has two phases on either side, because opening, closing and renaming files may take long:
/// `open`, then `start`; `stop`, then `close` or `rollOver`.
///
/// Thread contract: the caller holds a lock for all functions but `tracedLevel`, and a second one,
/// that is never held for long, for `start`, `stop` and `enable`. So whoever holds the second one,
/// such as a fork, finds either a log that is set up, or none.
class CKestaTraceLog
{
public:
    /// The one log of the process.
    static CKestaTraceLog& instance();

    /// True from `start` to `stop`.
    bool isSetUp() const { return m_bInitialized; }

    /// Opens the log with the settings.
    ///
    /// Returns false when the log can't be opened. Throws: `std::bad_alloc`. In both cases there is
    /// nothing to close.
    bool open(const CKestaString& strFilePath, bool bEncrypted, int iLevel,
              const CKestaTraceSettings& settings);

    /// From now on the log is set up, and lines are written.
    void start();

    /// From now on the log is not set up, and the switch is off.
    void stop();

    /// Closes the file, and frees all memory.
    void close();

    /// Like `close`, but rolls the log over before, when it has grown too large.
    void rollOver();

    /// Turns the switch on or off.
    void enable(bool bEnable);

    /// The highest level that is traced; below every level while the switch is off.
    long tracedLevel() const;

    /// Writes a line, if lines of its level are traced.
    void writeLine(std::string_view itemType, std::string_view source, std::string_view message,
                   int iLevel);

    /// Writes a string as it is, if the switch is on.
    void writeText(std::string_view text);

    /// To be called in a forked child if another thread of the parent, which the child does not
    /// have, was using the log. What that thread may have been changing is made anew.
    void repairInChild();

private:
    CKestaLogFiles m_files;
    int m_iDebugSize = 0;
    int m_iConfiguredLevel = 0;
    bool m_bConfiguredSwitch = false;
    CKestaLineFile m_File;
    std::string m_strLine;   // keeps its memory from line to line

    bool m_bInitialized = false;
    bool m_bEnabled = false;   // may also be turned on without a log
    int m_iLevel = 0;
};

#endif
