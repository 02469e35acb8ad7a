#include "bench.h"

#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <endian.h>

#ifdef BENCH_WITH_ASIO
#include <boost/asio/ip/network_v4.hpp>
#include <boost/asio/ip/network_v6.hpp>
#endif
#ifdef BENCH_WITH_LIBCIDR
extern "C"   // which its header forgets
{
#include <libcidr.h>
}
#endif
#ifdef BENCH_WITH_LIBTINS
#include <tins/address_range.h>
#include <tins/ip_address.h>
#include <tins/ipv6_address.h>
#endif
#ifdef BENCH_WITH_POCO
#include <Poco/Net/IPAddress.h>
#include <Poco/Net/NetException.h>
#endif

namespace
{

// The questions, the same for everybody. Most addresses are one step inside or outside an end, so
// that no test can decide early.

struct RangeText
{
    const char* ours;
    const char* prefix;   // the same for peers that read only prefixes
};

/// A range that is made from a text, and which of the family's addresses it holds.
struct Making
{
    RangeText range;
    std::vector<bool> holds;
};

struct Family
{
    const char* name;
    RangeText range;
    std::vector<const char*> addresses;   // the first half inside
    std::vector<RangeText> ranges;        // the first half inside, or around
    std::vector<Making> makings;
    RangeText refused;
};

const Family ipv4 = {
    "IPv4",
    {"10.1.*.*", "10.1.0.0/16"},
    {"10.1.0.0", "10.1.255.255", "10.1.2.3", "10.1.128.0", "10.0.255.255", "10.2.0.0",
     "192.168.1.1", "10.129.2.3"},
    {{"10.1.2.*", "10.1.2.0/24"},
     {"10.*.*.*", "10.0.0.0/8"},
     {"10.2.*.*", "10.2.0.0/16"},
     {"10.0.1.*", "10.0.1.0/24"}},
    {{{"10.1.*.*", "10.1.0.0/16"}, {true, true, true, true, false, false, false, false}},
     {{"10.1.2.3", "10.1.2.3/32"}, {false, false, true, false, false, false, false, false}}},
    {"10.1.2.300", "10.1.2.300/32"}};

const Family ipv6 = {
    "IPv6",
    {"2001:db8::/32", "2001:db8::/32"},
    {"2001:db8::", "2001:db8:ffff:ffff:ffff:ffff:ffff:ffff", "2001:db8::1", "2001:db8:8000::",
     "2001:db7:ffff:ffff:ffff:ffff:ffff:ffff", "2001:db9::", "fe80::1", "2001:db8f::1"},
    {{"2001:db8:1::/48", "2001:db8:1::/48"},
     {"2001::/16", "2001::/16"},
     {"2001:db9::/32", "2001:db9::/32"},
     {"2001:db7:1::/48", "2001:db7:1::/48"}},
    {{{"2001:db8::/32", "2001:db8::/32"}, {true, true, true, true, false, false, false, false}},
     {{"2001:db8:*", "2001:db8::/32"}, {true, true, true, true, false, false, false, false}},
     {{"2001:db8::1", "2001:db8::1/128"}, {false, false, true, false, false, false, false, false}}},
    {"2001:db8::g", "2001:db8::g/128"}};

std::vector<bool> firstHalf(std::size_t count)
{
    std::vector<bool> answers(count, false);
    std::fill_n(answers.begin(), count / 2, true);
    return answers;
}

// The contenders. Each has its types of an address and a range, makes them from a text, and tests
// whether a range holds an address and whether one of two ranges holds the other.

template <class KestaAddress>
struct Kesta
{
    static constexpr char name[] = "kesta";
    typedef KestaAddress Address;
    typedef KestaIPRange Range;
    typedef CKestaExc Refusal;

    static const char* text(const RangeText& range) { return range.ours; }
    static Address address(const char* text) { return Address(text); }
    static Range range(const char* text) { return Range(text); }
    static bool holds(const Range& range, const Address& address)
    {
        return range.isMember(&address);
    }
    static bool holds(const Range& range, const Range& other) { return range.isMember(other); }
};

struct Prefixed
{
    static const char* text(const RangeText& range) { return range.prefix; }
    static std::string addressPart(const char* text)
    {
        return std::string(text, std::strchr(text, '/'));
    }
    static int length(const char* text) { return std::atoi(std::strchr(text, '/') + 1); }
};

typedef std::array<unsigned char, 4> Bytes4;
typedef std::array<unsigned char, 16> Bytes16;

// The bytes of an address as a number, the first byte most significant.
std::uint32_t number(const Bytes4& bytes)
{
    std::uint32_t word;
    std::memcpy(&word, bytes.data(), sizeof word);
    return be32toh(word);
}

std::pair<std::uint64_t, std::uint64_t> number(const Bytes16& bytes)
{
    std::uint64_t words[2];
    std::memcpy(words, bytes.data(), sizeof words);
    return {be64toh(words[0]), be64toh(words[1])};
}

template <int family, class Bytes>
struct Floor : Prefixed
{
    static constexpr char name[] = "floor";
    typedef Bytes Address;
    struct Range
    {
        Address first;
        Address last;
    };

