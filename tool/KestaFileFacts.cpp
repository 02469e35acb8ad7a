#include "KestaFileFacts.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

std::string nameOf(uid_t uUser)
{
    const passwd* const pUser = getpwuid(uUser);
    return pUser == nullptr ? std::to_string(uUser) : pUser->pw_name;
}

std::string nameOfGroup(gid_t uGroup)
{
    const group* const pGroup = getgrgid(uGroup);
    return pGroup == nullptr ? std::to_string(uGroup) : pGroup->gr_name;
}

}   // namespace

CKestaFileFacts::CKestaFileFacts(const std::string& strFilePath) : strPath(strFilePath)
{
    if (stat(strPath.c_str(), &status) != 0)
    {
        iError = iAccessError = errno;
        return;
    }
    // The library also reads the log, to see whether it ends with a whole line.
    const int iAccess = W_OK | (isDirectory() ? X_OK : R_OK);
    if (faccessat(AT_FDCWD, strPath.c_str(), iAccess, AT_EACCESS) != 0)
        iAccessError = errno;
    struct statvfs system;
    if (statvfs(strPath.c_str(), &system) == 0)
        ulFree = system.f_frsize * (geteuid() == 0 ? system.f_bfree : system.f_bavail);
}

std::string CKestaFileFacts::owner() const
{
    return nameOf(status.st_uid) + ":" + nameOfGroup(status.st_gid);
}

std::string CKestaFileFacts::mode() const
{
    char szMode[8];
    std::snprintf(szMode, sizeof szMode, "%04o", status.st_mode & 07777);
    return szMode;
}

std::time_t CKestaFileFacts::age() const
{
    return std::time(nullptr) - status.st_mtime;
}

std::string directoryOf(const std::string& strPath)
{
    const std::size_t ulSlash = strPath.rfind('/');
    return ulSlash == std::string::npos ? "./" : strPath.substr(0, ulSlash + 1);
}

std::string fileNameOf(const std::string& strPath)
{
    return strPath.substr(strPath.rfind('/') + 1);
}

std::string userName()
{
    return nameOf(geteuid());
}
