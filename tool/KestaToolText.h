#ifndef KESTA_TOOL_TEXT_H
#define KESTA_TOOL_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

/// A text in which every character that a terminal would act on, and every byte that is not UTF-8,
/// is written as \x and two digits, except for the characters in `kept`.
std::string printable(std::string_view text, std::string_view kept = {});

/// The first bytes of a text, and "..." if there are more.
std::string shortened(std::string_view text, std::size_t ulShown = 64);

/// The same in single quotes.
std::string inQuotes(std::string_view text);

/// A text without the white space around it.
std::string_view withoutBlanks(std::string_view text);

/// The byte-order mark of UTF-8, which some editors put at the start of a file.
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

#endif
