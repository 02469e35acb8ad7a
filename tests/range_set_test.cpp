#include "support.h"

#include "KestaIPRangeSet.h"

#include <cstdio>
#include <random>
#include <thread>

/// The first range that holds an address, found by asking one after the other.
static long firstOf(const std::vector<KestaIPRange>& ranges, const KestaIPAddress& address)
{
    const int family = address.viewSockAddress().ss_family == AF_INET6 ? 6 : 4;
    for (std::size_t i = 0; i < ranges.size(); ++i)
        if (ranges[i].getAddressFamily() == family && ranges[i].isMember(&address))
            return static_cast<long>(i);
    return -1;
}

// Ranges that touch, overlap and hold each other, close together and far apart.
static const std::vector<const char*> rangeForms{"10.1.%u.*", "10.%u.*.*", "10.1.%u.%u",
    "%u.%u.*.*", "255.255.255.%u", "2001:db8:%x*", "2001:db8::%x:%x", "2001:%x::/32", "%x%x*"};
static const std::vector<const char*> addressForms{"10.1.%u.%u", "10.%u.0.%u", "%u.%u.255.255",
    "255.255.255.%u", "2001:db8::%x:%x", "2001:db8:%x00::%x", "2001:%x:%x::", "%x:%x::"};

static std::string textOf(const std::vector<const char*>& forms, std::mt19937& random)
{
    char text[64];
    std::snprintf(text, sizeof text, forms[random() % forms.size()], 1 + unsigned(random() % 201),
        unsigned(random() % 202));
    return text;
}

TEST(RangeSet, AnswersAsItsRangesDo)
{
    setExclusions(false, false, false);
    std::mt19937 random(1);
    for (const std::size_t count : {0U, 1U, 2U, 10U, 100U, 3000U})
    {
        KestaIPRangeSet set;
        std::vector<KestaIPRange> ranges;
        while (ranges.size() < count)
        {
            ranges.emplace_back(textOf(rangeForms, random));
            const KestaIPRange& range = ranges.back();
            const std::size_t index =
                random() % 2 == 0 ? set.add(range)
                                  : set.add(*range.getStartAddress(), *range.getEndAddress());
            EXPECT_EQ(index, ranges.size() - 1);
            if (random() % count == 0)
                set.build();   // more are added later
        }
        set.build();
        EXPECT_EQ(set.size(), count);
        std::vector<in_addr> asked;
        std::vector<in6_addr> asked6;
        std::vector<long> wanted, wanted6;
        for (int i = 0; i < 500; ++i)
        {
            const auto first = static_cast<std::size_t>(i);   // starts of ranges are asked first
            const std::string text = first < std::min<std::size_t>(count, 100)
                                         ? ranges[first].getStartAddress()->getStrAddress()
                                         : textOf(addressForms, random);
            sockaddr_storage socket = socketOf(text);
            const bool is6 = socket.ss_family == AF_INET6;
            KestaIPv4Address address("1.1.1.1");   // its class does not matter
            address.setSockAddress(socket);
            const long want = firstOf(ranges, address);
            const auto& in = reinterpret_cast<const sockaddr_in&>(socket).sin_addr;
            const auto& in6 = reinterpret_cast<const sockaddr_in6&>(socket).sin6_addr;
            EXPECT_EQ(std::pair(set.indexOf(&address), is6 ? set.indexOf(in6) : set.indexOf(in)),
                std::pair(want, want))
                << text << " of " << count;
            EXPECT_EQ(std::pair(set.isMember(&address), is6 ? set.isMember(in6) : set.isMember(in)),
                std::pair(want >= 0, want >= 0))
                << text << " of " << count;
            (is6 ? wanted6 : wanted).push_back(want);
            is6 ? asked6.push_back(in6) : asked.push_back(in);
        }
        std::vector<long> got(asked.size(), -2), got6(asked6.size(), -2);
        set.indexesOf(asked.data(), asked.size(), got.data());
        set.indexesOf(asked6.data(), asked6.size(), got6.data());
        EXPECT_EQ(std::pair(got, got6), std::pair(wanted, wanted6)) << count;
    }
}

/// The ends that a set with one entry has, found by its answers below, at and above them; or the
/// error.
static std::string endsOf(const std::string& entry, const char* first, const char* last)
{
    KestaIPRangeSet set;
    const std::string error = errorOf([&] { set.add(entry); });
    if (!error.empty())
        return error;
    set.build();
    const auto at = [&](const char* text, int step)
    {
        sockaddr_storage socket = socketOf(text);
        if (socket.ss_family == AF_INET)
        {
            auto& address = reinterpret_cast<sockaddr_in&>(socket).sin_addr;
            address.s_addr = htonl(ntohl(address.s_addr) + static_cast<std::uint32_t>(step));
            return set.isMember(address);
        }
        auto& address = reinterpret_cast<sockaddr_in6&>(socket).sin6_addr;
        auto number = KestaAddressNumber::of(address);
        number = step < 0 ? number - 1 : number + static_cast<unsigned>(step);
        return set.isMember(KestaAddressNumber::toIPv6(number));
    };
    std::string found;
    for (const bool in : {at(first, -1), at(first, 0), at(last, 0), at(last, 1)})
        found += in ? '1' : '0';
    return found;
}

