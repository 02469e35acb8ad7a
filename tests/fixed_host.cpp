// To be preloaded, or linked: a host whose name, system and addresses are always the same. With
// HOST_FAILS set to one of the calls, that one fails; with HOST_EMPTY set, there are no addresses.

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <sys/utsname.h>

static const char* const texts[] = {"127.0.0.1", "10.1.2.3", "169.254.1.1", "192.0.2.1", "0.0.0.0",
    "::1", "fe80::1", "fec0::1", "fd00::1", "2600::1", "::2"};
static constexpr int count = sizeof texts / sizeof *texts;
static sockaddr_storage addresses[count + 1];   // the last is of no known family
static ifaddrs entries[count + 2];              // the last has none
int freedLists = 0;

static int result(const char* call)
{
    const char* const failing = std::getenv("HOST_FAILS");
    errno = EPERM;
    return failing != nullptr && std::strcmp(failing, call) == 0 ? -1 : 0;
}

extern "C" int getifaddrs(ifaddrs** list) noexcept
{
    for (int i = 0; i < count; ++i)
    {
        addresses[i].ss_family = std::strchr(texts[i], ':') ? AF_INET6 : AF_INET;
        inet_pton(addresses[i].ss_family, texts[i],
            reinterpret_cast<char*>(&addresses[i]) + (addresses[i].ss_family == AF_INET ? 4 : 8));
    }
    for (int i = 0; i <= count; ++i)
    {
        entries[i].ifa_addr = reinterpret_cast<sockaddr*>(&addresses[i]);
        entries[i].ifa_next = &entries[i + 1];
    }
    *list = std::getenv("HOST_EMPTY") == nullptr ? entries : nullptr;
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
