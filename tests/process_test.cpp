// The log when processes die, fork or execute others, and when threads share the library.

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

TEST_F(ProcessTest, LinesSurviveSigkill)
{
    std::mt19937 random(1);
    void* shared = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& returned = *new (shared) std::atomic<std::size_t>;   // the calls that returned
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
        const std::size_t enough = random() % 100;
        while (returned < enough && waitpid(child, nullptr, WNOHANG) == 0)
            sched_yield();
        usleep(static_cast<useconds_t>(random() % 100));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);

        const Lines lines = messages();
        ASSERT_GE(lines.size(), returned);
        ASSERT_LE(lines.size(), returned + 1);
        for (std::size_t i = 0; i < returned; ++i)
            ASSERT_EQ(lines[i], std::to_string(i));
    }
    munmap(shared, 4096);
}

TEST_F(ProcessTest, ThreadsShareValuesWithTracingOff)
{
    const KestaIPRange range("10.1.*.*"), block("2001:db8::/32");
    const KestaIPv4Address inside("10.1.2.3");
    const CKestaDate date("2/28/2007");
    const auto work = [&]
    {
        for (int i = 0; i < 20; ++i)
        {
            EXPECT_TRUE(range.isMember(&inside));
            EXPECT_TRUE(block.isMember(KestaIPRange("2001:db8:1*")));
            EXPECT_THROW(KestaIPRange("x"), CKestaExc);
            CKestaArray<KestaIPv4Address> list4, kept4;
            CKestaArray<KestaIPv6Address> list6, kept6;
            EXPECT_EQ(KestaIPUtilities::queryHostIP(nullptr, list6, list4), 0);
            KestaIPUtilities::getfilteredIPv4Addresses(kept4, list4);
            KestaIPUtilities::getfilteredIPv6Addresses(kept6, list6);
            EXPECT_EQ((date + 1).getDateString(CKestaDate::DDMMYY), "01/03/07");
            EXPECT_EQ(CKestaExc(1009, "s", "m").GetErrorMessage(), "File not open:m");
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(ProcessTest, ExecutedProgramsDoNotInheritTheLog)
{
    const std::string own = std::to_string(getpid());
    const auto isOpenIn = [](const std::string& process)
    {
        const std::string list = "ls -l /proc/" + process + "/fd | grep -q KestaDebug_C.log";
        return std::system(list.c_str()) == 0;
    };
    {
        const CKestaEntry entry;
        EXPECT_TRUE(isOpenIn(own));
        EXPECT_FALSE(isOpenIn("self"));
    }
    EXPECT_FALSE(isOpenIn(own)) << "nor is it open after the entry";
}
