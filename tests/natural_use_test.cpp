// What hosts naturally write compiles in both standards, links without optimisation, and does what
// it says: one expression per row. A host's own functions win over those that we add.

#include "support.h"

#include <gmock/gmock.h>

#include "KestaArray.h"
#include "KestaConfiguration.h"
#include "KestaDate.h"
#include "KestaIPRange.h"
#include "KestaIPRangeSet.h"
#include "KestaIPUtilities.h"
#include "KestaMap.h"
#include "KestaStack.h"
#include "KestaVector.h"
#include "KestaVersion.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <numeric>
#include <thread>
#include <type_traits>
#include <unordered_map>

struct Acme
{
    static const int port = 80;   // only declared: there is no object to refer to
    static const char separator = ';';
    enum Kind
    {
        big = 7
    };
    char letter : 8;
    unsigned int bits : 3;
};

struct Both
{
    operator CKestaString() const { return "text"; }
    operator std::string_view() const { return "view"; }
};

struct Any
{
    template <class T>
    operator T() const
    {
        return T("any");
    }
};

struct Variable
{
    operator CKestaString() { return "variable"; }
};

namespace own
{
struct Own : Both
{
};
int traces = 0;
void KESTA_DEBUG1(const Own&, int) { ++traces; }
}   // namespace own

namespace operators
{
CKestaString operator+(const CKestaString&, const std::string&) { return "own"; }
CKestaString operator+(const CKestaString&, const char*) { return "own"; }
bool operator==(const CKestaString&, const char*) { return true; }
bool operator<(const CKestaDate&, const CKestaDate&) { return true; }
bool operator!=(const CKestaDate&, const CKestaDate&) { return false; }
std::ostream& operator<<(std::ostream& os, const CKestaExc&) { return os << "own"; }
bool operator!=(const KestaIPv4Address&, const KestaIPv4Address&) { return true; }
bool operator>=(const KestaIPAddress&, const KestaIPAddress&) { return false; }
}   // namespace operators

static const char* overloaded(const CKestaExc&) { return "error"; }
[[maybe_unused]] static const char* overloaded(const CKestaDate&) { return "date"; }

/// The value of an expression; a CKestaString is distinguished from a std::string.
template <class T>
static std::string shown(const T& value)
{
    std::ostringstream out;
    out << value;
    return (std::is_same_v<T, CKestaString> ? "K " : "") + out.str();
}

