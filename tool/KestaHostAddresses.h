#ifndef KESTA_HOST_ADDRESSES_H
#define KESTA_HOST_ADDRESSES_H

#include "KestaIPUtilities.h"
#include "KestaToolError.h"

#include <cerrno>

/// A series of queries of the host.
class CKestaHostQueries
{
public:
    CKestaHostQueries() { KestaIPUtilities::StartWSA(); }
    ~CKestaHostQueries() { KestaIPUtilities::EndWSA(); }

    CKestaHostQueries(const CKestaHostQueries&) = delete;
    CKestaHostQueries& operator=(const CKestaHostQueries&) = delete;
};

/// The addresses of this host's interfaces, as they are when it is made.
class CKestaHostAddresses
{
public:
    /// Throws: `CKestaToolError` when the system does not give them.
    CKestaHostAddresses()
    {
        if (KestaIPUtilities::queryHostIP(nullptr, m_ipv6, m_ipv4) != 0)
            throw CKestaToolError(systemError("cannot determine the host's addresses", errno));
    }

    const CKestaArray<KestaIPv4Address>& ipv4() const { return m_ipv4; }
    const CKestaArray<KestaIPv6Address>& ipv6() const { return m_ipv6; }

    /// Those that the filter keeps.
    CKestaArray<KestaIPv4Address> filteredIPv4() const
    {
        CKestaArray<KestaIPv4Address> kept;
        KestaIPUtilities::getfilteredIPv4Addresses(kept, m_ipv4);
        return kept;
    }

    /// Those that the filter keeps.
    CKestaArray<KestaIPv6Address> filteredIPv6() const
    {
        CKestaArray<KestaIPv6Address> kept;
        KestaIPUtilities::getfilteredIPv6Addresses(kept, m_ipv6);
        return kept;
    }

private:
    CKestaHostQueries m_queries;
    CKestaArray<KestaIPv4Address> m_ipv4;
    CKestaArray<KestaIPv6Address> m_ipv6;
};

#endif
