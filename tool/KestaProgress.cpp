#include "KestaProgress.h"

#include "KestaToolText.h"

#include <algorithm>

#include <unistd.h>

namespace
{

bool bShown = false;

void writeToTerminal(const std::string& strText)
{
    // If the terminal takes no more text, the work goes on all the same.
    [[maybe_unused]] const ssize_t lWritten = write(STDERR_FILENO, strText.data(), strText.size());
}

}   // namespace

CKestaProgress::CKestaProgress(const CKestaInput& input)
    : m_input(input), m_ullSize(isatty(STDERR_FILENO) == 1 ? input.size() : 0),
      m_next(CClock::now() + std::chrono::seconds(1))
{
}

void CKestaProgress::advance(std::size_t ulBytes)
{
    m_ullRead += ulBytes;
    if (m_ullSize == 0 || CClock::now() < m_next)
        return;
    m_next = CClock::now() + std::chrono::milliseconds(200);
    const std::uint64_t ullPercent = std::min<std::uint64_t>(m_ullRead * 100 / m_ullSize, 99);
    hide();
    writeToTerminal(printable(m_input.name()) + ": " + std::to_string(ullPercent) + " %");
    bShown = true;
}

void CKestaProgress::hide()
{
    if (bShown)
        writeToTerminal("\r\x1b[K");
    bShown = false;
}
