#include "KestaIPRangeSet.h"

#include "KestaAddressNumber.h"
#include "KestaException.h"
#include "KestaRangeEntry.h"
#include "KestaString.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/socket.h>

namespace
{

// A slot names its first interval or, marked by this bit, a part of its own.
constexpr std::uint32_t uPartMark = 0x80000000;

// A range makes at most two intervals, and their number must leave the mark free.
constexpr std::size_t ulMostRanges = uPartMark / 2 - 1;

template <class TNumber>
constexpr TNumber highest = static_cast<TNumber>(~TNumber{0});   // numeric_limits may lack __int128

template <class TNumber>
int bitsOf(TNumber number)
{
    int iBits = 0;
    for (; number != 0; number >>= 1)
        ++iBits;
    return iBits;
}

/// The ranges of a family. Building cuts them, wherever one begins or ends, into intervals. Each
/// interval belongs to the first added of the ranges that contain it.
template <class TNumber>
class CIndex
{
public:
    void add(TNumber first, TNumber last, std::uint32_t uRange);
    void build();
    long indexOf(TNumber number) const;

    template <class TAddress>
    void indexesOf(const TAddress* addresses, std::size_t ulCount, long* indexes) const;

private:
    struct [[gnu::packed]] CAdded
    {
        TNumber first;
        TNumber last;
        std::uint32_t uRange;
    };

    // A part of the directory, which finds an interval by the leading bits of a number. The
    // intervals from `uFirst` to before `uEnd` fall into slots of equal width.
    struct CPart
    {
        TNumber base;   // where slot 0 begins
        int iShift;     // the width of a slot, in bits
        std::uint32_t uFirst;
        std::uint32_t uEnd;
        std::uint32_t uFirstSlot;
        std::uint32_t uSlots;
    };

    // Packed, so that a lookup reads one place in memory.
    struct [[gnu::packed]] CInterval
    {
        TNumber first;
        TNumber last;
        std::uint32_t uRange;
    };

    // A lookup, in steps that each read one place in memory and prefetch the next one.
    struct CLookup
    {
        TNumber number;
        const std::uint32_t* pSlot;
        std::uint32_t uInterval;   // the first whose start is to be compared
        std::uint32_t uEnd;        // of the part
    };

    void reopen();
    void cut();
    std::uint32_t makePart(std::uint32_t uFirst, std::uint32_t uEnd);
    bool enterPart(CLookup& lookup, const CPart& part) const;
    bool readSlot(CLookup& lookup) const;
    long result(const CLookup& lookup) const;

