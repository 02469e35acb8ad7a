#ifndef KESTA_FILE_FACTS_H
#define KESTA_FILE_FACTS_H

#include <cstdint>
#include <ctime>
#include <string>

#include <sys/stat.h>

/// What the system says about a file or directory, to this user.
struct CKestaFileFacts
{
    CKestaFileFacts() = default;
    explicit CKestaFileFacts(const std::string& strFilePath);

    bool isThere() const { return iError == 0; }
    bool isDirectory() const { return S_ISDIR(status.st_mode); }
    bool isFile() const { return S_ISREG(status.st_mode); }

    /// The user and the group that own it, as "root:adm".
    std::string owner() const;

    /// The permissions, as "0644".
    std::string mode() const;

    /// The seconds since it was changed last.
    std::time_t age() const;

    std::string strPath;
    int iError = 0;         ///< The errno of a file that can't be looked at.
    int iAccessError = 0;   ///< What keeps this user from writing it, or to the directory; or 0.
    std::uint64_t ulFree = 0;   ///< The bytes free for this user in its file system.
    struct stat status = {};
};

/// The directory that a path's last part is in, with a "/" at its end.
std::string directoryOf(const std::string& strPath);

/// The last part of a path.
std::string fileNameOf(const std::string& strPath);

/// The name of the user that this process acts as.
std::string userName();

#endif
