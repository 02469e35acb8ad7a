#ifndef KESTA_TRACE_SETTINGS_H
#define KESTA_TRACE_SETTINGS_H

#include "KestaString.h"

#include <cstdint>
#include <memory>
#include <string_view>

/// The settings of the process. What is shared is never changed: an entry sees the values of one
/// reading, even while other threads read a changed file.
struct CKestaTraceSettings
{
    CKestaString strInstalledDir;
    CKestaString strDataDir;
    CKestaString strDebugItems = "ALL";
    CKestaString strDebugFile;
    CKestaString strDebugEnabled;
    CKestaString strNewFile;
    int iDebugLevel = 0;
    int iDebugSize = 0;
};

typedef std::shared_ptr<const CKestaTraceSettings> CKestaSharedSettings;

/// The settings that were read last; never null.
CKestaSharedSettings currentTraceSettings();

/// Replaces the settings, unless they are no longer the expected ones: then it returns false.
bool replaceTraceSettings(const CKestaSharedSettings& pExpected, CKestaSharedSettings pNew);

/// True when the value of the switch means on.
inline bool isOn(std::string_view switchText)
{
    return switchText == "Y" || switchText == "y";
}

/// The size limit in bytes: `iDebugSize` times 1000, in 32-bit arithmetic that wraps. The command
/// shows it, too.
inline std::int32_t sizeLimit(int iDebugSize)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(iDebugSize) * 1000u);
}

#endif