TEST(RangeSet, EntriesOfLists)
{
    setExclusions(false, false, false);
    const struct
    {
        std::string entry;
        const char *first, *last;
    } taken[] = {{"10.0.0.0/8", "10.0.0.0", "10.255.255.255"},
        {" 172.16.0.0/12\r\n", "172.16.0.0", "172.31.255.255"},
        {"192.0.2.7/32", "192.0.2.7", "192.0.2.7"}, {"128.0.0.0/1", "128.0.0.0", "255.255.255.254"},
        {"192.0.2.7-192.0.2.99", "192.0.2.7", "192.0.2.99"},
        {"192.0.2.7 - 192.0.2.7", "192.0.2.7", "192.0.2.7"},
        {"2001:db8::1\t-2001:db8::1:0", "2001:db8::1", "2001:db8::1:0"},
        {"::ffff:10.0.0.0/104", "::ffff:10.0.0.0", "::ffff:10.255.255.255"},
        {"2001:db8::/32", "2001:db8::", "2001:db8:ffff:ffff:ffff:ffff:ffff:ffff"},
        {"10.1.*.*", "10.1.0.0", "10.1.255.255"}, {"\n10.1.2.3", "10.1.2.3", "10.1.2.3"},
        {"::ffff:10.1.2.3", "10.1.2.3", "10.1.2.3"}, {"fe80::1%br-lan", "fe80::1", "fe80::1"},
        {"2001:db8:1*", "2001:db8:1000::", "2001:db8:1fff:ffff:ffff:ffff:ffff:ffff"}};
    for (const auto& row : taken)
    {
        const std::string want = row.first == std::string("128.0.0.0") ? "0111" : "0110";
        EXPECT_EQ(endsOf(row.entry, row.first, row.last), want) << row.entry;
    }
    const std::string space = ": an entry must not contain white space or NUL bytes",
                      dash = ": an address is expected on either side of the dash",
                      slash = ": the length after the slash must be a number",
                      start = ": not the first address of its block, ",
                      parse4 = "Passed string is not a valid IPv4 address ",
                      excluded = "This address as not allowed as per current IP filter settings!!!";
    const std::pair<std::string, std::string> refused[] = {{"10.0.0.0 /8", "10.0.0.0 /8" + space},
        {"10.1.2.3 x", "10.1.2.3 x" + space}, {{"10.1.2.3\0x", 10}, "10.1.2.3" + space},
        {"10.1.0.0 - 10.1.255.255 x", "10.1.0.0 - 10.1.255.255 x" + dash},
        {"10.1.2.3-", "10.1.2.3-" + dash}, {"10.1.2.3-10.1.2.*", "10.1.2.3-10.1.2.*" + dash},
        {"010.1.2.3-10.1.2.4", "010.1.2.3-10.1.2.4" + dash},
        {"10.1.2.4-10.1.2.3", "10.1.2.4-10.1.2.3: the first address is above the last"},
        {"10.1.2.3-::1", "10.1.2.3-::1: the addresses are of different families"},
        {"10.1.2.3/8", "10.1.2.3/8" + start + "10.0.0.0/8"},
        {"::ffff:10.1.2.3/104", "::ffff:10.1.2.3/104" + start + "::ffff:10.0.0.0/104"},
        {"10.0.0.0/33", "10.0.0.0/33: the length must be between 0 and 32"},
        {"10.0.0.0/", "10.0.0.0/" + slash}, {"10.0.0.0/-1", "10.0.0.0/-1" + dash},
        {"10.0.0.0/8x", "10.0.0.0/8x" + slash}, {"2001:db8::/32x", "2001:db8::/32x" + slash},
        {"10.0.0.0/4294967304", "10.0.0.0/4294967304" + slash},
        {"010.0.0.0/8", parse4 + "010.0.0.0/8"}, {"0.0.0.0", excluded + "0.0.0.0"},
        {"2001:db8::/129", "Not a Valid prefix for IPv6 Address 2001:db8::/129"},
        {"2001:db8::1/32", "Not a valid IPv6 address 2001:db8::1/32"},
        {" ", "IPAddres is an empty string "},
        {std::string(99, '-'), std::string(64, '-') + "..." + dash}};
    for (const auto& [entry, want] : refused)
        EXPECT_EQ(endsOf(entry, "", ""), "! " + want) << entry;

    KestaIPRangeSet all;
    const KestaIPv4Address low("10.0.0.0"), high("10.0.0.9");
    const KestaIPv6Address other("::");
    EXPECT_EQ(all.addBlock(low, 8), 0u);
    EXPECT_EQ(all.addBlock(other, 0), 1u);
    EXPECT_EQ(all.add(CKestaString("0.0.0.0/0")), 2u);
    EXPECT_EQ(all.add(KestaIPRange("10.1.*.*")), 3u);
    EXPECT_EQ(errorOf([&] { all.addBlock(high, 8); }), "! 10.0.0.9/8" + start + "10.0.0.0/8");
    EXPECT_EQ(errorOf([&] { all.addBlock(low, -1); }),
        "! 10.0.0.0/-1: the length must be between 0 and 32");
    EXPECT_EQ(errorOf([&] { all.add(high, low); }),
        "! 10.0.0.9 - 10.0.0.0: the first address is above the last");
    EXPECT_EQ(errorOf([&] { all.add(low, other); }),
        "! 10.0.0.0 - ::: the addresses are of different families");
    EXPECT_EQ(all.size(), 4u) << "what is refused is not added";
    all.build();
    EXPECT_EQ(all.indexOf(high), 0);
    EXPECT_EQ(all.indexOf(other), 1);
    EXPECT_EQ(all.indexOf(KestaIPv4Address("255.255.255.255")), 2);
}

