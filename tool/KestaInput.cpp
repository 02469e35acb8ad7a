#include "KestaInput.h"

#include "KestaToolText.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr std::size_t ulBlock = 256UL * 1024;
constexpr std::size_t ulTail = 256;

CKestaFileId idOf(const struct stat& status)
{
    return {status.st_dev, status.st_ino};
}

int openFile(const std::string& strPath)
{
    return open(strPath.c_str(), O_RDONLY | O_CLOEXEC);
}

}   // namespace

CKestaFileId CKestaFileId::at(const std::string& strPath)
{
    struct stat status;
    return stat(strPath.c_str(), &status) == 0 ? idOf(status) : CKestaFileId();
}

CKestaInput::CKestaInput(const std::string& strPath)
    : CKestaInput(strPath == "-" ? "(standard input)" : strPath,
                  strPath == "-" ? STDIN_FILENO : openFile(strPath))
{
}

std::unique_ptr<CKestaInput> CKestaInput::openIfThere(const std::string& strPath)
{
    const int iFile = openFile(strPath);
    if (iFile < 0 && errno == ENOENT)
        return nullptr;
    return std::unique_ptr<CKestaInput>(new CKestaInput(strPath, iFile));
}

std::unique_ptr<CKestaInput> CKestaInput::openIfRegular(const std::string& strPath)
{
    struct stat status;
    const int iFile = open(strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (iFile >= 0 && fstat(iFile, &status) == 0 && !S_ISREG(status.st_mode))
    {
        close(iFile);
        return nullptr;
    }
    if (iFile < 0 && (errno == ENOENT || errno == ENXIO))
        return nullptr;
    return std::unique_ptr<CKestaInput>(new CKestaInput(strPath, iFile));
}

CKestaInput::CKestaInput(const std::string& strName, int iFile) : m_strName(strName), m_file(iFile)
{
    if (iFile < 0)
        throw CKestaInputError(systemError(m_strName, errno));
    if (isStandardOutput())
        throw CKestaInputError(m_strName + ": input file is also the output");
    m_buffer.resize(ulBlock);
}

std::string_view CKestaInput::readFirst()
{
    std::string_view bytes;
    bool bEnd = false;
    while (!bEnd && bytes == byteOrderMark.substr(0, bytes.size()))   // it may come in pieces
    {
        const std::size_t ulBefore = bytes.size();
        bytes = readBehind(ulBefore);
        bEnd = bytes.size() == ulBefore;
    }
    const bool bMarked = bytes.substr(0, byteOrderMark.size()) == byteOrderMark;
    return bytes.substr(bMarked ? byteOrderMark.size() : 0);
}

std::string_view CKestaInput::read()
{
    return readBehind(0);
}

// Reads behind the first bytes of the buffer, and returns all.
std::string_view CKestaInput::readBehind(std::size_t ulKept)
{
    while (true)
    {
        const ssize_t lRead =
            ::read(m_file.get(), m_buffer.data() + ulKept, m_buffer.size() - ulKept);
        if (lRead >= 0)
        {
            const std::string_view bytes(m_buffer.data(), ulKept + static_cast<std::size_t>(lRead));
            if (lRead > 0)
                m_strTail = bytes.substr(bytes.size() - std::min(bytes.size(), ulTail));
            return bytes;
        }
        if (errno != EINTR)
            throw CKestaInputError(systemError(m_strName, errno));
    }
}

CKestaFileId CKestaInput::id() const
{
    struct stat own;
    return fstat(m_file.get(), &own) == 0 ? idOf(own) : CKestaFileId();
}

void CKestaInput::skip()
{
    lseek(m_file.get(), 0, SEEK_END);
    m_strTail.clear();
}

bool CKestaInput::rewindIfReplaced()
{
    struct stat own;
    const off_t lPosition = lseek(m_file.get(), 0, SEEK_CUR);
    if (fstat(m_file.get(), &own) != 0 || !S_ISREG(own.st_mode) ||
        (own.st_size >= lPosition && endsWithTail(lPosition)))
        return false;
    lseek(m_file.get(), 0, SEEK_SET);
    m_strTail.clear();
    return true;
}

// Also true if that can't be read.
bool CKestaInput::endsWithTail(off_t lPosition) const
{
    std::string strFound(m_strTail.size(), '\0');
    const ssize_t lRead = pread(m_file.get(), strFound.data(), strFound.size(),
                                lPosition - static_cast<off_t>(strFound.size()));
    return lRead < 0 || strFound == m_strTail;
}

std::uint64_t CKestaInput::size() const
{
    struct stat own;
    return fstat(m_file.get(), &own) == 0 && S_ISREG(own.st_mode)
               ? static_cast<std::uint64_t>(own.st_size)
               : 0;
}

bool CKestaInput::isStandardOutput() const
{
    struct stat own;
    struct stat output;
    return fstat(m_file.get(), &own) == 0 && S_ISREG(own.st_mode) &&
           fstat(STDOUT_FILENO, &output) == 0 && idOf(own) == idOf(output);
}