    static Address address(const char* text)
    {
        Address result;
        inet_pton(family, text, result.data());
        return result;
    }
    static Range range(const char* text)
    {
        char part[INET6_ADDRSTRLEN] = {};
        const char* slash = std::strchr(text, '/');
        std::memcpy(part, text, static_cast<std::size_t>(slash - text));
        const Address first = address(part);
        Address last = first;
        const int prefix = std::atoi(slash + 1);
        std::fill(last.begin() + prefix / 8, last.end(), static_cast<unsigned char>(0xFF));
        return {first, last};
    }
    static bool holds(const Range& range, const Address& address)
    {
        return number(range.first) <= number(address) && number(range.last) >= number(address);
    }
    static bool contains(const Range& range, const Range& other)
    {
        return number(range.first) <= number(other.first) &&
               number(range.last) >= number(other.last);
    }
    static bool holds(const Range& range, const Range& other)
    {
        return contains(range, other) || contains(other, range);
    }
};

#ifdef BENCH_WITH_ASIO
template <class Network>
bool asioHolds(const Network& network, const Network& other)
{
    return network == other || other.is_subnet_of(network) || network.is_subnet_of(other);
}

// Asio's networks have no test for addresses: their users write one.
struct AsioV4 : Prefixed
{
    static constexpr char name[] = "Asio";
    typedef boost::asio::ip::address_v4 Address;
    typedef boost::asio::ip::network_v4 Range;
    typedef boost::system::system_error Refusal;

    static Address address(const char* text) { return boost::asio::ip::make_address_v4(text); }
    static Range range(const char* text) { return boost::asio::ip::make_network_v4(text); }
    static bool holds(const Range& range, const Address& address)
    {
        return (address.to_uint() & range.netmask().to_uint()) == range.network().to_uint();
    }
    static bool holds(const Range& range, const Range& other) { return asioHolds(range, other); }
};

struct AsioV6 : Prefixed
{
    static constexpr char name[] = "Asio";
    typedef boost::asio::ip::address_v6 Address;
    typedef boost::asio::ip::network_v6 Range;
    typedef boost::system::system_error Refusal;

    static Address address(const char* text) { return boost::asio::ip::make_address_v6(text); }
    static Range range(const char* text) { return boost::asio::ip::make_network_v6(text); }
    static bool holds(const Range& range, const Address& address)
    {
        const auto hosts = range.hosts();
        return hosts.find(address) != hosts.end();
    }
    static bool holds(const Range& range, const Range& other) { return asioHolds(range, other); }
};

// A single address read twice, once for each end of a range.
template <class Asio>
struct AsioTwice : Asio
{
    static constexpr char name[] = "Asio twice";
    typedef typename Asio::Address Address;
    struct Range
    {
        Address first;
        Address last;
    };

    static const char* text(const RangeText& range) { return range.ours; }
    static Range range(const char* text) { return {Asio::address(text), Asio::address(text)}; }
    static bool holds(const Range& range, const Address& address)
    {
        return range.first <= address && address <= range.last;
    }
};

// An error code in place of an exception.
struct AsioCodeV4 : AsioV4
{
    static constexpr char name[] = "Asio's error code";
    static bool refuses(const char* text)
    {
        boost::system::error_code error;
        benchmark::DoNotOptimize(boost::asio::ip::make_network_v4(text, error));
        return error.failed();
    }
};

struct AsioCodeV6 : AsioV6
{
    static constexpr char name[] = "Asio's error code";
    static bool refuses(const char* text)
    {
        boost::system::error_code error;
        benchmark::DoNotOptimize(boost::asio::ip::make_network_v6(text, error));
        return error.failed();
    }
};

// To test many addresses, its users make an address range once and look the addresses up in it. An
// IPv4 network's hosts() would leave out both ends.
struct AsioAddressesV4 : AsioV4
{
    typedef boost::asio::ip::address_v4_range Range;

