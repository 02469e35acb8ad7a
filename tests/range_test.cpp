#include "support.h"

#include "KestaIPRange.h"

using RangeTest = TraceFixture;

static const std::string ctor = "KestaIPRange::KestaIPRange()";
static const std::string filter =
    "This address as not allowed as per current IP filter settings!!!";
static const Lines in{"FH:In " + ctor}, out{"FH:Out " + ctor};
static const Lines both4 = parsed4 + parsed4, both6 = parsed6 + parsed6;
static const Lines pass4 = checked("IPv4", false), fail4 = checked("IPv4", true);
static const Lines pass6 = checked("IPv6", false), fail6 = checked("IPv6", true);
static const Lines mapped = both6 + compared("IPv6");
static const Lines startTested = parsed6 +
                                 Lines{"FH:In KestaIPUtilities::ValidateIPv6StartAddress() "} +
                                 parsed6 + compared("IPv6");
static const Lines startValid{"FH:Out KestaIPUtilities::ValidateIPv6StartAddress() "};
static const Lines endMade = Lines{"FH:In KestaIPUtilities::InitialiseIPv6EndAddress() "} +
                             parsed6 +
                             Lines{"FH:In OKestaIPUtilities::convertIPv6AddressToString()",
                                 "FH:Out KestaIPUtilities::convertIPv6AddressToString() ",
                                 "FH:Out KestaIPUtilities::InitialiseIPv6EndAddress()"};

static Lines ends(const std::string& start, const std::string& end)
{
    return {ctor + "- m_startAddress:-:" + start, ctor + "- m_endAddress:-:" + end};
}

static Lines screened(const std::string& start, const std::string& end)
{
    return {ctor + "-Before the filter check startAddress: :" + start,
        ctor + "-Before the filter check endAddress: :" + end};
}

TEST_F(RangeTest, TracesOfTheForms)
{
    const std::pair<const char*, Lines> rows[] = {
        {"10.1.2.3", both4 + screened("10.1.2.3", "10.1.2.3") + pass4 + pass4},
        {"10.1.*.*", both4 + ends("10.1.0.0", "10.1.255.255") +
                         screened("10.1.0.0", "10.1.255.255") + pass4 + pass4},
        {"::ffff:10.1", mapped + both4 + screened("10.1", "10.1") + pass4 + pass4},
        {"2001:DB8::1%e", both6 + screened("2001:DB8::1%e", "2001:DB8::1%e") + pass6},
        {"2001:db8::/126",
            startTested + startValid + endMade + screened("2001:db8::", "2001:db8::3") + pass6},
        {"1:2:3:4:5:6:7:*", parsed6 + endMade + ends("1:2:3:4:5:6:7:0000", "1:2:3:4:5:6:7:ffff")}};
    for (const auto& row : rows)
        EXPECT_EQ(traced([&] { KestaIPRange range(row.first); }), in + row.second + out)
            << row.first;
}

