#include "KestaIPUtilities.h"

#include "KestaAddressDetail.h"
#include "KestaDebug.h"
#include "KestaException.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <iterator>
#include <memory>
#include <string>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace
{

constexpr int iSuccess = 0;
constexpr int iFailure = -1;
constexpr std::size_t ulHostNameSize = 1024;

/// What the two families do not share: their types, conversions, classes and trace texts. The
/// texts name queryHostIP where its callee's callee writes them; they are fixed, as is their
/// spelling.
struct CIPv4
{
    typedef KestaIPv4Address CAddress;
    typedef sockaddr_in CSocketAddress;

    static constexpr char szAddIn[] = "Entered KestaIPUtilities::addIPv4addressToArray";
    static constexpr char szAddFailed[] =
        "KestaIPUtilities::queryHostIP()- Failed to convert detected IPv4 address to string: ";
    static constexpr char szAddDetected[] =
        "KestaIPUtilities::queryHostIP()- detected IPv4 address :-";
    static constexpr char szAddAdding[] =
        "KestaIPUtilities::queryHostIP()- adding IPv4 address to the list :-";
    static constexpr char szAddFiltering[] =
        "KestaIPUtilities::queryHostIP(): Filtering (Not addding) IPv4 address: ";
    static constexpr char szAddOut[] = "KestaIPUtilities::addIPv4addressToArray: Exiting ";

    static constexpr char szFilterIn[] = "Entered KestaIPUtilities::getfilteredIPv4Addresses";
    static constexpr char szFilterAdding[] = "KestaIPUtilities::getfilteredIPv4Addresses()- "
                                             "adding filtered IPv4 address to the list :-";
    static constexpr char szFilterOut[] = "KestaIPUtilities::getfilteredIPv4Addresses: Exiting ";

    static int toText(const sockaddr_in* sa, CKestaString& text)
    {
        return KestaIPUtilities::convertIPv4AddressToString(sa, text);
    }
    static bool isUnallowed(const sockaddr_in* sa)
    {
        return KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(sa);
    }
    static bool isLoopback(const sockaddr_in* sa)
    {
        return KestaIPv4Address::isIPv4LoopbackAddress(sa->sin_addr);
    }
};

struct CIPv6
{
    typedef KestaIPv6Address CAddress;
    typedef sockaddr_in6 CSocketAddress;

    static constexpr char szAddIn[] = "Entered KestaIPUtilities::addIPv6addressToArray";
    static constexpr char szAddFailed[] =
        "KestaIPUtilities::queryHostIP()- Failed to convert detected IPv6 address to string: ";
    static constexpr char szAddDetected[] =
        "KestaIPUtilities::queryHostIP()- detected IPv6 address :-";
    static constexpr char szAddAdding[] =
        "KestaIPUtilities::queryHostIP()- adding IPv6 address to the list :-";
    static constexpr char szAddFiltering[] =
        "KestaIPUtilities::queryHostIP(): Filtering (Not addding) IPv6 address: ";
    static constexpr char szAddOut[] = "KestaIPUtilities::addIPv6addressToArray: Exiting ";

    static constexpr char szFilterIn[] = "Entered KestaIPUtilities::getfilteredIPv6Addresses";
    static constexpr char szFilterAdding[] = "KestaIPUtilities::getfilteredIPv6Addresses()- "
                                             "adding filtered IPv6 address to the list :-";
    static constexpr char szFilterOut[] = "KestaIPUtilities::getfilteredIPv6Addresses: Exiting ";

    static int toText(const sockaddr_in6* sa, CKestaString& text)
    {
        return KestaIPUtilities::convertIPv6AddressToString(sa, text);
    }
    static bool isUnallowed(const sockaddr_in6* sa)
    {
        return KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(sa);
    }
    static bool isLoopback(const sockaddr_in6* sa) { return IN6_IS_ADDR_LOOPBACK(&sa->sin6_addr); }
};

template <class TFamily>
void addAddress(CKestaArray<typename TFamily::CAddress>& list,
                const typename TFamily::CSocketAddress* sa)
{
    CKestaString strAddress("NULL");
    KESTA_DEBUG1(TFamily::szAddIn, 3);
    if (TFamily::toText(sa, strAddress) != iSuccess)
        KESTA_DEBUG2(TFamily::szAddFailed, strAddress, 3);
    else
    {
        KESTA_DEBUG2(TFamily::szAddDetected, strAddress, 3);
        if (strAddress == "NULL")
            KESTA_DEBUG2(TFamily::szAddFiltering, strAddress, 3);
        else
        {
            KESTA_DEBUG2(TFamily::szAddAdding, strAddress, 3);
            list.add(typename TFamily::CAddress(strAddress));
        }
    }
    KESTA_DEBUG1(TFamily::szAddOut, 3);
}

template <class TFamily>
void addFiltered(CKestaArray<typename TFamily::CAddress>& out,
                 const CKestaArray<typename TFamily::CAddress>& in)
{
    KESTA_DEBUG1(TFamily::szFilterIn, 3);
    const auto uCount = static_cast<unsigned int>(in.size());   // out may be in itself
    for (unsigned int uIndex = 0; uIndex < uCount; ++uIndex)
    {
        const auto* sa = reinterpret_cast<const typename TFamily::CSocketAddress*>(
            &in.getAt(uIndex).viewSockAddress());
        // Loopback addresses are dropped whatever the flags say, and without a line of their own.
        if (TFamily::isUnallowed(sa) || TFamily::isLoopback(sa))
            continue;
        traceAddress(TFamily::szFilterAdding, in.getAt(uIndex));
        out.add(in.getAt(uIndex));
    }
    KESTA_DEBUG1(TFamily::szFilterOut, 3);
}

/// The one place that splits off a scope: an address text ends before its first "%".
class CAddressText
{
public:
    explicit CAddressText(const CKestaString& text) : m_pszText(text.c_str())
    {
        const char* pszScope = std::strchr(m_pszText, '%');
        if (pszScope == nullptr)
            return;   // nothing to cut, so nothing to copy
        m_strCut.assign(m_pszText, pszScope);
        m_pszText = m_strCut.c_str();
    }

    CAddressText(const CAddressText&) = delete;
    CAddressText& operator=(const CAddressText&) = delete;

    const char* c_str() const { return m_pszText; }

private:
    std::string m_strCut;
    const char* m_pszText;
};

/// Writes a group of an IPv6 address, without leading zeros; returns the end of what it wrote.
char* writeGroup(char* pszEnd, unsigned int uGroup)
{
    constexpr char szDigits[] = "0123456789abcdef";
    if (uGroup > 0xFFF)
        *pszEnd++ = szDigits[uGroup >> 12];
    if (uGroup > 0xFF)
        *pszEnd++ = szDigits[uGroup >> 8 & 0xF];
    if (uGroup > 0xF)
        *pszEnd++ = szDigits[uGroup >> 4 & 0xF];
    *pszEnd++ = szDigits[uGroup & 0xF];
    return pszEnd;
}

// Reads four decimal parts without leading zeros: the form of nearly every text, at a fifth of what
// inet_aton takes for it, which all other forms are left to.
bool readFourParts(const char* pszText, in_addr& address)
{
    std::uint32_t uAddress = 0;
    for (int iPart = 0; iPart < 4; ++iPart)
    {
        if (iPart > 0 && *pszText++ != '.')
            return false;
        const char* const pszPart = pszText;
        unsigned int uPart = 0;
        while (*pszText >= '0' && *pszText <= '9' && uPart <= 255)
            uPart = uPart * 10 + static_cast<unsigned int>(*pszText++ - '0');
        const bool bOctal = *pszPart == '0' && pszText - pszPart > 1;
        if (pszText == pszPart || bOctal || uPart > 255)
            return false;
        uAddress = uAddress << 8 | uPart;
    }
    if (*pszText != '\0')
        return false;
    address.s_addr = htonl(uAddress);
    return true;
}

// inet_ntop gives the same text, but takes longer for it than all else that goes into a range.
void writeCompressed(const in6_addr& address, char (&szText)[INET6_ADDRSTRLEN])
{
    constexpr int iGroups = 8;
    std::uint16_t groups[iGroups];
    std::memcpy(groups, &address, sizeof groups);

    // The first of the longest runs of zeros gives way to "::", if it is longer than one group.
    int iZeros = iGroups;
    int iZeroGroups = 1;
    int iRun = 0;
    for (int i = 0; i < iGroups; ++i)
    {
        groups[i] = ntohs(groups[i]);
        iRun = groups[i] == 0 ? iRun + 1 : 0;
        if (iRun > iZeroGroups)
        {
            iZeroGroups = iRun;
            iZeros = i + 1 - iRun;
        }
    }

    // The IPv4 part of IPv4-compatible and IPv4-mapped addresses keeps its own form.
    const bool bIPv4Part =
        iZeros == 0 && (iZeroGroups == 6 || (iZeroGroups == 5 && groups[5] == 0xFFFF));
    const int iHexGroups = bIPv4Part ? 6 : iGroups;

    char* pszEnd = szText;
    for (int i = 0; i < iHexGroups; ++i)
    {
        if (i == iZeros)
        {
            *pszEnd++ = ':';
            i += iZeroGroups - 1;
            if (i + 1 == iGroups)
                *pszEnd++ = ':';
            continue;
        }
        if (i > 0)
            *pszEnd++ = ':';
        pszEnd = writeGroup(pszEnd, groups[i]);
    }
    if (bIPv4Part)
    {
        *pszEnd++ = ':';
        inet_ntop(AF_INET, &address.s6_addr[12], pszEnd, INET_ADDRSTRLEN);
        return;
    }
    *pszEnd = '\0';
}

/// The same as `text = pszText`, which would make a text of its own first.
void assignText(CKestaString& text, const char* pszText)
{
    text = CKestaString();
    text.append(pszText);
}

/// A prefix length as both prefix operations take it: so many whole bytes, so many bits of the byte
/// after them.
struct CPrefix
{
    explicit CPrefix(int iLength)
        : iBytes(std::clamp(iLength, 0, 128) / 8), iBits(std::clamp(iLength, 0, 128) % 8)
    {
    }

    int iBytes;
    int iBits;

    /// The bits of byte `iBytes` that come after the prefix.
    unsigned char hostBits() const { return static_cast<unsigned char>(0xFF >> iBits); }
};

// The trace shows the address read from a text. Its lines are fixed; the reading is left out.
in6_addr uniformAddress(unsigned char cByte)
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv6StringToAddress()", 3);
    in6_addr address;
    std::fill(std::begin(address.s6_addr), std::end(address.s6_addr), cByte);
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6StringToAddress()", 3);
    return address;
}

}   // namespace