    std::vector<CAdded> m_added;          // since the index was built
    std::vector<CInterval> m_intervals;   // ascending
    std::vector<CPart> m_parts;           // the first is the whole
    std::vector<std::uint32_t> m_slots;   // the first interval of each, or its own part
};

template <class TNumber>
void CIndex<TNumber>::add(TNumber first, TNumber last, std::uint32_t uRange)
{
    if (first <= last)   // the host may have changed the addresses
        m_added.push_back({first, last, uRange});
}

template <class TNumber>
void CIndex<TNumber>::build()
{
    reopen();
    cut();
    if (!m_intervals.empty())
        makePart(0, static_cast<std::uint32_t>(m_intervals.size()));
    m_slots.shrink_to_fit();
}

// Turns the intervals of an earlier build into added ranges again. What an earlier range hid stays
// hidden.
template <class TNumber>
void CIndex<TNumber>::reopen()
{
    m_added.reserve(m_added.size() + m_intervals.size());
    for (const CInterval& interval : m_intervals)
        add(interval.first, interval.last, interval.uRange);   // does not allocate: there is room
    m_intervals.clear();
    m_parts.clear();
    m_slots.clear();
}

// Walks through the numbers in ascending order. Of the ranges that contain the current number, the
// first added is on top of the heap; one that has ended stays in it until it gets to the top.
template <class TNumber>
void CIndex<TNumber>::cut()
{
    std::sort(m_added.begin(), m_added.end(),
              [](const CAdded& left, const CAdded& right) { return left.first < right.first; });
    std::vector<const CAdded*> heap;
    const auto isAddedLater = [](const CAdded* pLeft, const CAdded* pRight)
    {
        return pLeft->uRange > pRight->uRange;
    };

    std::vector<CInterval> intervals;
    intervals.reserve(m_added.size());
    TNumber current = 0;   // the numbers below are done
    const auto append = [&](TNumber last, std::uint32_t uRange)
    {
        if (!intervals.empty() && intervals.back().uRange == uRange &&
            intervals.back().last + 1 == current)
            intervals.back().last = last;
        else
            intervals.push_back({current, last, uRange});
    };
    const auto cutUpTo = [&](TNumber limit)
    {
        while (!heap.empty())
        {
            const TNumber last = heap.front()->last;   // a copy: the field is packed
            if (last >= current)
            {
                append(std::min(last, limit), heap.front()->uRange);
                if (last >= limit)
                    return;
                current = last + 1;
            }
            std::pop_heap(heap.begin(), heap.end(), isAddedLater);
            heap.pop_back();
        }
    };
    for (const CAdded& range : m_added)
    {
        if (current < range.first)
            cutUpTo(range.first - 1);
        current = range.first;
        heap.push_back(&range);
        std::push_heap(heap.begin(), heap.end(), isAddedLater);
    }
    cutUpTo(highest<TNumber>);

    m_intervals.swap(intervals);
    std::vector<CAdded>().swap(m_added);   // freed first: shrink_to_fit may copy
    m_intervals.shrink_to_fit();
}

// Gives each slot a few intervals on average; a slot with many, where ranges lie close together,
// gets a part of its own. So an interval is found in few steps, wherever the ranges are.
template <class TNumber>
std::uint32_t CIndex<TNumber>::makePart(std::uint32_t uFirst, std::uint32_t uEnd)
{
    constexpr std::uint32_t uPerSlot = 2;
    constexpr std::uint32_t uMost = 32;

    const TNumber base = m_intervals[uFirst].first;
    const TNumber span = m_intervals[uEnd - 1].first - base;
    const std::uint32_t uWanted = std::max((uEnd - uFirst) / uPerSlot, 1U);
    const int iShift = std::max(bitsOf(span) - bitsOf(uWanted), 0);
    const auto uSlots = static_cast<std::uint32_t>(span >> iShift) + 1;
    const auto uFirstSlot = static_cast<std::uint32_t>(m_slots.size());
    const auto uPart = static_cast<std::uint32_t>(m_parts.size());
    m_parts.push_back({base, iShift, uFirst, uEnd, uFirstSlot, uSlots});
    m_slots.resize(m_slots.size() + uSlots);

    for (std::uint32_t uSlot = 0; uSlot < uSlots; ++uSlot)
    {
        const std::uint32_t uSlotFirst = uFirst;
        while (uFirst < uEnd && (m_intervals[uFirst].first - base) >> iShift == uSlot)
            ++uFirst;
        m_slots[uFirstSlot + uSlot] =
            uFirst - uSlotFirst > uMost ? makePart(uSlotFirst, uFirst) | uPartMark : uSlotFirst;
    }
    return uPart;
}

template <class TNumber>
long CIndex<TNumber>::indexOf(TNumber number) const
{
    if (m_intervals.empty())
        return -1;
    CLookup lookup;
    lookup.number = number;
    bool bMore = enterPart(lookup, m_parts.front());
    while (bMore)
        bMore = readSlot(lookup);
    return result(lookup);
}

// While one lookup waits for memory, the others go on.
template <class TNumber>
template <class TAddress>
void CIndex<TNumber>::indexesOf(const TAddress* addresses, std::size_t ulCount, long* indexes) const
{
    if (m_intervals.empty())
    {
        std::fill_n(indexes, ulCount, -1);
        return;
    }
    constexpr std::size_t ulMost = 16;
    CLookup lookups[ulMost];
    bool more[ulMost];
    while (ulCount > 0)
    {
        const std::size_t ulNow = std::min(ulCount, ulMost);
        for (std::size_t u = 0; u < ulNow; ++u)
        {
            lookups[u].number = KestaAddressNumber::of(addresses[u]);
            more[u] = enterPart(lookups[u], m_parts.front());
        }
        for (bool bAny = true; bAny;)
        {
            bAny = false;
            for (std::size_t u = 0; u < ulNow; ++u)
            {
                if (more[u])
                    more[u] = readSlot(lookups[u]);
                bAny |= more[u];
            }
        }
        for (std::size_t u = 0; u < ulNow; ++u)
            indexes[u] = result(lookups[u]);
        addresses += ulNow;
        indexes += ulNow;
        ulCount -= ulNow;
    }
}

// Finds the number's slot in a part. Returns false when the search ends without one.
template <class TNumber>
bool CIndex<TNumber>::enterPart(CLookup& lookup, const CPart& part) const
{
    lookup.uEnd = part.uEnd;
    const TNumber slot = (lookup.number - part.base) >> part.iShift;
    const bool bBelow = lookup.number < part.base;
    if (bBelow || slot >= part.uSlots)
    {
        lookup.uInterval = bBelow ? part.uFirst : part.uEnd;
        lookup.uEnd = lookup.uInterval;
        return false;
    }
    lookup.pSlot = &m_slots[part.uFirstSlot + static_cast<std::uint32_t>(slot)];
    __builtin_prefetch(lookup.pSlot);
    return true;
}

// Reads what a slot contains. Returns true when that is a part, whose slot is to be read next.
template <class TNumber>
bool CIndex<TNumber>::readSlot(CLookup& lookup) const
{
    const std::uint32_t uFound = *lookup.pSlot;
    if ((uFound & uPartMark) != 0)
        return enterPart(lookup, m_parts[uFound & ~uPartMark]);
    lookup.uInterval = uFound;
    __builtin_prefetch(&m_intervals[uFound]);
    return false;
}

// The number is in the last interval that does not start above it, or in none.
template <class TNumber>
long CIndex<TNumber>::result(const CLookup& lookup) const
{
    std::uint32_t u = lookup.uInterval;
    while (u < lookup.uEnd && m_intervals[u].first <= lookup.number)
        ++u;
    if (u == 0 || m_intervals[u - 1].last < lookup.number)
        return -1;
    return static_cast<long>(m_intervals[u - 1].uRange);
}

std::string textOf(const KestaIPAddress& address)
{
    const CKestaAddressInterval number = intervalOf(address);
    return addressText(number.bIPv6, number.first);
}

}   // namespace

