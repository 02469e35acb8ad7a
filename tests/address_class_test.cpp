#include "KestaAddresses.h"
#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>
#include <vector>

// The first and the last address of each block, and those just outside.
TEST(AddressClass, AtTheEdges)
{
    const std::pair<const char*, std::vector<const char*>> rows[] = {
        {"unspecified", {"0.0.0.0", "::"}},
        {"reserved", {"0.0.0.1", "0.255.255.255", "240.0.0.0", "255.255.255.254"}},
        {"private", {"10.0.0.0", "10.255.255.255", "172.16.0.0", "172.31.255.255", "192.168.0.0",
                        "192.168.255.255"}},
        {"shared", {"100.64.0.0", "100.127.255.255"}},
        {"loopback", {"127.0.0.0", "127.255.255.255", "::1"}},
        {"link-local", {"169.254.0.0", "169.254.255.255",
                           "fe80::", "febf:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}},
        {"documentation",
            {"192.0.2.0", "192.0.2.255", "198.51.100.0", "198.51.100.255", "203.0.113.0",
                "203.0.113.255", "2001:db8::", "2001:db8:ffff:ffff:ffff:ffff:ffff:ffff"}},
        {"multicast",
            {"224.0.0.0", "239.255.255.255", "ff00::", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}},
        {"broadcast", {"255.255.255.255"}}, {"IPv4-compatible", {"::2", "::ffff:ffff"}},
        {"IPv4-mapped", {"::ffff:0:0", "::ffff:ffff:ffff"}},
        {"unique-local", {"fc00::", "fdff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}},
        {"site-local", {"fec0::", "feff:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}},
        {"global", {"1.0.0.0", "9.255.255.255", "11.0.0.0", "100.63.255.255", "100.128.0.0",
                       "126.255.255.255", "128.0.0.0", "169.253.255.255", "169.255.0.0",
                       "172.15.255.255", "172.32.0.0", "192.0.1.255", "192.0.3.0",
                       "192.167.255.255", "192.169.0.0", "198.51.99.255", "198.51.101.0",
                       "203.0.112.255", "203.0.114.0", "223.255.255.255", "::1:0:0",
                       "::fffe:ffff:ffff", "::1:0:0:0", "2001:db7:ffff:ffff:ffff:ffff:ffff:ffff",
                       "2001:db9::", "fbff:ffff:ffff:ffff:ffff:ffff:ffff:ffff",
                       "fe00::", "fe7f:ffff:ffff:ffff:ffff:ffff:ffff:ffff"}}};
    for (const auto& [name, texts] : rows)
        for (const char* text : texts)
            EXPECT_STREQ(std::strchr(text, ':') == nullptr
                             ? classOf(intervalOf(KestaIPv4Address(text)))
                             : classOf(intervalOf(KestaIPv6Address(text))),
                name)
                << text;
    EXPECT_STREQ(classOf(intervalOf(KestaIPRange("172.*.*.*"))), "mixed");
    EXPECT_STREQ(classOf(intervalOf(KestaIPRange("10.1.*.*"))), "private");
}
