#include "KestaIPUtilities.h"

#include "KestaAddressCodec.h"
#include "KestaAddressDetail.h"
#include "KestaAddressNumber.h"
#include "KestaDebug.h"
#include "KestaProcess.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include <ifaddrs.h>
#include <sys/socket.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace
{

constexpr int iSuccess = 0;
constexpr int iFailure = -1;

/// `getifaddrs`, but not cancelled. It is declared to throw nothing, although it contains
/// cancellation points: a thread that was cancelled in it would end the process.
int listInterfaces(struct ifaddrs*& pFirst)
{
    const CKestaNoCancellation noCancellation;
    return getifaddrs(&pFirst);
}

/// The part of a text that a conversion reads: up to the first "%".
std::string_view withoutScope(const CKestaString& text)
{
    return std::string_view(text.c_str(), std::strcspn(text.c_str(), "%"));
}

}   // namespace

int KestaIPUtilities::StartWSA()
{
    KESTA_DEBUG1("In KestaIPUtilities::StartWSA()", iTraceLevel);
    KESTA_DEBUG1("Out KestaIPUtilities::StartWSA()", iTraceLevel);
    return iSuccess;
}

void KestaIPUtilities::EndWSA() {}

int KestaIPUtilities::queryHostName(char* name)
{
    KESTA_DEBUG1("In KestaIPUtilities::queryHostName()", iTraceLevel);
    const int iResult = gethostname(name, KESTA_HOST_NAME_SIZE);
    if (iResult == 0)
        KESTA_DEBUG2("KestaIPUtilities::queryHostName Local Host Name : ", name, iTraceLevel);
    KESTA_DEBUG1("Out KestaIPUtilities::queryHostName()", iTraceLevel);
    return iResult;
}

int KestaIPUtilities::setOSName(CKestaString& osName)
{
    KESTA_DEBUG1("In KestaIPUtilities::setOSName()", iTraceLevel);
    KESTA_DEBUG1("Setting OS Name for Non-Windows", iTraceLevel);
    int iResult = iSuccess;
    struct utsname bufHost;
    if (uname(&bufHost) < 0)
    {
        KESTA_DEBUG2("setOSName :: Error number after executing uname ", errno, iTraceLevel);
        KESTA_DEBUG1("setOSName :: Error in getting OS Name", iTraceLevel);
        iResult = iFailure;
    }
    KESTA_DEBUG2("Return code in setOSName ", iResult, iTraceLevel);
    if (iResult == iSuccess)
    {
        osName = bufHost.sysname;
        KESTA_DEBUG2("OS name in objOSName ", osName, iTraceLevel);
        KESTA_DEBUG2("OS name in bufHost.sysname ", bufHost.sysname, iTraceLevel);
    }
    KESTA_DEBUG1("Out KestaIPUtilities::setOSName()", iTraceLevel);
    return iResult;
}

int KestaIPUtilities::queryHostIP(const char* /*host*/, CKestaArray<KestaIPv6Address>& ipv6List,
                                  CKestaArray<KestaIPv4Address>& ipv4List)
{
    KESTA_DEBUG1("In KestaIPUtilities::queryHostIP()", iTraceLevel);
    if (getInterfaceAddresses(ipv4List, ipv6List) != iSuccess)
    {
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()-getInterfaceAddresses() failed ",
                     "Unable to detect IP address", iTraceLevel);
        return iFailure;
    }
    KESTA_DEBUG1("Out KestaIPUtilities::queryHostIP()", iTraceLevel);
    return iSuccess;
}

