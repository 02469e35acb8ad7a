#ifndef KESTA_TRACE_SETTINGS_H
#define KESTA_TRACE_SETTINGS_H

#include "KestaString.h"

#include <cstdint>

/// What an entry takes from the configuration: values of one reading, even while other threads read
/// a changed file.
struct CKestaTraceSettings
{
    CKestaString strDebugFile;
    CKestaString strDebugEnabled;
    CKestaString strNewFile;
    int iDebugLevel;
    int iDebugSize;
};

/// The size limit in bytes: `iDebugSize` times 1000, in 32-bit arithmetic that wraps. The command
/// shows it, too.
inline std::int32_t sizeLimit(int iDebugSize)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(iDebugSize) * 1000u);
}

/// A copy of the settings that were read last.
CKestaTraceSettings currentTraceSettings();

#endif
