#ifndef KESTA_LOG_FOLLOWER_H
#define KESTA_LOG_FOLLOWER_H

#include "KestaInput.h"
#include "KestaLogPrinter.h"
#include "KestaLogWatch.h"

#include <list>
#include <memory>
#include <optional>
#include <string>

class CKestaOutput;

/// The paths of a trace log, before and after it is rolled over.
struct CKestaFollowedLog
{
    std::string strLog;
    std::string strOldLog;            ///< Empty when it is not known.
    std::optional<long> lSizeLimit;   ///< A log that is rolled over has more bytes than this.
};

/// Writes a trace log, and what is added to it, until the process is interrupted.
///
/// A roll-over renames the log to the old log, so files are known by their ids, not by their names.
/// The log and the old log are held open: lines that come late to the old log are still shown. If
/// the old log is a file not seen before, the log was rolled over more than once, and this file
/// comes before the new log. A file that was replaced even as the old log before it was seen is
/// reported as missed; the events of the directory say how many there were. If the log does not
/// exist yet, the follower waits for it.
class CKestaLogFollower
{
public:
    CKestaLogFollower(const CKestaFollowedLog& followed, CKestaOutput& output);
    ~CKestaLogFollower();

    CKestaLogFollower(const CKestaLogFollower&) = delete;
    CKestaLogFollower& operator=(const CKestaLogFollower&) = delete;

    /// Never returns: SIGINT and SIGTERM end the process at once, whatever it waits for. Throws:
    /// `CKestaToolError` when the log can't be read, or the output can't be written.
    [[noreturn]] void run();

private:
    struct CLog;

    void begin();
    void update();
    void look();
    void rollOver();
    void add(std::unique_ptr<CKestaInput> pInput);
    void copyAll();
    void copy(CLog& log);
    bool isReplaced(const CLog& log) const;
    void settle();
    void reportMissed() const;
    CKestaFileId logId() const;

    CKestaFollowedLog m_followed;
    CKestaOutput& m_output;
    CKestaLogWatch m_watch;
    std::list<CLog> m_logs;   // held open, the oldest first
    bool m_bBegun = false;
    CLog* m_pLog = nullptr;   // the file last seen at the log's path
    CKestaFileId m_oldId;     // the file last seen at the old log's path
    long m_lUnseen = 0;       // the roll-overs that were reported, minus those that were seen
};

#endif
