#include "bench.h"

#include "KestaAddressNumber.h"
#include "KestaIPRange.h"
#include "KestaIPRangeSet.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <random>

#include <arpa/inet.h>
#include <malloc.h>

#ifdef BENCH_WITH_ICL
#include <boost/icl/interval_set.hpp>
#endif

namespace
{

/// A block of IPv4 addresses. IPv6 has the same one below 2001::/16.
struct Block
{
    std::uint32_t first;
    int prefix;   // 16, 24 or 32

    std::uint32_t last() const
    {
        return first + static_cast<std::uint32_t>((std::uint64_t{1} << (32 - prefix)) - 1);
    }
};

struct IPv4
{
    static constexpr char name[] = "IPv4";
    typedef KestaIPv4Number Number;
    typedef in_addr Address;
    typedef KestaIPv4Address KestaAddress;

    static Number first(const Block& block) { return block.first; }
    static Number last(const Block& block) { return block.last(); }
    static Address address(std::uint32_t number) { return {htonl(number)}; }
    static std::string text(const Block& block)
    {
        char text[INET_ADDRSTRLEN];
        const Address address = IPv4::address(block.first);
        std::string result = inet_ntop(AF_INET, &address, text, sizeof text);
        for (int bits = block.prefix; bits < 32; bits += 8)
            result.erase(result.rfind('.'));
        for (int bits = block.prefix; bits < 32; bits += 8)
            result += ".*";
        return result;
    }
};

struct IPv6
{
    static constexpr char name[] = "IPv6";
    typedef KestaIPv6Number Number;
    typedef in6_addr Address;
    typedef KestaIPv6Address KestaAddress;

    static Number number(std::uint32_t number, std::uint64_t rest)
    {
        return Number{0x2001} << 112 | Number{number} << 80 |
               (rest == 0 ? Number{0} : (Number{1} << 80) - 1);
    }
    static Number first(const Block& block) { return number(block.first, 0); }
    static Number last(const Block& block) { return number(block.last(), 1); }
    static Address address(std::uint32_t number)
    {
        Address result = {{{0x20, 0x01}}};
        const std::uint32_t bytes = htonl(number);
        std::memcpy(&result.s6_addr[2], &bytes, sizeof bytes);
        result.s6_addr[15] = 1;
        return result;
    }
    static std::string text(const Block& block)
    {
        char text[INET6_ADDRSTRLEN];
        Address address = IPv6::address(block.first);
        address.s6_addr[15] = 0;
        return inet_ntop(AF_INET6, &address, text, sizeof text) + std::string("/") +
               std::to_string(16 + block.prefix);
    }
};

// ---- The ranges, and the addresses that are looked up ----

std::uint32_t anyAddress(std::mt19937& chance)   // of 1.0.0.0 to 223.255.255.255
{
    return std::uniform_int_distribution<std::uint32_t>(0x01000000, 0xDFFFFFFF)(chance);
}

/// Different blocks of 256 addresses, in random order ...
std::vector<Block> blocksApart(std::size_t count, std::mt19937& chance)
{
    std::vector<std::uint32_t> firsts;
    while (firsts.size() < count)
    {
        while (firsts.size() < count)
            firsts.push_back(anyAddress(chance) & ~0xFFU);
        std::sort(firsts.begin(), firsts.end());
        firsts.erase(std::unique(firsts.begin(), firsts.end()), firsts.end());
    }
    std::shuffle(firsts.begin(), firsts.end(), chance);
    std::vector<Block> blocks;
    for (const std::uint32_t first : firsts)
        blocks.push_back({first, 24});
    return blocks;
}

/// ... or blocks of 65536, 256 and 1 addresses, some of which lie in others.
std::vector<Block> blocksNested(std::size_t count, std::mt19937& chance)
{
    std::vector<Block> blocks;
    while (blocks.size() < count)
    {
        const auto share = chance() % 100;
        const int prefix = share < 1 ? 16 : share < 60 ? 24 : 32;
        const std::uint32_t first = anyAddress(chance);
        blocks.push_back(
            {first & static_cast<std::uint32_t>(~std::uint64_t{0} << (32 - prefix)), prefix});
    }
    return blocks;
}

/// Half of the addresses lie in a range, the rest anywhere.
std::vector<std::uint32_t> askedOf(const std::vector<Block>& blocks, std::mt19937& chance)
{
    std::vector<std::uint32_t> asked;
    for (int i = 0; i < 1 << 16; ++i)
    {
        const Block& block = blocks[chance() % blocks.size()];
        const auto step = static_cast<std::uint32_t>(chance()) % (block.last() - block.first + 1);
        asked.push_back(i % 2 == 0 ? block.first + step : anyAddress(chance));
    }
    return asked;
}

// ---- The contenders: they take blocks, build their sets, and look addresses up ----

template <class Family>
class KestaSet
{
public:
    static constexpr char name[] = "kesta";

