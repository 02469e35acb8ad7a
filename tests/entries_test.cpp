// Entries of several threads, of forked processes, and of threads that are cancelled.

#include "support.h"

#include "KestaConfiguration.h"
#include "KestaIPRange.h"

#include <atomic>
#include <climits>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <random>
#include <thread>

using EntriesTest = TraceFixture;

static void inThread(const std::function<void()>& work) { std::thread(work).join(); }

/// A thread that has begun its work and is blocked in it.
static std::thread blocked(const std::function<void()>& work)
{
    std::promise<pid_t> number;
    std::thread thread(
        [&number, work]
        {
            number.set_value(gettid());
            work();
        });
    const std::string status =
        "/proc/self/task/" + std::to_string(number.get_future().get()) + "/stat";
    while (fileText(status).find(") S ") == std::string::npos)
        std::this_thread::yield();
    return thread;
}

static bool mutexIsFree()
{
    const bool free = pthread_mutex_trylock(&ghMutex) == 0;
    if (free)
        pthread_mutex_unlock(&ghMutex);
    return free;
}

// What another thread does while this one is in an entry with tracing, and the resulting log.
TEST_F(EntriesTest, OfAnotherThreadKeepTheLog)
{
    const auto trace = [] { KESTA_DEBUG1("other", 1); };
    const auto turnOff = [] { CKestaDebug::enable(false); };
    const auto end = [] { unInitialize(); };
    const auto inOwn = [](const std::function<void()>& work)
    {
        return [work]
        {
            const CKestaEntry own;
            work();
        };
    };
    const auto endTwice = [&] { inOwn([] {})(), end(); };
    const struct
    {
        const char* what;
        std::function<void()> work;
        Lines want;
        bool mutexFree;
    } rows[] = {{"no entry: traces", trace, {"first", "other", "last"}, false},
        {"no entry: turns the switch off", turnOff, {"first"}, false},
        {"no entry: ends the one in progress", end, {"first"}, true},
        {"level 0: traces", inOwn(trace), {"first", "last"}, false},
        {"level 0: writes", inOwn([] { CKestaDebug::writeMessage("x\n"); }), {"first", "last"},
            false},
        {"level 0: turns the switch off", inOwn(turnOff), {"first", "last"}, false},
        {"level 0, nested", inOwn(inOwn([] {})), {"first", "last"}, false},
        {"level 0, and once more", endTwice, {"first"}, true}};
    for (const auto& row : rows)
        inChild(
            [&]
            {
                SCOPED_TRACE(row.what);
                std::filesystem::remove(logPath());
                configure("DEBUGLEVEL=3");
                initialize();
                configure("DEBUGLEVEL=0");
                KESTA_DEBUG1("first", 1);
                inThread(row.work);
                EXPECT_EQ(mutexIsFree(), row.mutexFree);
                KESTA_DEBUG1("last", 1);
                unInitialize();
                EXPECT_TRUE(mutexIsFree());
                EXPECT_EQ(messages(), row.want);
            });
}

// Each entry is written whole or not at all; lines of threads without an entry stand in between.
TEST_F(EntriesTest, StayWholeWhileTheConfigurationChanges)
{
    configure("DEBUGITEMS=0");
    CKestaConfiguration::initialize("KestaDebug.ini");
    std::atomic<bool> stop{false};
    std::atomic<int> made{0};
    std::vector<std::function<void()>> works;
    for (int thread = 0; thread < 8; ++thread)
        works.push_back(
            [&made, thread]
            {
                const CKestaEntry entry;
                for (const char* step : {"a", "b", "c"})
                    KESTA_DEBUG1(CKestaString(thread) + step, 3);
                ++made;
            });
    for (const char* text : {"10.1.*.*", "no range"})
        works.push_back([text] { errorOf([text] { KestaIPRange range(text); }); });
    works.push_back(
        [this]
        {
            CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_DATA_DIR, dir);
            const CKestaString items = CKestaConfiguration::getDebugItems();
            EXPECT_EQ(items.find_first_not_of(items.c_str()[0]), items.npos) << items;
        });
    std::vector<std::thread> threads;
    for (const auto& work : works)
        threads.emplace_back(
            [&]
            {
                while (!stop)
                    work();
            });
    const char levels[] = {'0', '3', '0', '4'};
    for (int change = 0; change < 40; ++change)
    {
        const char level = levels[change % 4];
        configure(
            "DEBUGLEVEL=" + std::string(1, level) + "\nDEBUGITEMS=" + std::string(999, level));
        for (const int before = made; made < before + 3;)
            std::this_thread::yield();
    }
    stop = true;
    for (std::thread& thread : threads)
        thread.join();

    std::string steps;
    for (const std::string& line : messages())
    {
        if (line.size() == 2)
            steps += line;
        else
            EXPECT_EQ(line.find("[MSG]", 1), line.npos) << "two in one: " << line;
    }
    EXPECT_GT(steps.size(), 0u);
    for (std::size_t at = 0; at < steps.size(); at += 6)
    {
        const std::string thread(1, steps[at]);
        ASSERT_EQ(steps.substr(at, 6), thread + "a" + thread + "b" + thread + "c");
    }
}

