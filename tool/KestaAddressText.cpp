#include "KestaAddressText.h"

#include "KestaIPUtilities.h"
#include "KestaIPv4Address.h"

#include <array>
#include <cstring>

#include <arpa/inet.h>
#include <endian.h>
#include <netinet/in.h>

namespace
{

constexpr unsigned int uNoDigit = 16;

constexpr std::array<unsigned char, 256> hexDigits()
{
    std::array<unsigned char, 256> digits{};
    for (unsigned int u = 0; u < digits.size(); ++u)
        digits[u] = static_cast<unsigned char>(u >= '0' && u <= '9'   ? u - '0'
                                               : u >= 'a' && u <= 'f' ? u - 'a' + 10
                                               : u >= 'A' && u <= 'F' ? u - 'A' + 10
                                                                      : uNoDigit);
    return digits;
}

constexpr std::array<unsigned char, 256> hexValues = hexDigits();

unsigned int hexDigit(char c)
{
    return hexValues[static_cast<unsigned char>(c)];
}

unsigned int decimalDigit(char c)
{
    return static_cast<unsigned int>(c) - '0';   // over 9 for what is none
}

// One part of an IPv4 address. A leading zero is left to the library: it makes the part octal.
const char* scanOctet(const char* pText, unsigned int& uOctet)
{
    uOctet = decimalDigit(*pText);
    if (uOctet > 9)
        return nullptr;
    for (++pText; decimalDigit(*pText) <= 9; ++pText)
    {
        if (uOctet == 0)
            return nullptr;
        uOctet = uOctet * 10 + decimalDigit(*pText);
        if (uOctet > 255)
            return nullptr;
    }
    return pText;
}

// One group of an IPv6 address: one to four digits.
const char* scanGroup(const char* pText, unsigned int& uGroup)
{
    const char* const pStart = pText;
    uGroup = 0;
    for (unsigned int uDigit; (uDigit = hexDigit(*pText)) != uNoDigit; ++pText)
    {
        if (pText - pStart == 4)
            return nullptr;
        uGroup = uGroup << 4 | uDigit;
    }
    return pText != pStart ? pText : nullptr;
}

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

CKestaIPv6Number numberOf(const in6_addr& address)
{
    std::uint64_t halves[2];
    std::memcpy(halves, &address, sizeof halves);
    return CKestaIPv6Number{be64toh(halves[0])} << 64 | be64toh(halves[1]);
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

const char* scanIPv4(const char* pText, std::uint32_t& uAddress)
{
    unsigned int uOctet;
    pText = scanOctet(pText, uOctet);
    uAddress = uOctet;
    for (int i = 1; i < 4; ++i)
    {
        if (pText == nullptr || *pText != '.')
            return nullptr;
        pText = scanOctet(pText + 1, uOctet);
        uAddress = uAddress << 8 | uOctet;
    }
    return pText;
}

const char* scanIPv6(const char* pText, CKestaIPv6Number& address)
{
    constexpr int iAllGroups = 8;
    CKestaIPv6Number number = 0;   // of the groups read since the start, or since the gap
    CKestaIPv6Number upper = 0;    // of the groups before the gap, in their place
    int iGroups = 0;
    bool bGap = false;
    while (true)
    {
        if (pText[0] == ':' && pText[1] == ':' && !bGap)
        {
            bGap = true;
            pText += 2;
            if (iGroups > 0)
                upper = number << 16 * (iAllGroups - iGroups);
            number = 0;
            if (hexDigit(*pText) == uNoDigit)
                break;
        }
        else if (iGroups > 0)
        {
            if (*pText != ':')
                break;
            ++pText;
        }
        unsigned int uGroup;
        pText = scanGroup(pText, uGroup);
        if (pText == nullptr || iGroups == iAllGroups)
            return nullptr;
        number = number << 16 | uGroup;
        ++iGroups;
    }
    if (bGap ? iGroups == iAllGroups : iGroups != iAllGroups)
        return nullptr;
    address = upper | number;
    return pText;
}

bool readAddress(std::string_view text, CKestaAddressNumber& address)
{
    if (text.find('\0') != std::string_view::npos)
        return false;   // the library's texts end there
    const CKestaString strText{std::string(text)};
    address.bIPv6 = text.find(':') != std::string_view::npos;
    if (address.bIPv6)
    {
        sockaddr_in6 sa;
        const bool bRead = KestaIPUtilities::convertIPv6StringToAddress(strText, &sa) == 0;
        if (bRead)
            address.number = numberOf(sa.sin6_addr);
        return bRead;
    }
    sockaddr_in sa;
    const bool bRead = KestaIPUtilities::convertIPv4StringToAddress(strText, &sa) == 0;
    if (bRead)
        address.number = ntohl(sa.sin_addr.s_addr);
    return bRead;
}

CKestaAddressNumber numberOf(const KestaIPAddress& address)
{
    if (isIPv6(address))
        return {true, numberOf(ipv6Of(address))};
    return {false, ntohl(ipv4Of(address).s_addr)};
}

std::string textOf(const KestaIPAddress& address)
{
    char szText[INET6_ADDRSTRLEN];
    const bool bIPv6 = isIPv6(address);
    const void* const pAddress =
        bIPv6 ? static_cast<const void*>(&ipv6Of(address)) : &ipv4Of(address);
    return inet_ntop(bIPv6 ? AF_INET6 : AF_INET, pAddress, szText, sizeof szText);
}

const char* familyOf(const KestaIPAddress& address)
{
    return isIPv6(address) ? "IPv6" : "IPv4";
}

const char* classOf(const KestaIPAddress& address)
{
    return isIPv6(address) ? classOf(ipv6Of(address)) : classOf(ipv4Of(address));
}