TEST_F(RangeTest, Ends)
{
    const std::string f = "ffff:ffff:ffff:ffff", scope = "2001::%aaaaaaaaaaaaaaaaaaaaaaaaaaaa";
    const std::tuple<std::string, int, std::string, std::string> rows[] = {
        {"10.1.2.3", 4, "10.1.2.3", "10.1.2.3"}, {"10.1.*.*", 4, "10.1.0.0", "10.1.255.255"},
        {"1.*", 4, "1.0", "1.255"}, {"0:0:0:0:0:FFFF:10.1.*.*", 4, "10.1.0.0", "10.1.255.255"},
        {"2001:DB8::1%2", 6, "2001:DB8::1%2", "2001:DB8::1%2"}, {"*", 6, "0000::", f + ":" + f},
        {"1*", 6, "1000::", "1fff:ffff:ffff:ffff:" + f},
        {"2001:db8:*", 6, "2001:db8::", "2001:db8:ffff:ffff:" + f},
        {"2001:db8:1*", 6, "2001:db8:1000::", "2001:db8:1fff:ffff:" + f},
        {"1:2:3:4:5:6:7*", 6, "1:2:3:4:5:6:7000:0000", "1:2:3:4:5:6:7fff:ffff"},
        {"1:2:3:4:5:6:7:8000*", 6, "1:2:3:4:5:6:7:8000", "1:2:3:4:5:6:7:8000"},
        {scope + "*", 6, scope + "::", "2001::"},   // a prefix length above 128
        {"2001:db8::/32", 6, "2001:db8::", "2001:db8:ffff:ffff:" + f},
        {"2001:db8::/128", 6, "2001:db8::", "2001:db8::"},
        {"2001:a000::/20x", 6, "2001:a000::", "2001:afff:ffff:ffff:" + f},
        {"fe80:*", 6, "fe80::", "fe80:ffff:ffff:ffff:" + f}};
    setExclusions(true, false, false);   // never refuses the form with a trailing star
    for (const auto& [text, family, start, end] : rows)
    {
        const KestaIPRange range(text);
        EXPECT_EQ(range.getAddressFamily(), family) << text;
        EXPECT_EQ(range.getStartAddress()->getStrAddress(), start) << text;
        EXPECT_EQ(range.getEndAddress()->getStrAddress(), end) << text;
        EXPECT_NE(range.getStartAddress(), range.getEndAddress()) << text;
    }
}

TEST_F(RangeTest, RefusedTexts)
{
    const auto says = [](const std::string& trace, const std::string& error) {
        return Lines{trace, "! " + error};
    };
    const std::string name = "FH:KestaIPRange::KestaIPRange()", no = "Not a valid IP address",
                      unmapped = "Not a valid IPv4MappedIPv6 address",
                      noStar = "Not a valid IPv6 Wild Card Address",
                      noPrefix = "Not a Valid prefix for IPv6 Address",
                      noStart = "Not a valid IPv6 address ";
    const Lines badStart = startTested + Lines{name + "-Not a Valid Ipv6 Address"};
    const auto refused = [](const std::string& address, const std::string& text) {
        return fail4 + Lines{ctor + ": " + filter + ":" + address, "! " + filter + text};
    };
    const std::pair<const char*, Lines> rows[] = {
        {"", says(name + "-IPAddres is an empty string", "IPAddres is an empty string ")},
        {"localhost", says(name + "." + no, no + " localhost")},
        {"10/8", says(name + "." + no, no + " 10/8")},
        {"::fffe:1.2",
            mapped + says(ctor + "." + unmapped + ":::fffe:1.2", unmapped + " ::fffe:1.2")},
        {"x:10.1.2.3", unread6("x:0:0")}, {"10.0.0.0/8", unread4("10.0.0.0/8")},
        {"10.1.2.1*", parsed4 + unread4("10.1.2.1255")},
        {"0.0.0.0", both4 + screened("0.0.0.0", "0.0.0.0") + refused("0.0.0.0", "0.0.0.0")},
        {"*.*.*.*", both4 + ends("0.0.0.0", "255.255.255.255") +
                        screened("0.0.0.0", "255.255.255.255") + refused("0.0.0.0", "*.*.*.*")},
        {"16*.254.9.9", parsed4 + unread4("16255.254.9.9")},
        {"::ffff:169.254.*", mapped + both4 + ends("169.254.0", "169.254.255") +
                                 screened("169.254.0", "169.254.255") +
                                 refused("169.254.0", "169.254.*")},
        {"fe80::1%2", both6 + screened("fe80::1%2", "fe80::1%2") + fail6 +
                          says(ctor + ":" + filter + ":fe80::1%2", filter + "fe80::1%2")},
        {"2001:db8::g", unread6("2001:db8::g")},
        {"2001:db8::/129", says(name + "-" + noPrefix, noPrefix + " 2001:db8::/129")},
        {"2001:db8::/-1", says(name + "-" + noPrefix, noPrefix + " 2001:db8::/-1")},
        {"2001:db8::1/32", badStart + Lines{"! " + noStart + "2001:db8::1/32"}},
        {"2001:db8::/x", badStart + Lines{"! " + noStart + "2001:db8::/x"}},
        {"fe80::/127", startTested + startValid + endMade + screened("fe80::", "fe80::1") + fail6 +
                           says(name + ": " + filter, filter)},
        {"2001:*:1", says(name + "-" + noStar, noStar + " 2001:*:1")},
        {"2001:db8:**", says(name + "-" + noStar, noStar + " 2001:db8:**")},
        {"2001:db8::*", unread6("2001:db8:::")}};
    setExclusions(true, false, false);
    for (const auto& row : rows)
        EXPECT_EQ(traced([&] { KestaIPRange range(row.first); }), in + row.second) << row.first;
}

