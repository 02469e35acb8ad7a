#ifndef KESTA_VERSION_H
#define KESTA_VERSION_H

#include "KestaExport.h"

// The one place that holds the version: the build, the packages and the tool read it from here.

/// Raised when hosts must be changed or recompiled; it is the number in the SONAME.
#define KESTA_VERSION_MAJOR 1
/// Raised when something is added.
#define KESTA_VERSION_MINOR 0
/// Raised when a bug is fixed.
#define KESTA_VERSION_PATCH 0

/// The version of the library that the host runs with, such as "1.0.0"; the numbers above are those
/// of the headers that it was compiled with. Any thread may ask.
KESTA_API const char* kestaVersion();

#endif
