// The part of a host that uses the library; exit_test loads it.

#include "KestaDebug.h"
#include "KestaHostSetup.h"

#include <thread>

extern "C" void setUp(const char* directory)
{
    CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_INSTALLED_DIR, directory);
    CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_DATA_DIR, directory);
}

extern "C" void trace(const char* line)
{
    initialize();
    KESTA_DEBUG1(line, 1);
    std::thread(unInitialize).join();   // an entry may end on another thread
}
