#ifndef KESTA_PROGRESS_H
#define KESTA_PROGRESS_H

#include "KestaInput.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

/// Shows how much of a file has been read, if reading takes more than a second. It is shown on
/// standard error, if that is a terminal, for files of known size, and disappears with the object.
class CKestaProgress
{
public:
    /// REQUIRES: the input outlives the object.
    explicit CKestaProgress(const CKestaInput& input);
    ~CKestaProgress() { hide(); }

    CKestaProgress(const CKestaProgress&) = delete;
    CKestaProgress& operator=(const CKestaProgress&) = delete;

    /// Counts bytes that were read.
    void advance(std::size_t ulBytes);

    /// Clears what is shown; call it before anything else is written to the terminal.
    static void hide();

private:
    typedef std::chrono::steady_clock CClock;

    const CKestaInput& m_input;
    const std::uint64_t m_ullSize;   // 0: nothing is shown
    std::uint64_t m_ullRead = 0;
    CClock::time_point m_next;   // the time of the next update
};

#endif