int KestaIPUtilities::getInterfaceAddresses(CKestaArray<KestaIPv4Address>& ipv4List,
                                            CKestaArray<KestaIPv6Address>& ipv6List)
{
    KESTA_DEBUG1("Entered KestaIPUtilities::getInterfaceAddresses()", iTraceLevel);
    struct ifaddrs* pFirst = nullptr;
    if (listInterfaces(pFirst) != 0)
    {
        if (CKestaDebug::isTraced(iTraceLevel))
            KESTA_DEBUG2("KestaIPUtilities::getInterfaceAddresses: getifaddrs() call failed ",
                         std::strerror(errno), iTraceLevel);
        return iFailure;
    }
    std::unique_ptr<struct ifaddrs, decltype(&freeifaddrs)> pInterfaces(pFirst, &freeifaddrs);
    for (const struct ifaddrs* pEntry = pFirst; pEntry != nullptr; pEntry = pEntry->ifa_next)
    {
        if (pEntry->ifa_addr == nullptr)
            continue;   // an interface without an address, such as a tunnel that is down
        switch (pEntry->ifa_addr->sa_family)
        {
        case AF_INET:
            addIPv4addressToArray(ipv4List, reinterpret_cast<sockaddr_in*>(pEntry->ifa_addr));
            break;
        case AF_INET6:
            addIPv6addressToArray(ipv6List, reinterpret_cast<sockaddr_in6*>(pEntry->ifa_addr));
            break;
        default:
            KESTA_DEBUG1("Unknown address family\n", iTraceLevel);   // the second newline is fixed
            break;
        }
    }
    pInterfaces.reset();
    KESTA_DEBUG1("KestaIPUtilities::getInterfaceAddresses: Exiting with Success", iTraceLevel);
    return iSuccess;
}

// The texts of the next two say queryHostIP, although it is their caller's caller. That is fixed,
// and so are their misspellings.
void KestaIPUtilities::addIPv4addressToArray(CKestaArray<KestaIPv4Address>& ipv4List,
                                             const sockaddr_in* sa)
{
    CKestaString strAddress("NULL");
    KESTA_DEBUG1("Entered KestaIPUtilities::addIPv4addressToArray", iTraceLevel);
    if (convertIPv4AddressToString(sa, strAddress) != iSuccess)
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()- Failed to convert detected IPv4 address to "
                     "string: ",
                     strAddress, iTraceLevel);
    else
    {
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()- detected IPv4 address :-", strAddress,
                     iTraceLevel);
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()- adding IPv4 address to the list :-",
                     strAddress, iTraceLevel);
        ipv4List.add(KestaIPv4Address(strAddress));
    }
    KESTA_DEBUG1("KestaIPUtilities::addIPv4addressToArray: Exiting ", iTraceLevel);
}

void KestaIPUtilities::addIPv6addressToArray(CKestaArray<KestaIPv6Address>& ipv6List,
                                             const sockaddr_in6* sa)
{
    CKestaString strAddress("NULL");
    KESTA_DEBUG1("Entered KestaIPUtilities::addIPv6addressToArray", iTraceLevel);
    if (convertIPv6AddressToString(sa, strAddress) != iSuccess)
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()- Failed to convert detected IPv6 address to "
                     "string: ",
                     strAddress, iTraceLevel);
    else
    {
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()- detected IPv6 address :-", strAddress,
                     iTraceLevel);
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()- adding IPv6 address to the list :-",
                     strAddress, iTraceLevel);
        ipv6List.add(KestaIPv6Address(strAddress));
    }
    KESTA_DEBUG1("KestaIPUtilities::addIPv6addressToArray: Exiting ", iTraceLevel);
}

void KestaIPUtilities::getfilteredIPv4Addresses(CKestaArray<KestaIPv4Address>& out,
                                                const CKestaArray<KestaIPv4Address>& in)
{
    KESTA_DEBUG1("Entered KestaIPUtilities::getfilteredIPv4Addresses", iTraceLevel);
    const auto uCount = static_cast<unsigned int>(in.size());   // out may be in itself
    for (unsigned int uIndex = 0; uIndex < uCount; ++uIndex)
    {
        const auto* sa = asIPv4(in.getAt(uIndex).viewSockAddress());
        // Loopback addresses are dropped whatever the flags say, and without a line of their own.
        if (KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(sa) ||
            KestaIPv4Address::isIPv4LoopbackAddress(sa->sin_addr))
            continue;
        traceAddress(
            "KestaIPUtilities::getfilteredIPv4Addresses()- adding filtered IPv4 address to "
            "the list :-",
            in.getAt(uIndex));
        out.add(in.getAt(uIndex));
    }
    KESTA_DEBUG1("KestaIPUtilities::getfilteredIPv4Addresses: Exiting ", iTraceLevel);
}

