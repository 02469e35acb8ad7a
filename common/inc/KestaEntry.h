#ifndef KESTA_ENTRY_H
#define KESTA_ENTRY_H

#include "KestaDebug.h"

/// An entry into the library: `initialize()` when it is made, `unInitialize()` when it goes out of
/// scope, whichever way that happens: an exception, an early return or a cancelled thread leaves no
/// entry open.
///
///     {
///         const CKestaEntry entry;
///         const KestaIPRange range("10.1.*.*");   // traced, whether it throws or not
///     }
///
/// Entries do not nest: with tracing on, a second one on the same thread waits for ever.
///
/// Thread contract: belongs to the thread that made it, and ends there. Making one waits while
/// another thread is in an entry with tracing.
///
/// Throws: `std::bad_alloc` only; there is no entry then.
class CKestaEntry
{
public:
    /// Makes the entry.
    CKestaEntry() { initialize(); }

    /// Ends it.
    ~CKestaEntry() { unInitialize(); }

    CKestaEntry(const CKestaEntry&) = delete;
    CKestaEntry& operator=(const CKestaEntry&) = delete;
};

#endif
