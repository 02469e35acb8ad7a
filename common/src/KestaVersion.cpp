#include "KestaVersion.h"

#define KESTA_TEXT_OF(number) #number
#define KESTA_DOTTED(major, minor, patch)                                                          \
    KESTA_TEXT_OF(major) "." KESTA_TEXT_OF(minor) "." KESTA_TEXT_OF(patch)

const char* kestaVersion()
{
    return KESTA_DOTTED(KESTA_VERSION_MAJOR, KESTA_VERSION_MINOR, KESTA_VERSION_PATCH);
}
