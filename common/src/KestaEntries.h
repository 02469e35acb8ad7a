#ifndef KESTA_ENTRIES_H
#define KESTA_ENTRIES_H

#include <pthread.h>

/// Knows whose entry is in progress.
///
/// Entries with tracing come one after the other, and `ghMutex` is held from the start of each to
/// its end. A host may also take and release `ghMutex` by itself, so the mutex does not show whose
/// entry it is held for. That is noted here, under a lock that is held for moments only and guards
/// the trace log as well.
///
/// Thread contract: the caller holds `mutex()`.
class CKestaEntries
{
public:
    /// The lock.
    static pthread_mutex_t& mutex();

    /// Begins an entry of this thread without tracing.
    static void beginIdle();

    /// Begins an entry of this thread with tracing: waits until `ghMutex` is free, without the
    /// lock, and takes it. A thread that is cancelled while it waits has begun nothing.
    static void begin();

    /// Ends an entry of this thread. While the entry in progress is another thread's, it does
    /// nothing else. A thread that is in no entry ends the entry in progress, whoever made it. If
    /// there is none, `ghMutex` is released all the same.
    static void end();

    /// True when this thread must leave the log alone: the log belongs to another thread's entry,
    /// and this thread is in an entry of its own, without tracing. A thread that is in no entry at
    /// all may use the log.
    static bool isLogOfOthers();
};

#endif
