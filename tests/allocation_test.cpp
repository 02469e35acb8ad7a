#include "support.h"

#include "KestaIPRange.h"

#include <atomic>
#include <new>

static std::atomic<int> allocations{0};
static std::atomic<int> failing{0};   // that many later ones succeed, the next fails; 0: none
static bool lasting = false;          // and all after it

void* operator new(std::size_t size)
{
    ++allocations;
    if (failing > 0 && --failing == 0)
        failing = lasting ? 1 : 0;
    else if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

// What comes of an operation when its n-th allocation fails, for every n: each outcome once.
template <class Work>
static Lines outcomes(bool forEver, Work work)
{
    Lines all;
    for (int n = 1, left = 0; left == 0; ++n)
    {
        std::string outcome = "done";
        lasting = forEver;
        failing = n;
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
            failing = 0;
            outcome = exc.GetErrorMessage();
        }
        left = lasting && outcome != "done" ? 0 : failing.load();
        failing = 0;
        if (std::find(all.begin(), all.end(), outcome) == all.end())
            all.push_back(outcome);
    }
    return all;
}

template <class Work>
static int countOf(Work work)
{
    const int before = allocations;
    work();
    return allocations - before;
}

TEST(Allocations, AreAsFewAsPromised)
{
    const CKestaString text("a text that no small buffer holds, with blanks , and commas , in it");
    EXPECT_EQ(countOf([&] { const CKestaString copy(text); }), 1) << "the counter counts";

    EXPECT_EQ(countOf([] { KESTA_DEBUG1("In a rather long trace message", 3); }), 0);
    EXPECT_EQ(countOf([&] { KESTA_DEBUG2(text, "a rather long trace message", 3); }), 0);
    EXPECT_EQ(countOf([&] { CKestaDebug::logMessage(text, text, text, 3); }), 0);

    const KestaIPRange range("10.1.*.*"), inner("10.1.2.*"), block("2001:db8::/32"), all("*");
    const KestaIPv4Address in("10.1.2.3"), out("10.2.0.1");
    const KestaIPv6Address in6("2001:db8::1");
    bool yes = true;
    EXPECT_EQ(countOf([&] { yes = range.isMember(&in) && !range.isMember(&out); }), 0);
    EXPECT_EQ(countOf([&] { yes = yes && block.isMember(&in6) && all.isMember(&in6); }), 0);
    EXPECT_EQ(countOf([&] { yes = yes && range.isMember(inner) && inner.isMember(range); }), 0);
    EXPECT_EQ(countOf([&] { yes = yes && block.isMember(all) && !range.isMember(all); }), 0);
    EXPECT_EQ(countOf([&] { yes = yes && in == &in && out >= &in && in6 <= &in6; }), 0);
    EXPECT_TRUE(yes);

    CKestaString trimmed(text), removed(text), token(text);
    EXPECT_LE(countOf([&] { text.countDelims(","), text.countTokens(","); }), 2);
    EXPECT_LE(countOf([&] { trimmed.trim(); }), 1);
    EXPECT_LE(countOf([&] { removed.removeSpaces(); }), 1);
    EXPECT_EQ(countOf([&] { text.getNextToken(token, ","); }), 0);
    EXPECT_EQ(countOf([&] { text.getNextToken(token, ""); }), 0);
}
