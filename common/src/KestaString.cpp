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

// strcasecmp would use the host's locale.
bool sameIgnoringCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char cLeft, char cRight) { return lowered(cLeft) == lowered(cRight); });
}

// memmem takes linear time for every text and delimiter; std::string::find does not.
std::size_t findFrom(std::string_view text, std::string_view delimiter, std::size_t ulFrom)
{
    const void* pFound =
        memmem(text.data() + ulFrom, text.size() - ulFrom, delimiter.data(), delimiter.size());
    if (pFound == nullptr)
        return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(pFound) - text.data());
}

// The text of a number in the host's locale. The format is a parameter because compilers warn of
// "I", which asks for the locale's own digits, in a literal.
template <class TNumber>
std::string formatted(const char* pszFormat, TNumber number)
{
    // The largest double has this many digits before the point; sign, point, six decimals and the
    // NUL follow.
    char szNumber[std::numeric_limits<double>::max_exponent10 + 32];
    std::snprintf(szNumber, sizeof szNumber, pszFormat, number);
    return szNumber;
}

int countIn(std::string_view text, std::string_view delimiter)
{
    if (delimiter.empty())
        return 0;
    if (delimiter.size() == 1)
        return static_cast<int>(std::count(text.begin(), text.end(), delimiter.front()));
    int iCount = 0;
    std::size_t ulFound = findFrom(text, delimiter, 0);
    while (ulFound != std::string_view::npos)
    {
        ++iCount;
        ulFound = findFrom(text, delimiter, ulFound + delimiter.size());
    }
    return iCount;
}

struct CStop
{
    std::size_t ulTokenEnd;    // at the delimiter, or at a NUL byte before it
    std::size_t ulDelimiter;   // npos: none
};

CStop stopFrom(const std::string& strText, const std::string& strDelimiter, std::size_t ulFrom)
{
    if (strDelimiter.size() == 1)
    {
        // One search for both: usually the delimiter comes before any NUL byte.
        const char cDelimiter = strDelimiter.front();
        const char* const pszStop = strchrnul(strText.c_str() + ulFrom, cDelimiter);
        const auto ulStop = static_cast<std::size_t>(pszStop - strText.c_str());
        if (ulStop < strText.size() && *pszStop == cDelimiter)
            return {ulStop, ulStop};
        return {ulStop, strText.find(cDelimiter, ulStop)};
    }
    const std::size_t ulDelimiter = findFrom(strText, strDelimiter, ulFrom);
    const std::string_view token = std::string_view(strText).substr(ulFrom, ulDelimiter - ulFrom);
    return {ulFrom + upToNul(token).size(), ulDelimiter};
}

}   // namespace

CKestaString::CKestaString(int ival) : std::string(std::to_string(ival)) {}

CKestaString::CKestaString(long lval) : std::string(std::to_string(lval)) {}

CKestaString::CKestaString(long long llval) : std::string(std::to_string(llval)) {}

CKestaString::CKestaString(unsigned int uval) : std::string(std::to_string(uval)) {}

CKestaString::CKestaString(std::size_t sparam)
    : std::string(formatted("%Id", static_cast<std::int32_t>(static_cast<std::uint32_t>(sparam))))
{
}

CKestaString::CKestaString(unsigned long long ullval) : std::string(std::to_string(ullval)) {}

CKestaString::CKestaString(double dval) : std::string(formatted("%f", dval)) {}

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

bool CKestaString::equals(CKestaString& strtocmp, bool bCase_Flag) const
{
    return equals(strtocmp.data(), bCase_Flag);
}

bool CKestaString::equals(char* chartocmp, bool bCase_Flag) const
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

bool CKestaString::getNextToken(CKestaString& result, std::string strd) const
{
    if (!strd.empty())
    {
        m_szdelim.swap(strd);
        m_itokpos = 0;
    }
    else if (m_szdelim.empty())
        return false;

    const auto ulStart = static_cast<std::size_t>(m_itokpos);
    if (ulStart >= size())
        return false;

    const CStop stop = stopFrom(*this, m_szdelim, ulStart);
    if (stop.ulDelimiter == npos && ulStart == 0)
        return false;

    const std::size_t ulNext =
        stop.ulDelimiter == npos ? size() : stop.ulDelimiter + m_szdelim.size();
    m_itokpos = static_cast<long>(ulNext);

    result.renew(std::string_view(*this).substr(ulStart, stop.ulTokenEnd - ulStart));
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

// What assignment and the tokeniser's result have in common. The text may be a part of this one.
void CKestaString::renew(std::string_view text)
{
    assign(text);
    m_itokpos = 0;
    m_szdelim.clear();
}
