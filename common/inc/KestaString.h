#ifndef KESTA_STRING_H
#define KESTA_STRING_H

#include "KestaExport.h"
#include "KestaTextDetail.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

/// The library's one text type: a `std::string` with number formatting, comparison, counting,
/// trimming and a tokeniser that remembers where it stands.
///
/// It works on bytes and knows no encoding; white space is what the "C" locale calls so. Every
/// `std::string` operation is available. A text may hold NUL bytes (put there through a
/// `std::string` operation), but a copy ends before the first of them: constructing, assigning and
/// comparing look at the C-string form.
///
/// Texts are values. A copy never carries tokeniser state, and there is no move: moving would have
/// to leave the source as it is, as copying does.
///
/// Thread contract: distinct objects are independent. One object may be read from several threads,
/// but `getNextToken` moves the cursor even of a const object, so one object must not be tokenised
/// from two threads at once.
///
/// Throws: nothing of its own. Exhausted memory and a null `const char*` surface as the standard
/// library's exceptions (`std::bad_alloc`, `std::logic_error`).
class KESTA_API CKestaString : public std::string
{
    // What takes texts of other types is a template, so that it takes nothing else: a number, a
    // nullptr or a class of the host's own goes the way that it would go without. Pointers tell
    // a base class here, because the host's class may be declared only.
    template <class T, class TBase>
    static constexpr bool isDerived = std::is_convertible_v<const T*, const TBase*>;

    template <class T>
    static constexpr bool isStdString = isDerived<T, std::string> && !isDerived<T, CKestaString>;

    template <class T>   // literals, pointers and std::string_view
    static constexpr bool isText = std::is_convertible_v<const T&, std::string_view> &&
                                   !isDerived<T, std::string> && !std::is_null_pointer_v<T>;

public:
    /// An empty text.
    CKestaString() = default;

    /// A copy of a NUL-terminated text.
    CKestaString(const char* psztemp) : std::string(KestaTextDetail::viewOf(psztemp)) {}

    /// A copy of a `std::string` up to its first NUL byte.
    template <class T, std::enable_if_t<isStdString<T>, int> = 0>
    CKestaString(const T& strparam) : std::string(strparam.c_str())
    {
    }

    /// A copy of the other's text up to its first NUL byte; tokenising starts afresh.
    CKestaString(const CKestaString& strparam) : std::string(strparam.c_str()) {}

    /// The number in decimal.
    CKestaString(int ival);

    /// The number in decimal.
    CKestaString(long lval);

    /// The low 32 bits of the number, read as a signed number, in decimal.
    ///
    /// Intended, and relied upon by hosts: 4294967295 gives "-1" and 4294967296 gives "0". Numbers
    /// up to 2147483647 print as themselves.
    CKestaString(std::size_t sparam);

    /// The number as printf's "%f" prints it: fixed notation, always six decimals.
    CKestaString(double dval);

    /// "True" or "False".
    CKestaString(bool bval);

    virtual ~CKestaString();

    /// Takes the other's text up to its first NUL byte; tokenising starts afresh. Assigning a text
    /// to itself changes nothing, the tokeniser included.
    CKestaString& operator=(const CKestaString& strparam);

    /// This text up to its first NUL byte, followed by the whole of the other.
    CKestaString operator+(const CKestaString& strparam) const;

    /// The same for literals, pointers, `std::string_view` and single characters.
    template <class T, class TDecayed = std::decay_t<T>,
              std::enable_if_t<isText<TDecayed> || std::is_same_v<TDecayed, char>, int> = 0>
    CKestaString operator+(T&& text) const
    {
        CKestaString strResult(*this);
        if constexpr (std::is_same_v<TDecayed, char>)
            strResult.push_back(text);
        else
            strResult.append(KestaTextDetail::viewOf(text));
        return strResult;
    }

    /// The whole of both texts. With a `std::string` on either side, `+` is the one of
    /// `std::string`, and so is its result.
    template <class T, std::enable_if_t<isStdString<std::decay_t<T>>, int> = 0>
    std::string operator+(T&& text) const
    {
        std::string strResult;
        strResult.reserve(size() + text.size());
        return strResult.append(*this).append(text);
    }

    /// True when the two texts are the same up to their first NUL bytes.
    ///
    /// With `std::string` and `std::string_view` it is the comparison of these, which takes NUL
    /// bytes as any other; so are the orderings and, in C++17, `!=` and a literal on the left side.
    /// Texts without NUL bytes can't tell the difference.
    bool operator==(const CKestaString& strparam) const;

    /// The same for literals and pointers, and the comparison of whole texts described above.
    template <class T, std::enable_if_t<isText<T> || isStdString<T>, int> = 0>
    bool operator==(const T& text) const
    {
        if constexpr (std::is_class_v<T>)
            return std::string_view(*this) == KestaTextDetail::viewOf(text);
        else
            return KestaTextDetail::upToNul(*this) == KestaTextDetail::viewOf(text);
    }

    /// True when the two texts are the same up to their first NUL bytes; with `bCase_Flag` false,
    /// ASCII letters that differ in case only count as equal.
    bool equals(const CKestaString& strtocmp, bool bCase_Flag) const;

    /// The same for a NUL-terminated text.
    bool equals(const char* chartocmp, bool bCase_Flag) const;

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
    /// A delimiter starts the walk from the beginning, an empty one goes on with the last that was
    /// named. There is no empty token after a trailing delimiter, and a text that does not hold
    /// the delimiter has no tokens at all:
    ///
    ///     CKestaString strList("a,,b,"), strToken;
    ///     strList.getNextToken(strToken, ",");   // true, "a"
    ///     strList.getNextToken(strToken, "");    // true, ""
    ///     strList.getNextToken(strToken, "");    // true, "b"
    ///     strList.getNextToken(strToken, "");    // false
    ///
    /// The text may be changed between two calls: a cursor past the end of a text that was
    /// shortened meanwhile ends the walk.
    bool getNextToken(CKestaString& result, const std::string& strd) const;

    /// The same for literals and pointers, of which no `std::string` is made.
    template <class T, std::enable_if_t<isText<T>, int> = 0>
    bool getNextToken(CKestaString& result, const T& strd) const
    {
        return nextToken(result, KestaTextDetail::viewOf(strd));
    }

    /// The number that the text begins with, as `atoi` reads it; 0 when there is none.
    int toInt() const;

    /// The number that the text begins with, as `atof` reads it; 0.0 when there is none.
    double toDouble() const;

    /// Takes the white space off both ends of this text, in place, and returns a copy of it.
    ///
    /// The text ends before its first NUL byte afterwards, and tokenising starts afresh; an empty
    /// text is left alone, its tokeniser included.
    CKestaString trim();

    /// Takes every white-space byte out of this text, in place, and returns a copy of it. NUL
    /// bytes, the tokeniser and an empty text fare as with `trim`.
    CKestaString removeSpaces();

private:
    bool nextToken(CKestaString& result, std::string_view delimiter) const;
    void renew(std::string_view text);

    mutable long m_itokpos = 0;      // where the next token is looked for
    mutable std::string m_szdelim;   // the delimiter last named; empty: none yet
};

#endif