struct KestaIPRangeSet::CIndexes
{
    CIndex<KestaIPv4Number> ipv4;
    CIndex<KestaIPv6Number> ipv6;
    std::size_t ulRanges = 0;
    bool bBuilt = false;
};

KestaIPRangeSet::KestaIPRangeSet() : m_pIndexes(std::make_unique<CIndexes>()) {}

KestaIPRangeSet::KestaIPRangeSet(KestaIPRangeSet&& other) noexcept = default;

KestaIPRangeSet& KestaIPRangeSet::operator=(KestaIPRangeSet&& other) noexcept = default;

KestaIPRangeSet::~KestaIPRangeSet() = default;

std::size_t KestaIPRangeSet::add(const KestaIPRange& range)
{
    constexpr CKestaAddressInterval none{false, 1, 0};
    return addInterval(range.getAddressFamily() != 0 ? intervalOf(range) : none);
}

std::size_t KestaIPRangeSet::add(const KestaIPAddress& first, const KestaIPAddress& last)
{
    return addInterval(
        spanOf(intervalOf(first), intervalOf(last), textOf(first) + " - " + textOf(last)));
}

std::size_t KestaIPRangeSet::addBlock(const KestaIPAddress& address, int iPrefixLength)
{
    return addInterval(blockOf(intervalOf(address), iPrefixLength,
                               textOf(address) + "/" + std::to_string(iPrefixLength)));
}

