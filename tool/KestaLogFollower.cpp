#include "KestaLogFollower.h"

#include "KestaOutput.h"

#include <csignal>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace
{

volatile std::sig_atomic_t iEndSignal = 0;

void noteEndSignal(int iSignal)
{
    iEndSignal = iSignal;
}

void catchEndSignals()
{
    struct sigaction action = {};
    action.sa_handler = &noteEndSignal;   // without SA_RESTART: waiting ends at once
    for (const int iSignal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(iSignal, &action, nullptr);
}

// Wakes up at a change in the directory: two roll-overs in a row would lose what lies between.
int watchDirectory(const std::string& strPath)
{
    const std::size_t ulSlash = strPath.rfind('/');
    const std::string strDirectory =
        ulSlash == std::string::npos ? "." : strPath.substr(0, ulSlash + 1);
    const int iWatch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (iWatch >= 0)
        inotify_add_watch(iWatch, strDirectory.c_str(), IN_CREATE | IN_MODIFY | IN_MOVE);
    return iWatch;
}

}   // namespace

CKestaLogFollower::CKestaLogFollower(const std::string& strPath, CKestaOutput& output)
    : m_strPath(strPath), m_output(output), m_watch(watchDirectory(strPath))
{
}

void CKestaLogFollower::run()
{
    catchEndSignals();
    while (iEndSignal == 0)
    {
        catchUp();
        wait();
    }
    catchUp();
    endLog();
}

void CKestaLogFollower::catchUp()
{
    if (m_pInput != nullptr && !m_pInput->isAt(m_strPath))
    {
        copyRest();
        endLog();
    }
    if (m_pInput == nullptr)
        m_pInput = CKestaInput::openIfThere(m_strPath);
    if (m_pInput != nullptr)
        copyRest();
}

void CKestaLogFollower::copyRest()
{
    std::string strText;
    if (m_pInput->rewindIfShortened())
        m_decoder.finish(strText);
    for (std::string_view bytes = m_pInput->read(); !bytes.empty(); bytes = m_pInput->read())
    {
        m_decoder.feed(bytes, strText);
        m_output.write(strText);
        strText.clear();
    }
    m_output.write(strText);
    m_output.flush();
}

void CKestaLogFollower::endLog()
{
    std::string strText;
    m_decoder.finish(strText);
    m_output.write(strText);
    m_output.flush();
    m_pInput.reset();
}

// Waits for a change; for a moment only, as not every file system tells of changes.
void CKestaLogFollower::wait() const
{
    constexpr int iMilliseconds = 250;
    pollfd files[] = {{STDOUT_FILENO, 0, 0}, {m_watch.get(), POLLIN, 0}};
    if (poll(files, 2, iMilliseconds) <= 0)
        return;
    if (files[0].revents != 0)
        throw CKestaReaderGone();
    char events[4096];
    while (read(m_watch.get(), events, sizeof events) > 0)
    {
    }
}
