#include "KestaExport.h"

const char KESTA_ABI = 0;
