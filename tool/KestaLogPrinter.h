#ifndef KESTA_LOG_PRINTER_H
#define KESTA_LOG_PRINTER_H

#include "KestaLogDecoder.h"

#include <cstddef>
#include <string>
#include <string_view>

class CKestaOutput;

/// Shows the bytes of a trace log as plain text, in whole lines, so that several logs may share one
/// output.
///
/// On a terminal everything that it could obey is escaped, because a traced text may come from
/// anyone. Elsewhere the bytes are written as they are.
class CKestaLogPrinter
{
public:
    explicit CKestaLogPrinter(CKestaOutput& output);

    /// Writes the lines that these bytes complete. A line without an end is written in long pieces.
    void print(std::string_view bytes);

    /// The end of the log: writes what was held back, as a whole line.
    void finish();

private:
    void write(std::size_t ulLength);

    CKestaOutput& m_output;
    bool m_bTerminal;
    CKestaLogDecoder m_decoder;
    std::string m_strText;   // decoded, but not written yet
};

#endif
