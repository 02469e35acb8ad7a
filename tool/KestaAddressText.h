#ifndef KESTA_ADDRESS_TEXT_H
#define KESTA_ADDRESS_TEXT_H

#include "KestaIPAddress.h"

#include <cstdint>
#include <string>
#include <string_view>

__extension__ typedef unsigned __int128 CKestaIPv6Number;

/// The usual forms of an address, read where they stand: no copy, no trace, no system call. Each
/// returns the end of the address, or null for a text that it does not read; such a text may still
/// be an address (`readAddress` tells).
///
/// REQUIRES: a newline ends the text, or something else that is not of an address does.
const char* scanIPv4(const char* pText, std::uint32_t& uAddress);

/// The same for eight groups of hexadecimal digits, some of which "::" may stand for.
const char* scanIPv6(const char* pText, CKestaIPv6Number& address);

/// An address as a number, its first byte the most significant.
struct CKestaAddressNumber
{
    bool bIPv6 = false;
    CKestaIPv6Number number = 0;
};

/// Reads an address as the library's address classes do; one that holds a ":" is an IPv6 address.
bool readAddress(std::string_view text, CKestaAddressNumber& address);

/// The number of an address value.
CKestaAddressNumber numberOf(const KestaIPAddress& address);

/// An address value in its usual form, whichever text it was made from.
std::string textOf(const KestaIPAddress& address);

/// "IPv4" or "IPv6".
const char* familyOf(const KestaIPAddress& address);

/// The class of an address: "unspecified", "loopback", "multicast", "link-local", "site-local",
/// "IPv4-mapped", "IPv4-compatible" or "global".
const char* classOf(const KestaIPAddress& address);

#endif
