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

/// Where a trace log is, and where it goes.
struct CKestaFollowedLog
{
    std::string strLog;
    std::string strOldLog;            ///< Empty when it is not known.
    std::optional<long> lSizeLimit;   ///< A log that is rolled over has more bytes.
};

/// Writes a trace log and what is added to it, for ever.
///
/// A roll-over renames the log to the old log, so a file is known by its id, not by its name. The
/// log and the old log are held open: lines that come late to the old log are still shown. When the
/// old log is a file that was not seen before, the log was rolled over more than once, and that
/// file comes before the new log. Whatever was replaced unseen even as the old log is missed, and
/// reported; the directory's events say how many logs that were. A log that does not exist yet is
/// waited for.
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
    CLog* m_pLog = nullptr;   // the one that the log's path led to last
    CKestaFileId m_oldId;     // the one that the old log's path led to last
    long m_lUnseen = 0;       // roll-overs that were reported, less those that were seen
};

#endif
