#include "support.h"

#include "KestaLineFile.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// What the next calls of write do, in this process: fail with an errno, or write only so many
// bytes.
struct Write
{
    int error;
    std::size_t most;
};
static std::vector<Write> writes;

extern "C" ssize_t write(int file, const void* bytes, std::size_t size)
{
    Write next{0, size};
    if (!writes.empty())
        next = writes.front(), writes.erase(writes.begin());
    errno = next.error;
    return next.error != 0 ? -1 : syscall(SYS_write, file, bytes, std::min(size, next.most));
}

using LineFileTest = TraceFixture;

TEST_F(LineFileTest, Modes)
{
    const std::string marks("\xFE\xFF"), end("\0\n", 2), refused("! Error in Opening the file:");
    const std::tuple<const char*, bool, std::string, std::string> rows[] = {
        // mode, enciphered, contents of the file before and afterwards
        {"r", false, "old\n", "old\n"}, {"r+", false, "old\n", "x\nd\n"}, {"q", false, "", refused},
        {"r", false, "pipe", refused}, {"a", false, "pipe", refused},
        {"w", true, "old\n", marks + "x\n" + end}, {"wx", false, "", "x\n"},
        {"wx", false, "old\n", refused}, {"ax", false, "old\n", refused},
        {"a", true, "old\n", "old\nx\n" + end}, {"a", true, "", marks + "x\n" + end},
        {"a+b", true, "old\n", "old\n" + marks + "x\n" + end}, {"", false, "old\n", refused}};
    for (const auto& [mode, enciphered, before, after] : rows)
    {
        const std::string path = dir + "file";
        std::filesystem::remove(path);
        if (before == "pipe")
            mkfifo(path.c_str(), 0600);
        else if (!before.empty())
            std::ofstream(path) << before;
        CKestaLineFile file;
        bool written = false;
        const std::string error = errorOf(
            [&, &mode = mode, &enciphered = enciphered]
            {
                file.open(path, mode, enciphered);
                written = file.writeLine("x\n");
            });
        const std::string got = error.empty() ? fileText(path) : replaced(error, path, "");
        EXPECT_EQ(got, after) << mode << " on " << before;
        EXPECT_EQ(written, got != before && error.empty()) << mode;
        file.close();
        EXPECT_FALSE(file.writeLine("x\n")) << mode;
    }
}

TEST_F(LineFileTest, RollsOverWhatStandsAtThePath)
{
    const std::tuple<std::string, std::string, std::string, std::string> rows[] = {
        // where the log was moved; what stands in the way; the old log before and afterwards
        {"", "", "", "own\n"}, {"", "lock", "older\n", "own\n"},
        {"", "no descriptor is left", "older\n", "own\n"}, {"new", "", "", "own\n"},
        {"x", "", "", "another\n"}, {"x", "", "older\n", "another\n"}};
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    for (const auto& [moved, hindrance, older, want] : rows)
    {
        const std::string path = dir + "file", newPath = dir + "new";
        std::filesystem::remove(newPath);
        if (!older.empty())
            std::ofstream(newPath) << older;
        CKestaLineFile file;
        file.open(path, "wb", false);
        file.writeLine("own\n");
        if (!moved.empty())
        {
            std::filesystem::rename(path, dir + moved);
            std::ofstream(path) << "another\n";
        }
        const int other = open(path.c_str(), O_RDONLY);
        flock(other, hindrance == "lock" ? LOCK_EX : LOCK_UN);
        const rlimit none{0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, hindrance == "no descriptor is left" ? &none : &before);
        errno = EWOULDBLOCK;   // left over from an earlier call
        file.rollOver(path, newPath, 3);
        setrlimit(RLIMIT_NOFILE, &before);
        close(other);
        EXPECT_EQ(fileText(newPath), want) << moved << hindrance << older;
        EXPECT_FALSE(file.isOpen());
    }
}

TEST_F(LineFileTest, IsWrittenWholeUnlessTheDiskIsFull)
{
    const std::tuple<std::vector<Write>, bool, std::string> rows[] = {
        {{{EINTR, 0}, {EINTR, 0}}, true, "line\nnext\n"}, {{{0, 2}}, true, "line\nnext\n"},
        {{{0, 2}, {EINTR, 0}}, true, "line\nnext\n"}, {{{ENOSPC, 0}}, false, "next\n"},
        {{{0, 2}, {ENOSPC, 0}}, false, "li\nnext\n"}, {{{0, 2}, {0, 1}}, false, "lin\nnext\n"}};
    for (const auto& [happening, whole, want] : rows)
    {
        const std::string path = dir + "file";
        std::filesystem::remove(path);
        CKestaLineFile file;
        file.open(path, "a+b", false);
        writes = happening;
        EXPECT_EQ(file.writeLine("line\n"), whole) << want;
        EXPECT_TRUE(writes.empty()) << want;
        EXPECT_TRUE(file.writeLine("next\n")) << want;
        EXPECT_EQ(fileText(path), want);
    }
}

// A line for which there is no room is lost and not written later; later lines are whole.
TEST_F(LineFileTest, EndsATornLine)
{
    const std::string end("\0\n", 2), frame = "\n" + end,
                                      start = "\xFE\xFF"
                                              "first" +
                                              frame;
    const std::string stays = "first\nno room";
    const std::tuple<const char*, bool, std::string, std::string> rows[] = {
        // mode; whether lines are enciphered; what the file holds in between
        {"a+b", false, stays, stays + "\nthird\n"}, {"a+b", false, "", "third\n"},
        {"a+b", false, "ended\n", "ended\nthird\n"},
        {"a+b", true, start + "no room", start + "no room" + end + "third" + frame},
        {"ab", false, stays, stays + "third\n"}};   // its end can't be read
    for (const auto& row : rows)
        inChild(
            [&]
            {
                const auto& [mode, enciphered, between, want] = row;
                const std::string path = dir + "file";
                std::filesystem::remove(path);
                rlimit limit{(enciphered ? start : "first\n").size() + 7, RLIM_INFINITY};
                setrlimit(RLIMIT_FSIZE, &limit);
                CKestaLineFile file;
                file.open(path, mode, enciphered);
                EXPECT_TRUE(file.writeLine("first\n"));
                EXPECT_FALSE(file.writeLine("no room for this\n"));
                EXPECT_FALSE(file.writeLine("nor for this\n"));
                limit.rlim_cur = RLIM_INFINITY;
                setrlimit(RLIMIT_FSIZE, &limit);
                std::ofstream(path) << between;
                EXPECT_TRUE(file.writeLine("third\n"));
                EXPECT_EQ(fileText(path), want);
            });
}
