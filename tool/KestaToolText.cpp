#include "KestaToolText.h"

std::string printable(std::string_view text)
{
    constexpr char szDigits[] = "0123456789abcdef";
    std::string strResult;
    for (const char c : text)
    {
        const unsigned char uByte = static_cast<unsigned char>(c);
        if (uByte >= 0x20 && uByte != 0x7F)
            strResult += c;
        else
            strResult.append("\\x") += {szDigits[uByte >> 4], szDigits[uByte & 15]};
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
