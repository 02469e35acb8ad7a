// kesta log: what becomes of the bytes of a log, and following it.

#include "KestaLogDecoder.h"
#include "support.h"

#include <algorithm>
#include <csignal>
#include <functional>

#include <fcntl.h>
#include <sys/prctl.h>

namespace
{

std::string decoded(const std::string& log, std::size_t block)
{
    CKestaLogDecoder decoder;
    std::string text;
    for (std::size_t at = 0; at < log.size(); at += block)
        decoder.feed(std::string_view(log).substr(at, block), text);
    decoder.finish(text);
    return text;
}

}   // namespace

TEST(LogDecoder, Bytes)
{
    const std::string end("\n\0\n", 3), nul(1, '\0'), mark = "\xFE\xFF", a = mark + "[MSG]:a";
    const std::pair<std::string, std::string> rows[] = {{"", ""}, {"\n\n", "\n\n"},
        {"plain", "plain\n"}, {a + end + "[MSG]:b" + end, "[MSG]:a\n[MSG]:b\n"},
        {mark + "cipher" + nul + "\nmore" + nul + "\n", "cipher\nmore\n"},
        // torn, and written on by another process
        {a + a + end, "[MSG]:a\n[MSG]:a\n"}, {a + "\n" + nul + a + end, "[MSG]:a\n[MSG]:a\n"},
        {"\xFE" + a + end, "[MSG]:a\n"}, {a + end + "\xFE", "[MSG]:a\n"}, {"\xFE" + nul, ""},
        {a + end + nul + "\n", "[MSG]:a\n"}, {"a" + nul + nul + "b", "a\nb\n"},
        // a mark that is none: no item type follows
        {"a" + mark + "b\xFE", "a" + mark + "b\xFE\n"}, {"a" + mark + "[MS", "a" + mark + "[MS\n"},
        {"a" + mark + "[MsG]:", "a" + mark + "[MsG]:\n"},
        {"a" + mark + "[]:", "a" + mark + "[]:\n"}, {"a" + mark + "[A]:", "a\n[A]:\n"},
        {"a" + mark + "[A]x", "a" + mark + "[A]x\n"}, {"a" + mark + mark, "a" + mark + mark + "\n"},
        {"a" + mark + "[ABCDEFGHIJ_09876]:", "a\n[ABCDEFGHIJ_09876]:\n"},
        {"a" + mark + "[ABCDEFGHIJ_098765]:", "a" + mark + "[ABCDEFGHIJ_098765]:\n"}};
    for (const auto& [log, want] : rows)
        for (const std::size_t block : {1UL, 2UL, 1000UL})
            EXPECT_EQ(decoded(log, block), want) << testing::PrintToString(log) << " by " << block;
}

/// A running kesta log --follow.
class FollowTest : public TraceFixture
{
protected:
    FollowTest() { configure("DEBUGSIZE=0"); }   // every entry leaves a log of its own
    ~FollowTest() override { end(SIGKILL); }

    void follow(const std::string& path, const std::string& outputPath)
    {
        std::remove((dir + "said").c_str());
        follower = fork();
        if (follower != 0)
            return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        setenv("KESTA_INSTALLED_DIR", dir.c_str(), 1);
        setenv("KESTA_DATA_DIR", dir.c_str(), 1);
        const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
        dup2(open(outputPath.c_str(), flags, 0600), STDOUT_FILENO);
        dup2(open((dir + "said").c_str(), flags, 0600), STDERR_FILENO);
        signal(SIGINT, SIG_IGN);   // as in the background of a script
        execl(KESTA_COMMAND, "kesta", "log", "-f", path.c_str(), nullptr);
        _exit(127);
    }
    void follow() { follow(logPath(), dir + "shown"); }

    std::string shown() const { return replaced(fileText(dir + "shown"), "[MSG]:FH:", ""); }
    std::string said() const { return replaced(fileText(dir + "said"), logPath(), "LOG"); }

    /// Waits until a condition holds; false after a minute.
    template <class Condition>
    static bool until(Condition condition)
    {
        for (int i = 0; i < 3000 && !condition(); ++i)
            usleep(20000);
        return condition();
    }
    bool untilShown(const std::string& text) const
    {
        return until([&] { return shown() == text; });
    }
    bool untilSaid(const std::string& text) const
    {
        return until([&] { return said() == text; });
    }

    /// Does something that the follower sees only when all of it has been done.
    template <class Action>
    void unseen(Action action) const
    {
        kill(follower, SIGSTOP);
        waitpid(follower, nullptr, WUNTRACED);
        action();
        kill(follower, SIGCONT);
    }

    /// Sends a signal, and returns the one that ended the follower.
    int end(int signal)
    {
        int status = 0;
        if (follower > 0)
            until(   // since one that has hardly begun still ignores the signal
                [&]
                {
                    kill(follower, signal);
                    return waitpid(follower, &status, WNOHANG) != 0;
                });
        follower = -1;
        return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
    }