TEST(RangeSet, PeersOfSockets)
{
    KestaIPRangeSet set;
    set.add("10.1.2.3");
    set.add("::ffff:10.0.0.0/104");
    set.add("2001:db8::/32");
    set.build();
    sockaddr_storage unknown{};
    unknown.ss_family = AF_UNIX;
    const std::pair<sockaddr_storage, long> rows[] = {{socketOf("10.1.2.3"), 0},
        {socketOf("::ffff:10.1.2.3"), 0}, {socketOf("::ffff:10.1.2.4"), -1},
        {socketOf("2001:db8::5"), 2}, {socketOf("::10.1.2.3"), -1}, {unknown, -1}};
    for (const auto& [socket, want] : rows)
    {
        const auto* peer = reinterpret_cast<const sockaddr*>(&socket);
        EXPECT_EQ(std::pair(set.indexOf(peer), set.isMember(peer)), std::pair(want, want >= 0));
    }
    EXPECT_EQ(set.indexOf(KestaIPv6Address("::ffff:10.1.2.4")), 1)
        << "a value is of its own family";
    EXPECT_FALSE(set.isMember(static_cast<const sockaddr*>(nullptr)));

    std::vector<std::thread> threads;   // ThreadSanitizer looks on
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(
            [&set]
            {
                const in_addr addresses[] = {{htonl(0x0A010203)}, {htonl(0x0A010204)}};
                long indexes[2];
                for (int i = 0; i < 1000; ++i)
                {
                    set.indexesOf(addresses, 2, indexes);
                    ASSERT_EQ(std::pair(indexes[0], indexes[1]), std::pair(0L, -1L));
                    ASSERT_TRUE(set.isMember(addresses[0]));
                }
            });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(RangeSet, IsAskedWhenBuilt)
{
    const std::string unbuilt = "! KestaIPRangeSet: build() must be called before the set is asked";
    const KestaIPv4Address low("0.0.0.1"), high("255.255.255.255");
    KestaIPRangeSet set;
    EXPECT_TRUE(set.isEmpty());
    EXPECT_EQ(errorOf([&] { set.isMember(&low); }), unbuilt);
    set.build();
    EXPECT_EQ(set.indexOf(&low), -1);
    EXPECT_EQ(set.add(KestaIPRange()), 0u) << "which holds nothing";
    EXPECT_EQ(set.add(KestaIPRange("255.255.255.*")), 1u);
    EXPECT_EQ(errorOf([&] { set.indexOf(&high); }), unbuilt);
    set.build();
    EXPECT_EQ(set.indexOf(&high), 1);
    KestaIPRange turned("10.1.*.*");
    turned.getStartAddress()->setSockAddress(socketOf("10.2.0.0"));   // after its end
    set.add(turned);
    set.build();
    KestaIPRangeSet moved(std::move(set)), assigned;
    assigned = std::move(moved);
    const KestaIPv4Address within("10.2.0.0");
    KestaIPv4Address unknown("255.255.255.255");
    unknown.setSockAddress({});   // of no family
    for (const KestaIPAddress* address : {&high, &low, &within, &std::as_const(unknown)})
        EXPECT_EQ(assigned.indexOf(address), address == &high ? 1 : -1) << *address;
    EXPECT_EQ(assigned.indexOf(nullptr), -1);
    EXPECT_FALSE(assigned.isEmpty());
}
