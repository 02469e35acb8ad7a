// Whatever happens to its files, the library neither crashes nor hangs nor throws, and it writes
// whole lines. Each case runs in a child, as an unprivileged user.

#include "support.h"

#include <cerrno>
#include <functional>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>

class FaultsTest : public TraceFixture
{
protected:
    void shell(const std::string& commands) const
    {
        EXPECT_EQ(std::system(("cd '" + dir + "' && { " + commands + "; }").c_str()), 0)
            << commands;
    }

    void dropPrivileges() const
    {
        shell("rm -rf * && mkdir conf log");
        if (geteuid() != 0)
            return;
        shell("chown -R 65534:65534 .");
        ASSERT_EQ(setgid(65534), 0);
        ASSERT_EQ(setuid(65534), 0);
        prctl(PR_SET_DUMPABLE, 1);   // the sanitizers read /proc/self
    }
};

// The fault is there when the first entry starts, or appears during it; the last entry finds it
// repaired.
TEST_F(FaultsTest, OfTheFileSystem)
{
    const std::string ini = "conf/KestaDebug.ini", away = "mv " + ini + " x; ",
                      back = "mv x " + ini;
    const std::string target = "DEBUGSIZE=0\nDEBUGFILEPATH=" + dir + "log\nDEBUGNEWFILE=";
    const Lines last{"last"}, all{"first", "amid", "last"};
    const struct
    {
        std::string what, settings, before, amid, repair;
        int warnings;
        Lines want;
    } rows[] = {{"log directory missing", "", "rmdir log", ":", "mkdir log", 1, last},
        {"log directory read-only", "", "chmod 555 log", ":", "chmod 755 log", 1, last},
        {"log directory a file", "", "rmdir log; : > log", ":", "rm log; mkdir log", 1, last},
        {"log a directory", "", "mkdir log/KestaDebug_C.log", ":", "rmdir log/*", 1, last},
        {"log a pipe", "", "mkfifo log/KestaDebug_C.log", ":", "rm log/*", 1, last},
        {"log read-only", "", ": > log/KestaDebug_C.log; chmod 444 log/*", ":", "rm -f log/*", 1,
            last},
        {"disk full", "", "ln -s /dev/full log/KestaDebug_C.log", ":", "rm log/*", 0, last},
        {"roll-over to another disk", target + "/proc", ":", ":", ":", 0, all},
        {"roll-over to no directory", target + dir + "x", ":", ":", ":", 0, all},
        {"roll-over read-only", target + dir + "x", "mkdir -m 555 x", ":", ":", 0, all},
        {"roll-over to a directory", target + dir, "mkdir KestaDebugOld_C.log", ":", ":", 0, all},
        {"configuration missing", "", away + ":", ":", back, 0, last},
        {"configuration a directory", "", away + "mkdir " + ini, ":", "rmdir " + ini + "; " + back,
            0, last},
        {"configuration a pipe", "", away + "mkfifo " + ini, ":", "rm " + ini + "; " + back, 0,
            last},
        {"configuration unreadable", "", "chmod 0 " + ini, ":", "chmod 600 " + ini, 0, last},
        {"configuration binary", "", away + "head -c 99999 /bin/sh > " + ini, ":", back, 0, last},
        {"log deleted", "", ":", "rm log/*", ":", 0, last},
        {"log truncated", "", ":", ": > log/KestaDebug_C.log", ":", 0, {"amid", "last"}}};
    for (const auto& row : rows)
        for (const std::string level : {"52813", "3"})   // both forms of the log
        {
            SCOPED_TRACE(row.what + ", level " + level);
            inChild(
                [&]
                {
                    dropPrivileges();
                    configure(row.settings + "\nDEBUGLEVEL=" + level);
                    shell(row.before);
                    testing::internal::CaptureStdout();
                    const auto keepingErrno = [](const std::function<void()>& work)
                    {
                        errno = ELOOP;
                        work();
                        EXPECT_EQ(errno, ELOOP);
                    };
                    keepingErrno(initialize);
                    keepingErrno([] { KESTA_DEBUG1("first", 1); });
                    shell(row.amid);
                    keepingErrno([] { KESTA_DEBUG1("amid", 1); });
                    keepingErrno(unInitialize);
                    std::fflush(stdout);
                    EXPECT_EQ(Lines(testing::internal::GetCapturedStdout()).size(), row.warnings);
                    shell(row.repair);
                    traceLine("last");
                    EXPECT_EQ(messages(), row.want);
                });
        }
}

