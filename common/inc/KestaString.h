#ifndef KESTA_STRING_H
#define KESTA_STRING_H

#include "KestaExport.h"
#include "KestaTextDetail.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// The library's one text type: a `std::string` with number formatting, comparison, counting,
/// trimming and a stateful tokeniser.
///
/// It works on bytes and knows no encoding; white space is what the "C" locale calls so. Every
/// `std::string` operation is available. A text may hold NUL bytes (put there through a
/// `std::string` operation), but a copy ends before the first of them: constructing, assigning and
/// comparing look at the C-string form.
///
/// Texts are values. A copy never carries tokeniser state. Moving copies: the source must stay
/// unchanged.
///
/// A text is constructed implicitly from a `std::string`. So a call with a `std::string` is
/// ambiguous if the host has one overload for a text and another for something else that a
/// `std::string` converts to, such as `std::string_view` or `std::filesystem::path`.
///
/// Thread contract: distinct objects are independent. One object may be read from several threads,
/// but `getNextToken` moves the cursor even of a const object, so one object must not be tokenised
/// from two threads at once.
///
/// Throws: nothing of its own. Exhausted memory and a null `const char*` surface as the standard
/// library's exceptions (`std::bad_alloc`, `std::logic_error`).
class KESTA_API CKestaString : public std::string
{
    // Overloads for other string types are templates that take exactly these types, so numbers,
    // nullptr and host classes resolve as if they did not exist, and a host's own function wins.
    template <class T>
    static constexpr bool isChar = std::is_same_v<T, char>;

    template <class T>
    static constexpr bool isString = std::is_same_v<T, std::string>;

    template <class T>
    static constexpr bool isView = std::is_same_v<T, std::string_view>;

public:
    /// An empty text.
    CKestaString() = default;

    /// A copy of a NUL-terminated text.
    CKestaString(const char* psztemp) : std::string(KestaTextDetail::viewOf(psztemp)) {}

    /// A copy of a `std::string` up to its first NUL byte.
    template <class T, std::enable_if_t<isString<T>, int> = 0>
    CKestaString(const T& strparam) : std::string(strparam.c_str())
    {
    }

    /// A copy of a `std::string_view` up to its first NUL byte. Explicit, as for `std::string`.
    template <class T, class = std::enable_if_t<isView<T>>>
    explicit CKestaString(T text) : std::string(KestaTextDetail::upToNul(text))
    {
    }

    /// A copy of the other's text up to its first NUL byte; tokenising starts afresh.
    CKestaString(const CKestaString& strparam) : std::string(strparam.c_str()) {}

    /// The number in decimal.
    CKestaString(int ival);

    /// The number in decimal.
    CKestaString(long lval);

    /// The number in decimal.
    CKestaString(long long llval);

    /// The number in decimal.
    CKestaString(unsigned int uval);

    /// The low 32 bits of the number, read as a signed number, in decimal.
    ///
    /// Intended, and relied upon by hosts: 4294967295 gives "-1" and 4294967296 gives "0". Numbers
    /// up to 2147483647 print as themselves. The digits are those of the host's locale, where it
    /// has digits of its own; this is the one operation that asks for them. For the whole of a
    /// large number, convert it to `unsigned long long`.
    CKestaString(std::size_t sparam);

    /// The number in decimal, all of it.
    CKestaString(unsigned long long ullval);

    /// The number as printf's "%f" prints it: fixed notation, always six decimals, and the decimal
    /// point of the host's locale.
    CKestaString(double dval);

    /// "True" or "False".
    CKestaString(bool bval);

    virtual ~CKestaString();

    /// Takes the other's text up to its first NUL byte; tokenising starts afresh. Assigning a text
    /// to itself changes nothing, the tokeniser included.
    CKestaString& operator=(const CKestaString& strparam);

    /// This text up to its first NUL byte, followed by the whole of the other.
    CKestaString operator+(const CKestaString& strparam) const;

    /// The same for literals and pointers, `std::string_view` and single characters.
    template <class T, std::enable_if_t<isChar<T>, int> = 0>
    CKestaString operator+(const T* pszText) const
    {
        return *this + KestaTextDetail::viewOf(pszText);
    }
    template <class T, std::enable_if_t<isView<T>, int> = 0>
    CKestaString operator+(T text) const
    {
        CKestaString strResult(*this);
        strResult.append(text);
        return strResult;
    }
    template <class T, std::enable_if_t<isChar<T>, int> = 0>
    CKestaString operator+(T cText) const
    {
        return *this + std::string_view(&cText, 1);
    }

