#include "KestaDebug.h"

#include "KestaConfiguration.h"
#include "KestaEntries.h"
#include "KestaException.h"
#include "KestaProcess.h"
#include "KestaSettingsReader.h"
#include "KestaTextDetail.h"
#include "KestaTraceLog.h"
#include "KestaTraceSettings.h"

#include <cstdio>
#include <ctime>
#include <limits>
#include <memory>
#include <new>

pthread_mutex_t ghMutex = PTHREAD_MUTEX_INITIALIZER;

namespace
{

constexpr int iNoTrace = 0;
constexpr int iPlainText = 52813;   // the one level that leaves the log unenciphered
constexpr int iLowestLevel = std::numeric_limits<int>::min();   // traced whenever the switch is on

// Entries with tracing come one after the other, and ghMutex is locked from the start of each to
// its end. A host may also lock and unlock ghMutex by itself, so the mutex does not show whose
// entry it is locked for: CKestaEntries knows.
//
// Two locks guard the rest. hLog is held by whoever uses the log: while a line is enciphered and
// written, and while the log is opened, closed and rolled over. hState is held for moments only:
// entries without tracing and forks need no other lock, so they wait for no cipher and no disk. It
// guards CKestaEntries, and the moments in which the log becomes set up, or no longer is. A thread
// that needs both locks hLog first.
pthread_mutex_t hLog = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t hState = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t hReleased = PTHREAD_COND_INITIALIZER;   // the library has released ghMutex

pthread_key_t hThreadEnd;
bool bThreadEndKnown = false;   // hThreadEnd is a key

// A host's cipher may fork while its thread uses the log.
[[gnu::tls_model("initial-exec")]] thread_local bool bUsesLog = false;

/// While it lives, this thread uses the log.
class CLogUse
{
public:
    CLogUse() : m_lock(hLog) { bUsesLog = true; }
    ~CLogUse() { bUsesLog = false; }

    CLogUse(const CLogUse&) = delete;
    CLogUse& operator=(const CLogUse&) = delete;

