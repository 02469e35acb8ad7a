#ifndef KESTA_TEXT_DETAIL_H
#define KESTA_TEXT_DETAIL_H

#include <stdexcept>
#include <string_view>

/// What the library's own text handling shares. Not for hosts: it may change at any time.
namespace KestaTextDetail
{

/// The text up to its first NUL byte, or all of it.
inline std::string_view upToNul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

/// A view of a text; a null pointer is refused with `std::logic_error`, as by `std::string`.
inline std::string_view viewOf(const char* pszText)
{
    if (pszText == nullptr)
        throw std::logic_error("CKestaString: a null pointer is no text");
    return pszText;
}

inline std::string_view viewOf(std::string_view text)
{
    return text;
}

/// True for white space of the "C" locale, whatever locale the host has set.
inline bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The text up to its first NUL byte, without the white space at its ends.
inline std::string_view trimmed(std::string_view text)
{
    text = upToNul(text);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    return text;
}

}   // namespace KestaTextDetail

#endif
