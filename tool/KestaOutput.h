#ifndef KESTA_OUTPUT_H
#define KESTA_OUTPUT_H

#include <string>
#include <string_view>

/// Standard output, written in large blocks.
///
/// Throws: `CKestaToolError` when it can't be written, `CKestaReaderGone` when its reader has gone
/// away.
class CKestaOutput
{
public:
    CKestaOutput();

    /// Adds bytes.
    void write(std::string_view bytes);

    /// Writes what was added so far. Bytes that are never flushed are lost.
    void flush();

    static bool isTerminal();

    /// True when the output is a terminal that shows colours, and the user has not disabled them.
    static bool isColoured();

private:
    static void writeAll(std::string_view bytes);

    std::string m_strBuffer;
};

#endif