TEST_F(EntriesTest, HostsMayHoldTheMutexThemselves)
{
    const auto byHand = [] { pthread_mutex_unlock(&ghMutex); };
    for (const std::function<void()>& release : {std::function<void()>(unInitialize), {byHand}})
    {
        std::filesystem::remove(logPath());
        pthread_mutex_lock(&ghMutex);
        std::thread waiting = blocked([this] { traceLine("waited"); });
        release();
        waiting.join();
        EXPECT_EQ(messages(), Lines{"waited"});
    }
    const CKestaEntry entry;
    byHand();
    traceLine("into the same log");
    EXPECT_EQ(messages(), (Lines{"waited", "into the same log"}));
}

/// A thread that does what it is told, one piece of work after the other.
class Worker
{
public:
    ~Worker() { tell({}), thread.join(); }

    void run(const std::function<void()>& work)
    {
        std::promise<void> done;
        tell([&] { work(), done.set_value(); });
        done.get_future().wait();
    }

private:
    void tell(std::function<void()> work)
    {
        const std::lock_guard lock(mutex);
        next = std::move(work);
        told = true;
        changed.notify_one();
    }

    void obey()
    {
        for (;;)
        {
            std::unique_lock lock(mutex);
            changed.wait(lock, [this] { return told; });
            told = false;
            const std::function<void()> work = std::move(next);
            lock.unlock();
            if (!work)
                return;
            work();
        }
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::function<void()> next;
    bool told = false;
    std::thread thread{[this] { obey(); }};
};

// Whole entries, one after the other: whichever threads begin them, trace in them and end them, all
// is as if there were one thread. Threads end at any moment, within their entries, too.
TEST_F(EntriesTest, MayPassFromThreadToThread)
{
    const auto observed = [this](unsigned seed, std::size_t threads, bool ending)
    {
        std::mt19937 script(seed), schedule(seed);
        std::vector<std::unique_ptr<Worker>> workers(threads);
        const auto run = [&](const std::function<void()>& work)
        {
            auto& worker = workers[schedule() % threads];
            if (worker == nullptr || (ending && schedule() % 3 == 0))
                worker = std::make_unique<Worker>();
            worker->run(work);
        };
        for (const auto& path : {logPath(), oldLogPath()})
            std::filesystem::remove(path);
        Lines seen;
        const auto look = [&]
        {
            bool free = false;
            run([&] { free = mutexIsFree(); });
            seen.push_back((free ? "free " : "held ") + log() + fileText(oldLogPath()));
        };
        for (int entry = 0; entry < 20; ++entry)
        {
            const char* levels[] = {"0", "3", "52813", "0"};
            configure("DEBUGSIZE=" + std::to_string(script() % 2) +
                      "\nDEBUGLEVEL=" + levels[script() % 4]);
            run(initialize);
            for (auto lines = script() % 3; lines > 0; --lines)
                run([entry] { KESTA_DEBUG1(entry, 3); });
            look();
            for (auto ends = script() % 6 == 0 ? 2 : 1; ends > 0; --ends)
                run(unInitialize);
            look();
        }
        return seen;
    };
    inChild(
        [&]
        {
            for (unsigned seed = 0; seed < 6; ++seed)
            {
                const Lines want = observed(seed, 1, false);
                for (const std::size_t threads : {2U, 3U, 4U, 8U})
                    for (const bool ending : {false, true})
                        EXPECT_EQ(observed(seed, threads, ending), want)
                            << seed << ", " << threads << ending;
            }
        });
}

TEST_F(EntriesTest, EndWithAnException)
{
    const auto refused = []
    {
        const CKestaEntry entry;
        KestaIPRange("no range");
    };
    EXPECT_THROW(refused(), CKestaExc);
    EXPECT_TRUE(mutexIsFree());
    EXPECT_FALSE(CKestaDebug::isTraced(1));
}

// Begins an entry in the last moment of a thread, when no end of a thread is noticed any more.
static pthread_key_t lastMoment;
static void* beginAtLast(void* rounds)
{
    const auto left = reinterpret_cast<std::intptr_t>(rounds) - 1;
    pthread_setspecific(lastMoment, reinterpret_cast<void*>(left));
    if (left == 0)
        initialize(), KESTA_DEBUG1("not ended", 1);
    return nullptr;
}

// The entry is there for others to trace in it and to end it. Who begins another one ends it.
TEST_F(EntriesTest, OutliveTheirThread)
{
    pthread_key_create(&lastMoment, [](void* rounds) { beginAtLast(rounds); });
    const std::function<void()> leaves[] = {[] { initialize(), KESTA_DEBUG1("not ended", 1); },
        []
        {
            pthread_setspecific(
                lastMoment, reinterpret_cast<void*>(std::intptr_t{PTHREAD_DESTRUCTOR_ITERATIONS}));
        }};
    for (const auto& leave : leaves)
    {
        if (threadSanitizer && &leave != &leaves[0])
            continue;
        inChild(
            [&]
            {
                configure("DEBUGSIZE=0");
                inThread(leave);
                EXPECT_FALSE(mutexIsFree());
                inThread([] { KESTA_DEBUG1("traced in it", 1); });
                inThread(unInitialize);
                EXPECT_EQ(Lines(fileText(oldLogPath())).size(), 2u) << "rolled over";
                inThread(leave);
                traceLine("another");
                EXPECT_EQ(fileText(oldLogPath()), "[MSG]:FH:another\n");
                EXPECT_TRUE(mutexIsFree());
            });
    }
    pthread_key_delete(lastMoment);
}

// The system keeps the number of a main thread until its process ends.
TEST_F(EntriesTest, OutliveTheMainThread)
{
    if (addressSanitizer || threadSanitizer)   // they start no threads in a forked child
        GTEST_SKIP();
    const auto endInChild = [this]
    {
        const pid_t child = fork();
        if (child == 0)   // this thread is the main thread now, and returns
        {
            alarm(60);
            initialize();
            std::thread([this] { traceLine("after it"), _exit(0); }).detach();
            return;
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    };
    inThread(endInChild);
    EXPECT_EQ(messages(), Lines{"after it"});
}

// Neither an entry without tracing nor a fork waits for a line that is being enciphered.
TEST_F(EntriesTest, WaitForNoCipher)
{
    static std::atomic<bool> enciphering{false}, enough{false};
    const auto slowly = [](const std::string& line)
    {
        for (enciphering = true; !enough;)
            std::this_thread::yield();
        return line;
    };
    configure("DEBUGLEVEL=3");
    inChild(
        [&]
        {
            CKestaHostSetup::setLineCipher(slowly);
            std::thread tracing([this] { traceLine("slow"); });
            while (!enciphering)
                std::this_thread::yield();
            configure("DEBUGLEVEL=0");
            traceLine("nothing");
            configure("DEBUGLEVEL=3");
            if (!addressSanitizer)
                inChild(
                    [&]
                    {
                        enough = true;
                        traceLine("child");
                    });
            enough = true;
            tracing.join();
            CKestaHostSetup::setLineCipher(nullptr);
            EXPECT_EQ(messages().back(), "slow");
        });
}

// Threads are cancelled at any point; each time the next entry must find everything in order.
TEST_F(EntriesTest, OfCancelledThreadsEnd)
{
    if (addressSanitizer)
        GTEST_SKIP();
    const std::function<void()> works[] = {[]
        {
            const CKestaEntry entry;
            const KestaIPRange range("10.1.*.*");
        },
        []
        {
            initialize();
            errorOf([] { KestaIPRange range("10.1.2.*.5"); });
            unInitialize();
        },
        []
        {
            const CKestaEntry entry;
            for (;; pthread_testcancel())
                const KestaIPRange range("2001:db8::/32");
        }};
    for (const auto& work : works)
        for (const char* settings :
            {"DEBUGLEVEL=3", "DEBUGLEVEL=0", "DEBUGFILEPATH=/missing\nDEBUG=N"})
        {
            SCOPED_TRACE(settings);
            configure(settings);
            for (int i = 0; i < 20; ++i)
            {
                std::thread thread(
                    [&]
                    {
                        for (;;)
                            work();
                    });
                for (int yields = 0; yields < i; ++yields)
                    std::this_thread::yield();
                pthread_cancel(thread.native_handle());
                thread.join();
                const CKestaEntry next;
            }
        }
}

TEST_F(EntriesTest, MayBeCancelledWhileTheyWait)
{
    if (addressSanitizer)
        GTEST_SKIP();
    const CKestaEntry entry;
    std::thread waiting = blocked(
        []
        {
            initialize();
            ADD_FAILURE() << "there can't be two";
        });
    pthread_cancel(waiting.native_handle());
    waiting.join();
    KESTA_DEBUG1("still in progress", 1);
    EXPECT_EQ(messages(), Lines{"still in progress"});
}

TEST_F(EntriesTest, OfChildrenForkedBesideThem)
{
    if (addressSanitizer)
        GTEST_SKIP();
    for (const int threads : {1, 2, 4, 8})
    {
        std::atomic<bool> stop{false};
        std::vector<std::thread> parent;
        for (int thread = 0; thread < threads; ++thread)
            parent.emplace_back(
                [&]
                {
                    while (!stop)
                        traceLine("parent");
                });
        for (int i = 0; i < 60; ++i)
            inChild([this] { traceLine("child"), traceLine("child"); });
        stop = true;
        for (std::thread& thread : parent)
            thread.join();
        const Lines all = messages();
        EXPECT_EQ(std::count(all.begin(), all.end(), "child"), 120) << threads;
        std::filesystem::remove(logPath());
    }
}

TEST_F(EntriesTest, OfForkedChildren)
{
    if (addressSanitizer)
        GTEST_SKIP();
    std::atomic<bool> stop{false};
    std::atomic<int> lines{0};
    configure("DEBUGLEVEL=3");
    std::thread parent(
        [&]
        {
            const CKestaEntry entry;
            for (; !stop; ++lines)
                KESTA_DEBUG1("parent", 1);
        });
    while (lines == 0)
        std::this_thread::yield();
    for (int i = 0; i < 20; ++i)
        inChild(
            [&]
            {
                EXPECT_FALSE(CKestaDebug::isTraced(1)) << "the entry is the parent's";
                traceLine("child");
            });
    stop = true;
    parent.join();
    const Lines all = messages();
    EXPECT_EQ(std::count(all.begin(), all.end(), "parent"), lines);
    EXPECT_EQ(std::count(all.begin(), all.end(), "child"), 20);
}

// A child may continue the entry in which it was forked, end it, or make one of its own; only the
// parent rolls the log over.
TEST_F(EntriesTest, OfTheParentAreNotTheChildsToRollOver)
{
    configure("DEBUG=N\nDEBUGFILEPATH=" + dir + "missing");
    {
        const CKestaEntry withoutLog;
        inChild(
            []
            {
                unInitialize();
                EXPECT_TRUE(mutexIsFree());
            });
    }
    configure("DEBUGSIZE=0");
    {
        const CKestaEntry entry;
        KESTA_DEBUG1("parent", 1);
        inChild(
            []
            {
                KESTA_DEBUG1("child", 1);
                unInitialize();
                KESTA_DEBUG1("dropped", 1);
            });
        configure("DEBUGSIZE=1000");
        inChild(
            [this]
            {
                std::thread waiting = blocked([this] { traceLine("thread of the child"); });
                KESTA_DEBUG1("first", 1);
                unInitialize();
                waiting.join();
            });
        inChild([this] { traceLine("own"); });
        EXPECT_EQ(messages(), (Lines{"parent", "child", "first", "thread of the child", "own"}));
    }
    EXPECT_EQ(Lines(fileText(oldLogPath())).size(), 5u);
}

// Two processes have the log open; the second to end must not roll over the new log.
TEST_F(EntriesTest, OfTwoProcessesLoseNoFullLog)
{
    configure("DEBUGSIZE=0");
    const pid_t second = fork();
    if (second == 0)
    {
        initialize();
        KESTA_DEBUG1("second", 1);
        raise(SIGSTOP);
        unInitialize();
        _exit(0);
    }
    int status = -1;
    waitpid(second, &status, WUNTRACED);
    traceLine("first");   // also rolls the log over
    configure("");
    traceLine("next");
    kill(second, SIGCONT);
    waitpid(second, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(fileText(oldLogPath()), "[MSG]:FH:second\n[MSG]:FH:first\n");
    EXPECT_EQ(messages(), Lines{"next"});
}
