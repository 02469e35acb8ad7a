#ifndef KESTA_ADDRESS_NUMBER_H
#define KESTA_ADDRESS_NUMBER_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <endian.h>
#include <netinet/in.h>
#include <sys/socket.h>

/// An IPv4 address as a number, its first byte the most significant.
typedef std::uint32_t KestaIPv4Number;

/// An IPv6 address as a number, its first byte the most significant.
__extension__ typedef unsigned __int128 KestaIPv6Number;

/// Converts addresses to numbers and back. The numbers order as the address bytes do, the first
/// byte most significant. The bytes are copied, because they may be part of an object of another
/// type.
///
/// Thread contract: no state; any thread may call anything. Throws nothing.
struct KestaAddressNumber
{
    /// The number of an IPv4 address.
    static KestaIPv4Number of(const in_addr& address)
    {
        KestaIPv4Number uNumber;
        std::memcpy(&uNumber, &address, sizeof uNumber);
        return be32toh(uNumber);
    }

    /// The number of an IPv6 address.
    static KestaIPv6Number of(const in6_addr& address)
    {
        std::uint64_t halves[2];
        std::memcpy(halves, &address, sizeof halves);
        return KestaIPv6Number{be64toh(halves[0])} << 64 | be64toh(halves[1]);
    }

    /// The number of the bytes where a socket address of the family of `TNumber` has its address.
    template <class TNumber>
    static TNumber in(const sockaddr_storage& storage);

    /// The IPv4 address of a number.
    static in_addr toIPv4(KestaIPv4Number number) { return {htobe32(number)}; }

    /// The IPv6 address of a number.
    static in6_addr toIPv6(KestaIPv6Number number)
    {
        const std::uint64_t halves[] = {htobe64(static_cast<std::uint64_t>(number >> 64)),
                                        htobe64(static_cast<std::uint64_t>(number))};
        in6_addr address;
        std::memcpy(&address, halves, sizeof address);
        return address;
    }
};

/// The number of an IPv4 socket address.
template <>
inline KestaIPv4Number KestaAddressNumber::in(const sockaddr_storage& storage)
{
    return of(reinterpret_cast<const sockaddr_in&>(storage).sin_addr);
}

/// The number of an IPv6 socket address.
template <>
inline KestaIPv6Number KestaAddressNumber::in(const sockaddr_storage& storage)
{
    return of(reinterpret_cast<const sockaddr_in6&>(storage).sin6_addr);
}

#endif
