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

// A log that is held open takes disk space even after it was replaced. While output is slow, there
// may be many of them.
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
    // In the background of a script these signals would otherwise be ignored.
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

// The lines that the old log holds at the start are not shown.
void CKestaLogFollower::begin()
{
    try
    {
        if (std::unique_ptr<CKestaInput> pOld = CKestaInput::openIfRegular(m_followed.strOldLog))
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
    m_bBegun = true;
    m_watch.takeRollOvers();
    m_lUnseen = 0;
    if (!m_watch.isComplete())
        report(m_followed.strLog +
               ": the system does not report changes; missed logs can't be counted");
    if (m_pLog == nullptr)
        report(m_followed.strLog + ": the log does not exist yet; waiting for it");
}

void CKestaLogFollower::update()
{
    if (m_logs.size() >= ulMostHeld)
        return;
    // A roll-over is reported after it is done. So those reported by now can be seen, or never
    // will be.
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
        // A pipe may be followed, but one that takes the log's place later would block.
        std::unique_ptr<CKestaInput> pNew = m_bBegun ? CKestaInput::openIfRegular(m_followed.strLog)
                                                     : CKestaInput::openIfThere(m_followed.strLog);
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

// There is another file at the old log's path than before.
void CKestaLogFollower::rollOver()
{
    const CKestaFileId oldId = CKestaFileId::at(m_followed.strOldLog);
    const bool bDeleted = oldId == CKestaFileId();
    const bool bFromElsewhere = m_pLog != nullptr && CKestaFileId::at(m_followed.strLog) == logId();
    if (!bDeleted && !bFromElsewhere)
    {
        if (oldId != logId())
        {
            std::unique_ptr<CKestaInput> pBetween =
                CKestaInput::openIfRegular(m_followed.strOldLog);
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
    if (log.pInput->rewindIfReplaced())
    {
        log.printer.finish();
        report(m_followed.strLog + ": truncated; continuing from its start");
    }
    for (std::string_view bytes = log.pInput->read(); !bytes.empty(); bytes = log.pInput->read())
    {
        log.printer.print(bytes);
        m_output.flush();
        update();   // a log that is rolled over while output is slow must be opened in time
    }
}

// True when it has neither of the two paths any more. The log and the old log may still grow.
bool CKestaLogFollower::isReplaced(const CLog& log) const
{
    return &log != m_pLog && log.pInput->id() != m_oldId;
}

// Nothing has happened for a while: a line that has not ended by now was torn, and no report of a
// roll-over is still to come.
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