    static Range range(const char* text)
    {
        const auto network = AsioV4::range(text);
        return Range(network.network(), Address(network.broadcast().to_uint() + 1));
    }
    static bool holds(const Range& range, const Address& address)
    {
        return range.find(address) != range.end();
    }
};

struct AsioAddressesV6 : AsioV6
{
    typedef boost::asio::ip::address_v6_range Range;

    static Range range(const char* text) { return AsioV6::range(text).hosts(); }
    static bool holds(const Range& range, const Address& address)
    {
        return range.find(address) != range.end();
    }
};
#endif

#ifdef BENCH_WITH_LIBCIDR
struct Libcidr : Prefixed
{
    struct Free
    {
        void operator()(CIDR* cidr) const { cidr_free(cidr); }
    };

    static constexpr char name[] = "libcidr";
    typedef std::shared_ptr<CIDR> Address;
    typedef std::unique_ptr<CIDR, Free> Range;

    static Address address(const char* text) { return Address(cidr_from_str(text), Free()); }
    static Range range(const char* text) { return Range(cidr_from_str(text)); }
    static bool holds(const Range& range, const Address& address)
    {
        return cidr_contains(range.get(), address.get()) == 0;
    }
    static bool holds(const Range& range, const Range& other)
    {
        return cidr_contains(range.get(), other.get()) == 0 ||
               cidr_contains(other.get(), range.get()) == 0;
    }
};
#endif

#ifdef BENCH_WITH_LIBTINS
template <class TinsAddress>
struct Libtins : Prefixed
{
    static constexpr char name[] = "libtins";
    typedef TinsAddress Address;
    typedef Tins::AddressRange<TinsAddress> Range;

    static Address address(const char* text) { return Address(text); }
    static Range range(const char* text) { return Address(addressPart(text)) / length(text); }
    static bool holds(const Range& range, const Address& address)
    {
        return range.contains(address);
    }
};
#endif

#ifdef BENCH_WITH_POCO
template <Poco::Net::IPAddress::Family family>
struct Poco_ : Prefixed
{
    static constexpr char name[] = "POCO";
    typedef Poco::Net::IPAddress Address;
    struct Range
    {
        Address network;
        Address mask;
    };

    static Address address(const char* text) { return Address(std::string(text), family); }
    static Range range(const char* text)
    {
        const Address mask(static_cast<unsigned>(length(text)), family);
        return {Address(addressPart(text), family) & mask, mask};
    }
    static bool holds(const Range& range, const Address& address)
    {
        return (address & range.mask) == range.network;
    }
    static bool holds(const Range& range, const Range& other)
    {
        return holds(range, other.network) || holds(other, range.network);
    }
};

// Given the family, it reads a wrong text as 0.0.0.0; without it, it refuses the text.
struct PocoRefusing : Prefixed
{
    static constexpr char name[] = "POCO";
    typedef Poco::Net::InvalidAddressException Refusal;

    static Poco::Net::IPAddress range(const char* text)
    {
        return Poco::Net::IPAddress(addressPart(text));
    }
};
#endif

/// The measurements of a family.
class FamilyWork
{
public:
    explicit FamilyWork(const Family& family)
        : m_family(family), m_address(std::string("isMember(address), ") + family.name,
                                      firstHalf(family.addresses.size())),
          m_range(std::string("isMember(range), ") + family.name, firstHalf(family.ranges.size())),
          m_reading(std::string("address from a text, ") + family.name,
                    firstHalf(family.addresses.size())),
          m_refusing(std::string("a refused text, ") + family.name, {true})
    {
        for (const Making& making : family.makings)
            m_makings.emplace_back(std::string("range from ") + making.range.ours,
                                   std::vector<std::vector<bool>>{making.holds});
    }

    template <class Who>
    void askForAddresses() const
    {
        m_address.by(Who::name, addresses<Who>(),
                     [range = shared<Who>(m_family.range)](const auto& address)
                     { return Who::holds(*range, address); });
    }

    template <class Who>
    void askForRanges() const
    {
        std::vector<std::shared_ptr<typename Who::Range>> ranges;
        for (const RangeText& text : m_family.ranges)
            ranges.push_back(shared<Who>(text));
        m_range.by(Who::name, ranges,
                   [range = shared<Who>(m_family.range)](const auto& other)
                   { return Who::holds(*range, *other); });
    }

    // An address is judged by whether the range holds it ...
    template <class Who>
    void read() const
    {
        m_reading.by(
            Who::name, m_family.addresses, [](const char* text) { return Who::address(text); },
            [range = shared<Who>(m_family.range)](const typename Who::Address& address)
            { return Who::holds(*range, address); });
    }

