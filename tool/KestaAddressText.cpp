#include "KestaAddressText.h"

#include "KestaAddressCodec.h"
#include "KestaIPv4Address.h"

namespace
{

const in_addr& ipv4Of(const KestaIPAddress& address)
{
    return reinterpret_cast<const sockaddr_in&>(address.viewSockAddress()).sin_addr;
}

const in6_addr& ipv6Of(const KestaIPAddress& address)
{
    return reinterpret_cast<const sockaddr_in6&>(address.viewSockAddress()).sin6_addr;
}

bool isIPv6(const KestaIPAddress& address)
{
    return address.viewSockAddress().ss_family == AF_INET6;
}

const char* classOf(const in_addr& address)
{
    return KestaIPv4Address::isIPv4AnyLocalAddress(address)    ? "unspecified"
           : KestaIPv4Address::isIPv4LoopbackAddress(address)  ? "loopback"
           : KestaIPv4Address::isIPv4MulticastAddress(address) ? "multicast"
           : KestaIPv4Address::isIPv4LinkLocalAddress(address) ? "link-local"
           : KestaIPv4Address::isIPv4SiteLocalAddress(address) ? "site-local"
                                                               : "global";
}

const char* classOf(const in6_addr& address)
{
    return IN6_IS_ADDR_UNSPECIFIED(&address) ? "unspecified"
           : IN6_IS_ADDR_LOOPBACK(&address)  ? "loopback"
           : IN6_IS_ADDR_MULTICAST(&address) ? "multicast"
           : IN6_IS_ADDR_LINKLOCAL(&address) ? "link-local"
           : IN6_IS_ADDR_SITELOCAL(&address) ? "site-local"
           : IN6_IS_ADDR_V4MAPPED(&address)  ? "IPv4-mapped"
           : IN6_IS_ADDR_V4COMPAT(&address)  ? "IPv4-compatible"
                                             : "global";
}

}   // namespace

const char* scanAddress(const char* pText, CKestaAddressNumber& address)
{
    KestaIPv4Number ipv4 = 0;
    const char* const pEnd = CKestaAddressCodec::scanIPv4(pText, ipv4);
    address = {pEnd == nullptr, ipv4};
    return pEnd != nullptr ? pEnd : CKestaAddressCodec::scanIPv6(pText, address.number);
}

bool readAddress(std::string_view text, CKestaAddressNumber& address)
{
    const std::string strText(text);
    if (text.find('\0') != std::string_view::npos)
        return false;   // the library's texts end there
    address.bIPv6 = text.find(':') != std::string_view::npos;
    in_addr ipv4 = {};
    in6_addr ipv6 = {};
    const bool bRead = address.bIPv6 ? CKestaAddressCodec::readIPv6(strText.c_str(), ipv6)
                                     : CKestaAddressCodec::readIPv4(strText.c_str(), ipv4);
    address.number = address.bIPv6 ? KestaAddressNumber::of(ipv6) : KestaAddressNumber::of(ipv4);
    return bRead;
}

CKestaAddressNumber numberOf(const KestaIPAddress& address)
{
    if (isIPv6(address))
        return {true, KestaAddressNumber::of(ipv6Of(address))};
    return {false, KestaAddressNumber::of(ipv4Of(address))};
}

std::string textOf(const KestaIPAddress& address)
{
    if (!isIPv6(address))
    {
        char szText[INET_ADDRSTRLEN];
        CKestaAddressCodec::writeIPv4(KestaAddressNumber::of(ipv4Of(address)), szText);
        return szText;
    }
    char szText[INET6_ADDRSTRLEN];
    CKestaAddressCodec::writeIPv6(KestaAddressNumber::of(ipv6Of(address)), szText);
    return szText;
}

const char* familyOf(const KestaIPAddress& address)
{
    return isIPv6(address) ? "IPv6" : "IPv4";
}

const char* classOf(const KestaIPAddress& address)
{
    return isIPv6(address) ? classOf(ipv6Of(address)) : classOf(ipv4Of(address));
}
