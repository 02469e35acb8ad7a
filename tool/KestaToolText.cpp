#include "KestaToolText.h"

#include <cstdint>

namespace
{

struct CCharacter
{
    std::size_t ulLength;
    bool bSafe;   // for a terminal
};

bool isControl(std::uint32_t uCode)
{
    return uCode < 0x20 || (uCode >= 0x7F && uCode < 0xA0);
}

// The UTF-8 character that a text begins with; else its first byte. An overlong form is no
// character: it could hide a control.
CCharacter firstCharacter(std::string_view text)
{
    constexpr std::uint32_t lowestCodes[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr CCharacter noCharacter{1, false};
    const auto uFirst = static_cast<unsigned char>(text[0]);
    if (uFirst < 0x80)
        return {1, !isControl(uFirst)};
    const std::size_t ulLength = uFirst < 0xE0 ? 2 : uFirst < 0xF0 ? 3 : 4;
    if (uFirst < 0xC0 || uFirst > 0xF4 || ulLength > text.size())
        return noCharacter;
    std::uint32_t uCode = uFirst & (0x7FU >> ulLength);
    for (std::size_t ul = 1; ul < ulLength; ++ul)
    {
        const auto uNext = static_cast<unsigned char>(text[ul]);
        if ((uNext & 0xC0) != 0x80)
            return noCharacter;
        uCode = uCode << 6 | (uNext & 0x3F);
    }
    return uCode < lowestCodes[ulLength] ? noCharacter : CCharacter{ulLength, !isControl(uCode)};
}

}   // namespace

std::string printable(std::string_view text, std::string_view kept)
{
    constexpr char szDigits[] = "0123456789abcdef";
    std::string strResult;
    while (!text.empty())
    {
        const CCharacter first = firstCharacter(text);
        if (first.bSafe || kept.find(text[0]) != std::string_view::npos)
            strResult += text.substr(0, first.ulLength);
        else
            for (const char c : text.substr(0, first.ulLength))
            {
                const auto uByte = static_cast<unsigned char>(c);
                strResult.append("\\x") += {szDigits[uByte >> 4], szDigits[uByte & 15]};
            }
        text.remove_prefix(first.ulLength);
    }
    return strResult;
}

std::string inQuotes(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

std::string withoutEndBlanks(std::string strText)
{
    strText.erase(strText.find_last_not_of(' ') + 1);
    return strText;
}
