// The system calls that the library makes about its host are answered here.

#include "support.h"

#include "KestaIPRange.h"
#include "KestaIPUtilities.h"

#include <cstring>

#include <ifaddrs.h>
#include <sys/utsname.h>

static int failing = 0;   // the errno of calls that are to fail
static ifaddrs* interfaces = nullptr;

extern "C" int getifaddrs(ifaddrs** result) noexcept
{
    *result = interfaces;
    return (errno = failing) ? -1 : 0;
}

static int freed = 0;

extern "C" void freeifaddrs(ifaddrs* list) noexcept { freed += list == interfaces; }

extern "C" int gethostname(char* name, size_t) noexcept
{
    std::strcpy(name, "castle");
    return failing ? -1 : 0;
}

extern "C" int uname(utsname* answer) noexcept
{
    std::strcpy(answer->sysname, "Linux");
    return (errno = failing) ? -1 : 0;
}

using Utilities = KestaIPUtilities;

static std::string socketText(const sockaddr_in6& address)
{
    CKestaString text;
    Utilities::convertIPv6AddressToString(&address, text);
    return text;
}

class UtilitiesTest : public TraceFixture
{
protected:
    // After these, one interface has an address of no known family, and one none at all.
    UtilitiesTest()
    {
        const char* texts[] = {"127.0.0.1", "::1", "10.1.2.3", "fe80::1", "192.168.1.5"};
        for (int i = 0; i < 6; ++i)
        {
            if (i < 5)
                addresses[i] = socketOf(texts[i]);
            entries[i].ifa_addr = reinterpret_cast<sockaddr*>(&addresses[i]);
            entries[i].ifa_next = &entries[i + 1];
        }
        interfaces = entries;
    }

    static Lines added(const std::string& family, const std::string& text)
    {
        const bool is6 = family == "IPv6";
        const std::string add = "KestaIPUtilities::add" + family + "addressToArray";
        const std::string to = "KestaIPUtilities::convert" + family + "AddressToString()";
        const std::string query = "KestaIPUtilities::queryHostIP()- ";
        return Lines{"FH:Entered " + add, (is6 ? "FH:In O" : "FH:In ") + to,
                   "FH:Out " + to + (is6 ? " " : ""),
                   query + "detected " + family + " address :-:" + text,
                   query + "adding " + family + " address to the list :-:" + text} +
               (is6 ? parsed6 : parsed4) + Lines{"FH:" + add + ": Exiting "};
    }

    ifaddrs entries[7] = {};
    sockaddr_storage addresses[6] = {};
    CKestaArray<KestaIPv4Address> list4, kept4;
    CKestaArray<KestaIPv6Address> list6, kept6;
    const Lines pass4 = checked("IPv4", false), pass6 = checked("IPv6", false);
    const Lines wsa{"FH:In KestaIPUtilities::StartWSA()", "FH:Out KestaIPUtilities::StartWSA()"};
    const Lines queryIn{"FH:In KestaIPUtilities::queryHostIP()",
        "FH:Entered KestaIPUtilities::getInterfaceAddresses()"};
};

TEST_F(UtilitiesTest, TypicalRequest)
{
    const auto request = [&]
    {
        list4.removeAll(), list6.removeAll(), kept4.removeAll();
        const KestaIPRange range("10.1.*.*");
        Utilities::StartWSA();
        Utilities::queryHostIP(nullptr, list6, list4);
        Utilities::getfilteredIPv4Addresses(kept4, list4);
        for (unsigned i = 0; i < kept4.size(); ++i)
            EXPECT_EQ(range.isMember(&kept4.getAt(i)), i == 0);
        Utilities::EndWSA();
    };
    const Lines got = traced(request);
    const Lines made = rangeIn + parsed4 + parsed4 + ends("10.1.0.0", "10.1.255.255") +
                       screened("10.1.0.0", "10.1.255.255") + pass4 + pass4 + rangeOut;
    const Lines queried = queryIn + added("IPv4", "127.0.0.1") + added("IPv6", "::1") +
                          added("IPv4", "10.1.2.3") + added("IPv6", "fe80::1") +
                          added("IPv4", "192.168.1.5") +
                          Lines{"FH:Unknown address family", "",
                              "FH:KestaIPUtilities::getInterfaceAddresses: Exiting with Success",
                              "FH:Out KestaIPUtilities::queryHostIP()"};
    const std::string get4 = "KestaIPUtilities::getfilteredIPv4Addresses";
    const std::string adding = get4 + "()- adding filtered IPv4 address to the list :-:";
    const Lines filtered = Lines{"FH:Entered " + get4} + pass4 + pass4 +
                           Lines{adding + "10.1.2.3"} + pass4 + Lines{adding + "192.168.1.5"} +
                           Lines{"FH:" + get4 + ": Exiting "};
    const Lines asked = Lines{"FH:In KestaIPRange::isMember()"} + operated("IPv4", "<= ()") +
                        operated("IPv4", ">=()");
    EXPECT_EQ(got, made + wsa + queried + filtered + asked + asked);
    std::string bytes;
    for (const std::string& line : got)
        bytes += (line.empty() ? "" : "[MSG]:") + line + "\n";
    EXPECT_EQ(log(), bytes);
    const Lines whole = messages();
    EXPECT_EQ(freed, 1);
    for (const std::string level : {"2", "3"})
    {
        configure("DEBUGLEVEL=" + level);
        traced(request);
        EXPECT_EQ(messages(), level == "2" ? Lines{} : whole) << level;
    }
}

