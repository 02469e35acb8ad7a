#include "KestaEntry.h"

CKestaEntry::CKestaEntry()
{
    CKestaDebug::beginEntry();
}

CKestaEntry::~CKestaEntry()
{
    CKestaDebug::endEntry();
}