void KestaIPUtilities::getfilteredIPv6Addresses(CKestaArray<KestaIPv6Address>& out,
                                                const CKestaArray<KestaIPv6Address>& in)
{
    KESTA_DEBUG1("Entered KestaIPUtilities::getfilteredIPv6Addresses", iTraceLevel);
    const auto uCount = static_cast<unsigned int>(in.size());   // out may be in itself
    for (unsigned int uIndex = 0; uIndex < uCount; ++uIndex)
    {
        const auto* sa = asIPv6(in.getAt(uIndex).viewSockAddress());
        if (KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(sa) ||
            IN6_IS_ADDR_LOOPBACK(&sa->sin6_addr))
            continue;
        traceAddress(
            "KestaIPUtilities::getfilteredIPv6Addresses()- adding filtered IPv6 address to "
            "the list :-",
            in.getAt(uIndex));
        out.add(in.getAt(uIndex));
    }
    KESTA_DEBUG1("KestaIPUtilities::getfilteredIPv6Addresses: Exiting ", iTraceLevel);
}

int KestaIPUtilities::convertIPv4StringToAddress(const CKestaString& text, sockaddr_in* sa)
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv4StringToAddress() ", iTraceLevel);
    sa->sin_family = AF_INET;
    if (!CKestaAddressCodec::readIPv4(text.c_str(), sa->sin_addr))
    {
        KESTA_DEBUG2("KestaIPUtilities::convertIPv4StringToAddress Failed to convert string to "
                     "address: ",
                     withoutScope(text), iTraceLevel);
        return iFailure;
    }
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv4StringToAddress ", iTraceLevel);
    return iSuccess;
}

int KestaIPUtilities::convertIPv4AddressToString(const sockaddr_in* sa, CKestaString& text)
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv4AddressToString()", iTraceLevel);
    char szAddress[INET_ADDRSTRLEN];
    CKestaAddressCodec::writeIPv4(KestaAddressNumber::of(sa->sin_addr), szAddress);
    text = szAddress;
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv4AddressToString()", iTraceLevel);
    return iSuccess;
}

int KestaIPUtilities::convertIPv6StringToAddress(const CKestaString& text, sockaddr_in6* sa)
{
    sa->sin6_family = AF_INET6;
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv6StringToAddress()", iTraceLevel);
    if (!CKestaAddressCodec::readIPv6(text.c_str(), sa->sin6_addr))
    {
        KESTA_DEBUG2(" KestaIPUtilities::convertIPv6StringToAddress()-Failed to convert string to "
                     "address ",
                     withoutScope(text), iTraceLevel);
        return iFailure;
    }
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6StringToAddress()", iTraceLevel);
    return iSuccess;
}

int KestaIPUtilities::convertIPv6AddressToString(const sockaddr_in6* sa, CKestaString& text)
{
    KESTA_DEBUG1("In OKestaIPUtilities::convertIPv6AddressToString()", iTraceLevel);
    char szAddress[INET6_ADDRSTRLEN];
    CKestaAddressCodec::writeIPv6(KestaAddressNumber::of(sa->sin6_addr), szAddress);
    text = szAddress;
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6AddressToString() ", iTraceLevel);
    return iSuccess;
}

bool KestaIPUtilities::ValidateIPv6StartAddress(sockaddr_in6* sa, int prefixLength)
{
    KESTA_DEBUG1("In KestaIPUtilities::ValidateIPv6StartAddress() ", iTraceLevel);
    if (sa == nullptr)
        return false;
    traceIPv6Reading();
    const KestaIPv6Number hostPart = KestaAddressNumber::of(sa->sin6_addr) & hostBits(prefixLength);
    sa->sin6_addr = KestaAddressNumber::toIPv6(hostPart);
    if (compareIPv6(0, hostPart) != 0)
        return false;   // without an "Out" line, on purpose
    KESTA_DEBUG1("Out KestaIPUtilities::ValidateIPv6StartAddress() ", iTraceLevel);
    return true;
}

void KestaIPUtilities::InitialiseIPv6EndAddress(const sockaddr_in6* start, KestaIPAddress** end,
                                                int prefixLength)
{
    KESTA_DEBUG1("In KestaIPUtilities::InitialiseIPv6EndAddress() ", iTraceLevel);
    if (start != nullptr)
        makeBlockEnd(start->sin6_addr, prefixLength,
                     [end](const in6_addr& last) { *end = new KestaIPv6Address(last); });
    KESTA_DEBUG1("Out KestaIPUtilities::InitialiseIPv6EndAddress()", iTraceLevel);
}
