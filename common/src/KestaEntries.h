#ifndef KESTA_ENTRIES_H
#define KESTA_ENTRIES_H

/// Keeps account of entries: which thread began the entry with tracing that is in progress, and
/// which threads are in entries without tracing, which come at any time.
///
/// Whole entries that follow one another may pass from thread to thread: one may begin an entry,
/// others trace in it and end it. So a thread's own account of its entries without tracing can't
/// say whether they have been ended. It is valid for one round only: whenever no such entry of any
/// thread is left, a new round begins.
///
/// A thread is known by the number of the entry with tracing that it began last, and never by an
/// address, so nothing dangles when a thread ends.
///
/// Thread contract: the caller holds one lock for all of this, except for `isForeign`.
class CKestaEntries
{
public:
    /// This thread begins an entry without tracing.
    static void beginIdle();

    /// This thread begins the entry that is in progress from now on. Returns its number.
    static unsigned long begin();

    /// The number of the entry in progress; 0 when there is none.
    static unsigned long inProgress();

    /// True when the entry in progress must be left alone by this thread, which is in an entry of
    /// its own, without tracing. A thread that is in no entry at all may trace in the entry in
    /// progress, and end it.
    static bool isOthers();

    /// True when this thread may be in an entry without tracing. Needs no lock.
    static bool mayBeIdle();

    /// An entry without tracing ends.
    static void endIdle();

    /// The entry in progress is over.
    static void end();

    /// True when this thread, which is about to begin an entry, waits in vain for the end of the
    /// entry in progress: the thread that began it has ended or, in a forked child, it is this
    /// thread's own, begun before the fork. Costs a system call.
    static bool isAbandoned();

    /// This thread ends. Nobody need end its entries without tracing.
    static void endThread();

    /// This process has just been forked, and has no thread but this one. Returns false if the
    /// entry in progress was another thread's: there is none, then.
    static bool continueInChild();

    /// True when the entry in progress was begun before this process was forked, so that the log is
    /// the parent's.
    static bool isInherited();
};

#endif
