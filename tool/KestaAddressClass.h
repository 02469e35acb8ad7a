#ifndef KESTA_ADDRESS_CLASS_H
#define KESTA_ADDRESS_CLASS_H

#include "KestaAddressInterval.h"

/// The class that all of these addresses belong to: "private", "link-local" and so on, "global" for
/// those of no other class, "mixed" when they belong to several.
const char* classOf(const CKestaAddressInterval& interval);

#endif
