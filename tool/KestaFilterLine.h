#ifndef KESTA_FILTER_LINE_H
#define KESTA_FILTER_LINE_H

#include "KestaAddresses.h"

#include <cstddef>
#include <optional>
#include <string_view>

// Where the addresses of a line are: in one of its fields, or anywhere.

/// Which field of a line. Fields are separated by white space, by a comma, or by both; or by one
/// given character.
struct CKestaFilterField
{
    std::size_t ulNumber = 1;
    std::optional<char> separator;

    /// Finds the field in a line; empty if there is none. White space around a field is not part of
    /// it. With a given separator the quotes of a CSV field aren't either, and may contain it.
    std::string_view of(std::string_view line) const;

    /// True for the characters that end a field unless a separator is given. A newline is one.
    static bool isEnd(char c) { return c == ' ' || c == ',' || (c >= '\t' && c <= '\r'); }
};

/// Reads a whole field as an address, in any form that the library's address classes read. It may
/// be in brackets; brackets and IPv4 addresses may be followed by ":" and a port. A number alone is
/// no address.
bool readField(std::string_view text, CKestaAddress& address);

/// Finds all addresses of a line, in their usual forms.
///
/// A word is a run of ASCII letters, digits, "." and ":". Dots around it and a ":" after it are
/// punctuation. It is an IPv6 address, perhaps after a name and ":"; or else each of its parts
/// between colons may be an IPv4 address. "::" alone is no address.
class CKestaAddressSearch
{
public:
    /// REQUIRES: the line ends with a newline, and outlives the search.
    explicit CKestaAddressSearch(const char* pLine) : m_pLine(pLine) {}

    /// Finds the next address. Returns false when there is no other.
    bool next(CKestaAddress& address);

private:
    const char* m_pLine;
    std::string_view m_parts;   // of the current word, not looked at yet
};

#endif
