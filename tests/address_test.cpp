#include "support.h"

using AddressTest = TraceFixture;

TEST_F(AddressTest, TextsAndTheirTraces)
{
    EXPECT_EQ(traced([] { KestaIPv4Address("256.1.1.1"); }), unread4("256.1.1.1"));
    EXPECT_EQ(traced([] { KestaIPv4Address(""); }), unread4(""));
    EXPECT_EQ(traced([] { KestaIPv4Address("x%y"); }), unread4("x%y"));
    EXPECT_EQ(traced([] { KestaIPv6Address("1.2.3.4"); }), unread6("1.2.3.4"));
    EXPECT_EQ(traced([] { KestaIPv6Address("::g%1"); }), unread6("::g%1"));
    const KestaIPv4Address short4("10.1%eth0"), long4("10.0.0.1");
    const KestaIPv6Address short6("FE80::1%2"), long6("fe80:0::0001");
    EXPECT_TRUE(short4 == &long4 && short4.getStrAddress() == "10.1%eth0");
    EXPECT_TRUE(short6 == &long6 && short6.getStrAddress() == "FE80::1%2");
}

TEST_F(AddressTest, Order)
{
    const KestaIPv4Address low4("9.255.255.255"), high4("200.0.0.1");
    const KestaIPv6Address low6("7fff::9"), mid6("8000::1"), high6("8000::2");
    EXPECT_TRUE(low4 <= &high4 && !(low4 >= &high4) && !(low4 == &high4));
    EXPECT_TRUE(low6 <= &mid6 && !(low6 >= &mid6) && !(low6 == &mid6));
    EXPECT_TRUE(high6 >= &mid6 && !(high6 <= &mid6) && !(high6 == &mid6));
    EXPECT_EQ(low4.compareTwoIPv4Addresses(nullptr), 0);
    EXPECT_EQ(low6.compareTwoIPv6Addresses(nullptr), 0);
    EXPECT_EQ(traced([&] { return low4 == &low4 && low4 >= &low4 && low4 <= &low4; }),
        operated("IPv4", "==()") + operated("IPv4", ">=()") + operated("IPv4", "<= ()"));
    EXPECT_EQ(traced([&] { return mid6 == &mid6 && mid6 >= &mid6 && mid6 <= &mid6; }),
        operated("IPv6", "==()") + operated("IPv6", ">=()") + operated("IPv6", "<=()"));
}

TEST_F(AddressTest, ClassCheckUnderAllFlags)
{
    // 1 is excluded as link-local, 2 as site-local, 4 as multicast, 8 always, 0 never
    const std::pair<const char*, int> rows[] = {{"0.0.0.0", 8}, {"127.0.0.1", 0}, {"10.0.0.1", 2},
        {"172.15.0.1", 0}, {"172.16.0.1", 2}, {"172.31.255.255", 2}, {"172.32.0.1", 0},
        {"192.168.1.1", 2}, {"169.254.1.1", 1}, {"224.0.0.1", 4}, {"240.0.0.1", 0}, {"::", 8},
        {"::1", 0}, {"::2", 8}, {"::ffff:10.1.2.3", 0}, {"fe7f::1", 0}, {"febf::1", 1},
        {"fec0::1", 2}, {"ff02::1", 4}};
    KestaIPv4Address::m_bIPv4LoopBack = KestaIPv6Address::m_bIPv6LoopBack = true;
    for (const auto& [text, classes] : rows)
        for (int flags = 0; flags < 8; ++flags)
        {
            setExclusions(flags & 1, flags & 2, flags & 4);
            const sockaddr_storage address = socketOf(text);
            const void* sa = &address;
            const bool got = address.ss_family == AF_INET6
                                 ? KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(
                                       static_cast<const sockaddr_in6*>(sa))
                                 : KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(
                                       static_cast<const sockaddr_in*>(sa));
            EXPECT_EQ(got, (classes & (flags | 8)) != 0) << text << " under " << flags;
        }
}