    /// The whole of both texts. With a `std::string` on either side, the result is a `std::string`.
    template <class T, std::enable_if_t<isString<T>, int> = 0>
    std::string operator+(T strText) const
    {
        return std::move(strText.insert(0, *this));
    }

    /// True when the two texts are the same up to their first NUL bytes.
    ///
    /// With `std::string` and `std::string_view` it is their own comparison, to which NUL bytes are
    /// bytes like any other; so are the orderings and, in C++17, `!=` and a literal on the left
    /// side. For texts without NUL bytes there is no difference.
    bool operator==(const CKestaString& strparam) const;

    /// The same for literals and pointers.
    template <class T, std::enable_if_t<isChar<T>, int> = 0>
    bool operator==(const T* pszText) const
    {
        return KestaTextDetail::upToNul(*this) == KestaTextDetail::viewOf(pszText);
    }

    /// The comparison of whole texts described above.
    template <class T, std::enable_if_t<isString<T> || isView<T>, int> = 0>
    bool operator==(const T& text) const
    {
        return std::string_view(*this) == std::string_view(text);
    }

    /// True when the two texts are the same up to their first NUL bytes; with `bCase_Flag` false,
    /// ASCII letters that differ in case only count as equal.
    bool equals(CKestaString& strtocmp, bool bCase_Flag) const;
    bool equals(char* chartocmp, bool bCase_Flag) const;

    /// The same for constants. Templates, so that the two above are preferred.
    template <class = void>
    bool equals(const CKestaString& strtocmp, bool bCase_Flag) const
    {
        return equals(const_cast<CKestaString&>(strtocmp), bCase_Flag);
    }
    template <class = void>
    bool equals(const char* chartocmp, bool bCase_Flag) const
    {
        return equals(const_cast<char*>(chartocmp), bCase_Flag);
    }

    /// True when the text starts with `strd`; every text starts with the empty one.
    bool beginsWith(const CKestaString& strd) const;

    /// True when the last byte of the text is any one of the bytes of `strd`.
    ///
    /// Intended: this asks for a last character out of a set, not for a suffix.
    ///
    ///     CKestaString("alpha").endsWith("xa")   // true: 'a' is in the set
    ///     CKestaString("alpha").endsWith("ph")   // false
    ///     CKestaString("alpha").endsWith("")     // false
    ///     CKestaString("").endsWith("z")         // true: the empty text ends with everything
    bool endsWith(const CKestaString& strd) const;

    /// The number of occurrences of `delim` that do not overlap; an empty `delim` counts 0.
    int countDelims(const CKestaString& delim) const;

    /// `countDelims` plus one, but 0 for a text that holds no delimiter at all.
    int countTokens(const CKestaString& strd) const;

    /// Puts the next token of the text into `result` and returns true, or leaves `result` as it is
    /// and returns false at the end.
    ///
    /// A delimiter starts from the beginning of the text; an empty one continues with the delimiter
    /// given last. There is no empty token after a trailing delimiter, and a text that does not
    /// hold the delimiter has no tokens at all:
    ///
    ///     CKestaString strList("a,,b,"), strToken;
    ///     strList.getNextToken(strToken, ",");   // true, "a"
    ///     strList.getNextToken(strToken, "");    // true, ""
    ///     strList.getNextToken(strToken, "");    // true, "b"
    ///     strList.getNextToken(strToken, "");    // false
    ///
    /// The text may be changed between two calls: if it is now shorter than the cursor's position,
    /// there is no further token.
    bool getNextToken(CKestaString& result, std::string strd) const;

    /// The number that the text begins with, as `atoi` reads it; 0 when there is none.
    int toInt() const;

    /// The number that the text begins with, as `atof` reads it; 0.0 when there is none.
    double toDouble() const;

    /// Removes the white space at both ends of this text, in place, and returns a copy of the
    /// result.
    ///
    /// Afterwards the text ends before its first NUL byte, and tokenising starts afresh; an empty
    /// text is left alone, its tokeniser included.
    CKestaString trim();

    /// Removes every white-space byte of this text, in place, and returns a copy of the result. NUL
    /// bytes, the tokeniser and an empty text are treated as by `trim`.
    CKestaString removeSpaces();

private:
    KESTA_LOCAL void renew(std::string_view text);

    mutable long m_itokpos = 0;      // where the next token is looked for
    mutable std::string m_szdelim;   // the delimiter given last; empty: none yet
};

/// Texts that are equal have the same hash: the bytes from the first NUL byte on do not count.
template <>
struct std::hash<CKestaString>
{
    /// The hash of a text.
    std::size_t operator()(const CKestaString& strText) const noexcept
    {
        return std::hash<std::string_view>()(KestaTextDetail::upToNul(strText));
    }
};

#endif
