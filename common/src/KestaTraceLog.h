#ifndef KESTA_TRACE_LOG_H
#define KESTA_TRACE_LOG_H

#include "KestaLineFile.h"
#include "KestaString.h"
#include "KestaTraceSettings.h"

#include <string>

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
/// Thread contract: the caller holds the lock of `CKestaEntries`. The level that is traced is
/// published in `glKestaTracedLevel`, for every thread to read.
class CKestaTraceLog
{
public:
    /// The one log of the process.
    static CKestaTraceLog& instance();

    /// True from a successful `setUp` to `end` or `abandon`.
    bool isSetUp() const { return m_bInitialized; }

    /// Applies the settings, and opens the log.
    ///
    /// Returns false when the log can't be opened: nothing is traced then. Throws:
    /// `std::bad_alloc`; the log is then not set up, either.
    bool setUp(const CKestaString& strFilePath, bool bEncrypted, int iLevel,
               const CKestaTraceSettings& settings);

    /// Closes the log, rolls it over when it has grown too large, and resets the settings. Does
    /// nothing to a log that is not set up.
    void end();

    /// Like `end`, but without rolling over: another process still uses the log.
    void abandon();

    /// Turns the switch on or off.
    void enable(bool bEnable);

    /// Writes a line, if lines of its level are traced.
    void writeLine(std::string&& strLine, int iLevel);

    /// Writes a text as it stands, if the switch is on.
    void writeText(std::string&& strText);

private:
    bool isEnabled() const;
    void reset();
    void publish() const;

    bool m_bEncrypted = true;
    CKestaString m_strEnabled;
    int m_iLevel = 0;
    int m_iDebugSize = 0;
    bool m_bInitialized = false;
    CKestaString m_strFilePath;
    CKestaString m_strNewFile;
    CKestaLineFile m_File;
};

#endif
