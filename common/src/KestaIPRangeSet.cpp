#include "KestaIPRangeSet.h"

#include "KestaAddressNumber.h"
#include "KestaException.h"
#include "KestaString.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include <sys/socket.h>

namespace
{

constexpr std::uint32_t uNoRange = std::numeric_limits<std::uint32_t>::max();

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
/// interval belongs to the first added of the ranges that hold it, or to none.
template <class TNumber>
class CIndex
{
public:
    void add(TNumber first, TNumber last, std::uint32_t uRange);
    void build();
    long indexOf(TNumber number) const;

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

    // From its start to the start of the next. Packed, so that a lookup reads one place in memory.
    struct [[gnu::packed]] CInterval
    {
        TNumber start;
        std::uint32_t uRange;
    };

    void reopen();
    void cut();
    std::uint32_t makePart(std::uint32_t uFirst, std::uint32_t uEnd);
    std::uint32_t countUpTo(TNumber number) const;

    std::vector<CAdded> m_added;          // since the index was built
    std::vector<CInterval> m_intervals;   // ascending; before the first, no range holds
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
    for (std::size_t u = 0; u < m_intervals.size(); ++u)
    {
        const bool bLast = u + 1 == m_intervals.size();
        if (m_intervals[u].uRange != uNoRange)
            add(m_intervals[u].start, bLast ? highest<TNumber> : m_intervals[u + 1].start - 1,
                m_intervals[u].uRange);   // does not allocate: there is room
    }
    m_intervals.clear();
    m_parts.clear();
    m_slots.clear();
}

// Walks through the numbers in ascending order. Of the ranges that hold the current number, the
// first added is on top of the heap; one that has ended stays in it until it gets to the top.
template <class TNumber>
void CIndex<TNumber>::cut()
{
    std::sort(m_added.begin(), m_added.end(),
              [](const CAdded& left, const CAdded& right) { return left.first < right.first; });
    std::vector<const CAdded*> holding;
    const auto isAddedLater = [](const CAdded* pLeft, const CAdded* pRight)
    {
        return pLeft->uRange > pRight->uRange;
    };

    std::vector<CInterval> intervals;
    intervals.reserve(2 * m_added.size());   // one begins with each range, one after it
    const auto begin = [&](TNumber start, std::uint32_t uRange)
    {
        if (!intervals.empty() && intervals.back().start == start)
            intervals.back().uRange = uRange;
        else if (intervals.empty() || intervals.back().uRange != uRange)
            intervals.push_back({start, uRange});
    };
    const auto endBefore = [&](TNumber limit)
    {
        while (!holding.empty() && holding.front()->last < limit)
        {
            const TNumber next = holding.front()->last + 1;
            while (!holding.empty() && holding.front()->last < next)
            {
                std::pop_heap(holding.begin(), holding.end(), isAddedLater);
                holding.pop_back();
            }
            begin(next, holding.empty() ? uNoRange : holding.front()->uRange);
        }
    };
    for (const CAdded& range : m_added)
    {
        endBefore(range.first);
        holding.push_back(&range);
        std::push_heap(holding.begin(), holding.end(), isAddedLater);
        begin(range.first, holding.front()->uRange);
    }
    endBefore(highest<TNumber>);

    m_intervals.swap(intervals);
    std::vector<CAdded>().swap(m_added);   // before the copy that the next line may make
    m_intervals.shrink_to_fit();
}

// Gives each slot a few intervals on average; a slot with many, where ranges lie close together,
// gets a part of its own. So an interval is found in few steps, wherever the ranges are.
template <class TNumber>
std::uint32_t CIndex<TNumber>::makePart(std::uint32_t uFirst, std::uint32_t uEnd)
{
    constexpr std::uint32_t uPerSlot = 4;
    constexpr std::uint32_t uMost = 32;

    const TNumber base = m_intervals[uFirst].start;
    const TNumber span = m_intervals[uEnd - 1].start - base;
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
        while (uFirst < uEnd && (m_intervals[uFirst].start - base) >> iShift == uSlot)
            ++uFirst;
        m_slots[uFirstSlot + uSlot] =
            uFirst - uSlotFirst > uMost ? makePart(uSlotFirst, uFirst) | uPartMark : uSlotFirst;
    }
    return uPart;
}

template <class TNumber>
long CIndex<TNumber>::indexOf(TNumber number) const
{
    const std::uint32_t uCount = m_intervals.empty() ? 0 : countUpTo(number);
    const std::uint32_t uRange = uCount == 0 ? uNoRange : m_intervals[uCount - 1].uRange;
    return uRange == uNoRange ? -1 : static_cast<long>(uRange);
}

// The number of intervals that do not start above a number.
template <class TNumber>
std::uint32_t CIndex<TNumber>::countUpTo(TNumber number) const
{
    const CPart* pPart = m_parts.data();
    while (true)
    {
        if (number < pPart->base)
            return pPart->uFirst;
        const TNumber slot = (number - pPart->base) >> pPart->iShift;
        if (slot >= pPart->uSlots)
            return pPart->uEnd;
        std::uint32_t uInterval = m_slots[pPart->uFirstSlot + static_cast<std::uint32_t>(slot)];
        if ((uInterval & uPartMark) == 0)
        {
            while (uInterval < pPart->uEnd && m_intervals[uInterval].start <= number)
                ++uInterval;
            return uInterval;
        }
        pPart = &m_parts[uInterval & ~uPartMark];
    }
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
    if (size() == ulMostRanges)
        throw std::length_error("KestaIPRangeSet: too many ranges");   // unreachable below 12 GB
    const auto uRange = static_cast<std::uint32_t>(size());
    const int iFamily = range.getAddressFamily();
    if (iFamily != 0)
    {
        const sockaddr_storage& first = range.getStartAddress()->viewSockAddress();
        const sockaddr_storage& last = range.getEndAddress()->viewSockAddress();
        if (iFamily == KestaIPRange::KESTA_IPV4_FAMILY)
            m_pIndexes->ipv4.add(KestaAddressNumber::in<KestaIPv4Number>(first),
                                 KestaAddressNumber::in<KestaIPv4Number>(last), uRange);
        else
            m_pIndexes->ipv6.add(KestaAddressNumber::in<KestaIPv6Number>(first),
                                 KestaAddressNumber::in<KestaIPv6Number>(last), uRange);
    }
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

bool KestaIPRangeSet::isMember(const KestaIPAddress* address) const
{
    return indexOf(address) >= 0;
}

bool KestaIPRangeSet::isMember(const in_addr& address) const
{
    return indexOf(address) >= 0;
}

bool KestaIPRangeSet::isMember(const in6_addr& address) const
{
    return indexOf(address) >= 0;
}

long KestaIPRangeSet::indexOf(const KestaIPAddress* address) const
{
    const CIndexes& indexes = built();
    if (address == nullptr)
        return -1;
    const sockaddr_storage& asked = address->viewSockAddress();
    switch (asked.ss_family)
    {
    case AF_INET:
        return indexes.ipv4.indexOf(KestaAddressNumber::in<KestaIPv4Number>(asked));
    case AF_INET6:
        return indexes.ipv6.indexOf(KestaAddressNumber::in<KestaIPv6Number>(asked));
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
