#ifndef KESTA_ADDRESS_DETAIL_H
#define KESTA_ADDRESS_DETAIL_H

#include "KestaDebug.h"
#include "KestaIPAddress.h"

#include <netinet/in.h>

// What the sources of the address layer share: the one reading of a socket address as that of a
// family, the one outcome of a comparison, the one trace of an address.

inline const sockaddr_in* asIPv4(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in*>(&storage);
}

inline const sockaddr_in6* asIPv6(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in6*>(&storage);
}

/// -1, 0 or 1: the first number is below, equal to or above the second.
template <class TNumber>
int threeWay(const TNumber& left, const TNumber& right)
{
    return (left > right) - (left < right);
}

/// Traces a text followed by an address, whose text is not even copied while tracing is off.
inline void traceAddress(const char* pszPrefix, const KestaIPAddress& address)
{
    if (CKestaDebug::isTraced(3))
        KESTA_DEBUG2(pszPrefix, address.getStrAddress(), 3);
}

#endif
