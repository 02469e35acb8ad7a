#include "KestaIPv6Address.h"

#include "KestaAddressDetail.h"
#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPUtilities.h"

bool KestaIPv6Address::m_bIPv6LoopBack = false;
bool KestaIPv6Address::m_bIPv6MutliCast = false;
bool KestaIPv6Address::m_bIPv6LinkLocal = false;
bool KestaIPv6Address::m_bIPv6SiteLocal = false;

namespace
{

// The three classes that a flag may exclude.
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

KestaIPv6Address::KestaIPv6Address(const CKestaString& strAddress) : KestaIPAddress(strAddress)
{
    auto* pAddress = reinterpret_cast<sockaddr_in6*>(&m_binIPAddress);
    if (KestaIPUtilities::convertIPv6StringToAddress(m_strIPAddress, pAddress) == -1)
    {
        // Trace and message differ from each other and from those of IPv4, on purpose.
        KESTA_DEBUG2(
            "KestaIPv6Address::KestaIPv6Address()-Passed string is not a valid IPv6 address ",
            m_strIPAddress, 3);
        throw CKestaExc(CKestaString("KestaIPv6Address::KestaIPv6Address."
                                     "Passed string is not a valid IPv6 address ") +
                        m_strIPAddress);
    }
}

KestaIPv6Address::KestaIPv6Address(const in6_addr& address)
{
    auto* pAddress = reinterpret_cast<sockaddr_in6*>(&m_binIPAddress);
    pAddress->sin6_family = AF_INET6;
    pAddress->sin6_addr = address;
}

KestaIPv6Address::~KestaIPv6Address() = default;

bool KestaIPv6Address::operator<=(const KestaIPAddress* pAddress) const
{
    KESTA_DEBUG1("In KestaIPv6Address::operator<=()", 3);
    return compareTwoIPv6Addresses(asIPv6(pAddress->viewSockAddress())) <= 0;
}

bool KestaIPv6Address::operator>=(const KestaIPAddress* pAddress) const
{
    KESTA_DEBUG1("In KestaIPv6Address::operator>=()", 3);
    return compareTwoIPv6Addresses(asIPv6(pAddress->viewSockAddress())) >= 0;
}

bool KestaIPv6Address::operator==(const KestaIPAddress* pAddress) const
{
    KESTA_DEBUG1("In KestaIPv6Address::operator==()", 3);
    return compareTwoIPv6Addresses(asIPv6(pAddress->viewSockAddress())) == 0;
}

int KestaIPv6Address::compareTwoIPv6Addresses(const sockaddr_in6* other) const
{
    KESTA_DEBUG1("In KestaIPv6Address::compareTwoIPv6Addresses() ", 3);
    int iResult = 0;
    if (other != nullptr)
        iResult = threeWay(number<sockaddr_in6>(), numberOf(*other));
    KESTA_DEBUG1("Out KestaIPv6Address::compareTwoIPv6Addresses() ", 3);
    return iResult;
}

bool KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(const sockaddr_in6* sa)
{
    KESTA_DEBUG1("KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(): Entered", 3);
    const in6_addr& address = sa->sin6_addr;
    // The loopback flag is left out on purpose. The two lines below name the IPv4 check, and are
    // to go on doing so: readers of the log look for them.
    if ((m_bIPv6LinkLocal && isLinkLocal(address)) || (m_bIPv6SiteLocal && isSiteLocal(address)) ||
        (m_bIPv6MutliCast && isMulticast(address)) || isIPv4Compatible(address) ||
        isUnspecified(address))
    {
        KESTA_DEBUG1("KestaIPv6Address::CheckUnAllowedIPv4AddressTypes(): Returing true", 3);
        return true;
    }
    KESTA_DEBUG1("KestaIPv6Address::CheckUnAllowedIPv4AddressTypes(): Returing false", 3);
    return false;
}
