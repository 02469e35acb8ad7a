#ifndef KESTA_ADDRESS_DETAIL_H
#define KESTA_ADDRESS_DETAIL_H

#include "KestaDebug.h"
#include "KestaIPAddress.h"

#include <cstdint>
#include <cstring>

#include <endian.h>
#include <netinet/in.h>

// What the sources of the address layer share: the one reading of a socket address as that of a
// family, the one comparison of address bytes, the one trace of an address.

inline const sockaddr_in* asIPv4(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in*>(&storage);
}

inline const sockaddr_in6* asIPv6(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in6*>(&storage);
}

/// An address as a number. Numbers read most significant byte first, as network byte order has it,
/// compare as their bytes do from the first on.
inline std::uint32_t addressNumber(const in_addr& address)
{
    return ntohl(address.s_addr);
}

__extension__ typedef unsigned __int128 CIPv6Number;

inline CIPv6Number addressNumber(const in6_addr& address)
{
    std::uint64_t halves[2];
    std::memcpy(halves, &address, sizeof halves);
    return CIPv6Number{be64toh(halves[0])} << 64 | be64toh(halves[1]);
}

/// -1, 0 or 1: the first address is below, equal to or above the second.
template <class TAddress>
inline int compareAddresses(const TAddress& left, const TAddress& right)
{
    const auto leftNumber = addressNumber(left);
    const auto rightNumber = addressNumber(right);
    return (leftNumber > rightNumber) - (leftNumber < rightNumber);
}

/// Traces a text followed by an address, whose text is not even copied while tracing is off.
inline void traceAddress(const char* pszPrefix, const KestaIPAddress& address)
{
    if (CKestaDebug::isTraced(3))
        KESTA_DEBUG2(pszPrefix, address.getStrAddress(), 3);
}

#endif
