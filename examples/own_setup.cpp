// A host with its own installation: the two directories, the trace level, and a cipher for the log.
// The program makes the installation in a temporary directory, traces into it, and reads the log
// back.

#include "KestaEntry.h"
#include "KestaHostSetup.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace
{

// A placeholder for a real cipher. It is its own inverse.
std::string cipher(const std::string& line)
{
    std::string result(line);
    for (char& c : result)
        c ^= 0x2a;
    return result;
}

void work()
{
    const CKestaEntry entry;
    KESTA_DEBUG2("Host::work()", "level 1: the host's own line", 1);
    KESTA_DEBUG1("level 2: the configured one", 2);
    KESTA_DEBUG1("level 3: too detailed for this configuration", 3);
}

}   // namespace

int main()
{
    char directory[] = "/tmp/own_setup.XXXXXX";
    const std::filesystem::path home(mkdtemp(directory));
    std::filesystem::create_directory(home / "conf");
    std::filesystem::create_directory(home / "log");
    std::ofstream(home / "conf" / "KestaDebug.ini")
        << "[DEBUGINFORMATION]\nDEBUG=Y\nDEBUGLEVEL=2\nDEBUGSIZE=500\n";

    const std::string here = home.string() + "/";
    CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_INSTALLED_DIR, here);   // contains conf/
    CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_DATA_DIR, here);        // contains log/
    CKestaHostSetup::setLineCipher(cipher);
    work();

    std::ifstream log(home / "log" / "KestaDebug_C.log", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(log), {}};
    std::cout << bytes.size() << " bytes\n";
    // FE FF, then each line in its enciphered form, followed by 00 0A.
    const std::string lineEnd("\0\n", 2);
    for (std::size_t from = 2, to; (to = bytes.find(lineEnd, from)) != std::string::npos;
         from = to + 2)
        std::cout << cipher(bytes.substr(from, to - from));
    std::filesystem::remove_all(home);
}
