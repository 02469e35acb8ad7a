#include "KestaLogWatch.h"

#include "KestaFileFacts.h"
#include "KestaToolError.h"

#include <cstdint>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

CKestaLogWatch::CKestaLogWatch(const std::string& strLog, const std::string& strOldLog)
    : m_events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), m_strDirectory(directoryOf(strLog)),
      m_strOldDirectory(directoryOf(strOldLog)), m_strOldName(fileNameOf(strOldLog)),
      m_bComplete(m_events.get() >= 0)
{
    watch();
}

// Watching a directory twice does no harm, and one that did not exist before may exist now.
void CKestaLogWatch::watch()
{
    constexpr std::uint32_t uChanges = IN_CREATE | IN_MODIFY | IN_MOVE;
    inotify_add_watch(m_events.get(), m_strDirectory.c_str(), uChanges);
    m_iOldDirectory = inotify_add_watch(m_events.get(), m_strOldDirectory.c_str(), uChanges);
}

bool CKestaLogWatch::wait()
{
    constexpr int iMilliseconds = 250;
    pollfd files[] = {{STDOUT_FILENO, 0, 0}, {m_events.get(), POLLIN, 0}};
    const bool bReported = poll(files, 2, iMilliseconds) > 0;
    if (files[0].revents != 0)
        throw CKestaReaderGone();
    if (!bReported)
        watch();
    return bReported;
}

long CKestaLogWatch::takeRollOvers()
{
    long lResult = 0;
    alignas(inotify_event) char events[4096];
    for (ssize_t lRead; (lRead = read(m_events.get(), events, sizeof events)) > 0;)
    {
        for (const char* pNext = events; pNext < events + lRead;)
        {
            const auto* const pEvent = reinterpret_cast<const inotify_event*>(pNext);
            if ((pEvent->mask & IN_Q_OVERFLOW) != 0)
                m_bComplete = false;
            if (pEvent->wd == m_iOldDirectory && (pEvent->mask & IN_MOVED_TO) != 0 &&
                m_strOldName == pEvent->name)
                ++lResult;
            pNext += sizeof(inotify_event) + pEvent->len;
        }
    }
    return lResult;
}
