#include "KestaRangeEntry.h"

#include "KestaAddressCodec.h"
#include "KestaException.h"
#include "KestaString.h"
#include "KestaTextDetail.h"

#include <cstring>

#include <netinet/in.h>
#include <sys/socket.h>

namespace
{

constexpr std::size_t npos = std::string_view::npos;

/// An error that begins with the entry, or with the start of a long one.
CKestaExc refusal(std::string_view text, const std::string& strReason)
{
    constexpr std::size_t ulShown = 64;
    text = KestaTextDetail::upToNul(text);
    std::string strMessage(text.substr(0, ulShown));
    if (text.size() > ulShown)
        strMessage += "...";
    return CKestaExc((strMessage + strReason).c_str());
}

std::string_view withoutSpace(std::string_view text)
{
    while (!text.empty() && KestaTextDetail::isSpace(text.back()))
        text.remove_suffix(1);
    while (!text.empty() && KestaTextDetail::isSpace(text.front()))
        text.remove_prefix(1);
    return text;
}

/// Parses an address of either family in a form that `inet_pton` takes.
bool parseAddress(std::string_view text, CKestaAddressInterval& address)
{
    char szText[INET6_ADDRSTRLEN];
    if (text.size() >= sizeof szText || text.find('%') != npos || text.find('\0') != npos)
        return false;
    std::memcpy(szText, text.data(), text.size());
    szText[text.size()] = '\0';
    KestaIPv4Number ipv4;
    in6_addr ipv6;
    const char* const pszEnd = CKestaAddressCodec::scanIPv4(szText, ipv4);
    if (pszEnd != nullptr && *pszEnd == '\0')
        address = {false, ipv4, ipv4};
    else if (CKestaAddressCodec::readIPv6(szText, ipv6))
        address = {true, KestaAddressNumber::of(ipv6), KestaAddressNumber::of(ipv6)};
    else
        return false;
    return true;
}

/// Parses one to three digits; -1 for anything else.
int parseLength(std::string_view text)
{
    if (text.empty() || text.size() > 3)
        return -1;
    int iLength = 0;
    for (const char c : text)
    {
        if (c < '0' || c > '9')
            return -1;
        iLength = 10 * iLength + (c - '0');
    }
    return iLength;
}

CKestaAddressInterval parseSpan(std::string_view entry, std::size_t ulDash)
{
    CKestaAddressInterval first;
    CKestaAddressInterval last;
    if (!parseAddress(withoutSpace(entry.substr(0, ulDash)), first) ||
        !parseAddress(withoutSpace(entry.substr(ulDash + 1)), last))
        throw refusal(entry, ": an address is expected on either side of the dash");
    return spanOf(first, last, entry);
}

}   // namespace

CKestaAddressInterval intervalOf(const KestaIPRange& range)
{
    const CKestaAddressInterval first = intervalOf(*range.getStartAddress());
    return {first.bIPv6, first.first, intervalOf(*range.getEndAddress()).last};
}

CKestaAddressInterval intervalOf(const KestaIPAddress& address)
{
    const sockaddr_storage& storage = address.viewSockAddress();
    const bool bIPv6 = storage.ss_family == AF_INET6;
    const KestaIPv6Number number = bIPv6 ? KestaAddressNumber::in<KestaIPv6Number>(storage)
                                         : KestaAddressNumber::in<KestaIPv4Number>(storage);
    return {bIPv6, number, number};
}

std::string addressText(bool bIPv6, KestaIPv6Number address)
{
    char szIPv4[INET_ADDRSTRLEN];
    char szIPv6[INET6_ADDRSTRLEN];
    if (bIPv6)
        return {szIPv6, CKestaAddressCodec::writeIPv6(address, szIPv6)};
    return {szIPv4, CKestaAddressCodec::writeIPv4(static_cast<KestaIPv4Number>(address), szIPv4)};
}

CKestaAddressInterval parseEntry(std::string_view text)
{
    const std::string_view entry = withoutSpace(text);
    const std::size_t ulDash = entry.find('-');
    const std::size_t ulSlash = entry.find('/');
    const bool bScope = entry.find('%') != npos;   // its name may contain a dash
    if (ulDash != npos && !bScope)
        return parseSpan(entry, ulDash);
    for (const char c : entry)
        if (KestaTextDetail::isSpace(c) || c == '\0')
            throw refusal(entry, ": an entry must not contain white space or NUL bytes");

    if (ulSlash != npos)
    {
        const int iLength = parseLength(entry.substr(ulSlash + 1));
        if (iLength < 0)
            throw refusal(entry, ": the length after the slash must be a number");
        CKestaAddressInterval address;
        if (entry.find('.') != npos && parseAddress(entry.substr(0, ulSlash), address))
            return blockOf(address, iLength, entry);
    }
    return intervalOf(KestaIPRange(CKestaString(entry)));
}

CKestaAddressInterval blockOf(const CKestaAddressInterval& address, int iPrefixLength,
                              std::string_view text)
{
    const int iBits = address.bIPv6 ? 128 : 32;
    if (iPrefixLength < 0 || iPrefixLength > iBits)
        throw refusal(text, ": the length must be between 0 and " + std::to_string(iBits));
    const CKestaAddressInterval block = blockAt(address.bIPv6, address.first, iPrefixLength);
    if (block.first != address.first)
        throw refusal(text, ": not the first address of its block, " +
                                addressText(block.bIPv6, block.first) + "/" +
                                std::to_string(iPrefixLength));
    return block;
}

CKestaAddressInterval spanOf(const CKestaAddressInterval& first, const CKestaAddressInterval& last,
                             std::string_view text)
{
    if (first.bIPv6 != last.bIPv6)
        throw refusal(text, ": the addresses are of different families");
    if (first.first > last.first)
        throw refusal(text, ": the first address is above the last");
    return {first.bIPv6, first.first, last.first};
}
