#include "KestaTraceSettings.h"

#include "KestaProcess.h"

namespace
{

// Null until the first use. The caller locks the settings.
CKestaSharedSettings& theSettings()
{
    static CKestaImmortal<CKestaSharedSettings> pSettings;
    return pSettings.get();
}

// When the library is unloaded, or the process ends, the settings are freed, and remain usable.
[[gnu::destructor]] void freeSettings()
{
    const CKestaLock lock(hKestaSettingsMutex);
    theSettings().reset();
}

}   // namespace

CKestaSharedSettings currentTraceSettings()
{
    const CKestaLock lock(hKestaSettingsMutex);
    if (theSettings() == nullptr)
        theSettings() = std::make_shared<const CKestaTraceSettings>();
    return theSettings();
}

bool replaceTraceSettings(const CKestaSharedSettings& pExpected, CKestaSharedSettings pNew)
{
    const CKestaLock lock(hKestaSettingsMutex);
    if (theSettings() != pExpected)
        return false;
    theSettings().swap(pNew);
    return true;
}
