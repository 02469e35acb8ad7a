#ifndef KESTA_ADDRESS_SET_H
#define KESTA_ADDRESS_SET_H

#include "KestaAddressText.h"
#include "KestaIPRange.h"

#include <algorithm>
#include <cstdint>
#include <vector>

/// The numbers that lie in any of several intervals, both ends included.
template <class TNumber>
class CKestaIntervals
{
public:
    /// Adds an interval; those that overlap it or stand right beside it become one with it.
    void add(TNumber first, TNumber last)
    {
        if (last < first)
            return;
        const auto itFirst =
            std::lower_bound(m_intervals.begin(), m_intervals.end(), first,
                             [](const CInterval& interval, TNumber wanted)
                             { return interval.last < wanted && wanted - interval.last > 1; });
        auto itAfter = itFirst;
        for (;
             itAfter != m_intervals.end() && (itAfter->first <= last || itAfter->first - last == 1);
             ++itAfter)
        {
            first = std::min(first, itAfter->first);
            last = std::max(last, itAfter->last);
        }
        m_intervals.insert(m_intervals.erase(itFirst, itAfter), {first, last});
    }

    bool contains(TNumber number) const
    {
        const auto itAfter = std::upper_bound(m_intervals.begin(), m_intervals.end(), number,
                                              [](TNumber wanted, const CInterval& interval)
                                              { return wanted < interval.first; });
        return itAfter != m_intervals.begin() && number <= itAfter[-1].last;
    }

private:
    struct CInterval
    {
        TNumber first;
        TNumber last;
    };

    std::vector<CInterval> m_intervals;   // ascending, apart from each other
};

/// The addresses that lie in any of several ranges of either family, kept as numbers: a test makes
/// no call into the library.
class CKestaAddressSet
{
public:
    /// Adds a range.
    void add(const KestaIPRange& range);

    /// True when an IPv4 address lies in a range.
    bool contains(std::uint32_t uAddress) const { return m_ipv4.contains(uAddress); }

    /// True when an IPv6 address lies in a range.
    bool contains(CKestaIPv6Number address) const { return m_ipv6.contains(address); }

    /// The same for an address of either family.
    bool contains(const CKestaAddressNumber& address) const;

private:
    CKestaIntervals<std::uint32_t> m_ipv4;
    CKestaIntervals<CKestaIPv6Number> m_ipv6;
};

#endif
