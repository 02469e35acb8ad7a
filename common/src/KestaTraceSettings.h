#ifndef KESTA_TRACE_SETTINGS_H
#define KESTA_TRACE_SETTINGS_H

#include "KestaString.h"

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

/// A copy of the settings that were read last.
CKestaTraceSettings currentTraceSettings();

#endif
