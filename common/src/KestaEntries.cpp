#include "KestaEntries.h"

#include "KestaDebug.h"
#include "KestaProcess.h"
#include "KestaTraceLog.h"

#include <ctime>

pthread_mutex_t ghMutex = PTHREAD_MUTEX_INITIALIZER;

namespace
{

pthread_mutex_t hLock = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t hEnded = PTHREAD_COND_INITIALIZER;   // an entry with tracing, that is

// The entries that this thread has begun and not ended. Its address tells threads apart.
thread_local int iOwnEntries = 0;

const int* pOwner = nullptr;   // the thread whose entry is in progress
bool bInherited = false;       // this process was forked amid it, and it is the parent's, too

pthread_key_t hThreadEnd;
bool bThreadEndKnown = false;   // hThreadEnd is a key

// Intended: ghMutex is released even if no entry took it. It is taken first where it is free,
// because releasing a mutex that nobody holds is undefined.
void release()
{
    pOwner = nullptr;
    bInherited = false;
    pthread_mutex_trylock(&ghMutex);
    pthread_mutex_unlock(&ghMutex);
    pthread_cond_signal(&hEnded);
}

void endInProgress()
{
    if (bInherited)
        CKestaTraceLog::instance().abandon();
    else
        CKestaTraceLog::instance().end();
    release();
}

void waitForEnd()
{
    if (pOwner != nullptr)
    {
        pthread_cond_wait(&hEnded, &hLock);
        return;
    }
    // The host itself holds ghMutex. Blocking on it would leave a moment in which it is taken and
    // nobody has noted for whom; so look again after a while.
    constexpr long lMillisecond = 1'000'000;
    struct timespec until;
    clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_nsec += lMillisecond;
    until.tv_sec += until.tv_nsec / (1000 * lMillisecond);
    until.tv_nsec %= 1000 * lMillisecond;
    pthread_cond_clockwait(&hEnded, &hLock, CLOCK_MONOTONIC, &until);
}

// A thread that ends amid its entry, cancelled for instance, must not leave the others waiting.
void endWithThread(void* pThread)
{
    const CKestaNoCancellation noCancellation;
    const CKestaLock lock(hLock);
    if (pOwner == pThread)
        endInProgress();
}

// A process may be forked at any moment. The child must find both locks free, and no entry of a
// thread that it does not have.
void beforeFork()
{
    pthread_mutex_lock(&hLock);
    pthread_mutex_lock(&hKestaSettingsMutex);
}

void afterForkInParent()
{
    pthread_mutex_unlock(&hKestaSettingsMutex);
    pthread_mutex_unlock(&hLock);
}

void afterForkInChild()
{
    pthread_mutex_unlock(&hKestaSettingsMutex);
    pthread_cond_init(&hEnded, nullptr);   // those who waited are not in this process
    if (pOwner == &iOwnEntries)
        bInherited = true;
    else if (pOwner != nullptr)
    {
        CKestaTraceLog::instance().abandon();
        pthread_mutex_init(&ghMutex, nullptr);
        pOwner = nullptr;
    }
    pthread_mutex_unlock(&hLock);
}

[[gnu::constructor]] void watchThreadsAndForks()
{
    pthread_atfork(&beforeFork, &afterForkInParent, &afterForkInChild);
    bThreadEndKnown = pthread_key_create(&hThreadEnd, &endWithThread) == 0;
}

[[gnu::destructor]] void forgetThreads()
{
    const CKestaLock lock(hLock);
    if (bThreadEndKnown)
        pthread_key_delete(hThreadEnd);
    bThreadEndKnown = false;
}

}   // namespace

pthread_mutex_t& CKestaEntries::mutex()
{
    return hLock;
}

void CKestaEntries::beginIdle()
{
    ++iOwnEntries;
}

void CKestaEntries::begin()
{
    if (bInherited && pOwner == &iOwnEntries)
        endInProgress();   // a forked child begins an entry of its own
    while (pthread_mutex_trylock(&ghMutex) != 0)
        waitForEnd();
    pOwner = &iOwnEntries;
    ++iOwnEntries;
    if (bThreadEndKnown)
        pthread_setspecific(hThreadEnd, &iOwnEntries);
}

void CKestaEntries::end()
{
    const bool bOthers = isLogOfOthers();
    if (iOwnEntries > 0)
        --iOwnEntries;
    if (!bOthers)
        endInProgress();
}

bool CKestaEntries::isLogOfOthers()
{
    return iOwnEntries > 0 && pOwner != nullptr && pOwner != &iOwnEntries;
}
