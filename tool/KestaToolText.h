#ifndef KESTA_TOOL_TEXT_H
#define KESTA_TOOL_TEXT_H

#include <string>
#include <string_view>

/// A text with every byte that a terminal could obey written as \x and two digits: control
/// characters, but for the `kept` ones, and bytes that are not UTF-8.
std::string printable(std::string_view text, std::string_view kept = {});

/// A text between single quotes.
std::string inQuotes(std::string_view text);

/// A text without the blanks that it ends with.
std::string withoutEndBlanks(std::string strText);

#endif
