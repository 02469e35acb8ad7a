// The log when processes die, fork and execute others, and when threads share the library.

#include "support.h"

#include "KestaDate.h"
#include "KestaIPRange.h"
#include "KestaIPUtilities.h"

#include <atomic>
#include <csignal>
#include <random>
#include <thread>

#include <sys/mman.h>

using ProcessTest = TraceFixture;

template <class Work>
static void inThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(ProcessTest, LinesSurviveSigkill)
{
    std::mt19937 random(1);
    void* shared = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& returned = *new (shared) std::atomic<std::size_t>;   // the calls that came back
    for (int death = 0; death < 200; ++death)
    {
        configure(death % 2 ? "DEBUGLEVEL=3" : "");
        std::filesystem::remove(logPath());
        returned = 0;
        const pid_t child = fork();
        if (child == 0)
        {
            for (initialize();; ++returned)
                KESTA_DEBUG1(returned.load(), 1);
        }
        for (const std::size_t enough = random() % 100; returned < enough;)
            sched_yield();
        usleep(static_cast<useconds_t>(random() % 100));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        const Lines lines = messages();
        ASSERT_TRUE(lines.size() == returned || lines.size() == returned + 1) << lines.size();
        for (std::size_t i = 0; i < returned; ++i)
            ASSERT_EQ(lines[i], std::to_string(i));
    }
    munmap(shared, 4096);
}

TEST_F(ProcessTest, ThreadsMakeWholeEntries)
{
    constexpr int entries = 40;
    configure("DEBUGLEVEL=3");
    traceLine("not written", 4);   // from here on the configuration is only read
    inThreads(
        [](int thread)
        {
            for (int i = 0; i < entries; ++i)
            {
                const Entry entry;
                for (const char* step : {"a", "b", "c"})
                    KESTA_DEBUG1(CKestaString(thread) + step + CKestaString(i), 3);
            }
        });
    const Lines lines = messages();
    ASSERT_EQ(lines.size(), 8u * entries * 3);
    std::map<char, int> next;
    for (std::size_t at = 0; at < lines.size(); at += 3)
    {
        const char thread = lines[at][0];
        const std::string number = std::to_string(next[thread]++);
        for (std::size_t step = 0; step < 3; ++step)
            ASSERT_EQ(lines[at + step], thread + std::string("abc", step, 1) + number);
    }
    EXPECT_EQ(next.size(), 8u);
}

TEST_F(ProcessTest, ThreadsShareValuesWithTracingOff)
{
    const KestaIPRange range("10.1.*.*"), block("2001:db8::/32");
    const KestaIPv4Address inside("10.1.2.3");
    const CKestaDate date("2/28/2007");
    inThreads(
        [&](int)
        {
            for (int i = 0; i < 20; ++i)
            {
                const KestaIPRange own("2001:db8:1*"), mapped("::ffff:10.1.2.*");
                EXPECT_TRUE(
                    range.isMember(&inside) && range.isMember(mapped) && block.isMember(own));
                EXPECT_THROW(KestaIPRange("x"), CKestaExc);
                CKestaArray<KestaIPv4Address> list4, kept4;
                CKestaArray<KestaIPv6Address> list6, kept6;
                EXPECT_EQ(KestaIPUtilities::queryHostIP(nullptr, list6, list4), 0);
                KestaIPUtilities::getfilteredIPv4Addresses(kept4, list4);
                KestaIPUtilities::getfilteredIPv6Addresses(kept6, list6);
                EXPECT_EQ((date + 1).getDateString(CKestaDate::DDMMYY), "01/03/07");
                EXPECT_EQ(CKestaExc(1009, "s", "m").GetErrorMessage(), "File not open:m");
            }
        });
}

TEST_F(ProcessTest, ExecutedProgramsDoNotInheritTheLog)
{
    const Entry entry;
    const auto openFiles = [this](const std::string& of)
    {
        EXPECT_EQ(std::system(("ls -l /proc/" + of + "/fd > " + dir + "files").c_str()), 0);
        return fileText(dir + "files");
    };
    EXPECT_NE(openFiles(std::to_string(getpid())).find("KestaDebug_C.log"), std::string::npos);
    EXPECT_EQ(openFiles("self").find("KestaDebug_C.log"), std::string::npos);
}

TEST_F(ProcessTest, ForkedChildrenDoNotTearLines)
{
    constexpr int count = 500;
    configure("DEBUGLEVEL=3");
    const Entry entry;
    const pid_t child = fork();
    const std::string line(100, child == 0 ? 'c' : 'p');
    for (int i = 0; i < count; ++i)
        KESTA_DEBUG1(line, 1);
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    const Lines lines = messages();
    EXPECT_EQ(lines.size(), 2u * count);
    for (const char writer : {'c', 'p'})
        EXPECT_EQ(std::count(lines.begin(), lines.end(), std::string(100, writer)), count);
}