TEST_F(UtilitiesTest, HostAndFilteredAddresses)
{
    const std::string get6 = "KestaIPUtilities::getfilteredIPv6Addresses";
    const Lines in{"FH:Entered " + get6}, out{"FH:" + get6 + ": Exiting "},
        adding{get6 + "()- adding filtered IPv6 address to the list :-:fe80::1"};
    const auto filter6 = [&] { Utilities::getfilteredIPv6Addresses(kept6, list6); };
    EXPECT_EQ(Utilities::queryHostIP(nullptr, list6, list4), 0);
    setExclusions(true, false, false);
    EXPECT_EQ(traced(filter6), in + pass6 + checked("IPv6", true) + out);
    setExclusions(false, true, false);
    EXPECT_EQ(traced(filter6), in + pass6 + pass6 + adding + out);
    ASSERT_EQ(kept6.size(), 1u);
    EXPECT_EQ(kept6.getAt(0).getStrAddress(), "fe80::1");
    EXPECT_EQ(Utilities::queryHostIP(nullptr, list6, list4), 0);
    EXPECT_EQ(std::pair(list4.size(), list6.size()), std::pair(6UL, 4UL)) << "appended";
}

TEST_F(UtilitiesTest, NamesAndFailures)
{
    const std::string osName = "KestaIPUtilities::setOSName()",
                      hostName = "KestaIPUtilities::queryHostName()";
    const Lines osIn{"FH:In " + osName, "FH:Setting OS Name for Non-Windows"},
        osOut{"FH:Out " + osName}, nameIn{"FH:In " + hostName}, nameOut{"FH:Out " + hostName},
        nameFound{"KestaIPUtilities::queryHostName Local Host Name : :castle"},
        osFound{"Return code in setOSName :0", "OS name in objOSName :Linux",
            "OS name in bufHost.sysname :Linux"},
        osFailed{"setOSName :: Error number after executing uname :12",
            "FH:setOSName :: Error in getting OS Name", "Return code in setOSName :-1"},
        queryFailed{"KestaIPUtilities::getInterfaceAddresses: getifaddrs() call failed :Cannot "
                    "allocate memory",
            "KestaIPUtilities::queryHostIP()-getInterfaceAddresses() failed :Unable to detect IP "
            "address"};
    char name[1024];
    CKestaString os("untouched");
    int result = 0;
    const auto askOs = [&] { result += Utilities::setOSName(os); };
    const auto askName = [&] { result += Utilities::queryHostName(name); };
    EXPECT_EQ(traced(askName), nameIn + nameFound + nameOut);
    failing = ENOMEM;
    EXPECT_EQ(traced(askOs), osIn + osFailed + osOut);
    EXPECT_EQ(traced(askName), nameIn + nameOut);
    EXPECT_EQ(traced([&] { result += Utilities::queryHostIP(nullptr, list6, list4); }),
        queryIn + queryFailed);
    EXPECT_EQ(os + CKestaString(result), "untouched-3");
    failing = 0;
    EXPECT_EQ(traced(askOs), osIn + osFound + osOut);
    EXPECT_EQ(os, "Linux");
}

TEST_F(UtilitiesTest, Prefixes)
{
    const std::string f = "ffff:ffff:ffff:ffff:ffff:ffff", e = "2001:db8:ff80::1";
    const struct
    {
        std::string start;
        int length;
        std::string rest, end;   // of the start, and of the block
    } rows[] = {{e, -1, e, "ffff:ffff:" + f}, {e, 0, e, "ffff:ffff:" + f},
        {e, 32, "0:0:ff80::1", "2001:db8:" + f}, {e, 33, "0:0:7f80::1", "2001:db8:" + f},
        {e, 42, "0:0:0:0:0:0:0:1", "2001:db8:ffbf:ffff:ffff:ffff:ffff:ffff"}, {e, 127, "::1", e},
        {e, 128, "::", e}, {e, 129, "::", e}, {"::", 0, "::", "ffff:ffff:" + f}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.start + " " + std::to_string(row.length));
        sockaddr_storage storage = socketOf(row.start);
        auto* sa = reinterpret_cast<sockaddr_in6*>(&storage);
        KestaIPAddress* made = nullptr;
        Utilities::InitialiseIPv6EndAddress(sa, &made, row.length);
        const std::unique_ptr<KestaIPAddress> end(made);
        EXPECT_EQ(end->getStrAddress(), row.end);
        EXPECT_TRUE(KestaIPv6Address(row.end) == end.get());
        const bool isStart = Utilities::ValidateIPv6StartAddress(sa, row.length);
        EXPECT_EQ(isStart, socketText(*sa) == "::");
        EXPECT_TRUE(KestaIPv6Address(row.rest) == KestaIPv6Address(socketText(*sa)));
    }
    KestaIPAddress* end = nullptr;
    Utilities::InitialiseIPv6EndAddress(nullptr, &end, 0);
    EXPECT_EQ(end, nullptr);
    EXPECT_FALSE(Utilities::ValidateIPv6StartAddress(nullptr, 0));
}
