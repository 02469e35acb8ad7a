#include "KestaAddressCodec.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <endian.h>
#include <sys/socket.h>

namespace
{

constexpr int iGroups = 8;   // of 16 bits, in an IPv6 address
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

// One part of an IPv4 address. A leading zero would make it octal.
const char* scanPart(const char* pText, unsigned int& uPart)
{
    uPart = decimalDigit(*pText);
    if (uPart > 9)
        return nullptr;
    for (++pText; decimalDigit(*pText) <= 9; ++pText)
    {
        if (uPart == 0)
            return nullptr;
        uPart = uPart * 10 + decimalDigit(*pText);
        if (uPart > 255)
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

bool endsAddress(const char* pszText)
{
    return *pszText == '\0' || *pszText == '%';
}

// Falls back to inet_aton or inet_pton, without the scope.
template <class TRead>
bool readBySystem(const char* pszText, TRead read)
{
    const char* const pszScope = std::strchr(pszText, '%');
    if (pszScope == nullptr)
        return read(pszText);
    const std::string strAddress(pszText, pszScope);
    return read(strAddress.c_str());
}

// The digits of each part of an IPv4 address, followed by their number.
constexpr std::array<char[4], 256> decimalParts()
{
    std::array<char[4], 256> parts{};
    for (unsigned int u = 0; u < parts.size(); ++u)
    {
        int iDigits = 0;
        if (u > 99)
            parts[u][iDigits++] = static_cast<char>('0' + u / 100);
        if (u > 9)
            parts[u][iDigits++] = static_cast<char>('0' + u / 10 % 10);
        parts[u][iDigits++] = static_cast<char>('0' + u % 10);
        parts[u][3] = static_cast<char>(iDigits);
    }
    return parts;
}

// REQUIRES: there is room for four characters.
char* writePart(char* pszEnd, unsigned int uPart)
{
    static constexpr std::array<char[4], 256> parts = decimalParts();
    std::memcpy(pszEnd, parts[uPart], sizeof parts[uPart]);
    return pszEnd + parts[uPart][3];
}

char* writeParts(char* pszEnd, KestaIPv4Number number)
{
    for (int iShift = 24; iShift > 0; iShift -= 8)
    {
        pszEnd = writePart(pszEnd, number >> iShift & 0xFF);
        *pszEnd++ = '.';
    }
    return writePart(pszEnd, number & 0xFF);
}

constexpr std::array<std::uint16_t, 256> hexPairs()
{
    constexpr char szDigits[] = "0123456789abcdef";
    std::array<std::uint16_t, 256> pairs{};
    for (unsigned int u = 0; u < pairs.size(); ++u)
        pairs[u] = static_cast<std::uint16_t>(szDigits[u >> 4] | szDigits[u & 0xF] << 8);
    return pairs;
}

// Writes a group without leading zeros. REQUIRES: there is room for four digits.
char* writeGroup(char* pszEnd, unsigned int uGroup)
{
    static constexpr std::array<std::uint16_t, 256> pairs = hexPairs();   // first digit lowest
    const std::uint32_t uDigits = std::uint32_t{pairs[uGroup & 0xFF]} << 16 | pairs[uGroup >> 8];
    const int iZeros = uGroup > 0xFFF ? 0 : uGroup > 0xFF ? 1 : uGroup > 0xF ? 2 : 3;
    const std::uint32_t uWritten = htole32(uDigits >> 8 * iZeros);
    std::memcpy(pszEnd, &uWritten, sizeof uWritten);
    return pszEnd + 4 - iZeros;
}

}   // namespace

const char* CKestaAddressCodec::scanIPv4(const char* pText, KestaIPv4Number& number)
{
    unsigned int uPart;
    pText = scanPart(pText, uPart);
    number = uPart;
    for (int i = 1; i < 4; ++i)
    {
        if (pText == nullptr || *pText != '.')
            return nullptr;
        pText = scanPart(pText + 1, uPart);
        number = number << 8 | uPart;
    }
    return pText;
}

const char* CKestaAddressCodec::scanIPv4Pattern(const char* pText, KestaIPv4Number& first,
                                                KestaIPv4Number& last)
{
    first = 0;
    last = 0;
    for (int i = 0; i < 4; ++i)
    {
        if (i > 0 && *pText++ != '.')
            return nullptr;
        unsigned int uFirst = 0;
        unsigned int uLast = 255;
        if (*pText == '*')
            ++pText;
        else
        {
            pText = scanPart(pText, uFirst);
            if (pText == nullptr)
                return nullptr;
            uLast = uFirst;
        }
        first = first << 8 | uFirst;
        last = last << 8 | uLast;
    }
    return pText;
}

const char* CKestaAddressCodec::scanIPv6(const char* pText, KestaIPv6Number& number)
{
    KestaIPv6Number lower = 0;   // of the groups read since the start, or since the gap
    KestaIPv6Number upper = 0;   // of the groups before the gap, in their place
    int iRead = 0;
    bool bGap = false;
    while (true)
    {
        if (pText[0] == ':' && pText[1] == ':' && !bGap)
        {
            bGap = true;
            pText += 2;
            if (iRead > 0)
                upper = lower << 16 * (iGroups - iRead);
            lower = 0;
            if (hexDigit(*pText) == uNoDigit)
                break;
        }
        else if (iRead > 0)
        {
            if (*pText != ':')
                break;
            ++pText;
        }
        unsigned int uGroup;
        pText = scanGroup(pText, uGroup);
        if (pText == nullptr || iRead == iGroups)
            return nullptr;
        lower = lower << 16 | uGroup;
        ++iRead;
    }
    if (bGap ? iRead == iGroups : iRead != iGroups)
        return nullptr;
    number = upper | lower;
    return pText;
}

bool CKestaAddressCodec::readIPv4(const char* pszText, in_addr& address)
{
    KestaIPv4Number number;
    const char* const pszEnd = scanIPv4(pszText, number);
    if (pszEnd != nullptr && endsAddress(pszEnd))
    {
        address = KestaAddressNumber::toIPv4(number);
        return true;
    }
    return readBySystem(pszText, [&](const char* psz) { return inet_aton(psz, &address) != 0; });
}

bool CKestaAddressCodec::readIPv6(const char* pszText, in6_addr& address)
{
    KestaIPv6Number number;
    const char* const pszEnd = scanIPv6(pszText, number);
    if (pszEnd != nullptr && endsAddress(pszEnd))
    {
        address = KestaAddressNumber::toIPv6(number);
        return true;
    }
    return readBySystem(pszText,
                        [&](const char* psz) { return inet_pton(AF_INET6, psz, &address) == 1; });
}

char* CKestaAddressCodec::writeIPv4(KestaIPv4Number number, char (&szText)[INET_ADDRSTRLEN])
{
    char* const pszEnd = writeParts(szText, number);
    *pszEnd = '\0';
    return pszEnd;
}

char* CKestaAddressCodec::writeIPv6(KestaIPv6Number number, char (&szText)[INET6_ADDRSTRLEN])
{
    unsigned int groups[iGroups];
    const std::uint64_t halves[] = {static_cast<std::uint64_t>(number >> 64),
                                    static_cast<std::uint64_t>(number)};
    for (int i = 0; i < iGroups; ++i)
        groups[i] = static_cast<unsigned int>(halves[i / 4] >> 16 * (3 - i % 4) & 0xFFFF);

    // The first of the longest runs of zeros becomes "::", if it is longer than one group.
    int iZeros = iGroups;
    int iZeroGroups = 1;
    int iRun = 0;
    for (int i = 0; i < iGroups; ++i)
    {
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
        pszEnd = writeParts(pszEnd, groups[6] << 16 | groups[7]);
    }
    *pszEnd = '\0';
    return pszEnd;
}