    CKestaTraceLog* operator->() const { return &CKestaTraceLog::instance(); }

private:
    const CKestaLock m_lock;
};

// Shows all threads what is traced now. The caller holds both locks.
void publish()
{
    glKestaTracedLevel.store(CKestaTraceLog::instance().tracedLevel(), std::memory_order_relaxed);
}

// Intended: ghMutex is released even if no entry took it. If it is free, it is taken first, because
// releasing a mutex that nobody holds is undefined. The caller holds hState.
void release()
{
    CKestaEntries::end();
    static_cast<void>(pthread_mutex_trylock(&ghMutex));
    pthread_mutex_unlock(&ghMutex);
    pthread_cond_signal(&hReleased);
}

void stopLog()
{
    const CKestaLock lock(hState);
    CKestaTraceLog::instance().stop();
    publish();
}

void endInProgress(const CLogUse& log)
{
    if (log->isSetUp())   // otherwise a switch that was turned on without a log stays on
    {
        stopLog();
        if (CKestaEntries::isInherited())
            log->close();   // the parent still uses the log, and rolls it over
        else
            log->rollOver();
    }
    const CKestaLock lock(hState);
    release();
}

// Ends an entry that does not concern the log. Returns false if the entry in progress is to be
// ended.
bool endWithoutLog()
{
    const CKestaLock lock(hState);
    const bool bNone = CKestaEntries::inProgress() == 0;
    if (!bNone && !CKestaEntries::isOthers())
        return false;
    CKestaEntries::endIdle();
    if (bNone)
        release();
    return true;
}

// Ends the entry in progress if nobody else can be expected to.
void endAbandoned()
{
    const CKestaNoCancellation noCancellation;
    const CLogUse log;
    bool bAbandoned;
    {
        const CKestaLock lock(hState);
        bAbandoned = CKestaEntries::isAbandoned();
    }
    if (bAbandoned)
        endInProgress(log);
}

// Waits until ghMutex has been released, but looks every now and then, because a host may have
// released it by itself, and the thread in an entry may have ended. May be cancelled. The caller
// holds hState, which is not held during the wait.
void waitForRelease()
{
    struct timespec until;
    clock_gettime(CLOCK_MONOTONIC, &until);
    constexpr long lHundredth = 10'000'000;
    until.tv_nsec += lHundredth;
    until.tv_sec += until.tv_nsec / (100 * lHundredth);
    until.tv_nsec %= 100 * lHundredth;
    pthread_cond_clockwait(&hReleased, &hState, CLOCK_MONOTONIC, &until);
}

// Locks ghMutex for an entry of this thread, and notes it under the same lock, so that a fork never
// meets a mutex that nobody holds. Returns the entry's number.
unsigned long takeMutex()
{
    for (;;)
    {
        {
            const CKestaLock lock(hState);
            if (pthread_mutex_trylock(&ghMutex) == 0)
                return CKestaEntries::begin();
            if (!CKestaEntries::isAbandoned())
            {
                waitForRelease();
                continue;
            }
        }
        endAbandoned();
    }
}

// Sets the log up for the entry with this number. Returns false when the log can't be opened.
bool setUpLog(unsigned long ulEntry, const CKestaString& strFilePath, bool bEncrypted, int iLevel,
              const CKestaTraceSettings& settings)
{
    const CLogUse log;
    if (log->isSetUp())
        return true;
    const bool bOpen = log->open(strFilePath, bEncrypted, iLevel, settings);
    bool bStarted = false;
    {
        const CKestaLock lock(hState);
        if (CKestaEntries::inProgress() == ulEntry)   // no other thread has ended it meanwhile
        {
            bStarted = bOpen;
            bOpen ? log->start() : log->stop();
            publish();
        }
    }
    if (bOpen && !bStarted)
        log->close();
    return bOpen;
}

// Lets the end of this thread be noticed.
void watchThread()
{
    if (bThreadEndKnown)
        pthread_setspecific(hThreadEnd, &hThreadEnd);   // any value
}

// Begins an entry with tracing.
void beginTraced(const CKestaString& strFilePath, bool bEncrypted, int iLevel,
                 const CKestaTraceSettings& settings)
{
    const unsigned long ulEntry = takeMutex();
    const CKestaNoCancellation noCancellation;
    watchThread();
    try
    {
        if (!setUpLog(ulEntry, strFilePath, bEncrypted, iLevel, settings) &&
            isOn(settings.strDebugEnabled))
            std::fputs("Warning: Fernhold may not be able to Debug!!!\n", stdout);
    }
    catch (...)
    {
        CKestaDebug::unInitialize();   // an entry that throws holds nothing
        throw;
    }
}

// Begins an entry without tracing.
void beginIdle()
{
    const CKestaLock lock(hState);
    CKestaEntries::beginIdle();
    watchThread();
}

void endThread(void* /*pValue*/)
{
    const CKestaLock lock(hState);
    CKestaEntries::endThread();
}

// True when this thread must leave the log to the entry of another one.
bool isLogOfOthers()
{
    if (!CKestaEntries::mayBeIdle())
        return false;
    const CKestaLock lock(hState);
    return CKestaEntries::isOthers();
}

// Calls `use` with the log, unless this thread must leave that alone. This is tested before waiting
// for the log, and once more: an entry of another thread may have begun meanwhile.
template <class TUse>
void useLog(TUse use)
{
    if (isLogOfOthers())
        return;
    const CLogUse log;
    if (!isLogOfOthers())
        use(log);
}

// A process may be forked at any moment. The child must find all locks free, and no entry of a
// thread that it does not have.
void beforeFork()
{
    pthread_mutex_lock(&hState);
    pthread_mutex_lock(&hKestaSettingsMutex);
}

void afterForkInParent()
{
    pthread_mutex_unlock(&hKestaSettingsMutex);
    pthread_mutex_unlock(&hState);
}

void afterForkInChild()
{
    ++uKestaForks;
    pthread_mutex_unlock(&hKestaSettingsMutex);
    CKestaTraceLog& log = CKestaTraceLog::instance();
    if (!bUsesLog && pthread_mutex_trylock(&hLog) != 0)
    {
        log.repairInChild();   // a thread that the child does not have was using it
        pthread_mutex_init(&hLog, nullptr);
    }
    else if (!bUsesLog)
        pthread_mutex_unlock(&hLog);
    pthread_cond_init(&hReleased, nullptr);
    if (!CKestaEntries::continueInChild())
    {
        if (log.isSetUp())
        {
            log.stop();
            log.close();
        }
        pthread_mutex_init(&ghMutex, nullptr);
    }
    publish();
    pthread_mutex_unlock(&hState);
}

[[gnu::constructor]] void watchThreadsAndForks()
{
    pthread_atfork(&beforeFork, &afterForkInParent, &afterForkInChild);
    bThreadEndKnown = pthread_key_create(&hThreadEnd, &endThread) == 0;
}

[[gnu::destructor]] void forgetThreads()
{
    const CKestaLock lock(hState);
    if (bThreadEndKnown)
        pthread_key_delete(hThreadEnd);
    bThreadEndKnown = false;
}

}   // namespace

