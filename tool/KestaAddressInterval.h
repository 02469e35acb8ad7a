#ifndef KESTA_ADDRESS_INTERVAL_H
#define KESTA_ADDRESS_INTERVAL_H

#include "KestaAddressText.h"
#include "KestaIPRange.h"

#include <string>
#include <vector>

/// The addresses of one family from the first to the last, both included, as numbers.
struct CKestaAddressInterval
{
    bool bIPv6;
    CKestaIPv6Number first;
    CKestaIPv6Number last;
};

/// The block of all addresses whose first `iPrefixLength` bits are those of an address.
constexpr CKestaAddressInterval blockAt(bool bIPv6, CKestaIPv6Number address, int iPrefixLength)
{
    const int iRestBits = (bIPv6 ? 128 : 32) - iPrefixLength;
    const CKestaIPv6Number rest =
        iRestBits == 128 ? ~CKestaIPv6Number{0} : (CKestaIPv6Number{1} << iRestBits) - 1;
    return {bIPv6, address & ~rest, address | rest};
}

/// The addresses of a range.
CKestaAddressInterval intervalOf(const KestaIPRange& range);

/// One address.
CKestaAddressInterval intervalOf(const KestaIPAddress& address);

/// How many addresses it holds, exactly: "1" to "340282366920938463463374607431768211456".
std::string sizeOf(const CKestaAddressInterval& interval);

/// The shortest list of blocks, such as 10.1.0.0/16, that together hold these addresses and no
/// others, in ascending order.
std::vector<std::string> blocksOf(const CKestaAddressInterval& interval);

/// An address in its usual form.
std::string textOf(bool bIPv6, CKestaIPv6Number address);

#endif
