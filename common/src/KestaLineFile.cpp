#include "KestaLineFile.h"

#include "KestaException.h"
#include "KestaHostSetup.h"

#include <csignal>
#include <ctime>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

std::string frameEnd()
{
    return std::string("\0\n", 2);
}

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
    // Without a buffer fwrite is one write, and tells how much of it was done.
    std::setvbuf(m_pFile, nullptr, _IONBF, 0);
    m_bEnciphered = bEnciphered;
    m_bAtStart = true;
    // One question at opening spares every line the two system calls of the signal block.
    m_bLimited = hasFileSizeLimit();
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
    if (m_bTorn && endsAmidLine())
        strLine.insert(0, m_bEnciphered ? frameEnd() : "\n");
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
    strLine += frameEnd();
    // A file opened to append counts its position from 0 at every open, whatever it holds: the
    // marks stand amid a log that was opened again, too.
    if (m_bAtStart && std::ftell(m_pFile) == 0)
        strLine.insert(0, "\xFE\xFF");
    return true;
}

bool CKestaLineFile::write(const std::string& strBytes)
{
    const std::size_t ulWritten = std::fwrite(strBytes.data(), 1, strBytes.size(), m_pFile);
    m_bAtStart = m_bAtStart && ulWritten == 0;
    m_bTorn = ulWritten < strBytes.size();
    return !m_bTorn;
}

bool CKestaLineFile::endsAmidLine() const
{
    const int iFile = fileno(m_pFile);
    struct stat status;
    char cLast;
    return fstat(iFile, &status) == 0 && status.st_size > 0 &&
           pread(iFile, &cLast, 1, status.st_size - 1) == 1 && cLast != '\n';
}
