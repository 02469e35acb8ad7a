#include "support.h"

#include "KestaIPRange.h"
#include "KestaIPRangeSet.h"
#include "KestaIPUtilities.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <new>
#include <set>
#include <utility>

static std::atomic<int> allocations{0};

/// Which allocation from now on fails, and whether all later ones fail, too.
static struct
{
    int next = 0;   // 0: none
    bool lasting = false;
    bool happened = false;
} failure;

// Not inlined, because g++ would warn of the pair of malloc and delete.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++allocations;
    if (failure.next > 0 && --failure.next == 0)
    {
        failure.happened = true;
        failure.next = failure.lasting ? 1 : 0;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

typedef std::set<std::string> Outcomes;

/// The outcomes of an operation when its n-th allocation fails, for every n.
template <class Work>
static Outcomes outcomes(bool lasting, Work work)
{
    Outcomes all;
    for (int n = 1;; ++n)
    {
        std::string outcome = "done";
        failure = {n, lasting, false};
        try
        {
            work();
        }
        catch (const std::bad_alloc&)
        {
            outcome = "bad_alloc";
        }
        catch (const CKestaExc& exc)
        {
            failure.next = 0;
            outcome = exc.GetErrorMessage();
        }
        failure.next = 0;
        if (!failure.happened)
            return all;
        all.insert(outcome);
    }
}

template <class Work>
static int countOf(Work work)
{
    const int before = allocations;
    work();
    return allocations - before;
}

#define ROW(work, most)                                                                            \
    {                                                                                              \
#work, [&] { static_cast<void>(work); }, most                                              \
    }

TEST(Allocations, AreAsFewAsPromised)
{
    const CKestaString text("a text that no small buffer holds, with blanks , and commas , in it");
    const char* const message = "a rather long trace message";
    CKestaString trimmed(text), removed(text), token(text);
    const KestaIPRange range("10.1.*.*"), inner("10.1.2.*"), block("2001:db8::/32"), all("*");
    const KestaIPv4Address in("10.1.2.3");
    const KestaIPv6Address in6("2001:db8::1");
    KestaIPRangeSet set;
    set.add(range);
    set.build();
    const struct
    {
        const char* what;
        std::function<void()> work;
        int most;
    } rows[] = {ROW(KESTA_DEBUG1(message, 3), 0), ROW(KESTA_DEBUG1(text, 3), 0),
        ROW(KESTA_DEBUG2(text, text, 3), 0), ROW(KESTA_DEBUG2(text, message, 3), 0),
        ROW(CKestaDebug::logMessage(text, text, text, 3), 0), ROW(KestaIPRange("10.1.*.*"), 0),
        ROW(KestaIPRange("2001:db8::/32"), 1), ROW(range.isMember(&in), 0),
        ROW(block.isMember(&in6), 0), ROW(inner.isMember(range), 0), ROW(block.isMember(all), 0),
        ROW(range.isMember(all), 0), ROW(in == &in, 0), ROW(in >= &in, 0), ROW(in6 <= &in6, 0),
        ROW(set.indexOf(&in), 0), ROW(text.countDelims(","), 1), ROW(text.countTokens(","), 1),
        ROW(trimmed.trim(), 1), ROW(removed.removeSpaces(), 1),
        ROW(text.getNextToken(token, ","), 0), ROW(text.getNextToken(token, ""), 0)};
    for (const auto& row : rows)
        EXPECT_LE(countOf(row.work), row.most) << row.what;
    EXPECT_EQ(countOf([&] { const CKestaString copy(text); }), 1) << "the counter counts";
}

using MemoryTest = TraceFixture;

TEST_F(MemoryTest, MayFailAnywhere)
{
    configure("DEBUGLEVEL=3\nDEBUGITEMS=" + std::string(100, 'x'));
    const CKestaString text("10.100.100.100"), longText(std::string(100, 'x'));
    const CKestaExc exc(longText);
    const std::function<void()> traces[] = {[&] { KESTA_DEBUG2(longText, longText, 3); },
        [&] { CKestaDebug::logMessage(longText, text, text, 3); },
        [&] { CKestaDebug::logMessage(exc); }, [&] { CKestaDebug::writeMessage(longText); }};
    // The next attempt hangs if a failed one still holds the mutex.
    const auto begin = [] { initialize(), unInitialize(); };
    for (const bool lasting : {false, true})
    {
        SCOPED_TRACE(lasting);
        EXPECT_EQ(outcomes(lasting, begin), Outcomes{"bad_alloc"});
        for (const auto& trace : traces)
        {
            const CKestaEntry entry;   // its first line needs memory
            EXPECT_EQ(outcomes(lasting, trace), Outcomes{"done"});
            KESTA_DEBUG1("still traced", 1);
        }
    }
    EXPECT_EQ(messages().back(), "still traced");
}

TEST_F(MemoryTest, FailuresOfRangesAreErrorObjects)
{
    const auto rangeOf = [](const char* text)
    { return [text] { const KestaIPRange range(text); }; };
    const sockaddr_storage start = socketOf("2001:db8::");
    KestaIPAddress* end = nullptr;
    const auto makeEnd = [&]
    {
        const auto* sa = reinterpret_cast<const sockaddr_in6*>(&start);
        KestaIPUtilities::InitialiseIPv6EndAddress(sa, &end, 32);
        delete std::exchange(end, nullptr);
    };
    for (const bool lasting : {false, true})
    {
        SCOPED_TRACE(lasting);
        EXPECT_EQ(outcomes(lasting, rangeOf("localhost")), Outcomes{"Unknown Error"});
        EXPECT_EQ(outcomes(lasting, rangeOf("2001:db8::/32")),
            Outcomes{lasting ? "Unknown Error" : "Unknown Exception"});
        EXPECT_EQ(outcomes(lasting, makeEnd),   // the message itself needs memory
            Outcomes{lasting ? "bad_alloc" : "Unknown Exception"});
        EXPECT_EQ(end, nullptr);
    }
    {
        const CKestaEntry entry;
        outcomes(false, rangeOf("localhost"));
        outcomes(false, rangeOf("2001:db8::/32"));
    }
    const Lines lines = messages();
    for (const char* line : {"KestaIPRange::KestaIPRange()-Unknown Error",
             "KestaIPUtilities::InitialiseIPv6EndAddress()-Unknown Exception"})
        EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
}

TEST(RangeSet, IsBuiltAgainAfterAFailure)
{
    const KestaIPRange once("10.9.*.*"), inner("10.1.2.*"), outer("10.1.*.*");
    const KestaIPv4Address inOnce("10.9.0.1"), inOuter("10.1.3.4"), out("10.2.0.0");
    KestaIPRangeSet set;   // each attempt continues with what the last one left
    set.add(once);
    const auto outcome = outcomes(false,
        [&]
        {
            for (const KestaIPRange* range : {&inner, &outer})
            {
                set.add(*range);
                set.build();
            }
        });
    EXPECT_EQ(outcome, (Outcomes{"bad_alloc", "done"}));
    EXPECT_EQ(std::tuple(set.indexOf(&inOnce), set.isMember(&inOuter), set.isMember(&out)),
        std::tuple(0L, true, false));
}
