#ifndef KESTA_IP_ADDRESS_H
#define KESTA_IP_ADDRESS_H

#include "KestaExport.h"
#include "KestaString.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include <endian.h>
#include <netinet/in.h>
#include <sys/socket.h>

/// An IP address, held twice: as the text that it was made from, and as a socket address. The base
/// of the two families.
///
/// Of the socket address only the family and the address bytes mean something; the address is in
/// network byte order, at bytes 4 to 7 for IPv4 (`sockaddr_in`) and 8 to 23 for IPv6
/// (`sockaddr_in6`). The rest is zero after construction from text.
///
/// The operators order by the address bytes, the first byte weighing most, and never look at the
/// family: an address of the other family is judged by the bytes that stand in the same place. Each
/// takes a pointer, which must not be null and stays the caller's.
///
/// Thread contract: values; distinct objects are independent, and several threads may read one.
class KESTA_API KestaIPAddress
{
public:
    /// An empty text and no address.
    KestaIPAddress();
    KestaIPAddress(const KestaIPAddress& other) = default;
    KestaIPAddress& operator=(const KestaIPAddress& other) = default;
    virtual ~KestaIPAddress();

    /// True when this address is below the other or equal to it.
    virtual bool operator<=(const KestaIPAddress* pAddress) const = 0;
    /// True when this address is above the other or equal to it.
    virtual bool operator>=(const KestaIPAddress* pAddress) const = 0;
    /// True when the two addresses are equal.
    virtual bool operator==(const KestaIPAddress* pAddress) const = 0;

    /// A copy of the socket address.
    sockaddr_storage getSockAddress() const { return m_binIPAddress; }

    /// The socket address where it stands, as long as this object does.
    const sockaddr_storage& viewSockAddress() const { return m_binIPAddress; }

    /// Replaces the socket address; the text stays as it is.
    void setSockAddress(const sockaddr_storage& address) { m_binIPAddress = address; }

    /// A copy of the text.
    CKestaString getStrAddress() const { return m_strIPAddress; }

    /// Replaces the text; the socket address stays as it is.
    void setStrAddress(const CKestaString& strAddress) { m_strIPAddress = strAddress; }

protected:
    friend class KestaIPRange;

    /// A text and no address yet.
    explicit KestaIPAddress(const CKestaString& strAddress);

    // Addresses are compared as numbers: read most significant byte first, as network byte order
    // has it, they order as their bytes do from the first on. One overload for each family. The
    // bytes are copied out, because they may have been stored as those of another type.

    /// An IPv4 address as a number.
    static std::uint32_t numberOf(const sockaddr_in& address)
    {
        std::uint32_t uNumber;
        std::memcpy(&uNumber, &address.sin_addr, sizeof uNumber);
        return be32toh(uNumber);
    }

    /// An IPv6 address as a number.
    static std::pair<std::uint64_t, std::uint64_t> numberOf(const sockaddr_in6& address)
    {
        std::uint64_t halves[2];
        std::memcpy(halves, &address.sin6_addr, sizeof halves);
        return {be64toh(halves[0]), be64toh(halves[1])};
    }

    /// The number that stands where the family of `TSocketAddress` keeps its address.
    template <class TSocketAddress>
    auto number() const
    {
        return numberOf(reinterpret_cast<const TSocketAddress&>(m_binIPAddress));
    }

    CKestaString m_strIPAddress;       ///< The text.
    sockaddr_storage m_binIPAddress;   ///< The socket address.
};

#endif
