#ifndef KESTA_ADDRESS_CLASS_H
#define KESTA_ADDRESS_CLASS_H

#include "KestaAddressInterval.h"

/// The class of these addresses: "private", "link-local" and so on, "global" if they are in no
/// other class, "mixed" if they are in several.
const char* classOf(const CKestaAddressInterval& interval);

#endif