TEST_F(FaultsTest, StandardFilesAreClosed)
{
    inChild(
        [&]
        {
            const int kept = fcntl(STDERR_FILENO, F_DUPFD, 10);
            for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                close(file);
            {
                const CKestaEntry entry;
                KESTA_DEBUG1("first", 1);
                EXPECT_EQ(write(STDOUT_FILENO, "the host's\n", 11), -1);
                EXPECT_EQ(write(STDIN_FILENO, "the host's\n", 11), -1);
            }
            dup2(kept, STDERR_FILENO);
            EXPECT_EQ(messages(), Lines{"first"});
        });
}

// A host closes all descriptors within an entry, and opens files of its own under their numbers.
// The library neither closes one of these nor, in a forked child, writes to it.
TEST_F(FaultsTest, DescriptorsAreClosed)
{
    const auto takeAll = [this]
    {
        for (int file = STDERR_FILENO + 1; file < 20; ++file)
            close(file);
        for (int file = STDERR_FILENO + 1; file < 20; ++file)
            EXPECT_EQ(open((dir + "host").c_str(), O_RDWR | O_CREAT | O_APPEND, 0600), file);
    };
    const auto areOpen = []
    {
        for (int file = STDERR_FILENO + 1; file < 20; ++file)
            EXPECT_GE(fcntl(file, F_GETFD), 0) << file;
    };
    const auto inGrandchild = [](const std::function<void()>& work)
    { inChild([&] { inChild(work); }); };
    const auto traceAndEnd = [&]
    {
        takeAll();
        KESTA_DEBUG1("into the host's file?", 1);
        unInitialize();
        areOpen();
        EXPECT_EQ(fileText(dir + "host"), "");
        traceLine("own");
    };
    const std::tuple<const char*, std::function<void()>, Lines> rows[] = {
        {"child", [&] { inChild(traceAndEnd); }, {"first", "own", "last"}},
        {"daemon", [&] { inGrandchild(traceAndEnd); }, {"first", "own", "last"}},
        {"own entry at once", [&] { inChild([&] { takeAll(), traceLine("own"), areOpen(); }); },
            {"first", "own", "last"}},
        {"kept", [] { inChild([] { KESTA_DEBUG1("child", 1), unInitialize(); }); },
            {"first", "child", "last"}}};
    for (const auto& [what, work, want] : rows)
        for (const char* level : {"52813", "3"})
        {
            SCOPED_TRACE(what + std::string(level));
            configure(std::string("DEBUGLEVEL=") + level);
            std::filesystem::remove(logPath());
            {
                const CKestaEntry entry;
                KESTA_DEBUG1("first", 1);
                work();
                KESTA_DEBUG1("last", 1);
            }
            EXPECT_EQ(messages(), want);
        }
    inChild(
        [&]
        {
            configure("DEBUGSIZE=0");
            std::filesystem::remove(logPath());
            initialize();
            KESTA_DEBUG1("rolled over", 1);
            takeAll();
            unInitialize();
            areOpen();
            EXPECT_EQ(fileText(oldLogPath()), "[MSG]:FH:rolled over\n");
        });
}

TEST_F(FaultsTest, ConfigurationLineOf100MB)
{
    inChild(
        [&]
        {
            shell("head -c 100000000 /dev/zero | tr '\\0' x > conf/KestaDebug.ini");
            std::ofstream(dir + "conf/KestaDebug.ini", std::ios::app)
                << "\nDEBUG=Y\nDEBUGLEVEL=3\nDEBUGSIZE=100\n";
            rusage before, after;
            getrusage(RUSAGE_SELF, &before);
            traceLine("read");
            getrusage(RUSAGE_SELF, &after);
            EXPECT_EQ(messages(), Lines{"read"});
            EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 20'000) << "kB";
        });
}

// The sanitizer keeps freed memory for a while; that is not the library's.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=1"; }