std::atomic<long> glKestaTracedLevel{std::numeric_limits<long>::min()};

void CKestaDebug::beginEntry()
{
    pthread_testcancel();   // here, where nothing is held yet
    const CKestaErrno error;
    CKestaConfiguration::initialize(szKestaConfigurationFile);
    const CKestaSharedSettings pSettings = currentTraceSettings();
    const int iLevel = pSettings->iDebugLevel;
    if (iLevel == iNoTrace)
        beginIdle();
    else
        beginTraced(pSettings->strDebugFile, iLevel != iPlainText, iLevel, *pSettings);
}

void CKestaDebug::endEntry()
{
    const CKestaNoCancellation noCancellation;
    const CKestaErrno error;
    if (endWithoutLog())
        return;
    const CLogUse log;
    if (!endWithoutLog())   // another thread may have ended it meanwhile
        endInProgress(log);
}

void initialize()
{
    CKestaDebug::beginEntry();
}

void unInitialize()
{
    CKestaDebug::endEntry();
}

CKestaDebug::CKestaDebug() = default;

CKestaDebug::~CKestaDebug() = default;

int CKestaDebug::initialize(const CKestaString& strFilePath, bool bEncrypted, int iLevel)
{
    pthread_testcancel();
    const CKestaErrno error;
    beginTraced(strFilePath, bEncrypted, iLevel, *currentTraceSettings());
    return 0;
}

void CKestaDebug::unInitialize()
{
    endEntry();
}

void CKestaDebug::logMessage(const CKestaString& strMessage, const CKestaString& strSource,
                             const CKestaString& strItemType, int iLevel)
{
    if (isTraced(iLevel))
        logText(strItemType, strSource, strMessage, iLevel);
}

void CKestaDebug::logMessage(const CKestaExc& refException)
try
{
    constexpr int iExceptionLevel = 1;
    if (!isTraced(iExceptionLevel))
        return;
    const CKestaString strSource = refException.GetErrorSource();
    CKestaString strMessage(refException.GetErrorNumber());
    strMessage += ",";
    strMessage += refException.GetErrorMessage();
    logText("EXC", strSource, strMessage, iExceptionLevel);
}
catch (const std::bad_alloc&)
{
    // Lost, as below.
}

void CKestaDebug::enable(bool bEnable)
{
    useLog(
        [bEnable](const CLogUse& log)
        {
            const CKestaLock lock(hState);
            log->enable(bEnable);
            publish();
        });
}

void CKestaDebug::writeMessage(const CKestaString& strMessage)
try
{
    if (!isTraced(iLowestLevel))
        return;
    pthread_testcancel();
    const CKestaErrno error;
    useLog([&](const CLogUse& log) { log->writeText(KestaTextDetail::upToNul(strMessage)); });
}
catch (const std::bad_alloc&)
{
    // A line for which there is no memory is lost, like one for which there is no disk space.
}

void CKestaDebug::logText(std::string_view itemType, std::string_view source,
                          std::string_view message, int iLevel)
try
{
    using KestaTextDetail::upToNul;
    pthread_testcancel();   // a trace call is cancelled only here: lines stay whole
    const CKestaErrno error;
    useLog([&](const CLogUse& log)
           { log->writeLine(upToNul(itemType), upToNul(source), upToNul(message), iLevel); });
}
catch (const std::bad_alloc&)
{
    // Lost, as above.
}

CKestaString CKestaDebug::getLogFile()
{
    const CKestaSharedSettings pSettings = currentTraceSettings();
    return logFiles(pSettings->strDebugFile, pSettings->strNewFile).strLog;
}

CKestaString CKestaDebug::getOldLogFile()
{
    const CKestaSharedSettings pSettings = currentTraceSettings();
    return logFiles(pSettings->strDebugFile, pSettings->strNewFile).strOldLog;
}

void(KESTA_DEBUG1)(CKestaString strMessage, int iLevel)
{
    KESTA_DEBUG1(strMessage, iLevel);
}

void(KESTA_DEBUG2)(CKestaString strSource, CKestaString strMessage, int iLevel)
{
    KESTA_DEBUG2(strSource, strMessage, iLevel);
}
