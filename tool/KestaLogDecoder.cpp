#include "KestaLogDecoder.h"

#include <algorithm>
#include <cstddef>

namespace
{

constexpr char szMark[] = "\xFE\xFF";
constexpr std::size_t ulMark = 2;
constexpr std::size_t ulLongestItemType = 16;

bool isItemTypeByte(char cByte)
{
    return (cByte >= 'A' && cByte <= 'Z') || (cByte >= '0' && cByte <= '9') || cByte == '_';
}

// True when a text within a line may still become a mark, "[", an item type and "]:".
bool mayBecomeTraceLine(std::string_view held)
{
    if (held.size() <= ulMark)
        return held == std::string_view(szMark, held.size());
    if (held[ulMark] != '[')
        return false;
    held.remove_prefix(ulMark + 1);
    const auto itEnd = std::find_if_not(held.begin(), held.end(), &isItemTypeByte);
    const std::size_t ulLength = static_cast<std::size_t>(itEnd - held.begin());
    held.remove_prefix(ulLength);
    return ulLength <= ulLongestItemType &&
           (held.empty() || (ulLength > 0 && (held == "]" || held == "]:")));
}

}   // namespace

void CKestaLogDecoder::feed(std::string_view bytes, std::string& strText)
{
    const char* pByte = bytes.data();
    const char* const pEnd = pByte + bytes.size();
    while (pByte != pEnd)
    {
        const bool bFrameEnd = m_bAfterNul && *pByte == '\n';
        m_bAfterNul = *pByte == '\0';
        if (bFrameEnd)
            ++pByte;
        else if (m_bAfterNul)
        {
            endLine(strText);
            ++pByte;
        }
        else if (m_strHeld.empty() && *pByte != szMark[0])
            pByte = copyText(pByte, pEnd, strText);
        else if (hold(*pByte, strText))
            ++pByte;
    }
}

void CKestaLogDecoder::finish(std::string& strText)
{
    endLine(strText);
    m_bAfterNul = false;
}

// Copies the bytes up to the next that may belong to a frame or a mark.
const char* CKestaLogDecoder::copyText(const char* pByte, const char* pEnd, std::string& strText)
{
    const char* const pStop =
        std::find_if(pByte, pEnd, [](char cByte) { return cByte == '\0' || cByte == szMark[0]; });
    strText.append(pByte, pStop);
    m_bLineStart = pStop[-1] == '\n';
    return pStop;
}

// Holds a byte back, and decides what the held bytes are as soon as that is known. Returns false,
// without the byte, when it shows that the others are text: it must be decoded again.
bool CKestaLogDecoder::hold(char cByte, std::string& strText)
{
    if (m_bLineStart && m_strHeld.size() == 1 && cByte == szMark[0])
        return true;   // the byte before it belonged to a torn mark
    m_strHeld += cByte;
    if (m_bLineStart && m_strHeld == szMark)
        m_strHeld.clear();
    else if (!mayBecomeTraceLine(m_strHeld))
    {
        m_strHeld.pop_back();
        release(strText);
        return false;
    }
    else if (cByte == ':')
    {
        strText += '\n';
        strText.append(m_strHeld, ulMark);
        m_strHeld.clear();
    }
    return true;
}

void CKestaLogDecoder::endLine(std::string& strText)
{
    if (m_bLineStart)
        m_strHeld.clear();   // part of a torn mark
    release(strText);
    if (!m_bLineStart)
        strText += '\n';
    m_bLineStart = true;
}

void CKestaLogDecoder::release(std::string& strText)
{
    if (m_strHeld.empty())
        return;
    strText += m_strHeld;
    m_strHeld.clear();
    m_bLineStart = false;
}