TEST_F(RangeTest, Membership)
{
    const std::tuple<const char*, std::string, bool> rows[] = {{"10.1.*.*", "10.1.0.0", true},
        {"10.1.*.*", "10.1.255.255", true}, {"10.1.*.*", "10.0.255.255", false},
        {"10.1.*.*", "10.2.0.0", false}, {"10.1.*.*", "10.1.5.*", true},
        {"10.1.5.*", "10.1.6.*", false}, {"10.*.5.1", "10.5.5.*", true},
        {"10.*.5.1", "10.*.6.1", false}, {"10.1.2.3", "10.1.2.3", true},
        {"10.1.*.*", "2001:db8::/32", false}, {"2001:db8:1*", "2001:db8:1fff::1", true},
        {"2001:db8:1*", "2001:db8:2000::", false}, {"*", "::1", true},
        {"2001:db8::/32", "2001:db8:5::/48", true}, {"2001:db8::/33", "2001:db8:8000::/33", false}};
    for (const auto& [text, otherText, want] : rows)
    {
        const KestaIPRange range(text), other(otherText);
        const bool single = otherText.find_first_of("*/") == std::string::npos;
        for (const char* settings : {"DEBUG=Y", "DEBUG=N"})   // traced or not, the answer is one
        {
            configure(settings);
            const Entry entry;
            EXPECT_EQ(range.isMember(other), want) << text << " " << otherText;
            EXPECT_EQ(other.isMember(range), want) << text << " " << otherText;
            EXPECT_EQ(single && range.isMember(other.getStartAddress()), single && want)
                << otherText;
        }
    }
    const KestaIPRange none, other;
    EXPECT_TRUE(none.getAddressFamily() == 0 && none.getStartAddress() == nullptr);
    EXPECT_FALSE(none.isMember(other));
}

TEST_F(RangeTest, MembershipIsTracedUpToTheDecision)
{
    const KestaIPRange range("10.1.*.*"), inner("10.1.2.*"), apart("10.2.*.*"),
        six("2001:db8::/32");
    const KestaIPv4Address below("10.0.0.1"), above("10.2.0.1");
    const Lines le = operated("IPv4", "<= ()"), ge = operated("IPv4", ">=()");
    const Lines address{"FH:In KestaIPRange::isMember()"};
    const Lines ranges{"FH:In KestaIPRange::isMember(KestaIPRange anIPRange)"};
    EXPECT_EQ(traced([&] { range.isMember(&below); }), address + le);
    EXPECT_EQ(traced([&] { range.isMember(&above); }), address + le + ge);
    EXPECT_EQ(traced([&] { range.isMember(six); }), ranges);
    EXPECT_EQ(traced([&] { range.isMember(inner); }), ranges + le + ge);
    EXPECT_EQ(traced([&] { inner.isMember(range); }), ranges + le + ge + le);
    EXPECT_EQ(traced([&] { range.isMember(apart); }), ranges + le + ge + ge);
}
