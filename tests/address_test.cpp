#include "support.h"

#include "KestaIPUtilities.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_set>

#include <arpa/inet.h>

using AddressTest = TraceFixture;

TEST_F(AddressTest, TextsAndTheirTraces)
{
    EXPECT_EQ(traced([] { KestaIPv4Address("256.1.1.1"); }), unread4("256.1.1.1"));
    EXPECT_EQ(traced([] { KestaIPv4Address(""); }), unread4(""));
    EXPECT_EQ(traced([] { KestaIPv4Address("x%y"); }), unread4("x%y"));
    EXPECT_EQ(traced([] { KestaIPv6Address("1.2.3.4"); }), unread6("1.2.3.4"));
    EXPECT_EQ(traced([] { KestaIPv6Address("::g%1"); }), unread6("::g%1"));
    std::ostringstream out;
    out << KestaIPv4Address("10.1%eth0") << ' ' << KestaIPv6Address("FE80::1%2");
    EXPECT_EQ(out.str(), "10.1%eth0 FE80::1%2");
}

/// Calls each comparison, on addresses in ascending order.
template <class Address, class Socket>
static void checkOrder(const Address (&row)[4], int (Address::*compare)(const Socket*) const)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
        {
            const Address &left = row[i], &right = row[j];
            const void* socket = &right.viewSockAddress();
            const int got = (left.*compare)(static_cast<const Socket*>(socket));
            EXPECT_EQ(std::tuple(left <= &right, left >= &right, left == &right, got),
                std::tuple(i <= j, i >= j, i == j, i < j ? -1 : i > j))
                << left << " and " << right;
            EXPECT_EQ(std::tuple(left == right, left != right, left<right, left> right,
                          left <= right, left >= right),
                std::tuple(i == j, i != j, i<j, i> j, i <= j, i >= j))
                << left << " and " << right;
        }
    EXPECT_EQ((row[0].*compare)(nullptr), 0);
}

TEST_F(AddressTest, Order)
{
    const KestaIPv4Address in4[] = {{"9.255.255.255"}, {"10.0.0.0"}, {"10.0.1.0"}, {"200.0.0.1"}};
    const KestaIPv6Address in6[] = {{"7fff::9"}, {"8000::2"}, {"8000::1:0"}, {"8000::100:0:0:1"}};
    checkOrder(in4, &KestaIPv4Address::compareTwoIPv4Addresses);
    checkOrder(in6, &KestaIPv6Address::compareTwoIPv6Addresses);
    const auto ask = [](const auto& a) { return a == &a && a >= &a && a <= &a && a == a; };
    EXPECT_EQ(traced([&] { ask(in4[0]); }),
        operated("IPv4", "==()") + operated("IPv4", ">=()") + operated("IPv4", "<= ()"));
    EXPECT_EQ(traced([&] { ask(in6[0]); }),
        operated("IPv6", "==()") + operated("IPv6", ">=()") + operated("IPv6", "<=()"));
}

TEST_F(AddressTest, OfSockets)
{
    for (const char* text : {"0.0.0.0", "10.1.2.3", "255.255.255.255", "::", "::1", "::10.1.2.3",
             "::ffff:10.1.2.3", "2001:db8::1", "fe80:1:2:3:4:5:6:7"})
    {
        in_addr in4;
        in6_addr in6;
        std::unique_ptr<KestaIPAddress> made;
        const auto make = [&]
        {
            if (inet_pton(AF_INET, text, &in4) == 1)
                made = std::make_unique<KestaIPv4Address>(in4);
            else if (inet_pton(AF_INET6, text, &in6) == 1)
                made = std::make_unique<KestaIPv6Address>(in6);
        };
        EXPECT_EQ(traced(make), Lines{}) << text;
        EXPECT_EQ(made->getStrAddress(), text);
        const sockaddr_storage wanted = socketOf(text);
        EXPECT_EQ(std::memcmp(&made->viewSockAddress(), &wanted, sizeof wanted), 0) << text;
    }
}