int KestaIPUtilities::StartWSA()
{
    KESTA_DEBUG1("In KestaIPUtilities::StartWSA()", 3);
    KESTA_DEBUG1("Out KestaIPUtilities::StartWSA()", 3);
    return iSuccess;
}

void KestaIPUtilities::EndWSA() {}

int KestaIPUtilities::queryHostName(char* name)
{
    KESTA_DEBUG1("In KestaIPUtilities::queryHostName()", 3);
    const int iResult = gethostname(name, ulHostNameSize);
    if (iResult == 0)
        KESTA_DEBUG2("KestaIPUtilities::queryHostName Local Host Name : ", name, 3);
    KESTA_DEBUG1("Out KestaIPUtilities::queryHostName()", 3);
    return iResult;
}

int KestaIPUtilities::setOSName(CKestaString& osName)
{
    KESTA_DEBUG1("In KestaIPUtilities::setOSName()", 3);
    KESTA_DEBUG1("Setting OS Name for Non-Windows", 3);
    int iResult = iSuccess;
    struct utsname bufHost;
    if (uname(&bufHost) < 0)
    {
        KESTA_DEBUG2("setOSName :: Error number after executing uname ", errno, 3);
        KESTA_DEBUG1("setOSName :: Error in getting OS Name", 3);
        iResult = iFailure;
    }
    KESTA_DEBUG2("Return code in setOSName ", iResult, 3);
    if (iResult == iSuccess)
    {
        osName = bufHost.sysname;
        KESTA_DEBUG2("OS name in objOSName ", osName, 3);
        KESTA_DEBUG2("OS name in bufHost.sysname ", bufHost.sysname, 3);
    }
    KESTA_DEBUG1("Out KestaIPUtilities::setOSName()", 3);
    return iResult;
}

