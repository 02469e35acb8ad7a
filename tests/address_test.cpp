#include "support.h"

#include <arpa/inet.h>

using AddressTest = TraceFixture;

static std::string binary(const KestaIPAddress& address)
{
    const sockaddr_storage& sa = address.viewSockAddress();
    char text[INET6_ADDRSTRLEN];
    const auto* bytes = reinterpret_cast<const char*>(&sa) + (sa.ss_family == AF_INET ? 4 : 8);
    return inet_ntop(sa.ss_family, bytes, text, sizeof text);
}

TEST_F(AddressTest, TextsAndTheirTraces)
{
    const std::tuple<int, const char*, const char*, Lines> rows[] = {
        {4, "10.0.0.1%eth0", "10.0.0.1", parsed4}, {4, "10.1", "10.0.0.1", parsed4},
        {4, "0x10.010.3", "16.8.0.3", parsed4}, {4, "256.1.1.1", "", unread4("256.1.1.1")},
        {4, "", "", unread4("")}, {4, "x%y", "", unread4("x%y")},
        {6, "fe80::1%2", "fe80::1", parsed6}, {6, "2001:DB8::A", "2001:db8::a", parsed6},
        {6, "1.2.3.4", "", unread6("1.2.3.4")}, {6, "::g%1", "", unread6("::g%1")}};
    for (const auto& row : rows)
    {
        const CKestaString text = std::get<1>(row);
        std::string got;
        const Lines trace = std::get<0>(row) == 4
                                ? traced([&] { got = binary(KestaIPv4Address(text)); })
                                : traced([&] { got = binary(KestaIPv6Address(text)); });
        EXPECT_EQ(trace, std::get<3>(row)) << text;
        EXPECT_EQ(got, std::get<2>(row)) << text;
    }
    EXPECT_EQ(KestaIPv4Address("10.1%eth0").getStrAddress(), "10.1%eth0");
    EXPECT_EQ(KestaIPv6Address("FE80::1%2").getStrAddress(), "FE80::1%2");
}

template <class Address>
static void expectOrder(const std::string& lowText, const std::string& highText)
{
    const Address low(lowText), high(highText);
    EXPECT_TRUE(low <= &high && !(low >= &high) && !(low == &high)) << lowText;
    EXPECT_TRUE(high >= &low && !(high <= &low) && !(high == &low)) << lowText;
    EXPECT_TRUE(low <= &low && low >= &low && low == &low) << lowText;
}

TEST_F(AddressTest, Order)
{
    const std::string rows[][2] = {
        {"10.0.0.1", "10.0.0.2"}, {"9.255.255.255", "10.0.0.0"}, {"1.2.3.4", "200.0.0.0"}};
    for (const auto& [low, high] : rows)
    {
        expectOrder<KestaIPv4Address>(low, high);
        expectOrder<KestaIPv6Address>("::" + low, "::" + high);
        expectOrder<KestaIPv6Address>("7f00::" + high, "8000::" + low);
    }
    const KestaIPv4Address ipv4("10.0.0.1");
    const KestaIPv6Address ipv6("2001:db8::1");
    EXPECT_EQ(ipv4.compareTwoIPv4Addresses(nullptr), 0);
    EXPECT_EQ(ipv6.compareTwoIPv6Addresses(nullptr), 0);
    EXPECT_EQ(traced([&] { return ipv4 == &ipv4 && ipv4 >= &ipv4 && ipv4 <= &ipv4; }),
        operated("IPv4", "==()") + operated("IPv4", ">=()") + operated("IPv4", "<= ()"));
    EXPECT_EQ(traced([&] { return ipv6 == &ipv6 && ipv6 >= &ipv6 && ipv6 <= &ipv6; }),
        operated("IPv6", "==()") + operated("IPv6", ">=()") + operated("IPv6", "<=()"));
}

TEST_F(AddressTest, ClassCheckUnderAllFlags)
{
    // 1 is excluded as link-local, 2 as site-local, 4 as multicast, 8 always, 0 never
    const std::pair<const char*, int> rows[] = {{"0.0.0.0", 8}, {"8.8.8.8", 0}, {"127.0.0.1", 0},
        {"10.0.0.1", 2}, {"11.0.0.1", 0}, {"172.15.0.1", 0}, {"172.16.0.1", 2},
        {"172.31.255.255", 2}, {"172.32.0.1", 0}, {"192.168.1.1", 2}, {"192.169.1.1", 0},
        {"169.254.1.1", 1}, {"169.253.1.1", 0}, {"223.255.255.255", 0}, {"224.0.0.1", 4},
        {"239.255.255.255", 4}, {"240.0.0.1", 0}, {"::", 8}, {"::1", 0}, {"::2", 8},
        {"::10.1.2.3", 8}, {"::ffff:10.1.2.3", 0}, {"fe7f::1", 0}, {"fe80::1", 1}, {"febf::1", 1},
        {"fec0::1", 2}, {"feff::1", 2}, {"ff02::1", 4}, {"fc00::1", 0}, {"2001:db8::1", 0}};
    KestaIPv4Address::m_bIPv4LoopBack = KestaIPv6Address::m_bIPv6LoopBack = true;
    for (const auto& [text, classes] : rows)
        for (int flags = 0; flags < 8; ++flags)
        {
            setExclusions(flags & 1, flags & 2, flags & 4);
            const bool is6 = std::string(text).find(':') != std::string::npos;
            const sockaddr_storage address = is6 ? KestaIPv6Address(text).getSockAddress()
                                                 : KestaIPv4Address(text).getSockAddress();
            const void* sa = &address;
            bool got = false;
            const auto check6 = [&] {
                got = KestaIPv6Address::CheckUnAllowedIPv6AddressTypes(
                    static_cast<const sockaddr_in6*>(sa));
            };
            const auto check4 = [&] {
                got = KestaIPv4Address::CheckUnAllowedIPv4AddressTypes(
                    static_cast<const sockaddr_in*>(sa));
            };
            const bool want = (classes & (flags | 8)) != 0;
            EXPECT_EQ(is6 ? traced(check6) : traced(check4), checked(is6 ? "IPv6" : "IPv4", want));
            EXPECT_EQ(got, want) << text << " under " << flags;
        }
}
