#include "KestaLineFile.h"

#include "KestaException.h"
#include "KestaHostSetup.h"
#include "KestaProcess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr std::string_view frameStart("\xFE\xFF", 2);
constexpr std::string_view frameEnd("\0\n", 2);
constexpr std::string_view plainEnd("\n");

bool holds(const CKestaString& strMode, char c)
{
    return strMode.find(c) != CKestaString::npos;
}

/// The flags of `open` for a mode of `fopen`; -1 for a text that is not a mode.
int openFlags(const CKestaString& strMode)
{
    const int iAccess = holds(strMode, '+') ? O_RDWR : holds(strMode, 'r') ? O_RDONLY : O_WRONLY;
    const int iExclusive = holds(strMode, 'x') ? O_EXCL : 0;
    switch (strMode.c_str()[0])
    {
    case 'r':
        return iAccess;
    case 'w':
        return iAccess | O_CREAT | O_TRUNC | iExclusive;
    case 'a':
        return iAccess | O_CREAT | O_APPEND | iExclusive;
    default:
        return -1;
    }
}

/// Opens a regular file or a character device, and queries its status; -1 when that fails. Neither
/// opening nor writing ever waits: a terminal whose output is stopped loses lines, as a full disk
/// does.
int openFile(const char* pszPath, int iFlags, struct stat& status)
{
    if (iFlags == -1)
        return -1;
    // A program that the host executes must not inherit the file, and a terminal must not become
    // the host's controlling terminal.
    int iFile = open(pszPath, iFlags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (iFile >= 0 && iFile <= STDERR_FILENO)
    {
        // The host has closed a standard file, and what it still prints must not land here. Between
        // the two calls it can: no flag of open asks for a number above 2.
        const int iLow = iFile;
        iFile = fcntl(iLow, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        close(iLow);
    }
    if (iFile < 0 ||
        (fstat(iFile, &status) == 0 && (S_ISREG(status.st_mode) || S_ISCHR(status.st_mode))))
        return iFile;
    close(iFile);
    return -1;
}

bool isSameFile(const struct stat& left, const struct stat& right)
{
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// Also true for a file that could not be opened.
bool isStillAt(int iFile, const CKestaString& strPath)
{
    struct stat own;
    struct stat found;
    return fstat(iFile, &own) != 0 ||
           (stat(strPath.c_str(), &found) == 0 && isSameFile(own, found));
}

bool isLarger(const CKestaString& strPath, long lLimit)
{
    struct stat status;
    return stat(strPath.c_str(), &status) == 0 && status.st_size > lLimit;
}

// Locks a file, but not at any price: a reader of the log may have locked it, too, and must not
// keep it from being rolled over.
void tryToLock(int iFile)
{
    constexpr int iTries = 5;
    for (int i = 0; i < iTries && flock(iFile, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++i)
    {
        const struct timespec millisecond = {0, 1'000'000};
        nanosleep(&millisecond, nullptr);
    }
}

bool hasFileSizeLimit()
{
    struct rlimit limit = {RLIM_INFINITY, RLIM_INFINITY};
    getrlimit(RLIMIT_FSIZE, &limit);
    return limit.rlim_cur != RLIM_INFINITY;
}

/// Returns the number of bytes that were written. Interrupted before the first, it tries again.
std::size_t writeSome(int iFile, std::string_view bytes)
{
    ssize_t lWritten;
    do
        lWritten = write(iFile, bytes.data(), bytes.size());
    while (lWritten < 0 && errno == EINTR);
    return lWritten < 0 ? 0 : static_cast<std::size_t>(lWritten);
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
        sigtimedwait(&m_signal, nullptr, &now);   // removes the signal, if the write raised it
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
    const CKestaNoCancellation noCancellation;
    close();
    const int iFlags = openFlags(strMode);
    struct stat status = {};
    m_iFile = openFile(strPath.c_str(), iFlags, status);
    if (m_iFile < 0)
        throw CKestaExc(1008, "Kesta_Fernhold", strPath);
    m_ulDevice = status.st_dev;
    m_ulNumber = status.st_ino;
    m_uForks = uKestaForks;
    if ((iFlags & (O_APPEND | O_RDWR)) == O_APPEND)
        lseek(m_iFile, 0, SEEK_END);   // "a" starts at the end, "a+" at 0, as with fopen
    m_bEnciphered = bEnciphered;
    m_bAtStart = true;
}

bool CKestaLineFile::isOpen() const
{
    return m_iFile >= 0;
}

void CKestaLineFile::close()
{
    const CKestaNoCancellation noCancellation;
    if (isOpen() && isOwn())
        ::close(m_iFile);
    m_iFile = -1;
}

// False if the host has closed the descriptor, whatever has its number now.
bool CKestaLineFile::isOwn() const
{
    struct stat status;
    return fstat(m_iFile, &status) == 0 && status.st_dev == m_ulDevice &&
           status.st_ino == m_ulNumber;
}

void CKestaLineFile::rollOver(const CKestaString& strPath, const CKestaString& strNewPath,
                              long lLimit)
{
    const CKestaNoCancellation noCancellation;
    if (isLarger(strPath, lLimit))
        renameLocked(strPath, strNewPath, lLimit);
    close();
}

// The lock is on the file to be renamed, which need not be this one.
void CKestaLineFile::renameLocked(const CKestaString& strPath, const CKestaString& strNewPath,
                                  long lLimit) const
{
    const int iFound = ::open(strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    tryToLock(iFound);
    if (isLarger(strPath, lLimit) && isStillAt(iFound, strPath) &&
        !isRolledOver(strPath, strNewPath))
        std::rename(strPath.c_str(), strNewPath.c_str());
    if (iFound >= 0)
        ::close(iFound);
}

// True when another process was first: this file is the old log now, and renaming the file at the
// path would destroy it. A file that somebody else has put at the path is taken for the log.
bool CKestaLineFile::isRolledOver(const CKestaString& strPath, const CKestaString& strNewPath) const
{
    struct stat found;
    struct stat old;
    struct stat own = {};
    own.st_dev = m_ulDevice;
    own.st_ino = m_ulNumber;
    return isOpen() && stat(strPath.c_str(), &found) == 0 && !isSameFile(own, found) &&
           stat(strNewPath.c_str(), &old) == 0 && isSameFile(own, old);
}

bool CKestaLineFile::writeLine(std::string strLine)
{
    return writeInPlace(strLine);
}

bool CKestaLineFile::writeInPlace(std::string& strLine)
{
    const CKestaNoCancellation noCancellation;
    if (!isOpen() || (m_uForks != uKestaForks && !isOwn()) || (m_bEnciphered && !encipher(strLine)))
        return false;
    const std::string_view lineEnd = m_bEnciphered ? frameEnd : plainEnd;
    if (m_bTorn && !endsWith(lineEnd))
        strLine.insert(0, lineEnd);
    // Looked up once, before the first line, so that without a limit a line is one system call.
    if (m_bAtStart)
        m_bLimited = hasFileSizeLimit();
    if (!m_bLimited)
        return write(strLine);
    const CFileSizeSignalBlock block;
    return write(strLine);
}

bool CKestaLineFile::encipher(std::string& strLine) const
{
    if (const CKestaHostSetup::LineCipher pCipher = CKestaHostSetup::getLineCipher())
    {
        try
        {
            strLine = pCipher(strLine);
        }
        catch (...)
        {
            return false;   // the host's cipher failed: the line is lost, and the caller goes on
        }
    }
    strLine += frameEnd;
    // The position of a file opened to append counts from 0 at every open, whatever the file holds:
    // the mark also stands in the middle of a log that was opened again.
    if (m_bAtStart && lseek(m_iFile, 0, SEEK_CUR) == 0)
        strLine.insert(0, frameStart);
    return true;
}

bool CKestaLineFile::write(const std::string& strBytes)
{
    // Unbuffered: what does not fit on a full disk must not be written later. The rest after a
    // short write is tried once, so that only a disk that is really full tears a line.
    std::size_t ulWritten = writeSome(m_iFile, strBytes);
    if (ulWritten == 0)
        return false;
    if (ulWritten < strBytes.size())
        ulWritten += writeSome(m_iFile, std::string_view(strBytes).substr(ulWritten));
    m_bAtStart = false;
    m_bTorn = ulWritten < strBytes.size();
    return !m_bTorn;
}

// An empty file, and one that can't be read, count as ending with a whole line.
bool CKestaLineFile::endsWith(std::string_view lineEnd) const
{
    struct stat status;
    if (fstat(m_iFile, &status) != 0 || status.st_size == 0)
        return true;
    std::string strTail(lineEnd.size(), ' ');
    const off_t lTail = status.st_size - static_cast<off_t>(strTail.size());
    const ssize_t lRead = pread(m_iFile, strTail.data(), strTail.size(), std::max<off_t>(lTail, 0));
    return lRead < 0 || strTail == lineEnd;
}