int KestaIPUtilities::queryHostIP(const char* /*host*/, CKestaArray<KestaIPv6Address>& ipv6List,
                                  CKestaArray<KestaIPv4Address>& ipv4List)
{
    KESTA_DEBUG1("In KestaIPUtilities::queryHostIP()", 3);
    if (getInterfaceAddresses(ipv4List, ipv6List) != iSuccess)
    {
        KESTA_DEBUG2("KestaIPUtilities::queryHostIP()-getInterfaceAddresses() failed ",
                     "Unable to detect IP address", 3);
        return iFailure;
    }
    KESTA_DEBUG1("Out KestaIPUtilities::queryHostIP()", 3);
    return iSuccess;
}

int KestaIPUtilities::getInterfaceAddresses(CKestaArray<KestaIPv4Address>& ipv4List,
                                            CKestaArray<KestaIPv6Address>& ipv6List)
{
    KESTA_DEBUG1("Entered KestaIPUtilities::getInterfaceAddresses()", 3);
    struct ifaddrs* pFirst = nullptr;
    if (getifaddrs(&pFirst) != 0)
    {
        if (CKestaDebug::isTraced(3))
            KESTA_DEBUG2("KestaIPUtilities::getInterfaceAddresses: getifaddrs() call failed ",
                         std::strerror(errno), 3);
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
            KESTA_DEBUG1("Unknown address family\n", 3);   // with a newline of its own
            break;
        }
    }
    pInterfaces.reset();
    KESTA_DEBUG1("KestaIPUtilities::getInterfaceAddresses: Exiting with Success", 3);
    return iSuccess;
}