    const std::string waiting = "kesta: LOG: the log does not exist yet; waiting for it\n";
    pid_t follower = -1;
};

// However fast the log is rolled over: what is not shown is said to be missed.
TEST_F(FollowTest, LosesNothingUnsaid)
{
    const std::tuple<int, int, int, int> rows[] = {// limit, level, logs, lines in each
        {0, 3, 1500, 1}, {0, 52813, 1500, 1}, {1, 3, 500, 60}, {20, 3, 50, 1200}};
    for (int round = 0; round < 2; ++round)
        for (const auto& [limit, level, logs, each] : rows)
        {
            configure(
                "DEBUGSIZE=" + std::to_string(limit) + "\nDEBUGLEVEL=" + std::to_string(level));
            follow();
            ASSERT_TRUE(untilSaid(waiting)) << said();
            for (int number = 0; number < logs * each;)
            {
                const CKestaEntry entry;
                for (const int last = number + each; number < last; ++number)
                    KESTA_DEBUG1(std::to_string(1000000 + number), 1);
            }
            const auto linesAccountedFor = [&, lines = each]
            {
                const std::string text = fileText(dir + "shown");
                long result = std::count(text.begin(), text.end(), '\n');
                for (const std::string& line : Lines(said()))
                    if (const std::size_t at = line.find("missed "); at != line.npos)
                        result += lines * std::atol(line.c_str() + at + 7);
                return result;
            };
            until([&, all = logs * each] { return linesAccountedFor() >= all; });
            EXPECT_EQ(linesAccountedFor(), logs * each) << limit << " " << said();
            const Lines lines(shown());
            EXPECT_EQ(std::adjacent_find(lines.begin(), lines.end(), std::greater_equal<>()),
                lines.end());
            end(SIGTERM);
            std::filesystem::remove(dir + "log/KestaDebugOld_C.log");
        }
}

TEST_F(FollowTest, GoesFromLogToLog)
{
    traceLine("before the start, and so not followed");
    follow();
    ASSERT_TRUE(untilSaid(waiting));
    traceLine("a");
    EXPECT_TRUE(untilShown("a\n"));
    unseen([&] { traceLine("b"); });
    EXPECT_TRUE(untilShown("a\nb\n"));

    configure("");   // the log stays
    traceLine("c");
    EXPECT_TRUE(untilShown("a\nb\nc\n"));
    unseen(
        [&]
        {
            configure("DEBUGSIZE=0");
            traceLine("c2");
            traceLine("d");
            configure("");
            traceLine("e");
        });
    EXPECT_TRUE(untilShown("a\nb\nc\nc2\nd\ne\n")) << "two logs later";
    EXPECT_EQ(said(), waiting);
    unseen(
        [&]
        {
            configure("DEBUGSIZE=0");
            for (const char* const line : {"e2", "missed", "missed, too", "f"})
                traceLine(line);
        });
    EXPECT_TRUE(untilShown("a\nb\nc\nc2\nd\ne\ne2\nf\n"));
    EXPECT_TRUE(untilSaid(
        waiting + "kesta: LOG: missed 2 logs, at least 2 bytes, rolled over faster than they could "
                  "be read\n"))
        << said();
}

TEST_F(FollowTest, LateLinesAndOtherChanges)
{
    configure("");
    traceLine("a");
    follow();
    ASSERT_TRUE(untilShown("a\n"));
    std::ofstream late(logPath(), std::ios::app);
    std::filesystem::rename(logPath(), dir + "log/KestaDebugOld_C.log");
    traceLine("b");
    EXPECT_TRUE(untilShown("a\nb\n"));
    late << "late\n" << std::flush;
    EXPECT_TRUE(untilShown("a\nb\nlate\n"));
    std::filesystem::remove(logPath());
    traceLine("a new log");
    EXPECT_TRUE(untilShown("a\nb\nlate\na new log\n"));
    std::ofstream(logPath()) << "torn";
    EXPECT_TRUE(untilShown("a\nb\nlate\na new log\ntorn\n")) << shown();
    EXPECT_EQ(said(), "kesta: LOG: truncated; continuing from its start\n");
}

TEST_F(FollowTest, EndsAtASignalWhateverHappens)
{
    const std::string pipe = dir + "pipe", big = dir + "big";
    mkfifo(pipe.c_str(), 0600);
    std::ofstream(big) << std::string(1000000, '\n');
    const int reader = open(pipe.c_str(), O_RDWR);
    const std::tuple<const char*, std::string, std::string> rows[] = {{"stalled reader", big, pipe},
        {"pipe for a log", pipe, dir + "shown"}, {"no log", dir + "no/log", dir + "shown"},
        {"log that grows and grows", "/dev/zero", "/dev/null"}};
    for (const auto& [what, log, output] : rows)
        for (const int signal : {SIGINT, SIGTERM})
        {
            follow(log, output);
            usleep(100000);
            EXPECT_EQ(end(signal), signal) << what;
        }
    close(reader);
}
