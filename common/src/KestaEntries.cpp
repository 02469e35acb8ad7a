#include "KestaEntries.h"

#include "KestaDebug.h"
#include "KestaProcess.h"
#include "KestaTraceLog.h"

#include <ctime>

pthread_mutex_t ghMutex = PTHREAD_MUTEX_INITIALIZER;

namespace
{

pthread_mutex_t hEntriesLock = PTHREAD_MUTEX_INITIALIZER;

// The entries that this thread has begun and not ended. Its address identifies the thread. Other
// TLS models would allocate memory at the first use in a thread.
[[gnu::tls_model("initial-exec")]] thread_local int iOwnEntries = 0;

int* pOwner = nullptr;     // the thread whose entry is in progress
bool bInherited = false;   // it was begun before this process was forked: the log is the parent's
unsigned long ulReleases = 0;   // how often the library has released ghMutex

pthread_key_t hThreadEnd;
bool bThreadEndKnown = false;   // hThreadEnd is a key
bool bOwnerWatched = false;     // the end of the owner's thread will be noticed

// Intended: ghMutex is released even if no entry took it. If it is free, it is taken first, because
// releasing a mutex that nobody holds is undefined.
void release()
{
    pOwner = nullptr;
    bInherited = false;
    ++ulReleases;
    static_cast<void>(pthread_mutex_trylock(&ghMutex));
    pthread_mutex_unlock(&ghMutex);
}

void endInProgress()
{
    if (bInherited)
        CKestaTraceLog::instance().abandon();
    else
        CKestaTraceLog::instance().end();
    release();
}

// Waits for ghMutex, without the lock, and takes it. Waiting for a mutex is not a cancellation
// point, so every now and then it looks whether the thread is to be cancelled.
void waitForMutex()
{
    struct timespec until;
    do
    {
        pthread_testcancel();
        clock_gettime(CLOCK_REALTIME, &until);
        constexpr long lTenth = 100'000'000;
        until.tv_nsec += lTenth;
        until.tv_sec += until.tv_nsec / (10 * lTenth);
        until.tv_nsec %= 10 * lTenth;
    } while (pthread_mutex_timedlock(&ghMutex, &until) != 0);
}

/// While it lives, the lock is released.
class CUnlocked
{
public:
    CUnlocked() { pthread_mutex_unlock(&hEntriesLock); }
    ~CUnlocked() { pthread_mutex_lock(&hEntriesLock); }

    CUnlocked(const CUnlocked&) = delete;
    CUnlocked& operator=(const CUnlocked&) = delete;
};

// Takes ghMutex for an entry. A thread that had to wait for the mutex holds it for a moment before
// that can be noted here. In this moment a thread that ends an entry without tracing, or that is in
// no entry, may release it.
void takeMutex()
{
    if (pthread_mutex_trylock(&ghMutex) == 0)
        return;
    for (;;)
    {
        const unsigned long ulBefore = ulReleases;
        {
            const CUnlocked unlocked;
            waitForMutex();
        }
        if (ulReleases == ulBefore)
            return;   // nobody can have released it
        if (pOwner == nullptr)
        {
            // Takes it now, if it was released.
            static_cast<void>(pthread_mutex_trylock(&ghMutex));
            return;
        }
        // It was released, and another thread has taken it since.
    }
}

// A thread that ends within its entry, cancelled for instance, must not leave the others waiting.
void endWithThread(void* pThread)
{
    const CKestaNoCancellation noCancellation;
    const CKestaLock lock(hEntriesLock);
    if (pOwner == pThread)
        endInProgress();
}

// A process may be forked at any moment. The child must find both locks free, and no entry of a
// thread that it does not have.
void beforeFork()
{
    pthread_mutex_lock(&hEntriesLock);
    pthread_mutex_lock(&hKestaSettingsMutex);
}

void afterForkInParent()
{
    pthread_mutex_unlock(&hKestaSettingsMutex);
    pthread_mutex_unlock(&hEntriesLock);
}

void afterForkInChild()
{
    pthread_mutex_unlock(&hKestaSettingsMutex);
    if (pOwner == &iOwnEntries)
        bInherited = true;
    else if (pOwner != nullptr)
    {
        CKestaTraceLog::instance().abandon();
        pthread_mutex_init(&ghMutex, nullptr);
        pOwner = nullptr;
    }
    pthread_mutex_unlock(&hEntriesLock);
}

[[gnu::constructor]] void watchThreadsAndForks()
{
    pthread_atfork(&beforeFork, &afterForkInParent, &afterForkInChild);
    bThreadEndKnown = pthread_key_create(&hThreadEnd, &endWithThread) == 0;
}

[[gnu::destructor]] void forgetThreads()
{
    const CKestaLock lock(hEntriesLock);
    if (bThreadEndKnown)
        pthread_key_delete(hThreadEnd);
    bThreadEndKnown = false;
    bOwnerWatched = false;
}

}   // namespace

pthread_mutex_t& CKestaEntries::mutex()
{
    return hEntriesLock;
}

void CKestaEntries::beginIdle()
{
    ++iOwnEntries;
}

void CKestaEntries::begin()
{
    if (bInherited && pOwner == &iOwnEntries)
        endInProgress();   // a forked child begins an entry of its own
    takeMutex();
    pOwner = &iOwnEntries;
    bInherited = false;
    ++iOwnEntries;
    bOwnerWatched = bThreadEndKnown && pthread_setspecific(hThreadEnd, &iOwnEntries) == 0;
}

void CKestaEntries::end()
{
    const bool bOthers = isLogOfOthers();
    if (iOwnEntries > 0)
        --iOwnEntries;
    else if (pOwner != nullptr && bOwnerWatched)
        --*pOwner;   // the thread that made the entry no longer has it
    if (!bOthers)
        endInProgress();
}

bool CKestaEntries::isLogOfOthers()
{
    return iOwnEntries > 0 && pOwner != nullptr && pOwner != &iOwnEntries;
}