void KestaIPUtilities::addIPv4addressToArray(CKestaArray<KestaIPv4Address>& ipv4List,
                                             const sockaddr_in* sa)
{
    addAddress<CIPv4>(ipv4List, sa);
}

void KestaIPUtilities::addIPv6addressToArray(CKestaArray<KestaIPv6Address>& ipv6List,
                                             const sockaddr_in6* sa)
{
    addAddress<CIPv6>(ipv6List, sa);
}

void KestaIPUtilities::getfilteredIPv4Addresses(CKestaArray<KestaIPv4Address>& out,
                                                const CKestaArray<KestaIPv4Address>& in)
{
    addFiltered<CIPv4>(out, in);
}

void KestaIPUtilities::getfilteredIPv6Addresses(CKestaArray<KestaIPv6Address>& out,
                                                const CKestaArray<KestaIPv6Address>& in)
{
    addFiltered<CIPv6>(out, in);
}

int KestaIPUtilities::convertIPv4StringToAddress(const CKestaString& text, sockaddr_in* sa)
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv4StringToAddress() ", 3);
    const CAddressText address(text);
    sa->sin_family = AF_INET;
    if (!readFourParts(address.c_str(), sa->sin_addr) &&
        inet_aton(address.c_str(), &sa->sin_addr) == 0)
    {
        KESTA_DEBUG2("KestaIPUtilities::convertIPv4StringToAddress Failed to convert string to "
                     "address: ",
                     address.c_str(), 3);
        return iFailure;
    }
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv4StringToAddress ", 3);
    return iSuccess;
}

int KestaIPUtilities::convertIPv4AddressToString(const sockaddr_in* sa, CKestaString& text)
{
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv4AddressToString()", 3);
    char szAddress[INET_ADDRSTRLEN];
    if (inet_ntop(AF_INET, &sa->sin_addr, szAddress, sizeof szAddress) == nullptr)
    {
        KESTA_DEBUG1("In KestaIPUtilities::convertIPv4AddressToString- Failed to convert address "
                     "to string",
                     3);
        return iFailure;
    }
    assignText(text, szAddress);
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv4AddressToString()", 3);
    return iSuccess;
}

