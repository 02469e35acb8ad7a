#include "KestaFilterScanner.h"

#include "KestaAddressNumber.h"

#include <cstring>
#include <optional>

namespace
{

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

CKestaFilterScanner::CKestaFilterScanner(const KestaIPRangeSet& set, const CKestaFilterRules& rules,
                                         CSink& sink)
    : m_set(set), m_rules(rules),
      m_bFirstField(!rules.bAnywhere && rules.field.ulNumber == 1 && !rules.field.separator),
      m_sink(sink)
{
}

void CKestaFilterScanner::feed(std::string_view bytes)
{
    const char* pByte = bytes.data();
    const char* const pEnd = pByte + bytes.size();
    if (m_bDecided || !m_strBegun.empty())
        pByte = continueLine(pByte, pEnd);
    if (pByte == pEnd)
        return;

    const void* const pLastNewline = memrchr(pByte, '\n', static_cast<std::size_t>(pEnd - pByte));
    if (pLastNewline != nullptr)
    {
        const char* const pRest = static_cast<const char*>(pLastNewline) + 1;
        scanLines(pByte, pRest);
        pByte = pRest;
    }
    m_strBegun = between(pByte, pEnd);
    decideLongLine();
}

void CKestaFilterScanner::finish()
{
    if (m_bDecided || !m_strBegun.empty())
        feed("\n");
    m_ullLines += m_ullLine;
    m_ullLine = 0;
}

// Continues the line whose start was in an earlier piece. Returns where the next line starts.
const char* CKestaFilterScanner::continueLine(const char* pByte, const char* pEnd)
{
    const char* const pNewline = findNewline(pByte, pEnd);
    const char* const pRest = pNewline != nullptr ? pNewline + 1 : pEnd;
    if (m_bDecided)
    {
        if (m_bDecidedSelected)
            m_sink.selected(m_ullLine, m_lRange, between(pByte, pRest));
        m_bDecided = pNewline == nullptr;
        return pRest;
    }
    m_strBegun.append(pByte, pRest);
    if (pNewline != nullptr)
    {
        scanLines(m_strBegun.data(), m_strBegun.data() + m_strBegun.size());
        m_strBegun.clear();
    }
    decideLongLine();
    return pRest;
}

// Looks at whole lines, each with its newline.
void CKestaFilterScanner::scanLines(const char* pLine, const char* pEnd)
{
    while (pLine != pEnd)
    {
        const char* pStop = pLine;
        const bool bSelected = judgeLine(pLine, pEnd, &pStop);
        const char* const pNext = (*pStop == '\n' ? pStop : findNewline(pStop, pEnd)) + 1;
        if (bSelected)
        {
            ++m_ullSelected;
            m_sink.selected(m_ullLine, m_lRange, between(pLine, pNext));
        }
        pLine = pNext;
    }
}

// Judges a line that continues in the next piece, once its start is long enough.
void CKestaFilterScanner::decideLongLine()
{
    if (m_strBegun.size() <= m_rules.ulJudged)
        return;
    ++m_ullLine;
    m_bDecided = true;
    m_bDecidedSelected = judgeSlowly(m_strBegun);
    if (m_bDecidedSelected)
    {
        ++m_ullSelected;
        m_sink.selected(m_ullLine, m_lRange, m_strBegun);
    }
    m_strBegun.clear();
}

// Judges a line. There is no newline before `*ppStop`.
bool CKestaFilterScanner::judgeLine(const char* pLine, const char* pLimit, const char** ppStop)
{
    ++m_ullLine;
    if (m_bFirstField)
    {
        CKestaAddress address;
        const char* const pAddressEnd = scanAddress(pLine, address);
        if (pAddressEnd != nullptr && CKestaFilterField::isEnd(*pAddressEnd))
        {
            *ppStop = pAddressEnd;
            return isSelected(address);
        }
    }
    *ppStop = findNewline(pLine, pLimit);
    if (m_rules.bAnywhere && *ppStop - pLine <= static_cast<std::ptrdiff_t>(m_rules.ulJudged))
        return judgeAnywhere(pLine);
    return judgeSlowly(between(pLine, *ppStop));
}

// An address that reaches beyond the start that is judged must not be read as a shorter one. The
// letter makes it unreadable.
bool CKestaFilterScanner::judgeSlowly(std::string_view line)
{
    std::string strStart;
    if (line.size() > m_rules.ulJudged)
    {
        strStart.append(line.substr(0, m_rules.ulJudged)).append("x\n");
        line = std::string_view(strStart).substr(0, m_rules.ulJudged + 1);
    }
    return m_rules.bAnywhere ? judgeAnywhere(line.data()) : judgeField(line);
}

bool CKestaFilterScanner::judgeField(std::string_view line)
{
    const std::string_view text = m_rules.field.of(line);
    CKestaAddress address;
    if (readField(text, address))
        return isSelected(address);
    const bool bWithLetter = line.size() > m_rules.ulJudged && text.end() == line.end();
    m_sink.unreadable(m_ullLine, text.substr(0, text.size() - (bWithLetter ? 1 : 0)));
    return false;
}

bool CKestaFilterScanner::judgeAnywhere(const char* pLine)
{
    CKestaAddressSearch search(pLine);
    CKestaAddress address;
    bool bFound = false;
    m_lRange = -1;
    while (m_lRange < 0 && search.next(address))
    {
        bFound = true;
        m_lRange = rangeOf(address);
    }
    return bFound && (m_lRange >= 0) != m_rules.bInvert;
}

bool CKestaFilterScanner::isSelected(const CKestaAddress& address)
{
    m_lRange = rangeOf(address);
    return (m_lRange >= 0) != m_rules.bInvert;
}

long CKestaFilterScanner::rangeOf(const CKestaAddress& address) const
{
    const bool bAsIPv4 = !address.bIPv6 || (m_rules.bMapped && address.number >> 32 == 0xFFFF);
    return bAsIPv4 ? m_set.indexOf(
                         KestaAddressNumber::toIPv4(static_cast<KestaIPv4Number>(address.number)))
                   : m_set.indexOf(KestaAddressNumber::toIPv6(address.number));
}
