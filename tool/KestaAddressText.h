#ifndef KESTA_ADDRESS_TEXT_H
#define KESTA_ADDRESS_TEXT_H

#include "KestaAddressNumber.h"
#include "KestaIPAddress.h"

#include <string>
#include <string_view>

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

/// The number of an address value.
CKestaAddress numberOf(const KestaIPAddress& address);

/// An address in its usual form.
std::string textOf(const CKestaAddress& address);

/// The same for an address value, whatever text it was made from.
std::string textOf(const KestaIPAddress& address);

/// "IPv4" or "IPv6".
const char* familyOf(const KestaIPAddress& address);

#endif
