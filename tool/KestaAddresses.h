#ifndef KESTA_ADDRESSES_H
#define KESTA_ADDRESSES_H

#include "KestaAddressNumber.h"
#include "KestaIPAddress.h"
#include "KestaRangeEntry.h"

#include <string>
#include <string_view>
#include <vector>

/// An address of either family, as a number whose most significant byte is the first of the
/// address.
struct CKestaAddress
{
    bool bIPv6 = false;
    KestaIPv6Number number = 0;
};

/// Reads an address in one of the usual forms at the start of a text, whatever follows: no copy, no
/// system call. Returns the end of the address, or null for another text, which may still be an
/// address (fall back to readAddress).
const char* scanAddress(const char* pText, CKestaAddress& address);

/// Reads an address in any form that the library's address classes read; one that holds a ":" is an
/// IPv6 address.
bool readAddress(std::string_view text, CKestaAddress& address);

/// The usual form of an address value, whatever text it was made from.
std::string textOf(const KestaIPAddress& address);

/// "IPv4" or "IPv6".
const char* familyOf(const CKestaAddressInterval& interval);

/// True when the first interval contains the second, of the same family.
bool contains(const CKestaAddressInterval& outer, const CKestaAddressInterval& inner);

/// The fewest intervals that contain the same addresses, IPv4 first, in ascending order.
std::vector<CKestaAddressInterval> joined(std::vector<CKestaAddressInterval> intervals);

/// The exact number of its addresses: "1" to "340282366920938463463374607431768211456".
std::string sizeOf(const CKestaAddressInterval& interval);

/// The shortest list of blocks, such as 10.1.0.0/16, that together hold exactly these addresses, in
/// ascending order.
std::vector<std::string> blocksOf(const CKestaAddressInterval& interval);

/// The class of these addresses: "private", "link-local" and so on, "global" if they are in no
/// other class, "mixed" if they are in several.
const char* classOf(const CKestaAddressInterval& interval);

#endif
