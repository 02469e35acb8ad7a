#ifndef KESTA_VERSION_H
#define KESTA_VERSION_H

// The one place that holds the version: the build, the packages and the tool read it from here.

/// Changes when a host must be changed or compiled anew; it is the number in the SONAME.
#define KESTA_VERSION_MAJOR 1
/// Changes when something is added.
#define KESTA_VERSION_MINOR 0
/// Changes when something is mended.
#define KESTA_VERSION_PATCH 0

#endif
