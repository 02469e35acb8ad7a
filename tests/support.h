#ifndef KESTA_TESTS_SUPPORT_H
#define KESTA_TESTS_SUPPORT_H

#include "KestaEntry.h"
#include "KestaException.h"
#include "KestaHostSetup.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

/// Lines of a log, or of any text; "+" joins sequences.
struct Lines : std::vector<std::string>
{
    using std::vector<std::string>::vector;
    explicit Lines(const std::string& text)
    {
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);)
            push_back(line);
    }
};

inline Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline std::string fileText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

inline void setExclusions(bool linkLocal, bool siteLocal, bool multicast)
{
    KestaIPv4Address::m_bIPv4LinkLocal = KestaIPv6Address::m_bIPv6LinkLocal = linkLocal;
    KestaIPv4Address::m_bIPv4SiteLocal = KestaIPv6Address::m_bIPv6SiteLocal = siteLocal;
    KestaIPv4Address::m_bIPv4MutliCast = KestaIPv6Address::m_bIPv6MutliCast = multicast;
}

/// The socket address of a text of either family.
inline sockaddr_storage socketOf(const std::string& text)
{
    return text.find(':') == text.npos ? KestaIPv4Address(text).getSockAddress()
                                       : KestaIPv6Address(text).getSockAddress();
}

/// The error that an operation throws, after "! "; empty when it throws none.
template <class Operation>
std::string errorOf(Operation operation)
try
{
    operation();
    return "";
}
catch (const CKestaExc& exc)
{
    return "! " + exc.GetErrorMessage();
}

/// A temporary installation directory, which is also the data directory. At first the plain log is
/// on, with a size limit that is never reached.
class TraceFixture : public testing::Test
{
protected:
    TraceFixture()
    {
        std::string name = testing::TempDir() + "kesta-test-XXXXXX";
        dir = std::string(mkdtemp(name.data())) + "/";
        std::filesystem::create_directories(dir + "conf");
        std::filesystem::create_directories(dir + "log");
        CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_INSTALLED_DIR, dir);
        CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_DATA_DIR, dir);
        setExclusions(false, false, false);
        configure("");
    }
    ~TraceFixture() override { std::filesystem::remove_all(dir); }

    /// Writes the configuration: the defaults, then lines that override them. Readers see either
    /// the old file or the new one.
    void configure(const std::string& lines) const
    {
        const std::string file = dir + "conf/KestaDebug.ini";
        std::ofstream(file + "~")
            << "DEBUG=Y\nDEBUGLEVEL=52813\nDEBUGFILEPATH==\nDEBUGSIZE=1000000\nDEBUGNEWFILE==\n"
            << lines;
        std::filesystem::rename(file + "~", file);
    }

    std::string logPath() const { return dir + "log/KestaDebug_C.log"; }
    std::string oldLogPath() const { return dir + "log/KestaDebugOld_C.log"; }
    std::string log() const { return fileText(logPath()); }

    /// The lines of the log, whichever form it is in, without "[MSG]:FH:".
    Lines messages() const
    {
        std::string text = replaced(log(), std::string("\n\0\n", 3), "\n");
        text = replaced(replaced(text, std::string("\0\n", 2), "\n"), "\xFE\xFF", "");
        if (!text.empty() && text.back() == '\0')
            text.pop_back();   // of a frame that lacks its last byte
        return Lines(replaced(text, "[MSG]:FH:", ""));
    }

    /// The lines that an operation traces, without "[MSG]:", and the error that it throws.
    template <class Operation>
    Lines traced(Operation operation) const
    {
        std::filesystem::remove(logPath());
        std::string error;
        {
            const CKestaEntry entry;
            error = errorOf(operation);
        }
        return Lines(replaced(log(), "[MSG]:", "")) + Lines(error);
    }

    void traceLine(const CKestaString& message, int level = 1) const
    {
        const CKestaEntry entry;
        KESTA_DEBUG1(message, level);
    }

    std::string dir;
};

// AddressSanitizer forks with its own locks held, and reports the stack of a cancelled thread as
// corrupt.
extern "C" [[gnu::weak]] void __asan_init();
inline const bool addressSanitizer = &__asan_init != nullptr;
// ThreadSanitizer can't follow a thread into its last moment.
extern "C" [[gnu::weak]] void __tsan_init();
inline const bool threadSanitizer = &__tsan_init != nullptr;

/// Runs a check in a child, where a crash, a hang or a change of the process does no harm.
template <class Check>
void inChild(Check check)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(120);
        const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
        const int failedBefore = result.total_part_count();
        check();
        std::fflush(nullptr);
        _exit(result.total_part_count() > failedBefore ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the child failed, crashed or hung";
}

// The traces of the operations that other operations call.
inline const Lines parsed4{"FH:In KestaIPUtilities::convertIPv4StringToAddress() ",
    "FH:Out KestaIPUtilities::convertIPv4StringToAddress "};
inline const Lines parsed6{"FH:In KestaIPUtilities::convertIPv6StringToAddress()",
    "FH:Out KestaIPUtilities::convertIPv6StringToAddress()"};

inline Lines unread4(const std::string& text)
{
    const std::string in = "KestaIPUtilities::convertIPv4StringToAddress ",
                      cut = text.substr(0, text.find('%')),
                      wrong = "Passed string is not a valid IPv4 address";
    return {parsed4[0], in + "Failed to convert string to address: :" + cut,
        "KestaIPv4Address::KestaIPv4Address()-" + wrong + ": :" + text, "! " + wrong + " " + text};
}

inline Lines unread6(const std::string& text)
{
    const std::string in = " KestaIPUtilities::convertIPv6StringToAddress()-",
                      cut = text.substr(0, text.find('%')),
                      wrong = "Passed string is not a valid IPv6 address ",
                      name = "KestaIPv6Address::KestaIPv6Address";
    return {parsed6[0], in + "Failed to convert string to address :" + cut,
        name + "()-" + wrong + ":" + text, "! " + name + "." + wrong + text};
}

inline Lines compared(const std::string& family)
{
    const std::string name = "Kesta" + family + "Address::compareTwo" + family + "Addresses() ";
    return {"FH:In " + name, "FH:Out " + name};
}

inline Lines operated(const std::string& family, const std::string& name)
{
    return Lines{"FH:In Kesta" + family + "Address::operator" + name} + compared(family);
}

/// The class check; that of IPv6 names the IPv4 check in its result.
inline Lines checked(const std::string& family, bool refused)
{
    const std::string start = "FH:Kesta" + family + "Address::CheckUnAllowed";
    return {start + family + "AddressTypes(): Entered",
        start + "IPv4AddressTypes(): Returing " + (refused ? "true" : "false")};
}

inline const std::string rangeName = "KestaIPRange::KestaIPRange()";
inline const Lines rangeIn{"FH:In " + rangeName}, rangeOut{"FH:Out " + rangeName};

inline Lines ends(const std::string& start, const std::string& end)
{
    return {rangeName + "- m_startAddress:-:" + start, rangeName + "- m_endAddress:-:" + end};
}

inline Lines screened(const std::string& start, const std::string& end)
{
    return {rangeName + "-Before the filter check startAddress: :" + start,
        rangeName + "-Before the filter check endAddress: :" + end};
}

#endif
