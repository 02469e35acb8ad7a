#include "KestaEntry.h"

#include "KestaDebug.h"

CKestaEntry::CKestaEntry()
{
    CKestaDebug::beginEntry();
}

CKestaEntry::~CKestaEntry()
{
    CKestaDebug::endEntry();
}
