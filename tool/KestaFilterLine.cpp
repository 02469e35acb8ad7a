#include "KestaFilterLine.h"

#include "KestaAddressCodec.h"
#include "KestaAddressNumber.h"
#include "KestaToolText.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <netinet/in.h>

namespace
{

constexpr std::string_view blanks = " \t\r\v\f";

// What a character may be part of.
enum EKind : unsigned int
{
    nothing = 0,
    digit = 1,
    hexLetter = 2,
    letter = 4,
    dot = 8,
    colon = 16,
    newline = 32
};

constexpr std::array<unsigned char, 256> kindsOfCharacters()
{
    std::array<unsigned char, 256> kinds{};
    for (unsigned int u = '0'; u <= '9'; ++u)
        kinds[u] = digit;
    for (unsigned int u = 'A'; u <= 'Z'; ++u)
        kinds[u] = kinds[u + 'a' - 'A'] = u <= 'F' ? hexLetter : letter;
    kinds['.'] = dot;
    kinds[':'] = colon;
    kinds['\n'] = newline;
    return kinds;
}

unsigned int kindOf(char c)
{
    static constexpr std::array<unsigned char, 256> kinds = kindsOfCharacters();
    return kinds[static_cast<unsigned char>(c)];
}

void skip(std::string_view& text, std::size_t ulEnd)
{
    text.remove_prefix(std::min(ulEnd, text.size()));
}

void skipBlanks(std::string_view& text)
{
    skip(text, text.find_first_not_of(blanks));
}

// The length of the field at the start of a text.
std::size_t plainLength(std::string_view text)
{
    return static_cast<std::size_t>(
        std::find_if(text.begin(), text.end(), &CKestaFilterField::isEnd) - text.begin());
}

std::size_t separatedLength(std::string_view text, char separator)
{
    std::size_t ulEnd = std::min(text.find(separator), text.size());
    const std::size_t ulStart = text.find_first_not_of(blanks);
    if (separator == '"' || ulStart >= ulEnd || text[ulStart] != '"')
        return ulEnd;
    bool bQuoted = false;
    for (ulEnd = ulStart; ulEnd < text.size() && (bQuoted || text[ulEnd] != separator); ++ulEnd)
        bQuoted = bQuoted != (text[ulEnd] == '"');   // two quotes in quotes change nothing
    return ulEnd;
}

std::string_view withoutQuotes(std::string_view text)
{
    if (text.size() > 1 && text.front() == '"' && text.back() == '"')
        return withoutBlanks(text.substr(1, text.size() - 2));
    return text;
}

std::string_view withoutDots(std::string_view text)
{
    skip(text, text.find_first_not_of('.'));
    return text.substr(0, text.find_last_not_of('.') + 1);
}

// A colon and the digits of a port, which may be left out.
bool isPort(std::string_view text)
{
    return text.size() <= 6 && text.front() == ':' &&
           text.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

bool readIPv4(std::string_view part, CKestaAddress& address)
{
    part = withoutDots(part);
    KestaIPv4Number number = 0;
    const bool bRead =
        CKestaAddressCodec::scanIPv4(part.data(), number) == part.data() + part.size();
    address = {false, number};
    return bRead;
}

bool readIPv6(std::string_view word, CKestaAddress& address)
{
    const auto isLetter = [](char c)
    {
        return kindOf(c) == letter;
    };
    const auto itLetter = std::find_if(word.rbegin(), word.rend(), isLetter);
    if (itLetter != word.rend())   // of a name, which ends with the next colon
    {
        skip(word, static_cast<std::size_t>(word.rend() - itLetter));
        skip(word, word.find(':'));
        skip(word, 1);
    }
    word = withoutDots(word);
    if (word.size() > 1 && word.back() == ':' && word[word.size() - 2] != ':')
        word.remove_suffix(1);
    if (word.size() >= INET6_ADDRSTRLEN || word == "::" || word.find(':') == word.rfind(':'))
        return false;

    char szWord[INET6_ADDRSTRLEN] = {};
    word.copy(szWord, word.size());
    address.bIPv6 = true;
    if (word.find('.') == std::string_view::npos)
    {
        const char* const pszEnd = CKestaAddressCodec::scanIPv6(szWord, address.number);
        return pszEnd != nullptr && *pszEnd == '\0';
    }
    in6_addr ipv6 = {};
    const bool bRead = CKestaAddressCodec::readIPv6(szWord, ipv6);
    address.number = KestaAddressNumber::of(ipv6);
    return bRead;
}

}   // namespace

std::string_view CKestaFilterField::of(std::string_view line) const
{
    if (separator)
    {
        for (std::size_t ul = 1; ul < ulNumber; ++ul)
            skip(line, separatedLength(line, *separator) + 1);
        return withoutQuotes(withoutBlanks(line.substr(0, separatedLength(line, *separator))));
    }
    skipBlanks(line);
    for (std::size_t ul = 1; ul < ulNumber; ++ul)
    {
        skip(line, plainLength(line));
        skipBlanks(line);
        if (!line.empty() && line.front() == ',')
            line.remove_prefix(1);
        skipBlanks(line);
    }
    return line.substr(0, plainLength(line));
}

bool readField(std::string_view text, CKestaAddress& address)
{
    if (text.find_first_of(blanks) != std::string_view::npos)
        return false;   // the system would ignore what follows a blank
    std::string_view port;
    const std::size_t ulColon = text.find(':');
    if (!text.empty() && text.front() == '[')
    {
        const std::size_t ulBracket = std::min(text.find(']'), text.size() - 1);
        if (text[ulBracket] != ']')
            return false;
        port = text.substr(ulBracket + 1);
        text = text.substr(1, ulBracket - 1);
    }
    else if (ulColon != std::string_view::npos &&
             ulColon == text.rfind(':'))   // IPv6 has two at least
    {
        port = text.substr(ulColon);
        text = text.substr(0, ulColon);
    }
    return (port.empty() || isPort(port)) && text.find_first_of(".:") != std::string_view::npos &&
           readAddress(text, address);
}

bool CKestaAddressSearch::next(CKestaAddress& address)
{
    while (true)
    {
        while (!m_parts.empty())
        {
            const std::string_view part = m_parts.substr(0, m_parts.find(':'));
            skip(m_parts, part.size() + 1);
            if (readIPv4(part, address))
                return true;
        }

        unsigned int uKind;
        while ((uKind = kindOf(*m_pLine)) == nothing)
            ++m_pLine;
        if (uKind == newline)
            return false;
        const char* const pWord = m_pLine;
        unsigned int uKinds = 0;
        for (; uKind != nothing && uKind != newline; uKind = kindOf(*++m_pLine))
            uKinds |= uKind;
        const std::string_view word(pWord, static_cast<std::size_t>(m_pLine - pWord));
        if ((uKinds & colon) != 0 && readIPv6(word, address))
            return true;
        if ((uKinds & colon) != 0 ? (uKinds & dot) != 0 : uKinds == (dot | digit))
            m_parts = word;
    }
}
