#ifndef KESTA_ADDRESS_INTERVAL_H
#define KESTA_ADDRESS_INTERVAL_H

#include "KestaAddressNumber.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"

#include <string>
#include <vector>

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

/// The addresses of a range.
CKestaAddressInterval intervalOf(const KestaIPRange& range);

/// One address.
CKestaAddressInterval intervalOf(const KestaIPAddress& address);

/// The exact number of its addresses: "1" to "340282366920938463463374607431768211456".
std::string sizeOf(const CKestaAddressInterval& interval);

/// The shortest list of blocks, such as 10.1.0.0/16, that together hold exactly these addresses, in
/// ascending order.
std::vector<std::string> blocksOf(const CKestaAddressInterval& interval);

#endif
