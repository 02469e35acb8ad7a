#include "support.h"

#include "KestaIPRange.h"

#include <functional>
#include <type_traits>
#include <utility>

using RangeTest = TraceFixture;

// Membership takes no text: it would become a range, and the wrong question would be asked.
template <class What, class = decltype(KestaIPRange().isMember(std::declval<What>()))>
static std::true_type canAsk(int);
template <class What>
static std::false_type canAsk(...);
static_assert(decltype(canAsk<const KestaIPRange&>(0))() && decltype(canAsk<std::nullptr_t>(0))());
static_assert(!decltype(canAsk<CKestaString>(0))() && !decltype(canAsk<const char (&)[2]>(0))());
static_assert(!decltype(canAsk<const char*>(0))() && !decltype(canAsk<std::string>(0))());

static const std::string filter =
    "This address as not allowed as per current IP filter settings!!!";
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

TEST_F(RangeTest, TracesOfTheForms)
{
    const auto wildcard = [](const std::string& start, const std::string& end)
    { return parsed6 + endMade + ends(start, end); };
    const std::string f = "ffff:ffff:ffff:ffff", scope = "2001::%aaaaaaaaaaaaaaaaaaaaaaaaaaaa";
    const std::pair<std::string, Lines> rows[] = {
        {"10.1.2.3", both4 + screened("10.1.2.3", "10.1.2.3") + pass4 + pass4},
        {"10.1.*.*", both4 + ends("10.1.0.0", "10.1.255.255") +
                         screened("10.1.0.0", "10.1.255.255") + pass4 + pass4},
        {"10.1*", both4 + ends("10.10", "10.1255") + screened("10.10", "10.1255") + pass4 + pass4},
        {"::ffff:0:0%*.:10", mapped + both4 + screened("10", "10") + pass4 + pass4},
        {"::ffff:10.1", mapped + both4 + screened("10.1", "10.1") + pass4 + pass4},
        {"2001:DB8::1%e", both6 + screened("2001:DB8::1%e", "2001:DB8::1%e") + pass6},
        {"2001:db8::/128",
            startTested + startValid + endMade + screened("2001:db8::", "2001:db8::") + pass6},
        {"2001:a000::/20x", startTested + startValid + endMade +
                                screened("2001:a000::", "2001:afff:ffff:ffff:" + f) + pass6},
        {"*", wildcard("0000::", f + ":" + f)},
        {"fe80:*", wildcard("fe80::", "fe80:ffff:ffff:ffff:" + f)},   // no flag refuses it
        {"2001:db8:1*", wildcard("2001:db8:1000::", "2001:db8:1fff:ffff:" + f)},
        {"1:2:3:4:5:6:*", wildcard("1:2:3:4:5:6::", "1:2:3:4:5:6:ffff:ffff")},
        {"1:2:3:4:5:6:7*", wildcard("1:2:3:4:5:6:7000:0000", "1:2:3:4:5:6:7fff:ffff")},
        {"1:2:3:4:5:6:7:8000*", wildcard("1:2:3:4:5:6:7:8000", "1:2:3:4:5:6:7:8000")},
        {scope + "*", wildcard(scope + "::", "2001::")}};   // a prefix length above 128
    setExclusions(true, false, false);
    for (const auto& row : rows)
        EXPECT_EQ(traced([&] { KestaIPRange range(row.first); }), rangeIn + row.second + rangeOut)
            << row.first;
}

TEST_F(RangeTest, RefusedTexts)
{
    const auto says = [](const std::string& trace, const std::string& error) {
        return Lines{trace, "! " + error};
    };
    const auto refused = [](const std::string& address, const std::string& text) {
        return fail4 + Lines{rangeName + ": " + filter + ":" + address, "! " + filter + text};
    };
    const std::string f = "ffff:ffff:ffff:ffff", name = "FH:" + rangeName,
                      no = "Not a valid IP address",
                      unmapped = "Not a valid IPv4MappedIPv6 address",
                      noStar = "Not a valid IPv6 Wild Card Address",
                      noPrefix = "Not a Valid prefix for IPv6 Address";
    const std::pair<const char*, Lines> rows[] = {
        {"", says(name + "-IPAddres is an empty string", "IPAddres is an empty string ")},
        {"localhost", says(name + "." + no, no + " localhost")},
        {"::fffe:1.2",
            mapped + says(rangeName + "." + unmapped + ":::fffe:1.2", unmapped + " ::fffe:1.2")},
        {"x:10.1.2.3", unread6("x:0:0")}, {"10.0.0.0/8", unread4("10.0.0.0/8")},
        {"10.1.2.1*", parsed4 + unread4("10.1.2.1255")},
        {"0.0.0.0", both4 + screened("0.0.0.0", "0.0.0.0") + refused("0.0.0.0", "0.0.0.0")},
        {"169.16646*",   // from 169.2.138.60, as the last part fills three bytes, to 169.254.0.111
            both4 + ends("169.166460", "169.16646255") + screened("169.166460", "169.16646255") +
                pass4 + refused("169.16646255", "169.16646*")},
        {"::ffff:169.254.*", mapped + both4 + ends("169.254.0", "169.254.255") +
                                 screened("169.254.0", "169.254.255") +
                                 refused("169.254.0", "169.254.*")},
        {"fe80::1%2", both6 + screened("fe80::1%2", "fe80::1%2") + fail6 +
                          says(rangeName + ":" + filter + ":fe80::1%2", filter + "fe80::1%2")},
        {"2001:db8::g", unread6("2001:db8::g")},
        {"2001:db8::/129", says(name + "-" + noPrefix, noPrefix + " 2001:db8::/129")},
        {"2001:db8::/-1", says(name + "-" + noPrefix, noPrefix + " 2001:db8::/-1")},
        {"2001:db8::1/32", startTested + says(name + "-Not a Valid Ipv6 Address",
                                             "Not a valid IPv6 address 2001:db8::1/32")},
        {"::/0", startTested + startValid + endMade + screened("::", f + ":" + f) + fail6 +
                     says(name + ": " + filter, filter)},
        {"fe80::/127", startTested + startValid + endMade + screened("fe80::", "fe80::1") + fail6 +
                           says(name + ": " + filter, filter)},
        {"2001:*:1", says(name + "-" + noStar, noStar + " 2001:*:1")},
        {"2001:db8:**", says(name + "-" + noStar, noStar + " 2001:db8:**")},
        {"2001:db8::*", unread6("2001:db8:::")}};
    setExclusions(true, false, false);
    for (const auto& row : rows)
        EXPECT_EQ(traced([&] { KestaIPRange range(row.first); }), rangeIn + row.second)
            << row.first;
}