    void add(const Block& block) { m_set.add(KestaIPRange(Family::text(block))); }
    void build() { m_set.build(); }
    static auto question(std::uint32_t number) { return Family::address(number); }
    bool holds(const typename Family::Address& address) const { return m_set.isMember(address); }

private:
    KestaIPRangeSet m_set;
};

/// What all peers take: the first and the last number of each range.
template <class Family>
class Numbers
{
public:
    typedef typename Family::Number Number;

    void add(const Block& block)
    {
        m_added.emplace_back(Family::first(block), Family::last(block));
    }
    static Number question(std::uint32_t number)
    {
        return KestaAddressNumber::of(Family::address(number));
    }

protected:
    std::vector<std::pair<Number, Number>> take() { return std::move(m_added); }

private:
    std::vector<std::pair<Number, Number>> m_added;
};

/// The last number of each range by its first. Ranges that overlap are one.
template <class Family>
class Map : public Numbers<Family>
{
public:
    static constexpr char name[] = "std::map";
    typedef typename Family::Number Number;

    void build()
    {
        for (const auto& [first, last] : this->take())
            insert(first, last);
    }
    bool holds(Number number) const
    {
        const auto above = m_ranges.upper_bound(number);
        return above != m_ranges.begin() && number <= std::prev(above)->second;
    }

private:
    void insert(Number first, Number last)
    {
        auto next = m_ranges.upper_bound(first);
        if (next != m_ranges.begin() && std::prev(next)->second >= first)
        {
            --next;
            first = next->first;
        }
        while (next != m_ranges.end() && next->first <= last)
        {
            last = std::max(last, next->second);
            next = m_ranges.erase(next);
        }
        m_ranges.emplace_hint(next, first, last);
    }

    std::map<Number, Number> m_ranges;
};

#ifdef BENCH_WITH_ICL
template <class Family>
class Icl : public Numbers<Family>
{
public:
    static constexpr char name[] = "Boost.ICL";
    typedef typename Family::Number Number;

    void build()
    {
        for (const auto& [first, last] : this->take())
            m_ranges.insert(Interval(first, last + 1));
    }
    bool holds(Number number) const { return boost::icl::contains(m_ranges, number); }

private:
    typedef boost::icl::right_open_interval<Number> Interval;

    boost::icl::interval_set<Number, std::less, Interval> m_ranges;
};
#endif

/// One range after the other.
template <class Family>
class Scan
{
public:
    static constexpr char name[] = "one by one";

    void add(const Block& block) { m_ranges.emplace_back(Family::text(block)); }
    void build() {}
    static auto question(std::uint32_t number)
    {
        char text[INET6_ADDRSTRLEN];
        const auto address = Family::address(number);
        return typename Family::KestaAddress(
            inet_ntop(sizeof address == 4 ? AF_INET : AF_INET6, &address, text, sizeof text));
    }
    bool holds(const typename Family::KestaAddress& address) const
    {
        return std::any_of(m_ranges.begin(), m_ranges.end(),
                           [&address](const KestaIPRange& range)
                           { return range.isMember(&address); });
    }

private:
    std::vector<KestaIPRange> m_ranges;
};

/// The floor of building: the starts in order.
template <class Family>
class Sort : public Numbers<Family>
{
public:
    static constexpr char name[] = "std::sort";

    void add(const Block& block) { m_starts.push_back(Family::first(block)); }
    void build()
    {
        std::sort(m_starts.begin(), m_starts.end());
        benchmark::DoNotOptimize(m_starts.data());
    }

private:
    std::vector<typename Family::Number> m_starts;
};

// ---- The measurements ----

double heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

/// Some ranges, and the rows about them. They are made when the first of these rows is measured.
template <class Family>
class SetWork : public std::enable_shared_from_this<SetWork<Family>>
{
public:
    typedef std::vector<Block> (*Shape)(std::size_t, std::mt19937&);

