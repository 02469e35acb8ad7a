#ifndef KESTA_FILE_FACTS_H
#define KESTA_FILE_FACTS_H

#include <cstdint>
#include <ctime>
#include <string>

#include <sys/stat.h>

/// What this user learns from the system about a file or directory.
struct CKestaFileFacts
{
    CKestaFileFacts() = default;
    explicit CKestaFileFacts(const std::string& strFilePath);

    bool isThere() const { return iError == 0; }
    bool isDirectory() const { return S_ISDIR(status.st_mode); }
    bool isFile() const { return S_ISREG(status.st_mode); }

    /// The user and the group that own it, such as "root:adm".
    std::string owner() const;

    /// The permissions, such as "0644".
    std::string mode() const;

    /// The seconds since its last change.
    std::time_t age() const;

    std::string strPath;
    int iError = 0;             ///< 0, or the errno of the failed look at it.
    int iAccessError = 0;       ///< 0, or why this user can't write to it.
    std::uint64_t ulFree = 0;   ///< The bytes free for this user in its file system.
    struct stat status = {};
};

/// A path without its last part, with a "/" at its end.
std::string directoryOf(const std::string& strPath);

/// The last part of a path.
std::string fileNameOf(const std::string& strPath);

/// The name of the user that this process acts as.
std::string userName();

#endif