TEST_F(RangeTest, NulFirstIsEmpty)
{
    const auto text = [](const std::string& bytes)
    {
        CKestaString result;
        result.assign(bytes);   // a copy would end at the NUL; returning it makes none
        return result;
    };
    const Lines refused{
        "FH:" + rangeName + "-IPAddres is an empty string", "! IPAddres is an empty string "};
    for (const std::string& bytes : {std::string(1, '\0'), std::string("\0.:", 3)})
        EXPECT_EQ(traced([&] { KestaIPRange range(text(bytes)); }), rangeIn + refused);
}

TEST_F(RangeTest, MembershipIsTracedUpToTheDecision)
{
    const KestaIPRange range("10.1.*.*"), inner("10.1.2.*"), apart("10.2.*.*"), six("2001:db8:1*"),
        none;
    const KestaIPv4Address below("10.0.255.255"), above("10.2.0.0");
    const KestaIPAddress* const null = nullptr;
    const Lines le = operated("IPv4", "<= ()"), ge = operated("IPv4", ">=()");
    const Lines address{"FH:In KestaIPRange::isMember()"};
    const Lines ranges{"FH:In KestaIPRange::isMember(KestaIPRange anIPRange)"};
    const std::tuple<std::function<bool()>, bool, Lines> rows[] = {
        {[&] { return range.isMember(&below); }, false, address + le},
        {[&] { return range.isMember(&above); }, false, address + le + ge},
        {[&] { return range.isMember(range.getEndAddress()); }, true, address + le + ge},
        {[&] { return range.isMember(null); }, false, address},
        {[&] { return six.isMember(null); }, false, address},
        {[&] { return none.isMember(&below); }, false, address},
        {[&] { return range.isMember(six); }, false, ranges},
        {[&] { return range.isMember(inner); }, true, ranges + le + ge},
        {[&] { return inner.isMember(range); }, true, ranges + le + ge + le},
        {[&] { return range.isMember(apart); }, false, ranges + le + ge + ge},
        {[&] { return range.isMember(none); }, false, ranges},
        {[&] { return none.isMember(none); }, false, ranges}};
    for (std::size_t row = 0; row < std::size(rows); ++row)
    {
        const auto& [ask, inside, trace] = rows[row];
        EXPECT_EQ(ask(), inside) << "row " << row;
        EXPECT_EQ(traced([&, &ask = ask, inside = inside] { EXPECT_EQ(ask(), inside); }), trace)
            << "row " << row;
    }
}

TEST_F(RangeTest, MoveTheirEnds)
{
    std::vector<KestaIPRange> ranges;
    for (const char* text : {"10.1.*.*", "2001:db8::/32", "192.0.2.7"})
        ranges.emplace_back(text);
    ranges[2] = KestaIPRange("::ffff:10.3.*.*");
    ranges[2] = std::move(ranges[2]);
    ranges.emplace_back(KestaIPRange());
    std::ostringstream out;
    out << ranges[0] << "; " << ranges[1] << "; " << ranges[2];
    EXPECT_EQ(out.str(), "10.1.0.0 - 10.1.255.255; 2001:db8:: - "
                         "2001:db8:ffff:ffff:ffff:ffff:ffff:ffff; 10.3.0.0 - 10.3.255.255");

    const KestaIPRange taken(std::move(ranges[0]));
    const KestaIPRange& left = ranges[0];
    EXPECT_EQ(std::tuple(left.getAddressFamily(), left.getStartAddress(), left.getEndAddress()),
        (std::tuple<int, KestaIPAddress*, KestaIPAddress*>(0, nullptr, nullptr)));
    EXPECT_EQ(taken.getAddressFamily(), KestaIPRange::KESTA_IPV4_FAMILY);
    EXPECT_EQ(ranges[1].getAddressFamily(), KestaIPRange::KESTA_IPV6_FAMILY);
    const KestaIPv4Address in("10.1.2.3");
    EXPECT_EQ(std::pair(taken.isMember(&in), left.isMember(&in)), std::pair(true, false));
    out.str("");
    out << left;
    EXPECT_EQ(out.str(), "");
}