    SetWork(std::size_t count, Shape shape, const std::string& ending)
        : m_count(count), m_shape(shape),
          m_name(std::to_string(count) + " ranges, " + Family::name + ending)
    {
    }

    // Taking the ranges is not measured. A few builds per repetition are enough.
    template <class Set>
    void build()
    {
        const auto build = [self = this->shared_from_this()](benchmark::State& state)
        {
            double bytes = 0;
            self->prepare();
            for (auto _ : state)
            {
                state.PauseTiming();
                const double before = heapBytes();
                std::optional<Set> set(std::in_place);
                self->fill(*set);
                state.ResumeTiming();
                set->build();
                state.PauseTiming();
                bytes = heapBytes() - before;
                set.reset();
                state.ResumeTiming();
            }
            state.counters["bytes"] = bytes / static_cast<double>(self->m_count);
        };
        const std::size_t builds = std::clamp<std::size_t>(200000 / m_count, 1, 20);
        measure("building " + m_name + ", each", Set::name, build, m_count)
            ->Iterations(static_cast<benchmark::IterationCount>(builds))
            ->Repetitions(m_count < 1000000 ? 5 : 3);
    }

    template <class Set>
    void ask()
    {
        const std::string work = "asking " + m_name;
        measure(work, Set::name,
                [self = this->shared_from_this(), work,
                 asked = std::make_shared<Asked<Set>>()](benchmark::State& state)
                {
                    self->prepare(*asked, work);
                    const auto* const question = asked->questions.data();
                    const std::size_t mask = asked->questions.size() - 1;   // a power of two
                    std::size_t i = 0;
                    for (auto _ : state)
                        benchmark::DoNotOptimize(asked->set.holds(question[i++ & mask]));
                });
    }

private:
    template <class Set>
    struct Asked
    {
        Set set;
        std::vector<decltype(Set::question(0))> questions;
    };

    void prepare()
    {
        if (!m_blocks.empty())
            return;
        std::mt19937 chance(1);   // the same ones each time
        m_blocks = m_shape(m_count, chance);
        m_asked = askedOf(m_blocks, chance);
        Map<Family> map;
        fill(map);
        map.build();
        for (const std::uint32_t number : m_asked)
            m_answers.push_back(map.holds(map.question(number)));
    }

    template <class Set>
    void prepare(Asked<Set>& asked, const std::string& work)
    {
        if (!asked.questions.empty())
            return;
        prepare();
        fill(asked.set);
        asked.set.build();
        for (std::size_t i = 0; i < m_asked.size(); ++i)
        {
            asked.questions.push_back(Set::question(m_asked[i]));
            if (asked.set.holds(asked.questions[i]) != m_answers[i])
                disagree(work, Set::name);
        }
    }

    template <class Set>
    void fill(Set& set) const
    {
        for (const Block& block : m_blocks)
            set.add(block);
    }

    std::size_t m_count;
    Shape m_shape;
    std::string m_name;
    std::vector<Block> m_blocks;
    std::vector<std::uint32_t> m_asked;
    std::vector<bool> m_answers;
};

template <class Family>
void add(std::size_t count, typename SetWork<Family>::Shape shape, const std::string& ending)
{
    const auto work = std::make_shared<SetWork<Family>>(count, shape, ending);
    work->template build<KestaSet<Family>>();
    work->template build<Sort<Family>>();
    work->template build<Map<Family>>();
    work->template ask<KestaSet<Family>>();
    work->template ask<Map<Family>>();
#ifdef BENCH_WITH_ICL
    work->template build<Icl<Family>>();
    work->template ask<Icl<Family>>();
#endif
    if (count <= 1000)
        work->template ask<Scan<Family>>();
}

}   // namespace

void addSetWork()
{
    for (const std::size_t count : {1000, 100000, 1000000})
    {
        add<IPv4>(count, blocksApart, "");
        add<IPv4>(count, blocksNested, ", nested");
        add<IPv6>(count, blocksApart, "");
        add<IPv6>(count, blocksNested, ", nested");
    }
}
