#ifndef KESTA_IP_RANGE_SET_H
#define KESTA_IP_RANGE_SET_H

#include "KestaExport.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"
#include "KestaTextDetail.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>

#include <netinet/in.h>
#include <sys/socket.h>

struct CKestaAddressInterval;

/// Many ranges at once: finds the first that contains an address, in the time of a few comparisons.
///
///     KestaIPRangeSet rules;
///     rules.add("10.1.2.3 - 10.1.2.99");   // rule 0
///     rules.add("10.0.0.0/8");             // rule 1
///     rules.build();
///     rules.indexOf(peer);                 // 0 if the sockaddr of the peer is that of 10.1.2.3
///
/// The answer is that of querying each range of the address's own family in turn. Ranges are stored
/// as numbers: they need not outlive `add`. A set can be moved, but not copied; one that was moved
/// from may only be assigned to or destroyed.
///
/// Thread contract: any number of threads may query one set, as long as nobody adds, builds or
/// assigns. Queries neither allocate nor trace.
///
/// Throws: `CKestaExc` when the set is queried before it is built, and from `add` and `addBlock`
/// for what they refuse; `std::length_error` for the range after the 1073741823rd; `std::bad_alloc`
/// from `add` and `addBlock`, which then leave the set as it was, and from `build`, after which the
/// set must be built again.
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
    /// built again.
    std::size_t add(const KestaIPRange& range);

    /// Adds the addresses from the first to the last, both included. They are not screened.
    /// Refused: addresses of different families, and a first one above the last.
    std::size_t add(const KestaIPAddress& first, const KestaIPAddress& last);

    /// Adds a block: the addresses that have the first `iPrefixLength` bits, at most 32 or 128, in
    /// common with an address, which must be the first of them. They are not screened.
    std::size_t addBlock(const KestaIPAddress& address, int iPrefixLength);

    /// Adds an entry of a list: any string that `KestaIPRange` takes, a block of either family, or
    /// a span, with or without blanks around its dash. White space at the ends is ignored, and
    /// refused elsewhere, so that no line of a list is taken for one address by accident. In blocks
    /// and spans, an IPv4 address is four decimal numbers without leading zeros. What
    /// `KestaIPRange` takes is screened, traced and refused as by its constructor; the rest is not
    /// screened.
    ///
    ///     rules.add("0.0.0.0/0");   rules.add("192.0.2.7-192.0.2.99"); rules.add("2001:db8::/32");
    template <class TText,
              std::enable_if_t<std::is_convertible_v<const TText&, std::string_view>, int> = 0>
    std::size_t add(const TText& entry)
    {
        return addEntry(KestaTextDetail::viewOf(entry));
    }

    /// Makes the set ready for queries. This takes about as long as sorting the ranges: add them
    /// all, then build once.
    void build();

    /// True when any of the ranges contains the address, which is one of those that `indexOf`
    /// takes.
    template <class TAddress>
    bool isMember(const TAddress& address) const
    {
        return indexOf(address) >= 0;
    }

    /// The index of the first added range that contains the address; -1 when none does.
    long indexOf(const KestaIPAddress& address) const;
    /// The same; -1 for a null pointer, too.
    long indexOf(const KestaIPAddress* address) const;
    /// The same for an address in network byte order, as a socket has it.
    long indexOf(const in_addr& address) const;
    /// The same for IPv6.
    long indexOf(const in6_addr& address) const;
    /// The same for the address of a peer, as `accept` returns it. An IPv4-mapped one is that of an
    /// IPv4 peer of a socket for both families, and counts as IPv4. -1 for other families and for a
    /// null pointer.
    long indexOf(const sockaddr* address) const;
    /// -1: a null pointer.
    long indexOf(std::nullptr_t) const;

    /// The indexes of many addresses, as by `indexOf` one by one, but faster in a large set,
    /// because several lookups wait for memory at the same time. Addresses and indexes are the
    /// caller's arrays of `ulCount` elements.
    void indexesOf(const in_addr* addresses, std::size_t ulCount, long* indexes) const;
    /// The same for IPv6.
    void indexesOf(const in6_addr* addresses, std::size_t ulCount, long* indexes) const;

    /// The number of ranges that were added.
    std::size_t size() const;

    /// True when no range was added.
    bool isEmpty() const { return size() == 0; }

private:
    struct KESTA_LOCAL CIndexes;

    std::size_t addEntry(std::string_view entry);
    KESTA_LOCAL std::size_t addInterval(const CKestaAddressInterval& interval);
    KESTA_LOCAL long indexOf(const sockaddr* address, bool bMapped) const;
    KESTA_LOCAL const CIndexes& built() const;

    std::unique_ptr<CIndexes> m_pIndexes;
};

#endif
