// To be preloaded, or linked: a host whose name and system are always the same, its addresses those
// of HOST_ADDRESSES, and the megabytes that are free on its disks HOST_FREE. With HOST_FAILS set to
// one of the calls, that one fails; with HOST_PRIVILEGED set, the process has raised privileges.

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <pthread.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>

int freedLists = 0;

static std::string setting(const char* name, const char* otherwise)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : otherwise;
}

static int result(const char* call)
{
    errno = EPERM;
    return setting("HOST_FAILS", "") == call ? -1 : 0;
}

extern "C" int getifaddrs(ifaddrs** list) noexcept
{
    pthread_testcancel();   // the system's has cancellation points, too
    static ifaddrs entries[100];
    static sockaddr_storage addresses[100];
    std::istringstream texts(setting("HOST_ADDRESSES",
        "127.0.0.1 10.1.2.3 169.254.1.1 192.0.2.1 0.0.0.0 ::1 fe80::1 fec0::1 fd00::1 2600::1 "
        "::2"));
    std::string text;
    int count = 0;
    for (; texts >> text; ++count)
    {
        sockaddr_storage& address = addresses[count];
        address.ss_family = text.find(':') == text.npos ? AF_INET : AF_INET6;
        inet_pton(address.ss_family, text.c_str(),
            reinterpret_cast<char*>(&address) + (address.ss_family == AF_INET ? 4 : 8));
        entries[count].ifa_addr = reinterpret_cast<sockaddr*>(&address);
        entries[count].ifa_next = &entries[count + 1];
    }
    // Two more interfaces: one has an address of no known family, one has none.
    addresses[count].ss_family = AF_UNSPEC;
    entries[count] = {};
    entries[count].ifa_addr = reinterpret_cast<sockaddr*>(&addresses[count]);
    entries[count].ifa_next = &entries[count + 1];
    entries[count + 1] = {};
    *list = entries;
    return result("getifaddrs");
}

extern "C" void freeifaddrs(ifaddrs*) noexcept { ++freedLists; }

extern "C" int gethostname(char* name, size_t) noexcept
{
    std::strcpy(name, "castle");
    return result("gethostname");
}

extern "C" int uname(utsname* system) noexcept
{
    std::strcpy(system->sysname, "Linux");
    return result("uname");
}

extern "C" int statvfs(const char*, struct statvfs* system) noexcept
{
    system->f_bsize = 1;
    system->f_frsize = 1000000;
    system->f_bfree = system->f_bavail = std::stoul(setting("HOST_FREE", "0"));
    return result("statvfs");
}

extern "C" int inotify_init1(int) noexcept { return result("inotify_init1"); }

extern "C" char* secure_getenv(const char* name) noexcept
{
    return std::getenv("HOST_PRIVILEGED") == nullptr ? std::getenv(name) : nullptr;
}
