#include "KestaAddressText.h"

#include "KestaAddressCodec.h"

#include <netinet/in.h>
#include <sys/socket.h>

namespace
{

bool isIPv6(const KestaIPAddress& address)
{
    return address.viewSockAddress().ss_family == AF_INET6;
}

}   // namespace

const char* scanAddress(const char* pText, CKestaAddress& address)
{
    KestaIPv4Number ipv4 = 0;
    const char* const pEnd = CKestaAddressCodec::scanIPv4(pText, ipv4);
    address = {pEnd == nullptr, ipv4};
    return pEnd != nullptr ? pEnd : CKestaAddressCodec::scanIPv6(pText, address.number);
}

bool readAddress(std::string_view text, CKestaAddress& address)
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

CKestaAddress numberOf(const KestaIPAddress& address)
{
    const sockaddr_storage& storage = address.viewSockAddress();
    if (isIPv6(address))
        return {true, KestaAddressNumber::in<KestaIPv6Number>(storage)};
    return {false, KestaAddressNumber::in<KestaIPv4Number>(storage)};
}

std::string textOf(const CKestaAddress& address)
{
    char szIPv4[INET_ADDRSTRLEN];
    char szIPv6[INET6_ADDRSTRLEN];
    if (address.bIPv6)
        CKestaAddressCodec::writeIPv6(address.number, szIPv6);
    else
        CKestaAddressCodec::writeIPv4(static_cast<KestaIPv4Number>(address.number), szIPv4);
    return address.bIPv6 ? szIPv6 : szIPv4;
}

std::string textOf(const KestaIPAddress& address)
{
    return textOf(numberOf(address));
}

const char* familyOf(const KestaIPAddress& address)
{
    return isIPv6(address) ? "IPv6" : "IPv4";
}
