// The part of a host that uses the library; exit_test loads it.

#include "KestaEntry.h"
#include "KestaHostSetup.h"

extern "C" void setUp(const char* directory)
{
    CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_INSTALLED_DIR, directory);
    CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_DATA_DIR, directory);
}

extern "C" void trace(const char* line)
{
    const CKestaEntry entry;
    KESTA_DEBUG1(line, 1);
}