int KestaIPUtilities::convertIPv6StringToAddress(const CKestaString& text, sockaddr_in6* sa)
{
    const CAddressText address(text);
    sa->sin6_family = AF_INET6;
    KESTA_DEBUG1("In KestaIPUtilities::convertIPv6StringToAddress()", 3);
    if (inet_pton(AF_INET6, address.c_str(), &sa->sin6_addr) != 1)
    {
        KESTA_DEBUG2(" KestaIPUtilities::convertIPv6StringToAddress()-Failed to convert string to "
                     "address ",
                     address.c_str(), 3);
        return iFailure;
    }
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6StringToAddress()", 3);
    return iSuccess;
}

int KestaIPUtilities::convertIPv6AddressToString(const sockaddr_in6* sa, CKestaString& text)
{
    KESTA_DEBUG1("In OKestaIPUtilities::convertIPv6AddressToString()", 3);
    char szAddress[INET6_ADDRSTRLEN];
    writeCompressed(sa->sin6_addr, szAddress);   // never fails
    assignText(text, szAddress);
    KESTA_DEBUG1("Out KestaIPUtilities::convertIPv6AddressToString() ", 3);
    return iSuccess;
}

bool KestaIPUtilities::ValidateIPv6StartAddress(sockaddr_in6* sa, int prefixLength)
{
    KESTA_DEBUG1("In KestaIPUtilities::ValidateIPv6StartAddress() ", 3);
    if (sa == nullptr)
        return false;
    const KestaIPv6Address zero(uniformAddress(0x00));
    const CPrefix prefix(prefixLength);
    unsigned char* pBytes = sa->sin6_addr.s6_addr;
    std::fill_n(pBytes, prefix.iBytes, static_cast<unsigned char>(0));
    if (prefix.iBits > 0)
        pBytes[prefix.iBytes] &= prefix.hostBits();
    if (zero.compareTwoIPv6Addresses(sa) != 0)
        return false;   // without a line that says so, on purpose
    KESTA_DEBUG1("Out KestaIPUtilities::ValidateIPv6StartAddress() ", 3);
    return true;
}

void KestaIPUtilities::InitialiseIPv6EndAddress(const sockaddr_in6* start, KestaIPAddress** end,
                                                int prefixLength)
{
    KESTA_DEBUG1("In KestaIPUtilities::InitialiseIPv6EndAddress() ", 3);
    std::unique_ptr<KestaIPv6Address> pEnd;
    if (start != nullptr)
    {
        try
        {
            pEnd.reset(new KestaIPv6Address(uniformAddress(0xFF)));
            auto* sa = reinterpret_cast<sockaddr_in6*>(&pEnd->m_binIPAddress);
            const CPrefix prefix(prefixLength);
            const unsigned char* pStartBytes = start->sin6_addr.s6_addr;
            unsigned char* pBytes = sa->sin6_addr.s6_addr;
            std::copy_n(pStartBytes, prefix.iBytes, pBytes);
            if (prefix.iBits > 0)
                pBytes[prefix.iBytes] = prefix.hostBits() | pStartBytes[prefix.iBytes];
            convertIPv6AddressToString(sa, pEnd->m_strIPAddress);
        }
        catch (const CKestaExc& refException)
        {
            throw CKestaExc(refException);
        }
        catch (const std::exception&)
        {
            KESTA_DEBUG1("KestaIPUtilities::InitialiseIPv6EndAddress()-Unknown Exception", 3);
            throw CKestaExc("Unknown Exception");
        }
    }
    KESTA_DEBUG1("Out KestaIPUtilities::InitialiseIPv6EndAddress()", 3);
    if (pEnd != nullptr)
        *end = pEnd.release();   // last: nothing may be lost when the line above throws
}
