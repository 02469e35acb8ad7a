// fixed_host.cpp answers the library's system calls about its host.

#include "support.h"

#include "KestaIPRange.h"
#include "KestaIPUtilities.h"

#include <functional>
#include <memory>
#include <thread>

extern int freedLists;

using Utilities = KestaIPUtilities;

class UtilitiesTest : public TraceFixture
{
protected:
    ~UtilitiesTest() override { unsetenv("HOST_FAILS"), unsetenv("HOST_ADDRESSES"); }

    static Lines added(const std::string& family, const std::vector<std::string>& texts)
    {
        const bool is6 = family == "IPv6";
        const std::string add = "KestaIPUtilities::add" + family + "addressToArray";
        const std::string to = "KestaIPUtilities::convert" + family + "AddressToString()";
        const std::string query = "KestaIPUtilities::queryHostIP()- ";
        Lines all;
        for (const std::string& text : texts)
            all = all +
                  Lines{"FH:Entered " + add, (is6 ? "FH:In O" : "FH:In ") + to,
                      "FH:Out " + to + (is6 ? " " : ""),
                      query + "detected " + family + " address :-:" + text,
                      query + "adding " + family + " address to the list :-:" + text} +
                  (is6 ? parsed6 : parsed4) + Lines{"FH:" + add + ": Exiting "};
        return all;
    }

    /// The trace of a filter. "-" precedes an address that the class check refuses, "~" one that is
    /// dropped without a line.
    static Lines filtered(const std::string& family, const std::vector<std::string>& texts)
    {
        const std::string get = "KestaIPUtilities::getfiltered" + family + "Addresses";
        Lines all{"FH:Entered " + get};
        for (const std::string& text : texts)
        {
            all = all + checked(family, text[0] == '-');
            if (text[0] != '-' && text[0] != '~')
                all.push_back(
                    get + "()- adding filtered " + family + " address to the list :-:" + text);
        }
        return all + Lines{"FH:" + get + ": Exiting "};
    }

    CKestaArray<KestaIPv4Address> list4, kept4;
    CKestaArray<KestaIPv6Address> list6, kept6;
    const Lines pass4 = checked("IPv4", false);
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
        EXPECT_EQ(Utilities::StartWSA(), 0);
        EXPECT_EQ(Utilities::queryHostIP(nullptr, list6, list4), 0);
        Utilities::getfilteredIPv4Addresses(kept4, list4);
        for (unsigned i = 0; i < kept4.size(); ++i)
            EXPECT_EQ(range.isMember(&kept4.getAt(i)), i == 0);
        Utilities::EndWSA();
    };
    const Lines got = traced(request);
    const Lines made = rangeIn + parsed4 + parsed4 + ends("10.1.0.0", "10.1.255.255") +
                       screened("10.1.0.0", "10.1.255.255") + pass4 + pass4 + rangeOut;
    const Lines queried =
        queryIn + added("IPv4", {"127.0.0.1", "10.1.2.3", "169.254.1.1", "192.0.2.1", "0.0.0.0"}) +
        added("IPv6", {"::1", "fe80::1", "fec0::1", "fd00::1", "2600::1", "::2"}) +
        Lines{"FH:Unknown address family", "",
            "FH:KestaIPUtilities::getInterfaceAddresses: Exiting with Success",
            "FH:Out KestaIPUtilities::queryHostIP()"};
    const Lines asked = Lines{"FH:In KestaIPRange::isMember()"} + operated("IPv4", "<= ()") +
                        operated("IPv4", ">=()");
    EXPECT_EQ(got,
        made + wsa + queried +
            filtered("IPv4", {"~127.0.0.1", "10.1.2.3", "169.254.1.1", "192.0.2.1", "-0.0.0.0"}) +
            asked + asked + asked);
    std::string bytes;
    for (const std::string& line : got)
        bytes += (line.empty() ? "" : "[MSG]:") + line + "\n";
    EXPECT_EQ(log(), bytes);
    const Lines whole = messages();
    EXPECT_EQ(freedLists, 1);
    for (const std::string level : {"2", "3"})
    {
        configure("DEBUGLEVEL=" + level);
        traced(request);
        EXPECT_EQ(messages(), level == "2" ? Lines{} : whole) << level;
    }
}

