#include "KestaLineFile.h"

#include "KestaException.h"
#include "KestaHostSetup.h"

#include <algorithm>
#include <csignal>
#include <ctime>
#include <string_view>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr std::string_view frameStart("\xFE\xFF", 2);
constexpr std::string_view frameEnd("\0\n", 2);
constexpr std::string_view plainEnd("\n");

bool hasFileSizeLimit()
{
    struct rlimit limit;
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

/// While it lives, a write over the file-size limit of the process fails, as one on a full disk
/// does, instead of ending the process with SIGXFSZ.
class CFileSizeSignalBlock
{
public:
    CFileSizeSignalBlock()
    {
        sigemptyset(&m_signal);
        sigaddset(&m_signal, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &m_signal, &m_maskBefore);
    }

    ~CFileSizeSignalBlock()
    {
        const struct timespec now = {};
        sigtimedwait(&m_signal, nullptr, &now);   // takes the signal, if the write raised it
        pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
    }

    CFileSizeSignalBlock(const CFileSizeSignalBlock&) = delete;
    CFileSizeSignalBlock& operator=(const CFileSizeSignalBlock&) = delete;

private:
    sigset_t m_signal;
    sigset_t m_maskBefore;
};

}   // namespace

CKestaLineFile::~CKestaLineFile()
{
    close();
}

void CKestaLineFile::open(const CKestaString& strPath, const CKestaString& strMode,
                          bool bEnciphered)
{
    close();
    // "e": a program that the host executes must not inherit the file.
    m_pFile = std::fopen(strPath.c_str(), (strMode + "e").c_str());
    if (m_pFile == nullptr)
        throw CKestaExc(1008, "Kesta_Fernhold", strPath);
    m_bEnciphered = bEnciphered;
    m_bAtStart = true;
}

bool CKestaLineFile::isOpen() const
{
    return m_pFile != nullptr;
}

void CKestaLineFile::close()
{
    if (m_pFile != nullptr)
        std::fclose(m_pFile);
    m_pFile = nullptr;
}

bool CKestaLineFile::writeLine(std::string strLine)
{
    if (!isOpen() || (m_bEnciphered && !encipher(strLine)))
        return false;
    const std::string_view lineEnd = m_bEnciphered ? frameEnd : plainEnd;
    if (m_bTorn && !endsWith(lineEnd))
        strLine.insert(0, lineEnd);
    // Asked once, before the first line, so that a line is one system call where there is no limit.
    if (m_bAtStart)
        m_bLimited = hasFileSizeLimit();
    if (!m_bLimited)
        return write(strLine);
    const CFileSizeSignalBlock block;
    return write(strLine);
}

bool CKestaLineFile::encipher(std::string& strLine)
{
    if (const CKestaHostSetup::LineCipher pCipher = CKestaHostSetup::getLineCipher())
    {
        try
        {
            strLine = pCipher(strLine);
        }
        catch (...)
        {
            return false;   // the host's cipher failed: the line is lost, the caller is not
        }
    }
    strLine += frameEnd;
    // A file opened to append counts its position from 0 at every open, whatever it holds: the
    // marks stand amid a log that was opened again, too.
    if (m_bAtStart && std::ftell(m_pFile) == 0)
        strLine.insert(0, frameStart);
    return true;
}

bool CKestaLineFile::write(const std::string& strBytes)
{
    // Past the stream's buffer: what a full disk refuses must not wait there and come out later.
    const ssize_t lWritten = ::write(fileno(m_pFile), strBytes.data(), strBytes.size());
    const bool bWhole = lWritten == static_cast<ssize_t>(strBytes.size());
    if (lWritten > 0)
    {
        m_bAtStart = false;
        m_bTorn = !bWhole;
    }
    return bWhole;
}

// An empty file, and one that can't be looked at, count as ending with a whole line.
bool CKestaLineFile::endsWith(std::string_view lineEnd) const
{
    const int iFile = fileno(m_pFile);
    struct stat status;
    if (fstat(iFile, &status) != 0 || status.st_size == 0)
        return true;
    std::string strTail(lineEnd.size(), ' ');
    const off_t lTail = status.st_size - static_cast<off_t>(strTail.size());
    const ssize_t lRead = pread(iFile, strTail.data(), strTail.size(), std::max<off_t>(lTail, 0));
    return lRead < 0 || strTail == lineEnd;
}
