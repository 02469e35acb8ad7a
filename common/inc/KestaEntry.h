#ifndef KESTA_ENTRY_H
#define KESTA_ENTRY_H

#include "KestaDebug.h"   // IWYU pragma: export
#include "KestaExport.h"

/// An entry into the library: `initialize()` when it is made, `unInitialize()` when it goes out of
/// scope, whichever way that happens: an exception, an early return or a cancelled thread leaves no
/// entry open.
///
///     {
///         const CKestaEntry entry;
///         const KestaIPRange range("10.1.*.*");   // traced, whether it throws or not
///     }
///
/// Entries do not nest: with tracing on, a second one on the same thread deadlocks.
///
/// Thread contract: belongs to the thread that made it, and ends there. Making one blocks while
/// another thread is in an entry with tracing. It does what the library's own `initialize` and
/// `unInitialize` do, even if the host exports functions of these names.
///
/// Throws: `std::bad_alloc` only; there is no entry then.
class KESTA_API CKestaEntry
{
public:
    /// Begins the entry. Compilers warn of `CKestaEntry();`, an entry that ends at once.
    [[nodiscard]] CKestaEntry();

    /// Ends it.
    ~CKestaEntry();

    CKestaEntry(const CKestaEntry&) = delete;
    CKestaEntry& operator=(const CKestaEntry&) = delete;
};

#endif