TEST_F(UtilitiesTest, HostAndFilteredAddresses)
{
    const auto filter6 = [&] { Utilities::getfilteredIPv6Addresses(kept6, list6); };
    setenv("HOST_ADDRESSES", "10.1.2.3 ::1 fe80::1 fec0::1 0:0:1::1 2600::1 ::2", 1);
    Utilities::queryHostIP(nullptr, list6, list4);
    setExclusions(true, false, false);
    EXPECT_EQ(traced(filter6),
        filtered("IPv6", {"~::1", "-fe80::1", "fec0::1", "0:0:1::1", "2600::1", "-::2"}));
    setExclusions(false, true, false);
    EXPECT_EQ(traced(filter6),
        filtered("IPv6", {"~::1", "fe80::1", "-fec0::1", "0:0:1::1", "2600::1", "-::2"}));
    EXPECT_EQ(kept6.size(), 6u) << "appended";
    EXPECT_EQ(kept6.getAt(3).getStrAddress(), "fe80::1");
    Utilities::queryHostIP(nullptr, list6, list4);
    EXPECT_EQ(std::pair(list4.size(), list6.size()), std::pair(2UL, 12UL)) << "appended";
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
        osFailed{"setOSName :: Error number after executing uname :1",
            "FH:setOSName :: Error in getting OS Name", "Return code in setOSName :-1"},
        queryFailed{"KestaIPUtilities::getInterfaceAddresses: getifaddrs() call failed :Operation "
                    "not permitted",
            "KestaIPUtilities::queryHostIP()-getInterfaceAddresses() failed :Unable to detect IP "
            "address"};
    char name[1024] = "";
    CKestaString os("untouched");
    int result = 1;
    const auto askOs = [&] { result = Utilities::setOSName(os); };
    const auto askName = [&] { result = Utilities::queryHostName(name); };
    const auto askIP = [&] { result = Utilities::queryHostIP(nullptr, list6, list4); };
    const std::tuple<const char*, std::function<void()>, Lines, int> rows[] = {
        {"uname", askOs, osIn + osFailed + osOut, -1},
        {"gethostname", askName, nameIn + nameOut, -1},
        {"getifaddrs", askIP, queryIn + queryFailed, -1},
        {"none", askOs, osIn + osFound + osOut, 0},
        {"none", askName, nameIn + nameFound + nameOut, 0}};
    for (const auto& [failing, ask, trace, wantedResult] : rows)
    {
        setenv("HOST_FAILS", failing, 1);
        EXPECT_EQ(traced(ask), trace) << failing;
        EXPECT_EQ(result, wantedResult) << failing;
    }
    EXPECT_EQ(os, "Linux");
    EXPECT_STREQ(name, "castle");
}

// Each query, by a thread that is to be cancelled already. Untraced it is completed; traced, the
// thread ends at the first line, and leaves nothing behind that would stop an entry, here or in a
// child.
TEST_F(UtilitiesTest, CancelledThreads)
{
    if (addressSanitizer)
        GTEST_SKIP();
    char name[Utilities::KESTA_HOST_NAME_SIZE];
    CKestaString os;
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"queryHostIP", [&] { Utilities::queryHostIP(nullptr, list6, list4); }},
        {"getInterfaceAddresses", [&] { Utilities::getInterfaceAddresses(list4, list6); }},
        {"queryHostName", [&] { Utilities::queryHostName(name); }},
        {"setOSName", [&] { Utilities::setOSName(os); }},
        {"a range", [] { KestaIPRange("10.1.*.*"); }},
        {"a refused text", [] { errorOf([] { KestaIPRange("10.1.2.3.4"); }); }}};
    for (const auto& row : rows)
        for (const bool isTraced : {false, true})
        {
            bool completed = false, ended = true;
            std::thread(
                [&]
                {
                    if (isTraced)
                        initialize();
                    pthread_cancel(pthread_self());
                    row.second();
                    completed = true;
                    pthread_testcancel();
                    ended = false;
                })
                .join();
            EXPECT_EQ(std::pair(completed, ended), std::pair(!isTraced, true))
                << row.first << (isTraced ? ", traced" : "");
            if (isTraced)
                unInitialize();   // of the entry that the thread left behind
            const Lines wanted = traced(row.second);
            inChild([&] { EXPECT_EQ(traced(row.second), wanted) << row.first; });
        }
    EXPECT_EQ(list4.size() % 5, 0U) << "whole lists";
}

TEST_F(UtilitiesTest, Prefixes)
{
    const std::string f = "ffff:ffff:ffff:ffff:ffff:ffff", e = "2001:db8:ff80::1";
    const struct
    {
        std::string start;
        int length;
        std::string rest, end;   // the rest of the start, the end of the block
    } rows[] = {{e, -1, e, "ffff:ffff:" + f}, {e, 0, e, "ffff:ffff:" + f},
        {e, 32, "0:0:ff80::1", "2001:db8:" + f}, {e, 33, "0:0:7f80::1", "2001:db8:" + f},
        {e, 42, "::1", "2001:db8:ffbf:ffff:ffff:ffff:ffff:ffff"}, {e, 127, "::1", e},
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
        EXPECT_EQ(Utilities::ValidateIPv6StartAddress(sa, row.length), row.rest == "::");
        CKestaString rest;
        Utilities::convertIPv6AddressToString(sa, rest);
        EXPECT_EQ(rest, row.rest);
    }
    KestaIPAddress* end = nullptr;
    Utilities::InitialiseIPv6EndAddress(nullptr, &end, 0);
    EXPECT_EQ(end, nullptr);
    EXPECT_FALSE(Utilities::ValidateIPv6StartAddress(nullptr, 0));
}
