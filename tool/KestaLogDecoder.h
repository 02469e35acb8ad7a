#ifndef KESTA_LOG_DECODER_H
#define KESTA_LOG_DECODER_H

#include <string>
#include <string_view>

/// Turns the bytes of a trace log, plain, framed or mixed, into plain text. Bytes go in as pieces
/// of any size, and come out as soon as their meaning is known; at most a few are held back.
///
/// A text never holds a NUL byte, and FE FF begins no UTF-8 character. So:
///
/// - `00 0A` ends a line; so does a `00` alone, which belongs to a torn frame.
/// - `FE FF` is a mark at the start of a line, and within a line where a trace line ("[MSG]:")
///   follows: there a line was torn, and the log was opened again. Elsewhere it is text.
///
/// A line that a frame, a mark or the end of the log cuts short is completed by a newline. In a
/// plain log, a torn line and the one directly after it stay joined: no byte separates them.
class CKestaLogDecoder
{
public:
    /// Decodes the next bytes, and appends what they mean to a text.
    void feed(std::string_view bytes, std::string& strText);

    /// The end of the log: appends what was held back, and completes the last line. The decoder can
    /// then start with another log.
    void finish(std::string& strText);

private:
    const char* copyText(const char* pByte, const char* pEnd, std::string& strText);
    bool hold(char cByte, std::string& strText);
    void endLine(std::string& strText);
    void release(std::string& strText);

    bool m_bLineStart = true;
    bool m_bAfterNul = false;   // the newline of a frame comes next
    std::string m_strHeld;      // a possible mark, and the item type after it
};

#endif
