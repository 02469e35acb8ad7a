#include "KestaOutput.h"

#include "KestaProgress.h"
#include "KestaToolError.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace
{

constexpr std::size_t ulBlock = 256UL * 1024;

bool isSet(const char* pszVariable)
{
    const char* const pszValue = std::getenv(pszVariable);
    return pszValue != nullptr && *pszValue != '\0';
}

}   // namespace

CKestaOutput::CKestaOutput()
{
    m_strBuffer.reserve(ulBlock);
}

void CKestaOutput::write(std::string_view bytes)
{
    if (bytes.size() > ulBlock - m_strBuffer.size())
        flush();
    if (bytes.size() >= ulBlock)
        writeAll(bytes);
    else
        m_strBuffer += bytes;
}

void CKestaOutput::flush()
{
    writeAll(m_strBuffer);
    m_strBuffer.clear();
}

bool CKestaOutput::isTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

bool CKestaOutput::isColoured()
{
    const char* const pszTerminal = std::getenv("TERM");
    return isTerminal() && !isSet("NO_COLOR") && pszTerminal != nullptr &&
           std::strcmp(pszTerminal, "dumb") != 0;
}

void CKestaOutput::writeAll(std::string_view bytes)
{
    if (!bytes.empty())
        CKestaProgress::hide();
    while (!bytes.empty())
    {
        const ssize_t lWritten = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (lWritten >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(lWritten));
        else if (errno == EPIPE)
            throw CKestaReaderGone();
        else if (errno != EINTR)
            throw CKestaToolError(systemError("standard output", errno));
    }
}
