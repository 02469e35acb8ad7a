#ifndef KESTA_ADDRESS_CODEC_H
#define KESTA_ADDRESS_CODEC_H

#include "KestaAddressNumber.h"

#include <netinet/in.h>

/// Reads and writes address texts: the one place that does, for the library and for the tool. It
/// knows nothing of address values, traces nothing and throws nothing but `std::bad_alloc`.
class CKestaAddressCodec
{
public:
    /// Reads four decimal parts without leading zeros at the start of a text, whatever follows.
    /// Returns their end, or null for any other text, which may still be an address.
    static const char* scanIPv4(const char* pText, KestaIPv4Number& number);

    /// The same for parts that may also be "*", which counts as 0 in `first` and as 255 in `last`.
    static const char* scanIPv4Pattern(const char* pText, KestaIPv4Number& first,
                                       KestaIPv4Number& last);

    /// Reads eight groups of one to four hexadecimal digits, some of which "::" may replace, in the
    /// same way.
    static const char* scanIPv6(const char* pText, KestaIPv6Number& number);

    /// Reads a whole text, up to its first "%", as `inet_aton` does.
    static bool readIPv4(const char* pszText, in_addr& address);

    /// Reads a whole text, up to its first "%", as `inet_pton` does.
    static bool readIPv6(const char* pszText, in6_addr& address);

    /// Writes four decimal parts, NUL-terminated; returns the position of the NUL.
    static char* writeIPv4(KestaIPv4Number number, char (&szText)[INET_ADDRSTRLEN]);

    /// The same for IPv6, as `inet_ntop` writes it.
    static char* writeIPv6(KestaIPv6Number number, char (&szText)[INET6_ADDRSTRLEN]);
};

#endif