struct Row
{
    const char* expression;
    std::string got, want;
};
#define ROW(expression, want)                                                                      \
    Row { #expression, shown(expression), want }
#define TRACE(call, want)                                                                          \
    Row                                                                                            \
    {                                                                                              \
#call, traced([&] { call; }).at(0), want                                                   \
    }

template <std::size_t N>
static void check(const Row (&rows)[N])
{
    for (const Row& row : rows)
        EXPECT_EQ(row.got, row.want) << row.expression;
}

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(NaturalUse, Texts)
{
    const CKestaString k("k"), fromLiteral = "literal", fromStandard = "std"s, fromView("view"sv);
    CKestaString s, token;
    std::string standard("std");
    char letters[] = "K";
    const Acme acme{'h', 5};
    const auto next = &CKestaString::getNextToken;
    check({ROW(s = "x", "K x"), ROW(s = standard, "K std"), ROW(s = k, "K k"), ROW(s = {}, "K "),
        ROW(s = 'c', "K 99"), ROW(s += "y", "99y"), ROW(k + k, "K kk"), ROW(k + "l", "K kl"),
        ROW(k + letters, "K kK"), ROW(k + "v"sv, "K kv"), ROW(k + 'c', "K kc"), ROW(k + 5, "K k5"),
        ROW(k + Acme::separator, "K k;"), ROW(k + acme.letter, "K kh"), ROW(k + standard, "kstd"),
        ROW(k + "tmp"s, "ktmp"), ROW("l" + k, "lk"), ROW(standard + k, "stdk"),
        ROW(k + Both(), "K ktext"), ROW(k + Any(), "K kany"), ROW(k == "k", "1"),
        ROW("k" == k, "1"), ROW(k == letters, "0"), ROW(k == "k"s, "1"), ROW("k"s == k, "1"),
        ROW(k == "k"sv, "1"), ROW(k == Both(), "0"), ROW(CKestaString("any") == Any(), "1"),
        ROW(k != "k", "0"), ROW("k" != k, "0"), ROW(k != standard, "1"), ROW(k != k, "0"),
        ROW(k < fromStandard, "1"), ROW(k.equals(letters, false), "1"),
        ROW(k.equals(CKestaString("K"), true), "0"), ROW(k.equals(Any(), true), "0"),
        ROW(k.beginsWith("k"), "1"), ROW(fromView.endsWith("w"s), "1"),
        ROW(CKestaString(" a ").trim(), "K a"),
        ROW(CKestaString("a,b").getNextToken(token, ","), "1"),
        ROW((CKestaString("m,").*next)(token, Any()), "0"), ROW(token, "K a"),
        ROW(CKestaString(Acme::port), "K 80"), ROW(CKestaString(Acme::big), "K 7"),
        ROW(CKestaString(4294967295u), "K 4294967295"),
        ROW(CKestaString(-9000000000LL), "K -9000000000"),
        ROW(CKestaString(18446744073709551615ULL), "K 18446744073709551615"),
        ROW(CKestaString(acme.bits), "K 5"),
        ROW((std::unordered_map<CKestaString, int>{{k, 3}}.at("k")), "3"),
        ROW(std::hash<CKestaString>()("ab\0c"s), shown(std::hash<CKestaString>()("ab")))});
}

TEST(NaturalUse, HostsOwnOperatorsWin)
{
    using namespace operators;
    const CKestaString s("s");
    std::string standard;
    char letters[] = "";
    const CKestaDate date("1/2/2007"), other("1/1/2007");
    const CKestaExc exc("why");
    const KestaIPv4Address address("10.1.2.3");
    check({ROW(address != address, "1"), ROW(address >= address, "0"), ROW(s + standard, "K own"),
        ROW(s + std::as_const(standard), "K own"), ROW(s + "literal", "K own"),
        ROW(s + letters, "K own"), ROW(s == "other", "1"), ROW(date < other, "1"),
        ROW(date != other, "0")});
    std::ostringstream out;
    EXPECT_EQ((out << exc, out.str()), "own");
}

using NaturalTrace = TraceFixture;

TEST_F(NaturalTrace, Arguments)
{
    const Acme acme{'h', 5};
    const struct __attribute__((packed))
    {
        char before;
        int number;
    } packed{0, 6};
    char letters[] = "letters";
    Variable variable;
    check({TRACE(KESTA_DEBUG1("text", 3), "FH:text"), TRACE(KESTA_DEBUG1(letters, 3), "FH:letters"),
        TRACE(KESTA_DEBUG1("string"s, 3), "FH:string"), TRACE(KESTA_DEBUG1("view"sv, 3), "FH:view"),
        TRACE(KESTA_DEBUG1({"braces"}, 3), "FH:braces"), TRACE(KESTA_DEBUG1({}, 3), "FH:"),
        TRACE(KESTA_DEBUG1('c', 3), "FH:99"), TRACE(KESTA_DEBUG1(0.5f, 3), "FH:0.500000"),
        TRACE(KESTA_DEBUG1(std::uint32_t{4294967295}, 3), "FH:4294967295"),
        TRACE(KESTA_DEBUG1(std::size_t{4294967295}, 3), "FH:-1"),
        TRACE(KESTA_DEBUG1(-9000000000LL, 3), "FH:-9000000000"),
        TRACE(KESTA_DEBUG1(acme.bits, 3), "FH:5"), TRACE(KESTA_DEBUG1(packed.number, 3), "FH:6"),
        TRACE(KESTA_DEBUG1(variable, 3), "FH:variable"), TRACE(KESTA_DEBUG1(Both(), 3), "FH:text"),
        TRACE(KESTA_DEBUG1(Any(), 3), "FH:any"), TRACE(::KESTA_DEBUG1(Acme::port, 3), "FH:80"),
        TRACE(KESTA_DEBUG2("port ", Acme::port, 3), "port :80"),
        TRACE(KESTA_DEBUG2("s"s, "m"s, 3), "s:m"),
        TRACE(KESTA_DEBUG2(Acme::big, own::Own(), 3), "7:text"),
        TRACE(KESTA_DEBUG2(Both(), "m", 3), "text:m"), TRACE(KESTA_DEBUG2(1, 2, 3), "1:2"),
        TRACE(KESTA_DEBUG2(variable, {"braces"}, 3), "variable:braces")});
    KESTA_DEBUG1(own::Own(), 3);
    EXPECT_EQ(own::traces, 1) << "the host's own overload";
    EXPECT_THROW(traced([] { KESTA_DEBUG1(nullptr, 3); }), std::logic_error);
}

TEST_F(NaturalTrace, FunctionsAsValues)
{
    void (*one)(CKestaString, int) = &KESTA_DEBUG1;
    void (*two)(CKestaString, CKestaString, int) = KESTA_DEBUG2;
    const std::function<void(CKestaString, CKestaString, int)> function = KESTA_DEBUG2;
    check({TRACE(one("pointer", 3), "FH:pointer"), TRACE(two("pointer", "two", 3), "pointer:two"),
        TRACE(function("function", 4, 3), "function:4"),
        TRACE(std::bind(KESTA_DEBUG2, "bound", std::placeholders::_1, 3)(4), "bound:4"),
        TRACE(std::thread(KESTA_DEBUG2, "thread", "m", 3).join(), "thread:m")});
}

TEST(NaturalUse, ErrorsAndDates)
{
    const CKestaString text("2/28/2007");
    CKestaString variable = text;
    const CKestaDate date(text), implied = variable, later = date + 1;
    check({ROW(overloaded(text), "error"), ROW(overloaded(CKestaString("temporary")), "error"),
        ROW(date, "02/28/2007"), ROW(CKestaExc("why"), "-9999;Fernhold;why\n"),
        ROW(date == implied, "1"), ROW(date != implied, "0"), ROW(later - date, "1"),
        ROW(date.compare(later), "-1"), ROW(later + static_cast<unsigned int>(-1), "02/28/2007")});
    alignas(CKestaExc) char memory[sizeof(CKestaExc)];
    std::memset(memory, -1, sizeof memory);
    auto* const itself = reinterpret_cast<CKestaExc*>(memory);
    new (memory) CKestaExc(*itself);
    EXPECT_EQ(shown(*itself), "-9999;;\n");
    itself->~CKestaExc();
}

TEST(NaturalUse, Containers)
{
    CKestaArray<CKestaString> array{"b", "c"};
    CKestaVector<int> numbers{1, 2, 3};
    const CKestaMap<CKestaString, int> map{{"x", 1}, {"y", 2}, {"x", 3}};
    CKestaStack<int> stack;
    const CKestaVector<std::string> source{"d", "e"};
    std::copy(source.begin(), source.end(), std::back_inserter(array));
    CKestaVector<int> squares;
    std::transform(numbers.begin(), numbers.end(), std::back_inserter(squares),
        [](int number) { return number * number; });
    const std::size_t at = 1;
    const unsigned int atUnsigned = 0;
    const char atChar = 2;
    numbers = {4, 5, 6};
    EXPECT_THAT(array, testing::ElementsAre("b", "c", "d", "e"));
    EXPECT_THAT(squares, testing::ElementsAre(1, 4, 9));
    EXPECT_THAT(map, testing::UnorderedElementsAre(testing::Pair("x", 1), testing::Pair("y", 2)));
    EXPECT_THAT(CKestaVector<int>(), testing::IsEmpty());
    check({ROW(array.getAt(at), "K c"), ROW(array.getAt(1), "K c"),
        ROW(array.getAt(atUnsigned), "K b"), ROW(std::as_const(array).getAt(at), "K c"),
        ROW(numbers[at], "5"), ROW(numbers[0], "4"), ROW(numbers[atChar], "6"),
        ROW(std::as_const(numbers)[at], "5"), ROW(array.empty(), "0"), ROW(stack.empty(), "1"),
        ROW(map.empty(), "0"), ROW(map.size(), "2"),
        ROW(std::accumulate(numbers.begin(), numbers.end(), decltype(numbers)::value_type()),
            "15")});
    const CKestaMap<std::pair<int, int>, int> pairs{{{1, 2}, 3}};
    EXPECT_EQ(pairs.get({1, 2}), 3);
    EXPECT_EQ(errorOf([&] { pairs.get({2, 1}); }), "! CKestaMap::get(). KEY=");
}

TEST(NaturalUse, SetsOfRanges)
{
    KestaIPRangeSet set;
    const std::string standard("10.2.0.0/16");
    const KestaIPv4Address address("10.3.0.9");
    check({ROW(set.add("10.1.0.0/16"), "0"), ROW(set.add(standard), "1"),
        ROW(set.add(CKestaString("10.3.0.1-10.3.0.9")), "2"), ROW(set.add("::1"sv), "3"),
        ROW(set.add(KestaIPRange("10.4.*.*")), "4"), ROW(set.addBlock(address, 32), "5"),
        ROW((set.build(), set.indexOf(address)), "2"), ROW(set.indexOf(&address), "2"),
        ROW(set.isMember(in6addr_loopback), "1"), ROW(set.isMember(nullptr), "0")});
}

template <class Left, class Right, class = void>
constexpr bool isOrdered = false;
template <class Left, class Right>
constexpr bool
    isOrdered<Left, Right, std::void_t<decltype(std::declval<Left>() < std::declval<Right>())>> =
        true;
typedef KestaIPv4Address IPv4;
typedef KestaIPv6Address IPv6;
static_assert(isOrdered<IPv4, IPv4> && isOrdered<IPv6, const IPv6&>);
static_assert(!isOrdered<IPv4, IPv6> && !isOrdered<IPv4, IPv4*> && !isOrdered<IPv4, const char*>);
static_assert(!std::is_convertible_v<in_addr, IPv4> && !std::is_convertible_v<in6_addr, IPv6>);

TEST(NaturalUse, AddressesOfSockets)
{
    sockaddr_in peer = {};
    peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const IPv4 address(peer.sin_addr), other("10.1.2.3");
    const IPv6 address6(in6addr_loopback), other6("::2");
    check({ROW(address, "127.0.0.1"), ROW(IPv6{in6addr_any}, "::"), ROW(address == other, "0"),
        ROW(address != other, "1"), ROW(address < other, "0"), ROW(address <= other, "0"),
        ROW(address > other, "1"), ROW(address >= other, "1"), ROW(address6 == other6, "0"),
        ROW(address6 != other6, "1"), ROW(address6 < other6, "1"), ROW(address6 <= other6, "1"),
        ROW(address6 > other6, "0"), ROW(address6 >= other6, "0"), ROW(address <= &other, "0"),
        ROW(address >= &other, "1"), ROW(address == &other, "0"),
        ROW(std::max(address, other), "127.0.0.1")});
}

TEST(NaturalUse, AddressesAndVersion)
{
    const KestaIPRange range("10.1.*.*"), fromString(std::string("10.1.2.*"));
    const KestaIPv4Address address("10.1.2.3");
    const CKestaArray<KestaIPv4Address> in;
    CKestaArray<KestaIPv4Address> kept;
    [[maybe_unused]] const CKestaDebug debug;   // its operations are all static
    [[maybe_unused]] const CKestaConfiguration configuration;
    KestaIPUtilities::getfilteredIPv4Addresses(kept, in);
    std::ostringstream version;
    version << KESTA_VERSION_MAJOR << '.' << KESTA_VERSION_MINOR << '.' << KESTA_VERSION_PATCH;
    check({ROW(range.isMember(&address), "1"), ROW(range.isMember(fromString), "1"),
        ROW(*range.getStartAddress() <= &address, "1"), ROW(address == range.getEndAddress(), "0"),
        ROW(kestaVersion(), version.str())});
}
