#ifndef KESTA_EXPORT_H
#define KESTA_EXPORT_H

/// Marks what the shared library exports; everything else is hidden when the library is compiled
/// with `-fvisibility=hidden`.
#define KESTA_API __attribute__((visibility("default")))

/// Hides a private member of an exported class again: no host links to it, so it may change.
#define KESTA_LOCAL __attribute__((visibility("hidden")))

#endif
