#include "KestaString.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

using KestaTextDetail::upToNul;
using KestaTextDetail::viewOf;

namespace
{

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// strcasecmp would go by the host's locale.
bool sameIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char cLeft, char cRight) { return lowered(cLeft) == lowered(cRight); });
}

// memmem takes linear time for every text and delimiter; std::string::find does not.
std::size_t findFrom(std::string_view text, std::string_view delimiter, std::size_t ulFrom)
{
    if (delimiter.size() == 1)
        return text.find(delimiter.front(), ulFrom);   // a third of memmem's way to it
    const void* pFound =
        memmem(text.data() + ulFrom, text.size() - ulFrom, delimiter.data(), delimiter.size());
    if (pFound == nullptr)
        return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(pFound) - text.data());
}

int countIn(std::string_view text, std::string_view delimiter)
{
    if (delimiter.empty())
        return 0;
    int iCount = 0;
    std::size_t ulFound = findFrom(text, delimiter, 0);
    while (ulFound != std::string_view::npos)
    {
        ++iCount;
        ulFound = findFrom(text, delimiter, ulFound + delimiter.size());
    }
    return iCount;
}

}   // namespace

CKestaString::CKestaString(int ival) : std::string(std::to_string(ival)) {}

CKestaString::CKestaString(long lval) : std::string(std::to_string(lval)) {}

CKestaString::CKestaString(std::size_t sparam)
    : std::string(std::to_string(static_cast<std::int32_t>(static_cast<std::uint32_t>(sparam))))
{
}

CKestaString::CKestaString(double dval)
{
    // The largest double has this many digits before the point; sign, point, six decimals and the
    // NUL follow.
    char szNumber[std::numeric_limits<double>::max_exponent10 + 32];
    std::snprintf(szNumber, sizeof szNumber, "%f", dval);
    assign(szNumber);
}

CKestaString::CKestaString(bool bval) : std::string(bval ? "True" : "False") {}

CKestaString::~CKestaString() = default;

CKestaString& CKestaString::operator=(const CKestaString& strparam)
{
    if (this != &strparam)
        renew(upToNul(strparam));
    return *this;
}

CKestaString CKestaString::operator+(const CKestaString& strparam) const
{
    CKestaString strResult(*this);
    strResult.append(strparam);
    return strResult;
}

bool CKestaString::operator==(const CKestaString& strparam) const
{
    return std::strcmp(c_str(), strparam.c_str()) == 0;
}

bool CKestaString::equals(const CKestaString& strtocmp, bool bCase_Flag) const
{
    return equals(strtocmp.c_str(), bCase_Flag);
}

bool CKestaString::equals(const char* chartocmp, bool bCase_Flag) const
{
    const std::string_view text = upToNul(*this);
    return bCase_Flag ? text == viewOf(chartocmp) : sameIgnoringCase(text, viewOf(chartocmp));
}

bool CKestaString::beginsWith(const CKestaString& strd) const
{
    const std::string_view start = upToNul(strd);
    return compare(0, start.size(), start) == 0;
}

bool CKestaString::endsWith(const CKestaString& strd) const
{
    return empty() || upToNul(strd).find(back()) != npos;
}

int CKestaString::countDelims(const CKestaString& delim) const
{
    return countIn(*this, upToNul(delim));
}

int CKestaString::countTokens(const CKestaString& strd) const
{
    const int iDelims = countDelims(strd);
    return iDelims == 0 ? 0 : iDelims + 1;
}

bool CKestaString::getNextToken(CKestaString& result, const std::string& strd) const
{
    return nextToken(result, strd);
}

bool CKestaString::nextToken(CKestaString& result, std::string_view delimiter) const
{
    if (!delimiter.empty())
    {
        m_szdelim = delimiter;
        m_itokpos = 0;
    }
    else if (m_szdelim.empty())
        return false;

    const auto ulStart = static_cast<std::size_t>(m_itokpos);
    if (ulStart >= size())
        return false;

    const std::size_t ulFound = findFrom(*this, m_szdelim, ulStart);
    if (ulFound == npos && ulStart == 0)
        return false;

    const std::size_t ulEnd = ulFound == npos ? size() : ulFound;
    const std::size_t ulNext = ulFound == npos ? size() : ulFound + m_szdelim.size();
    m_itokpos = static_cast<long>(ulNext);

    result.renew(upToNul(std::string_view(*this).substr(ulStart, ulEnd - ulStart)));
    return true;
}

int CKestaString::toInt() const
{
    return std::atoi(c_str());
}

double CKestaString::toDouble() const
{
    return std::atof(c_str());
}

CKestaString CKestaString::trim()
{
    if (!empty())
        renew(KestaTextDetail::trimmed(*this));
    return *this;
}

CKestaString CKestaString::removeSpaces()
{
    char* const pszStart = data();
    const char* const pszEnd =
        std::remove_if(pszStart, pszStart + upToNul(*this).size(), KestaTextDetail::isSpace);
    if (!empty())
        renew(std::string_view(pszStart, static_cast<std::size_t>(pszEnd - pszStart)));
    return *this;
}

// What assigning and delivering a text have in common. The text may be a piece of this one.
void CKestaString::renew(std::string_view text)
{
    assign(text);
    m_itokpos = 0;
    m_szdelim.clear();
}
