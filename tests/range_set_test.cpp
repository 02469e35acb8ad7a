#include "support.h"

#include "KestaIPRangeSet.h"

#include <cstdio>
#include <random>

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
            EXPECT_EQ(set.add(ranges.back()), ranges.size() - 1);
            if (random() % count == 0)
                set.build();   // more are added later
        }
        set.build();
        EXPECT_EQ(set.size(), count);
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
        }
    }
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