std::size_t KestaIPRangeSet::addEntry(std::string_view entry)
{
    return addInterval(parseEntry(entry));
}

std::size_t KestaIPRangeSet::addInterval(const CKestaAddressInterval& interval)
{
    if (size() == ulMostRanges)
        throw std::length_error("KestaIPRangeSet: too many ranges");   // unreachable below 12 GB
    const auto uRange = static_cast<std::uint32_t>(size());
    if (interval.bIPv6)
        m_pIndexes->ipv6.add(interval.first, interval.last, uRange);
    else
        m_pIndexes->ipv4.add(static_cast<KestaIPv4Number>(interval.first),
                             static_cast<KestaIPv4Number>(interval.last), uRange);
    m_pIndexes->bBuilt = false;
    return m_pIndexes->ulRanges++;
}

void KestaIPRangeSet::build()
{
    m_pIndexes->bBuilt = false;
    m_pIndexes->ipv4.build();
    m_pIndexes->ipv6.build();
    m_pIndexes->bBuilt = true;
}

long KestaIPRangeSet::indexOf(const KestaIPAddress& address) const
{
    return indexOf(reinterpret_cast<const sockaddr*>(&address.viewSockAddress()), false);
}

long KestaIPRangeSet::indexOf(const KestaIPAddress* address) const
{
    return address != nullptr ? indexOf(*address) : indexOf(nullptr);
}

long KestaIPRangeSet::indexOf(const sockaddr* address) const
{
    return address != nullptr ? indexOf(address, true) : indexOf(nullptr);
}

long KestaIPRangeSet::indexOf(std::nullptr_t) const
{
    static_cast<void>(built());
    return -1;
}

long KestaIPRangeSet::indexOf(const sockaddr* address, bool bMapped) const
{
    const CIndexes& indexes = built();
    switch (address->sa_family)
    {
    case AF_INET:
    {
        sockaddr_in ipv4;
        std::memcpy(&ipv4, address, sizeof ipv4);
        return indexOf(ipv4.sin_addr);
    }
    case AF_INET6:
    {
        sockaddr_in6 ipv6;
        std::memcpy(&ipv6, address, sizeof ipv6);
        if (bMapped && IN6_IS_ADDR_V4MAPPED(&ipv6.sin6_addr))
        {
            const auto number = KestaAddressNumber::of(ipv6.sin6_addr);
            return indexes.ipv4.indexOf(static_cast<KestaIPv4Number>(number));
        }
        return indexOf(ipv6.sin6_addr);
    }
    default:
        return -1;
    }
}

long KestaIPRangeSet::indexOf(const in_addr& address) const
{
    return built().ipv4.indexOf(KestaAddressNumber::of(address));
}

long KestaIPRangeSet::indexOf(const in6_addr& address) const
{
    return built().ipv6.indexOf(KestaAddressNumber::of(address));
}

void KestaIPRangeSet::indexesOf(const in_addr* addresses, std::size_t ulCount, long* indexes) const
{
    built().ipv4.indexesOf(addresses, ulCount, indexes);
}

void KestaIPRangeSet::indexesOf(const in6_addr* addresses, std::size_t ulCount, long* indexes) const
{
    built().ipv6.indexesOf(addresses, ulCount, indexes);
}

std::size_t KestaIPRangeSet::size() const
{
    return m_pIndexes->ulRanges;
}

const KestaIPRangeSet::CIndexes& KestaIPRangeSet::built() const
{
    if (!m_pIndexes->bBuilt)
        throw CKestaExc("KestaIPRangeSet: build() must be called before the set is asked");
    return *m_pIndexes;
}
