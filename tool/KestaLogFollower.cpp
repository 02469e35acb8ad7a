#include "KestaLogFollower.h"

#include "KestaOutput.h"
#include "KestaToolError.h"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <iterator>
#include <utility>

namespace
{

// While output is slow, logs that were replaced meanwhile take disk space for as long as they are
// held.
constexpr std::size_t ulMostHeld = 64;

}   // namespace

/// A log that is held open.
struct CKestaLogFollower::CLog
{
    CLog(std::unique_ptr<CKestaInput> pLogInput, CKestaOutput& output)
        : pInput(std::move(pLogInput)), printer(output)
    {
    }

    std::unique_ptr<CKestaInput> pInput;
    CKestaLogPrinter printer;
};

CKestaLogFollower::CKestaLogFollower(const CKestaFollowedLog& followed, CKestaOutput& output)
    : m_followed(followed), m_output(output), m_watch(followed.strLog, followed.strOldLog)
{
}

CKestaLogFollower::~CKestaLogFollower() = default;

void CKestaLogFollower::run()
{
    // Started in the background by a script, the process would have inherited that they are
    // ignored.
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    begin();
    while (true)
    {
        copyAll();
        if (!m_watch.wait())
            settle();
        update();
    }
}

// What the old log holds at the start is not what is followed.
void CKestaLogFollower::begin()
{
    try
    {
        if (std::unique_ptr<CKestaInput> pOld = CKestaInput::openIfThere(m_followed.strOldLog))
        {
            pOld->skip();
            m_oldId = pOld->id();
            add(std::move(pOld));
        }
    }
    catch (const CKestaInputError&)
    {
        m_oldId = CKestaFileId::at(m_followed.strOldLog);
    }
    look();
    m_watch.takeRollOvers();
    m_lUnseen = 0;
    if (!m_watch.isComplete())
        report(m_followed.strLog + ": the system reports no changes; what is missed can't be said");
    if (m_pLog == nullptr)
        report(m_followed.strLog + ": there is no such log yet; waiting for it");
}

void CKestaLogFollower::update()
{
    if (m_logs.size() >= ulMostHeld)
        return;
    // A roll-over is reported after it was done: those that are reported by now can be seen, or
    // can never be seen any more.
    m_lUnseen += m_watch.takeRollOvers();
    look();
    if (m_lUnseen > 0)
        reportMissed();
    m_lUnseen = std::min(m_lUnseen, 0L);
}

void CKestaLogFollower::look()
{
    while (m_logs.size() < ulMostHeld)
    {
        if (CKestaFileId::at(m_followed.strOldLog) != m_oldId)
        {
            rollOver();
            continue;
        }
        if (CKestaFileId::at(m_followed.strLog) == logId())
            return;
        std::unique_ptr<CKestaInput> pNew = CKestaInput::openIfThere(m_followed.strLog);
        if (CKestaFileId::at(m_followed.strOldLog) != m_oldId)
            continue;   // rolled over meanwhile: another log may come before the new one
        if (pNew != nullptr)
        {
            add(std::move(pNew));
            m_pLog = &m_logs.back();
        }
        return;
    }
}

// The old log's path leads to another file than before.
void CKestaLogFollower::rollOver()
{
    const CKestaFileId oldId = CKestaFileId::at(m_followed.strOldLog);
    const bool bDeleted = oldId == CKestaFileId();
    const bool bFromElsewhere = m_pLog != nullptr && CKestaFileId::at(m_followed.strLog) == logId();
    if (!bDeleted && !bFromElsewhere)
    {
        if (oldId != logId())
        {
            std::unique_ptr<CKestaInput> pBetween = CKestaInput::openIfThere(m_followed.strOldLog);
            if (pBetween == nullptr || pBetween->id() != oldId)
                return;   // replaced again
            add(std::move(pBetween));
            m_lUnseen -= m_pLog != nullptr ? 1 : 0;   // the log that it replaced as the old log
        }
        m_pLog = nullptr;
    }
    m_lUnseen -= bDeleted ? 0 : 1;
    m_oldId = oldId;
}

void CKestaLogFollower::add(std::unique_ptr<CKestaInput> pInput)
{
    m_logs.emplace_back(std::move(pInput), m_output);
}

void CKestaLogFollower::copyAll()
{
    for (auto itLog = m_logs.begin(); itLog != m_logs.end();)
    {
        const bool bLast = isReplaced(*itLog);   // asked before, so that nothing comes after
        copy(*itLog);
        if (bLast)
            itLog->printer.finish();
        itLog = bLast ? m_logs.erase(itLog) : std::next(itLog);
    }
    m_output.flush();
}

void CKestaLogFollower::copy(CLog& log)
{
    if (log.pInput->rewindIfShortened())
    {
        log.printer.finish();
        report(m_followed.strLog + ": truncated; going on at its start");
    }
    for (std::string_view bytes = log.pInput->read(); !bytes.empty(); bytes = log.pInput->read())
    {
        log.printer.print(bytes);
        m_output.flush();
        update();   // what is rolled over while output is slow must be taken hold of
    }
}

// No path leads to it any more. The log and the old log may still grow.
bool CKestaLogFollower::isReplaced(const CLog& log) const
{
    return &log != m_pLog && log.pInput->id() != m_oldId;
}

// Nothing has happened for a while: a line that has no end by now was torn, and every roll-over
// that was seen has been reported, if ever it will be.
void CKestaLogFollower::settle()
{
    for (CLog& log : m_logs)
        log.printer.finish();
    m_output.flush();
    m_lUnseen = 0;
}

void CKestaLogFollower::reportMissed() const
{
    std::string strMissed = (m_watch.isComplete() ? "" : "at least ") + std::to_string(m_lUnseen) +
                            (m_lUnseen == 1 ? " log" : " logs");
    if (m_followed.lSizeLimit.has_value())
        strMissed += ", at least " +
                     std::to_string(m_lUnseen * std::max(*m_followed.lSizeLimit + 1, 0L)) +
                     " bytes";
    report(m_followed.strLog + ": missed " + strMissed +
           ", rolled over faster than they could be read");
}

CKestaFileId CKestaLogFollower::logId() const
{
    return m_pLog == nullptr ? CKestaFileId() : m_pLog->pInput->id();
}
