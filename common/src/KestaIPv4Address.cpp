#include "KestaIPv4Address.h"

#include "KestaAddressCodec.h"
#include "KestaAddressDetail.h"
#include "KestaAddressNumber.h"
#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaIPUtilities.h"

#include <sys/socket.h>

bool KestaIPv4Address::m_bIPv4LoopBack = false;
bool KestaIPv4Address::m_bIPv4MutliCast = false;
bool KestaIPv4Address::m_bIPv4LinkLocal = false;
bool KestaIPv4Address::m_bIPv4SiteLocal = false;

KestaIPv4Address::KestaIPv4Address() = default;

KestaIPv4Address::KestaIPv4Address(const CKestaString& strAddress) : KestaIPAddress(strAddress)
{
    if (!read())
        throw refusal();
}

KestaIPv4Address::KestaIPv4Address(const in_addr& address)
{
    char szText[INET_ADDRSTRLEN];
    m_strIPAddress.assign(szText,
                          CKestaAddressCodec::writeIPv4(KestaAddressNumber::of(address), szText));
    asIPv4(m_binIPAddress)->sin_family = AF_INET;
    asIPv4(m_binIPAddress)->sin_addr = address;
}

bool KestaIPv4Address::read(std::string_view address)
{
    m_strIPAddress.assign(address);
    return read();
}

bool KestaIPv4Address::read()
{
    return KestaIPUtilities::convertIPv4StringToAddress(m_strIPAddress, asIPv4(m_binIPAddress)) ==
           0;
}

CKestaExc KestaIPv4Address::refusal() const
{
    KESTA_DEBUG2("KestaIPv4Address::KestaIPv4Address()-Passed string is not a valid IPv4 address: ",
                 m_strIPAddress, iTraceLevel);
    return errorNaming("Passed string is not a valid IPv4 address ", m_strIPAddress);
}

KestaIPv4Address::~KestaIPv4Address() = default;

bool KestaIPv4Address::operator<=(KestaIPAddress* pAddress)
{
    // Intended: of the operators' lines, only this one has a blank before its "()".
    KESTA_DEBUG1("In KestaIPv4Address::operator<= ()", iTraceLevel);
    return compareTwoIPv4Addresses(asIPv4(pAddress->viewSockAddress())) <= 0;
}

bool KestaIPv4Address::operator>=(KestaIPAddress* pAddress)
{
    KESTA_DEBUG1("In KestaIPv4Address::operator>=()", iTraceLevel);
    return compareTwoIPv4Addresses(asIPv4(pAddress->viewSockAddress())) >= 0;
}

bool KestaIPv4Address::operator==(KestaIPAddress* pAddress)
{
    KESTA_DEBUG1("In KestaIPv4Address::operator==()", iTraceLevel);
    return compareTwoIPv4Addresses(asIPv4(pAddress->viewSockAddress())) == 0;
}

int KestaIPv4Address::compareTwoIPv4Addresses(const sockaddr_in* other) const
{
    KESTA_DEBUG1("In KestaIPv4Address::compareTwoIPv4Addresses() ", iTraceLevel);
    int iResult = 0;
    if (other != nullptr)
        iResult = threeWay(KestaAddressNumber::in<KestaIPv4Number>(m_binIPAddress),
                           KestaAddressNumber::of(other->sin_addr));
    KESTA_DEBUG1("Out KestaIPv4Address::compareTwoIPv4Addresses() ", iTraceLevel);
    return iResult;
}

bool KestaIPv4Address::isIPv4SiteLocalAddress(in_addr address)
{
    const in_addr_t uAddress = ntohl(address.s_addr);
    return (uAddress & 0xFF000000) == 0x0A000000 ||   // 10.0.0.0/8
           (uAddress & 0xFFF00000) == 0xAC100000 ||   // 172.16.0.0/12
           (uAddress & 0xFFFF0000) == 0xC0A80000;     // 192.168.0.0/16
}

bool KestaIPv4Address::isIPv4LoopbackAddress(in_addr address)
{
    return (ntohl(address.s_addr) & 0xFF000000) == 0x7F000000;
}

bool KestaIPv4Address::isIPv4LinkLocalAddress(in_addr address)
{
    return (ntohl(address.s_addr) & 0xFFFF0000) == 0xA9FE0000;
}

bool KestaIPv4Address::isIPv4MulticastAddress(in_addr address)
{
    return (ntohl(address.s_addr) & 0xF0000000) == 0xE0000000;
}

bool KestaIPv4Address::isIPv4AnyLocalAddress(in_addr address)
{
    return address.s_addr == INADDR_ANY;
}

bool KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(const sockaddr_in* sa)
{
    KESTA_DEBUG1("KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(): Entered", iTraceLevel);
    const in_addr address = sa->sin_addr;
    // Intended: the loopback flag is not checked.
    if ((m_bIPv4LinkLocal && isIPv4LinkLocalAddress(address)) ||
        (m_bIPv4SiteLocal && isIPv4SiteLocalAddress(address)) ||
        (m_bIPv4MutliCast && isIPv4MulticastAddress(address)) || isIPv4AnyLocalAddress(address))
    {
        KESTA_DEBUG1("KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(): Returing true",
                     iTraceLevel);
        return true;
    }
    KESTA_DEBUG1("KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(): Returing false", iTraceLevel);
    return false;
}
