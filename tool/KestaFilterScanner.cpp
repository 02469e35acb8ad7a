#include "KestaFilterScanner.h"

#include "KestaAddressNumber.h"
#include "KestaToolText.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr std::size_t ulLongestStart = 4096;

bool endsAddress(char c)
{
    return c == ' ' || c == ',' || (c >= '\t' && c <= '\r');   // a newline, too
}

const char* findNewline(const char* pByte, const char* pEnd)
{
    return static_cast<const char*>(
        std::memchr(pByte, '\n', static_cast<std::size_t>(pEnd - pByte)));
}

std::string_view between(const char* pByte, const char* pEnd)
{
    return {pByte, static_cast<std::size_t>(pEnd - pByte)};
}

}   // namespace

CKestaFilterScanner::CKestaFilterScanner(const KestaIPRangeSet& set, bool bInvert, bool bMapped,
                                         CSink& sink)
    : m_set(set), m_bInvert(bInvert), m_bMapped(bMapped), m_sink(sink)
{
}

void CKestaFilterScanner::feed(std::string_view bytes)
{
    if (m_ulMark < byteOrderMark.size())
        bytes = skipMark(bytes);
    const char* pByte = bytes.data();
    const char* const pEnd = pByte + bytes.size();
    if (m_bDecided || !m_strBegun.empty())
        pByte = finishLine(pByte, pEnd);
    if (pByte == pEnd)
        return;

    const void* const pLastNewline = memrchr(pByte, '\n', static_cast<std::size_t>(pEnd - pByte));
    if (pLastNewline != nullptr)
    {
        const char* const pRest = static_cast<const char*>(pLastNewline) + 1;
        scanLines(pByte, pRest);
        pByte = pRest;
    }
    beginLine(between(pByte, pEnd));
}

void CKestaFilterScanner::finish()
{
    const bool bMarkCutShort = m_ulMark % byteOrderMark.size() != 0;
    if (m_bDecided || !m_strBegun.empty() || bMarkCutShort)
        feed("\n");
    m_ullLine = 0;
    m_ulMark = 0;
}

// Skips a byte-order mark at the start of a file, or the part of it that these bytes hold.
std::string_view CKestaFilterScanner::skipMark(std::string_view bytes)
{
    while (!bytes.empty() && m_ulMark < byteOrderMark.size())
    {
        if (bytes.front() != byteOrderMark[m_ulMark])
        {
            m_strBegun = byteOrderMark.substr(0, m_ulMark);   // not a mark: part of the first line
            m_ulMark = byteOrderMark.size();
            break;
        }
        ++m_ulMark;
        bytes.remove_prefix(1);
    }
    return bytes;
}

// Continues the line whose start was in an earlier piece. Returns where the next line starts.
const char* CKestaFilterScanner::finishLine(const char* pByte, const char* pEnd)
{
    const char* const pNewline = findNewline(pByte, pEnd);
    const char* const pRest = pNewline != nullptr ? pNewline + 1 : pEnd;
    if (!m_bDecided)
    {
        std::string strLine;
        strLine.swap(m_strBegun);
        strLine.append(pByte, pRest);
        if (pNewline != nullptr)
            scanLines(strLine.data(), strLine.data() + strLine.size());
        else
            beginLine(strLine);
        return pRest;
    }
    if (m_bDecidedSelected)
        m_sink.selected(m_ullLine, between(pByte, pRest));
    m_bDecided = pNewline == nullptr;
    return pRest;
}

// Looks at whole lines, each with its newline.
void CKestaFilterScanner::scanLines(const char* pLine, const char* pEnd)
{
    const char* pSelected = nullptr;   // the start of selected lines that go out together
    std::uint64_t ullSelected = 0;
    while (pLine != pEnd)
    {
        const char* pStop = pLine;
        const bool bSelected = judgeLine(pLine, pEnd, &pStop);
        if (bSelected != (pSelected != nullptr))
        {
            if (!bSelected)
                m_sink.selected(ullSelected, between(pSelected, pLine));
            pSelected = bSelected ? pLine : nullptr;
            ullSelected = m_ullLine;
        }
        pLine = *pStop == '\n' ? pStop + 1 : findNewline(pStop, pEnd) + 1;
    }
    if (pSelected != nullptr)
        m_sink.selected(ullSelected, between(pSelected, pEnd));
}

// Keeps the start of a line that continues in the next piece, or judges it, once it is long enough.
void CKestaFilterScanner::beginLine(std::string_view bytes)
{
    if (bytes.size() < ulLongestStart)
    {
        m_strBegun = bytes;
        return;
    }
    ++m_ullLine;
    m_bDecided = true;
    m_bDecidedSelected = judgeSlowly(bytes.substr(0, ulLongestStart));
    if (m_bDecidedSelected)
        m_sink.selected(m_ullLine, bytes);
}

// Judges a line by its address. There is no newline before `*ppStop`.
bool CKestaFilterScanner::judgeLine(const char* pLine, const char* pLimit, const char** ppStop)
{
    ++m_ullLine;
    CKestaAddress address;
    const char* const pAddressEnd = scanAddress(pLine, address);
    if (pAddressEnd != nullptr && endsAddress(*pAddressEnd))
    {
        *ppStop = pAddressEnd;
        return isSelected(address);
    }
    *ppStop = findNewline(pLine, pLimit);
    return judgeSlowly(between(pLine, *ppStop).substr(0, ulLongestStart));
}

// Leaves an address in an unusual form to the library.
bool CKestaFilterScanner::judgeSlowly(std::string_view line)
{
    const auto itEnd = std::find_if(line.begin(), line.end(), &endsAddress);
    const std::string_view text = line.substr(0, static_cast<std::size_t>(itEnd - line.begin()));
    CKestaAddress address;
    if (text.size() < ulLongestStart && readAddress(text, address))
        return isSelected(address);
    m_sink.unreadable(m_ullLine, text);
    return false;
}

bool CKestaFilterScanner::isSelected(const CKestaAddress& address)
{
    const bool bAsIPv4 = !address.bIPv6 || (m_bMapped && address.number >> 32 == 0xFFFF);
    const bool bInside = bAsIPv4 ? m_set.isMember(KestaAddressNumber::toIPv4(
                                       static_cast<KestaIPv4Number>(address.number)))
                                 : m_set.isMember(KestaAddressNumber::toIPv6(address.number));
    const bool bSelected = bInside != m_bInvert;
    m_ullSelected += bSelected ? 1 : 0;
    return bSelected;
}
