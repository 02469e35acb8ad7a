#ifndef KESTA_ADDRESS_DETAIL_H
#define KESTA_ADDRESS_DETAIL_H

#include "KestaAddressCodec.h"
#include "KestaAddressNumber.h"
#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPAddress.h"

#include <algorithm>
#include <exception>   // IWYU pragma: export

#include <netinet/in.h>

// Shared by the address sources: trace level, family casts, three-way compare, address trace, block
// arithmetic and errors.

inline constexpr int iTraceLevel = KestaIPAddress::KESTA_TRACE_LEVEL;

inline const sockaddr_in* asIPv4(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in*>(&storage);
}

inline sockaddr_in* asIPv4(sockaddr_storage& storage)
{
    return reinterpret_cast<sockaddr_in*>(&storage);
}

inline const sockaddr_in6* asIPv6(const sockaddr_storage& storage)
{
    return reinterpret_cast<const sockaddr_in6*>(&storage);
}

inline sockaddr_in6* asIPv6(sockaddr_storage& storage)
{
    return reinterpret_cast<sockaddr_in6*>(&storage);
}

/// -1, 0 or 1: the first number is below, equal to or above the second.
template <class TNumber>
int threeWay(const TNumber& left, const TNumber& right)
{
    return (left > right) - (left < right);
}

/// The same for two IPv6 addresses, traced as the comparison of address values is.
inline int compareIPv6(KestaIPv6Number left, KestaIPv6Number right)
{
    KESTA_DEBUG1("In KestaIPv6Address::compareTwoIPv6Addresses() ", iTraceLevel);
    const int iResult = threeWay(left, right);
    KESTA_DEBUG1("Out KestaIPv6Address::compareTwoIPv6Addresses() ", iTraceLevel);
    return iResult;
}

/// Traces a text followed by an address. While tracing is off, the address's text is not copied.
inline void traceAddress(const char* pszPrefix, const KestaIPAddress& address)
{
    if (CKestaDebug::isTraced(iTraceLevel))
        KESTA_DEBUG2(pszPrefix, address.getStrAddress(), iTraceLevel);
}

/// The bits of an IPv6 address that follow a prefix. A length below 0 counts as 0, one above 128 as
/// 128.
inline KestaIPv6Number hostBits(int iPrefixLength)
{
    constexpr KestaIPv6Number allBits = ~KestaIPv6Number{0};
    if (iPrefixLength >= 128)
        return 0;   // a shift by the full width is undefined
    return allBits >> std::max(iPrefixLength, 0);
}

/// Traces a conversion that is skipped because the number is known: the lines are part of the
/// interface.
inline void traceIPv6Reading()
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv6StringToAddress()", iTraceLevel);
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6StringToAddress()", iTraceLevel);
}

/// An error whose message ends in the text that was refused.
inline CKestaExc errorNaming(const char* pszMessage, const CKestaString& strText)
{
    CKestaString strMessage(pszMessage);
    strMessage += strText;
    return CKestaExc(strMessage);
}

/// Calls `work` so that callers see error objects only: any other exception is traced, and becomes
/// an error object with the given message. All others are `std::exception`s, because only memory
/// can run out here. Error objects are none, nor is the cancellation of the thread, so both pass
/// without being caught: catching and rethrowing would cost a refused text half its time again.
template <class TWork>
void asErrorObjects(const char* pszTrace, const char* pszMessage, TWork work)
{
    try
    {
        work();
    }
    catch (const std::exception&)
    {
        KESTA_DEBUG1(pszTrace, iTraceLevel);
        throw CKestaExc(pszMessage);
    }
}

/// Does what `KestaIPUtilities::InitialiseIPv6EndAddress` does, except that `make` constructs the
/// address, wherever the caller wants it.
template <class TMake>
void makeBlockEnd(const in6_addr& start, int iPrefixLength, TMake make)
{
    const auto work = [&]
    {
        traceIPv6Reading();
        KESTA_DEBUG1("In OKestaIPUtilities::convertIPv6AddressToString()", iTraceLevel);
        make(KestaAddressNumber::toIPv6(KestaAddressNumber::of(start) | hostBits(iPrefixLength)));
        KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6AddressToString() ", iTraceLevel);
    };
    asErrorObjects("KestaIPUtilities::InitialiseIPv6EndAddress()-Unknown Exception",
                   "Unknown Exception", work);
}

#endif
