#include "KestaString.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>

#include <strings.h>

namespace
{

// White space of the "C" locale, whatever locale the host has set.
bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
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

std::string_view CKestaString::refuseNull()
{
    throw std::logic_error("CKestaString: a null pointer is no text");
}

CKestaString& CKestaString::operator=(const CKestaString& strparam)
{
    if (this != &strparam)
    {
        assign(strparam.c_str());
        m_itokpos = 0;
        m_szdelim.clear();
    }
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
    return bCase_Flag ? std::strcmp(c_str(), strtocmp.c_str()) == 0
                      : strcasecmp(c_str(), strtocmp.c_str()) == 0;
}

bool CKestaString::equals(const char* chartocmp, bool bCase_Flag) const
{
    return equals(CKestaString(chartocmp), bCase_Flag);
}

bool CKestaString::beginsWith(const CKestaString& strd) const
{
    const std::string_view start = upToNul(strd);
    return compare(0, start.size(), start) == 0;
}

bool CKestaString::endsWith(const CKestaString& strd) const
{
    // The subtraction wraps for the empty text, to the value that stands for "not found": the
    // empty text ends with everything, which is intended.
    return size() - 1 == std::string_view(*this).find_last_of(upToNul(strd));
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
    if (!strd.empty())
    {
        m_szdelim = strd;
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

    // Delivered as an assignment would: up to a NUL byte, and with a fresh tokeniser.
    result.assign(upToNul(std::string_view(*this).substr(ulStart, ulEnd - ulStart)));
    result.m_itokpos = 0;
    result.m_szdelim.clear();
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
    const std::string_view text = upToNul(*this);
    const auto itStart = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto itEnd = std::find_if_not(text.rbegin(), text.rend(), isSpace).base();
    if (itStart < itEnd)
        std::memmove(data(), itStart, static_cast<std::size_t>(itEnd - itStart));
    cutTo(itStart < itEnd ? static_cast<std::size_t>(itEnd - itStart) : 0);
    return *this;
}

CKestaString CKestaString::removeSpaces()
{
    const auto itTextEnd = begin() + static_cast<difference_type>(upToNul(*this).size());
    const auto itEnd = std::remove_if(begin(), itTextEnd, isSpace);
    cutTo(static_cast<std::size_t>(itEnd - begin()));
    return *this;
}

// The end of trim and removeSpaces. An empty text is left as it is, its tokeniser included.
void CKestaString::cutTo(std::size_t ulLength)
{
    if (empty())
        return;
    resize(ulLength);
    m_itokpos = 0;
    m_szdelim.clear();
}
