#ifndef KESTA_RANGE_ENTRY_H
#define KESTA_RANGE_ENTRY_H

#include "KestaAddressNumber.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"

#include <string>
#include <string_view>

/// Addresses of one family, from the first to the last, both included, as numbers.
struct CKestaAddressInterval
{
    bool bIPv6;
    KestaIPv6Number first;
    KestaIPv6Number last;
};

/// The block of all addresses that share the first `iPrefixLength` bits of an address.
constexpr CKestaAddressInterval blockAt(bool bIPv6, KestaIPv6Number address, int iPrefixLength)
{
    const int iRestBits = (bIPv6 ? 128 : 32) - iPrefixLength;
    const KestaIPv6Number rest =
        iRestBits == 128 ? ~KestaIPv6Number{0} : (KestaIPv6Number{1} << iRestBits) - 1;
    return {bIPv6, address & ~rest, address | rest};
}

/// The addresses of a range, which contains something.
CKestaAddressInterval intervalOf(const KestaIPRange& range);

/// One address. One that is neither IPv4 nor IPv6 counts as IPv4.
CKestaAddressInterval intervalOf(const KestaIPAddress& address);

/// An address in its usual form.
std::string addressText(bool bIPv6, KestaIPv6Number address);

// What follows parses the entries of address lists, for sets of ranges and for the command.
//
//     10.1.2.3   10.1.*.*   2001:db8::/32   2001:db8:1*     what KestaIPRange parses
//     10.0.0.0/8   ::ffff:10.0.0.0/104                      a block
//     10.1.2.3-10.1.2.99   2001:db8:: - 2001:db8::ff        a span
//
// All functions throw a `CKestaExc` that says what is wrong.

/// Parses an entry. White space at its ends is ignored, and blanks may surround the dash of a span;
/// elsewhere white space is refused. In blocks and spans, IPv4 addresses are four decimal numbers
/// without leading zeros. What `KestaIPRange` can parse is parsed by it, and so screened, refused
/// in its words, and traced.
CKestaAddressInterval parseEntry(std::string_view text);

/// The block that begins at an address. `text` is quoted in errors.
CKestaAddressInterval blockOf(const CKestaAddressInterval& address, int iPrefixLength,
                              std::string_view text);

/// The span from one address to another. `text` is quoted in errors.
CKestaAddressInterval spanOf(const CKestaAddressInterval& first, const CKestaAddressInterval& last,
                             std::string_view text);

#endif
