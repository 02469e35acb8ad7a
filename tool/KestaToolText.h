#ifndef KESTA_TOOL_TEXT_H
#define KESTA_TOOL_TEXT_H

#include <string>
#include <string_view>

/// A text with everything that a terminal would obey, and every byte that is not of UTF-8, written
/// as \x and two digits; but for the `kept` ones.
std::string printable(std::string_view text, std::string_view kept = {});

/// A text between single quotes.
std::string inQuotes(std::string_view text);

/// A text without the blanks that it ends with.
std::string withoutEndBlanks(std::string strText);

#endif