    // ... and a range by what it says of the addresses.
    template <class Who>
    void make() const
    {
        for (std::size_t i = 0; i < m_makings.size(); ++i)
            make<Who>(m_makings[i], m_family.makings[i].range);
    }

    // For contenders that make only single addresses.
    template <class Who>
    void makeSingle() const
    {
        make<Who>(m_makings.back(), m_family.makings.back().range);
    }

    // From the text to the handler of the error.
    template <class Who>
    void refuse() const
    {
        m_refusing.by(Who::name, std::vector<const char*>{Who::text(m_family.refused)},
                      [](const char* text)
                      {
                          try
                          {
                              const auto range = Who::range(text);
                              benchmark::DoNotOptimize(&range);
                              return false;
                          }
                          catch (const typename Who::Refusal&)
                          {
                              return true;
                          }
                      });
    }

    template <class Who>
    void refuseWithoutThrowing() const
    {
        m_refusing.by(Who::name, std::vector<const char*>{Who::text(m_family.refused)},
                      [](const char* text) { return Who::refuses(text); });
    }

    template <class Who>
    void all() const
    {
        askForAddresses<Who>();
        askForRanges<Who>();
        read<Who>();
        make<Who>();
    }

private:
    template <class Who>
    void make(const Work<std::vector<bool>>& work, const RangeText& range) const
    {
        work.by(
            Who::name, std::vector<const char*>{Who::text(range)},
            [](const char* text) { return Who::range(text); },
            [this](const typename Who::Range& made)
            {
                std::vector<bool> answers;
                for (const auto& address : addresses<Who>())
                    answers.push_back(Who::holds(made, address));
                return answers;
            });
    }

    template <class Who>
    std::vector<typename Who::Address> addresses() const
    {
        std::vector<typename Who::Address> result;
        for (const char* text : m_family.addresses)
            result.push_back(Who::address(text));
        return result;
    }

    template <class Who>
    static std::shared_ptr<typename Who::Range> shared(const RangeText& text)
    {
        typedef typename Who::Range Range;
        return std::shared_ptr<Range>(new Range(Who::range(Who::text(text))));
    }

    const Family& m_family;
    Work<bool> m_address;
    Work<bool> m_range;
    Work<bool> m_reading;
    Work<bool> m_refusing;
    std::vector<Work<std::vector<bool>>> m_makings;
};

}   // namespace

void addAddressWork()
{
    const FamilyWork v4(ipv4);
    const FamilyWork v6(ipv6);
    v4.all<Kesta<KestaIPv4Address>>();
    v6.all<Kesta<KestaIPv6Address>>();
    v4.refuse<Kesta<KestaIPv4Address>>();
    v6.refuse<Kesta<KestaIPv6Address>>();
    v4.all<Floor<AF_INET, Bytes4>>();
    v6.all<Floor<AF_INET6, Bytes16>>();
#ifdef BENCH_WITH_ASIO
    v4.askForAddresses<AsioAddressesV4>();
    v6.askForAddresses<AsioAddressesV6>();
    v4.askForRanges<AsioV4>();
    v6.askForRanges<AsioV6>();
    v4.make<AsioV4>();
    v6.make<AsioV6>();
    v4.makeSingle<AsioTwice<AsioV4>>();
    v6.makeSingle<AsioTwice<AsioV6>>();
    v4.read<AsioV4>();
    v6.read<AsioV6>();
    v4.refuse<AsioV4>();
    v6.refuse<AsioV6>();
    v4.refuseWithoutThrowing<AsioCodeV4>();
    v6.refuseWithoutThrowing<AsioCodeV6>();
#endif
#ifdef BENCH_WITH_LIBCIDR
    v4.all<Libcidr>();
    v6.all<Libcidr>();
#endif
#ifdef BENCH_WITH_LIBTINS
    // It has no test for ranges.
    v4.askForAddresses<Libtins<Tins::IPv4Address>>();
    v6.askForAddresses<Libtins<Tins::IPv6Address>>();
    v4.read<Libtins<Tins::IPv4Address>>();
    v4.make<Libtins<Tins::IPv4Address>>();
    v6.read<Libtins<Tins::IPv6Address>>();
    v6.make<Libtins<Tins::IPv6Address>>();
#endif
#ifdef BENCH_WITH_POCO
    v4.all<Poco_<Poco::Net::IPAddress::IPv4>>();
    v6.all<Poco_<Poco::Net::IPAddress::IPv6>>();
    v4.refuse<PocoRefusing>();
    v6.refuse<PocoRefusing>();
#endif
}
