#include "KestaToolText.h"

#include "KestaTextDetail.h"

namespace
{

// The length of the UTF-8 character at the start of a text; 0 when there is none, or a control
// character. Terminals also obey those from U+0080 to U+009F.
std::size_t characterLength(std::string_view text)
{
    const auto byteAt = [text](std::size_t ul)
    {
        return static_cast<unsigned char>(text[ul]);
    };
    const unsigned int uLead = byteAt(0);
    if (uLead < 0x80)
        return uLead >= 0x20 && uLead != 0x7F ? 1 : 0;
    const std::size_t ulLength = uLead < 0xC2   ? 0
                                 : uLead < 0xE0 ? 2
                                 : uLead < 0xF0 ? 3
                                 : uLead < 0xF5 ? 4
                                                : 0;
    if (ulLength == 0 || ulLength > text.size())
        return 0;
    unsigned int uCode = uLead & 0x7FU >> ulLength;
    for (std::size_t ul = 1; ul < ulLength; ++ul)
    {
        if ((byteAt(ul) & 0xC0) != 0x80)
            return 0;
        uCode = uCode << 6 | (byteAt(ul) & 0x3F);
    }
    constexpr unsigned int lowest[] = {0, 0, 0xA0, 0x800, 0x10000};
    const bool bSurrogate = uCode >> 11 == 0x1B;
    return uCode >= lowest[ulLength] && uCode <= 0x10FFFF && !bSurrogate ? ulLength : 0;
}

}   // namespace

std::string printable(std::string_view text, std::string_view kept)
{
    constexpr char szDigits[] = "0123456789abcdef";
    std::string strResult;
    while (!text.empty())
    {
        const bool bKept = kept.find(text.front()) != std::string_view::npos;
        const std::size_t ulLength = bKept ? 1 : characterLength(text);
        const unsigned char uByte = static_cast<unsigned char>(text.front());
        if (ulLength > 0)
            strResult += text.substr(0, ulLength);
        else
            strResult.append("\\x") += {szDigits[uByte >> 4], szDigits[uByte & 15]};
        text.remove_prefix(ulLength > 0 ? ulLength : 1);
    }
    return strResult;
}

std::string shortened(std::string_view text, std::size_t ulShown)
{
    return std::string(text.substr(0, ulShown)) + (text.size() > ulShown ? "..." : "");
}

std::string inQuotes(std::string_view text)
{
    return "'" + shortened(text) + "'";
}

std::string_view withoutBlanks(std::string_view text)
{
    while (!text.empty() && KestaTextDetail::isSpace(text.back()))
        text.remove_suffix(1);
    while (!text.empty() && KestaTextDetail::isSpace(text.front()))
        text.remove_prefix(1);
    return text;
}