TEST_F(AddressTest, Values)
{
    alignas(KestaIPv4Address) unsigned char dirty[sizeof(KestaIPv4Address)];
    std::memset(dirty, 0x5A, sizeof dirty);
    auto* address = new (dirty) KestaIPv4Address("10.1.2.3");
    sockaddr_in want = {};
    want.sin_family = AF_INET;
    want.sin_addr.s_addr = htonl(0x0A010203);
    sockaddr_storage got = address->getSockAddress();
    EXPECT_EQ(std::memcmp(&got, &want, sizeof want), 0);
    const char* bytes = reinterpret_cast<const char*>(&got);
    EXPECT_EQ(std::count(bytes + sizeof want, bytes + sizeof got, '\0'), sizeof got - sizeof want);

    address->setStrAddress("renamed");
    EXPECT_EQ(*address, KestaIPv4Address("10.1.2.3"));
    address->setSockAddress(socketOf("10.9.9.9"));
    EXPECT_EQ(*address, KestaIPv4Address("10.9.9.9"));
    KestaIPv4Address assigned("10.1.2.3");
    assigned = *address;
    EXPECT_EQ(assigned, *address);
    EXPECT_EQ(assigned.getStrAddress(), "renamed");
    address->~KestaIPv4Address();

    const std::unordered_set<KestaIPv4Address> set4{{"10.1"}, {"10.0.0.1"}, {"10.0.0.2%e"}};
    const std::unordered_set<KestaIPv6Address> set6{{"::1%e"}, {"0::1"}, {"1::1"}};
    EXPECT_EQ(std::pair(set4.size(), set6.size()), std::pair(std::size_t(2), std::size_t(2)));
}

// Hosts derive address classes with operators that are not const, and have operators of their own.
template <class Base>
struct Derived : Base
{
    using Base::Base;
    bool operator<=(KestaIPAddress*) override { return true; }
    bool operator>=(KestaIPAddress*) override { return false; }
    bool operator==(KestaIPAddress*) override { return true; }
};

namespace host
{

std::string operator==(const KestaIPAddress&, const KestaIPv6Address&) { return "="; }
std::string operator<(const KestaIPv6Address&, KestaIPv6Address) { return "<"; }
std::string operator<<(std::ostream&, const KestaIPAddress&) { return "<<"; }

std::string use(const KestaIPv6Address& address, std::ostream& out)
{
    return (address == address) + (address < address) + (out << address);
}

}   // namespace host

TEST_F(AddressTest, HostsMayBringTheirOwn)
{
    const Derived<KestaIPAddress> own;
    const Derived<KestaIPv4Address> own4("1.1.1.1");
    const Derived<KestaIPv6Address> own6("::1");
    const KestaIPAddress* const bases[] = {&own, &own4, &own6};
    for (const KestaIPAddress* base : bases)
        EXPECT_EQ(
            std::tuple(*base <= base, *base >= base, *base == base), std::tuple(true, false, true));
    EXPECT_EQ(host::use(KestaIPv6Address("::1"), std::cout), "=<<<");
}

TEST_F(AddressTest, ClassCheckUnderAllFlags)
{
    // 1: excluded as link-local; 2: as site-local; 4: as multicast; 8: always; 0, and 16 for
    // loopback: never
    const std::pair<const char*, int> rows[] = {{"0.0.0.0", 8}, {"127.0.0.1", 16}, {"10.0.0.1", 2},
        {"172.15.0.1", 0}, {"172.16.0.1", 2}, {"172.31.255.255", 2}, {"172.32.0.1", 0},
        {"192.168.1.1", 2}, {"169.254.1.1", 1}, {"169.255.1.1", 0}, {"192.169.1.1", 0},
        {"223.0.0.1", 0}, {"224.0.0.1", 4}, {"240.0.0.1", 0}, {"::", 8}, {"::1", 16}, {"::2", 8},
        {"::ffff:10.1.2.3", 0}, {"fe7f::1", 0}, {"febf::1", 1}, {"fec0::1", 2}, {"ff02::1", 4}};
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
    typedef KestaIPv4Address A;
    for (const auto& [text, classes] : rows)
        if (std::strchr(text, ':') == nullptr)
        {
            const in_addr a{inet_addr(text)};
            const int got = A::isIPv4LinkLocalAddress(a) | A::isIPv4SiteLocalAddress(a) << 1 |
                            A::isIPv4MulticastAddress(a) << 2 | A::isIPv4AnyLocalAddress(a) << 3 |
                            A::isIPv4LoopbackAddress(a) << 4;
            EXPECT_EQ(got, classes) << text;
        }
}
