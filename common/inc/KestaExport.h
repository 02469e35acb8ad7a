#ifndef KESTA_EXPORT_H
#define KESTA_EXPORT_H

/// Marks what the shared library shows to its hosts; everything else stays hidden when the
/// library is compiled with `-fvisibility=hidden`.
#define KESTA_API __attribute__((visibility("default")))

/// Marks what stays hidden within a class that is shown.
#define KESTA_LOCAL __attribute__((visibility("hidden")))

#endif
