#include "KestaSettingsReader.h"

#include "KestaTextDetail.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

CKestaKeyValue::CKestaKeyValue(std::string_view line)
    : bFound(line.find('=') != std::string_view::npos)
{
    if (!bFound)
        return;
    const std::size_t ulKeyEnd = line.find('=');
    const std::string_view rest = line.substr(ulKeyEnd + 1);
    key = KestaTextDetail::trimmed(line.substr(0, ulKeyEnd));
    if (!rest.empty())
        value = KestaTextDetail::trimmed(rest.substr(0, rest.find('=')));
}

CKestaSettingsReader::CKestaSettingsReader(const char* pszPath)
    : m_iFile(open(pszPath, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)), m_iError(errno)
{
    struct stat status = {};
    if (!isOpen())
        return;
    if (fstat(m_iFile, &status) == 0 && S_ISREG(status.st_mode))
    {
        m_lUnread = status.st_size;
        return;
    }
    m_bAtEnd = true;
    if (S_ISFIFO(status.st_mode))
    {
        m_iError = EINVAL;
        close(m_iFile);
        m_iFile = -1;
    }
}

CKestaSettingsReader::~CKestaSettingsReader()
{
    if (isOpen())
        close(m_iFile);
}

bool CKestaSettingsReader::next(CKestaSetting& setting)
{
    std::string_view piece;
    while (nextPiece(piece, setting))
    {
        const std::string_view line = KestaTextDetail::trimmed(piece);
        if (line.empty() || line.front() == '#')
            continue;
        const CKestaKeyValue found(line);
        if (!found.bFound)
            continue;   // the header, too: keys count wherever they stand
        setting.bTakenOver = !found.value.has_value();
        if (!setting.bTakenOver)
            m_ulValue = found.value->copy(m_szValue, sizeof m_szValue);
        setting.key = found.key;
        setting.value = std::string_view(m_szValue, m_ulValue);
        return true;
    }
    return false;
}

// A piece ends after a newline, or at the greatest length that a piece may have.
bool CKestaSettingsReader::nextPiece(std::string_view& piece, CKestaSetting& setting)
{
    fill();
    piece = std::string_view(m_szBlock + m_ulBegin, m_ulEnd - m_ulBegin).substr(0, ulLongestPiece);
    if (piece.empty())
        return false;
    const std::size_t ulNewline = piece.find('\n');
    const bool bNewline = ulNewline != std::string_view::npos;
    const bool bLineEnds = bNewline || piece.size() < ulLongestPiece;
    if (bNewline)
        piece = piece.substr(0, ulNewline + 1);
    m_ulBegin += piece.size();
    if (!m_bWithinLine)
        ++m_ulLine;
    setting.ulLine = m_ulLine;
    setting.bCut = m_bWithinLine || !bLineEnds;
    m_bWithinLine = !bLineEnds;
    return true;
}

// Afterwards the block holds a whole piece, or all that is left of the file.
void CKestaSettingsReader::fill()
{
    if (m_ulEnd - m_ulBegin >= ulLongestPiece || m_bAtEnd)
        return;
    m_ulEnd -= m_ulBegin;
    std::memmove(m_szBlock, m_szBlock + m_ulBegin, m_ulEnd);
    m_ulBegin = 0;
    while (m_ulEnd < ulLongestPiece && !m_bAtEnd)
    {
        const ssize_t lRead = read(m_iFile, m_szBlock + m_ulEnd, sizeof m_szBlock - m_ulEnd);
        if (lRead > 0)
        {
            m_ulEnd += static_cast<std::size_t>(lRead);
            m_lUnread -= lRead;
            m_bAtEnd = m_lUnread == 0;   // saves a read; in /proc every file has size 0
        }
        else
            m_bAtEnd = lRead == 0 || errno != EINTR;
    }
}
