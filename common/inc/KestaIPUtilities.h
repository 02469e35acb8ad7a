#ifndef KESTA_IP_UTILITIES_H
#define KESTA_IP_UTILITIES_H

#include "KestaArray.h"
#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaString.h"

#include <cstddef>

#include <netinet/in.h>

/// What the operating system knows about the host, and the conversions between address texts and
/// socket addresses. Everything is static.
///
///     CKestaArray<KestaIPv4Address> ipv4List, usable;
///     CKestaArray<KestaIPv6Address> ipv6List;
///     KestaIPUtilities::StartWSA();
///     KestaIPUtilities::queryHostIP(nullptr, ipv6List, ipv4List);
///     KestaIPUtilities::getfilteredIPv4Addresses(usable, ipv4List);
///     KestaIPUtilities::EndWSA();
///
/// Status codes are 0 for success and -1 for failure. Pointers must not be null unless an operation
/// says what null means, and stay the caller's. Addresses are in network byte order. The
/// conversions set the family and the address of a socket address and leave the rest as it was.
///
/// Thread contract: no state of its own; any thread may call anything, while nobody changes the
/// exclusion flags of the address classes.
///
/// Throws: `CKestaExc` where an operation says so; `std::bad_alloc`.
class KESTA_API KestaIPUtilities
{
public:
    /// Starts a series of queries. Always 0: there is nothing to start on this platform.
    static int StartWSA();

    /// Ends a series of queries.
    static void EndWSA();

    /// The size of the buffer that `queryHostName` needs, in bytes.
    static constexpr std::size_t KESTA_HOST_NAME_SIZE = 1024;

    /// Puts the host name, NUL-terminated, into a buffer of at least this size. Returns what
    /// `gethostname` returns.
    static int queryHostName(char* name);

    /// Puts the name of the operating system into `osName`, which a failure leaves as it was.
    static int setOSName(CKestaString& osName);

    /// Appends the addresses of this host's interfaces to the lists, in the system's order.
    /// Note the order of the lists: IPv6 first. The first argument is not used and may be null.
    static int queryHostIP(const char* host, CKestaArray<KestaIPv6Address>& ipv6List,
                           CKestaArray<KestaIPv4Address>& ipv4List);

    /// The same; IPv4 first.
    static int getInterfaceAddresses(CKestaArray<KestaIPv4Address>& ipv4List,
                                     CKestaArray<KestaIPv6Address>& ipv6List);

    /// Appends one address.
    static void addIPv4addressToArray(CKestaArray<KestaIPv4Address>& ipv4List,
                                      const sockaddr_in* sa);

    /// Appends one address.
    static void addIPv6addressToArray(CKestaArray<KestaIPv6Address>& ipv6List,
                                      const sockaddr_in6* sa);

    /// Appends to `out` the addresses of `in` that may be used: no flag of `KestaIPv4Address`
    /// excludes them, and they are neither 0.0.0.0 nor loopback.
    static void getfilteredIPv4Addresses(CKestaArray<KestaIPv4Address>& out,
                                         const CKestaArray<KestaIPv4Address>& in);

    /// Appends to `out` the addresses of `in` that may be used: no flag of `KestaIPv6Address`
    /// excludes them, and they are neither ::, ::1 nor IPv4-compatible.
    static void getfilteredIPv6Addresses(CKestaArray<KestaIPv6Address>& out,
                                         const CKestaArray<KestaIPv6Address>& in);

    /// Reads an address as `inet_aton` does, up to the first "%".
    static int convertIPv4StringToAddress(const CKestaString& text, sockaddr_in* sa);

    /// Writes an address as four decimal numbers.
    static int convertIPv4AddressToString(const sockaddr_in* sa, CKestaString& text);

    /// Reads an address as `inet_pton` does, up to the first "%".
    static int convertIPv6StringToAddress(const CKestaString& text, sockaddr_in6* sa);

    /// Writes an address in the compressed lower-case form, without a scope.
    static int convertIPv6AddressToString(const sockaddr_in6* sa, CKestaString& text);

    /// True when the address is the first of its block: all bits after the first `prefixLength`
    /// are 0. A length below 0 counts as 0, one above 128 as 128.
    ///
    /// Intended: `*sa` is changed; the bits of the prefix are cleared. False for a null pointer.
    static bool ValidateIPv6StartAddress(sockaddr_in6* sa, int prefixLength);

    /// Stores in `*end` the last address of the block that starts at `start`: all bits after the
    /// first `prefixLength` are set. It is a new `KestaIPv6Address` that the caller owns and
    /// deletes. A length below 0 counts as 0, one above 128 as 128. A null `start` leaves `*end` as
    /// it was.
    ///
    /// Throws: `CKestaExc`, "Unknown Exception" in place of any other exception; `*end` is then
    /// left as it was, too.
    static void InitialiseIPv6EndAddress(const sockaddr_in6* start, KestaIPAddress** end,
                                         int prefixLength);
};

#endif
