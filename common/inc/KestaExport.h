#ifndef KESTA_EXPORT_H
#define KESTA_EXPORT_H

/// Marks what the shared library shows to its hosts; everything else stays hidden when the
/// library is compiled with `-fvisibility=hidden`.
#define KESTA_API __attribute__((visibility("default")))

/// Takes a private member of such a class out again: hosts are never linked with it, so it may
/// change.
#define KESTA_LOCAL __attribute__((visibility("hidden")))

#endif
