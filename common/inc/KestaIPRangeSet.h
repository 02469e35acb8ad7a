#ifndef KESTA_IP_RANGE_SET_H
#define KESTA_IP_RANGE_SET_H

#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"

#include <cstddef>
#include <memory>

#include <netinet/in.h>

/// Many ranges at once: finds the first that holds an address, in the time of a few comparisons.
///
///     KestaIPRangeSet rules;
///     rules.add(KestaIPRange("10.1.2.*"));    // rule 0
///     rules.add(KestaIPRange("10.1.*.*"));    // rule 1
///     rules.build();
///     KestaIPv4Address peer("10.1.2.3");
///     rules.indexOf(&peer);                   // 0: the first rule that matches
///
/// The answer is that of asking each range of the address's own family in turn. Ranges are stored
/// as numbers: they need not outlive `add`. A set can be moved, but not copied; one that was moved
/// from may only be assigned to or destroyed.
///
/// Thread contract: any number of threads may ask one set, as long as nobody adds, builds or
/// assigns. Asking neither allocates nor traces.
///
/// Throws: `CKestaExc` when the set is asked before it is built; `std::bad_alloc` from `add`, which
/// then leaves the set as it was, and from `build`, after which the set must be built again.
class KESTA_API KestaIPRangeSet
{
public:
    KestaIPRangeSet();
    /// Takes the ranges over; the other set may only be assigned to or destroyed then.
    KestaIPRangeSet(KestaIPRangeSet&& other) noexcept;
    /// Takes the ranges over; the other set may only be assigned to or destroyed then.
    KestaIPRangeSet& operator=(KestaIPRangeSet&& other) noexcept;
    ~KestaIPRangeSet();

    /// Adds a range and returns its index: 0 for the first, and so on. Afterwards the set must be
    /// built again. It holds up to 1073741823 ranges; one more throws `std::length_error`.
    std::size_t add(const KestaIPRange& range);

    /// Makes the set ready to be asked. This takes about as long as sorting the ranges: add them
    /// all, then build once.
    void build();

    /// True when any of the ranges holds the address. False for a null pointer.
    bool isMember(const KestaIPAddress* address) const;
    /// The same for an address in network byte order, as a socket has it.
    bool isMember(const in_addr& address) const;
    /// The same for IPv6.
    bool isMember(const in6_addr& address) const;

    /// The index of the first added range that holds the address; -1 when none does, and for a null
    /// pointer.
    long indexOf(const KestaIPAddress* address) const;
    /// The same for an address in network byte order, as a socket has it.
    long indexOf(const in_addr& address) const;
    /// The same for IPv6.
    long indexOf(const in6_addr& address) const;

    /// The number of ranges that were added.
    std::size_t size() const;

    /// True when no range was added.
    bool isEmpty() const { return size() == 0; }

private:
    struct KESTA_LOCAL CIndexes;

    KESTA_LOCAL const CIndexes& built() const;

    std::unique_ptr<CIndexes> m_pIndexes;
};

#endif
