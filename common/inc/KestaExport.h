#ifndef KESTA_EXPORT_H
#define KESTA_EXPORT_H

#include <cstddef>   // IWYU pragma: keep: it defines the macros of the standard library

/// Marks what the shared library exports; everything else is hidden when the library is compiled
/// with `-fvisibility=hidden`.
#define KESTA_API __attribute__((visibility("default")))

/// Hides a private member of an exported class again: no host links to it, so it may change.
#define KESTA_LOCAL __attribute__((visibility("hidden")))

// Hosts and library exchange strings and containers, whose layouts depend on these macros. A host
// that is not compiled like the library refers to a name that the library lacks: it does not link,
// instead of crashing.
#if defined(_GLIBCXX_DEBUG)
#define KESTA_ABI kestaAbiOfCheckedContainers
#elif defined(_GLIBCXX_USE_CXX11_ABI) && _GLIBCXX_USE_CXX11_ABI == 0
#define KESTA_ABI kestaAbiOfOldStrings
#else
#define KESTA_ABI kestaAbi
#endif
KESTA_API extern const char KESTA_ABI;
[[gnu::used]] KESTA_LOCAL inline const char* const pKestaAbi = &KESTA_ABI;

#endif
