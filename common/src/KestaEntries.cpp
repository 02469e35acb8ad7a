#include "KestaEntries.h"

#include <cerrno>

#include <csignal>
#include <unistd.h>

namespace
{

struct COwnEntries
{
    unsigned long ulRound;    // the round that `lIdle` belongs to
    long lIdle;               // entries without tracing that this thread began and did not end
    unsigned long ulTraced;   // the number of the last entry with tracing that it began
};

// Other TLS models would allocate memory at the first use in a thread.
[[gnu::tls_model("initial-exec")]] thread_local COwnEntries own;

unsigned long ulRound = 1;
long lIdle = 0;   // the entries without tracing of all threads in this round

unsigned long ulLast = 0;   // the number of the last entry with tracing
unsigned long ulInProgress = 0;
pid_t iOwner = 0;   // the thread that began it; 0 when it was the main thread, which has ended
bool bInherited = false;

long& ownIdle()
{
    if (own.ulRound != ulRound)
        own.lIdle = 0;
    own.ulRound = ulRound;
    return own.lIdle;
}

// True when this thread began the entry in progress.
bool isOwn()
{
    return ulInProgress != 0 && own.ulTraced == ulInProgress;
}

void removeIdle(long lCount)
{
    if (lIdle > 0 && (lIdle -= lCount) == 0)
        ++ulRound;
}

}   // namespace

void CKestaEntries::beginIdle()
{
    ++ownIdle();
    ++lIdle;
}

unsigned long CKestaEntries::begin()
{
    own.ulTraced = ulInProgress = ++ulLast;
    iOwner = gettid();
    bInherited = false;
    return ulInProgress;
}

unsigned long CKestaEntries::inProgress()
{
    return ulInProgress;
}

bool CKestaEntries::isOthers()
{
    return ulInProgress != 0 && !isOwn() && ownIdle() > 0;
}

bool CKestaEntries::mayBeIdle()
{
    return own.lIdle > 0;
}

void CKestaEntries::endIdle()
{
    if (ownIdle() > 0)
        --ownIdle();
    removeIdle(1);
}

void CKestaEntries::end()
{
    ulInProgress = 0;
    bInherited = false;
}

bool CKestaEntries::isAbandoned()
{
    if (ulInProgress == 0)
        return false;
    return (bInherited && isOwn()) || iOwner == 0 ||
           (tgkill(getpid(), iOwner, 0) != 0 && errno == ESRCH);
}

void CKestaEntries::endThread()
{
    removeIdle(ownIdle());
    ownIdle() = 0;
    // The system keeps the main thread's number until the process ends. The others may still end
    // their entries, in destructors that run after this.
    if (isOwn() && iOwner == getpid())
        iOwner = 0;
}

bool CKestaEntries::continueInChild()
{
    lIdle = ownIdle();
    if (ulInProgress == 0)
        return true;
    bInherited = isOwn();
    iOwner = gettid();
    if (!bInherited)
        ulInProgress = 0;
    return bInherited;
}

bool CKestaEntries::isInherited()
{
    return bInherited;
}
