#include "KestaIPv6Address.h"

#include "KestaAddressCodec.h"
#include "KestaAddressDetail.h"
#include "KestaAddressNumber.h"
#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPUtilities.h"

#include <sys/socket.h>

bool KestaIPv6Address::m_bIPv6LoopBack = false;
bool KestaIPv6Address::m_bIPv6MutliCast = false;
bool KestaIPv6Address::m_bIPv6LinkLocal = false;
bool KestaIPv6Address::m_bIPv6SiteLocal = false;

namespace
{

// The three classes that flags can exclude.
bool isLinkLocal(const in6_addr& address)
{
    return IN6_IS_ADDR_LINKLOCAL(&address);
}

bool isSiteLocal(const in6_addr& address)
{
    return IN6_IS_ADDR_SITELOCAL(&address);
}

bool isMulticast(const in6_addr& address)
{
    return IN6_IS_ADDR_MULTICAST(&address);
}

// ::a.b.c.d, but not :: and ::1.
bool isIPv4Compatible(const in6_addr& address)
{
    return IN6_IS_ADDR_V4COMPAT(&address);
}

bool isUnspecified(const in6_addr& address)
{
    return IN6_IS_ADDR_UNSPECIFIED(&address);
}

}   // namespace

KestaIPv6Address::KestaIPv6Address() = default;

KestaIPv6Address::KestaIPv6Address(const CKestaString& strAddress) : KestaIPAddress(strAddress)
{
    if (!read())
        throw refusal();
}

KestaIPv6Address::KestaIPv6Address(const in6_addr& address)
{
    char szText[INET6_ADDRSTRLEN];
    m_strIPAddress.assign(szText,
                          CKestaAddressCodec::writeIPv6(KestaAddressNumber::of(address), szText));
    asIPv6(m_binIPAddress)->sin6_family = AF_INET6;
    asIPv6(m_binIPAddress)->sin6_addr = address;
}

bool KestaIPv6Address::read(std::string_view address)
{
    m_strIPAddress.assign(address);
    return read();
}

bool KestaIPv6Address::read()
{
    return KestaIPUtilities::convertIPv6StringToAddress(m_strIPAddress, asIPv6(m_binIPAddress)) ==
           0;
}

CKestaExc KestaIPv6Address::refusal() const
{
    // Intended: trace and message differ from each other and from those of IPv4.
    KESTA_DEBUG2("KestaIPv6Address::KestaIPv6Address()-Passed string is not a valid IPv6 address ",
                 m_strIPAddress, iTraceLevel);
    return errorNaming("KestaIPv6Address::KestaIPv6Address."
                       "Passed string is not a valid IPv6 address ",
                       m_strIPAddress);
}

KestaIPv6Address::~KestaIPv6Address() = default;

bool KestaIPv6Address::operator<=(KestaIPAddress* pAddress)
{
    KESTA_DEBUG1("In KestaIPv6Address::operator<=()", iTraceLevel);
    return compareTwoIPv6Addresses(asIPv6(pAddress->viewSockAddress())) <= 0;
}

bool KestaIPv6Address::operator>=(KestaIPAddress* pAddress)
{
    KESTA_DEBUG1("In KestaIPv6Address::operator>=()", iTraceLevel);
    return compareTwoIPv6Addresses(asIPv6(pAddress->viewSockAddress())) >= 0;
}

bool KestaIPv6Address::operator==(KestaIPAddress* pAddress)
{
    KESTA_DEBUG1("In KestaIPv6Address::operator==()", iTraceLevel);
    return compareTwoIPv6Addresses(asIPv6(pAddress->viewSockAddress())) == 0;
}

int KestaIPv6Address::compareTwoIPv6Addresses(const sockaddr_in6* other) const
{
    const auto number = KestaAddressNumber::in<KestaIPv6Number>(m_binIPAddress);
    return compareIPv6(number,
                       other == nullptr ? number : KestaAddressNumber::of(other->sin6_addr));
}

bool KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(const sockaddr_in6* sa)
{
    KESTA_DEBUG1("KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(): Entered", iTraceLevel);
    const in6_addr& address = sa->sin6_addr;
    // Intended: the loopback flag is not checked, and the two result lines name the IPv4 check.
    if ((m_bIPv6LinkLocal && isLinkLocal(address)) || (m_bIPv6SiteLocal && isSiteLocal(address)) ||
        (m_bIPv6MutliCast && isMulticast(address)) || isIPv4Compatible(address) ||
        isUnspecified(address))
    {
        KESTA_DEBUG1("KestaIPv6Address::CheckUnAllowedIPv4AddressTypes(): Returing true",
                     iTraceLevel);
        return true;
    }
    KESTA_DEBUG1("KestaIPv6Address::CheckUnAllowedIPv4AddressTypes(): Returing false", iTraceLevel);
    return false;
}
