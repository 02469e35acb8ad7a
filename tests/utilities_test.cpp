// The system calls that the library makes about its host are answered here.

#include "support.h"

#include "KestaIPUtilities.h"

#include <cstring>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <sys/utsname.h>

static bool raisedPrivileges = false;
static int failing = 0;   // the errno of calls that are to fail
static ifaddrs* interfaces = nullptr;

extern "C" char* secure_getenv(const char* name) noexcept
{
    return raisedPrivileges ? nullptr : std::getenv(name);
}

extern "C" int getifaddrs(ifaddrs** result) noexcept
{
    *result = interfaces;
    return (errno = failing) ? -1 : 0;
}

extern "C" void freeifaddrs(ifaddrs*) noexcept {}

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

// Stands first: what the host has set counts for the rest of the process.
TEST(HostSetup, Parameters)
{
    const std::string longest(2047, 'x'), tooLong(2048, 'x');
    setenv("KESTA_INSTALLED_DIR", "/from/environment/", 1);
    unsetenv("KESTA_DATA_DIR");
    EXPECT_EQ(CKestaHostSetup::getParameter(1), "/from/environment/");
    EXPECT_EQ(CKestaHostSetup::getParameter(2), "/var/opt/fernhold/");
    raisedPrivileges = true;
    EXPECT_EQ(CKestaHostSetup::getParameter(1), "/opt/fernhold/");
    raisedPrivileges = false;
    setenv("KESTA_INSTALLED_DIR", tooLong.c_str(), 1);
    EXPECT_EQ(CKestaHostSetup::getParameter(1), "/opt/fernhold/");
    setenv("KESTA_INSTALLED_DIR", longest.c_str(), 1);
    EXPECT_FALSE(CKestaHostSetup::setParameter(1, tooLong));
    EXPECT_EQ(CKestaHostSetup::getParameter(1), longest);
    EXPECT_FALSE(CKestaHostSetup::setParameter(0, "x") || CKestaHostSetup::setParameter(3, "x"));
    EXPECT_EQ(CKestaHostSetup::getParameter(3), "");
    EXPECT_TRUE(CKestaHostSetup::setParameter(1, ""));
    EXPECT_EQ(CKestaHostSetup::getParameter(1), "") << "an empty text counts as set";
}

class UtilitiesTest : public TraceFixture
{
protected:
    // The interfaces of the host; "" is one without an address, "link" one of another family.
    UtilitiesTest()
    {
        const char* texts[] = {"link", "", "127.0.0.1", "::1", "192.168.1.5", "fe80::1"};
        for (const std::string text : texts)
        {
            auto& [entry, address] = entries[count];
            if (text == "link")
                address.ss_family = AF_PACKET;
            else if (text.find(':') != text.npos)
                address = KestaIPv6Address(text).getSockAddress();
            else if (!text.empty())
                address = KestaIPv4Address(text).getSockAddress();
            entry.ifa_addr = text.empty() ? nullptr : reinterpret_cast<sockaddr*>(&address);
            entry.ifa_next = ++count < std::size(texts) ? &entries[count].first : nullptr;
        }
        interfaces = &entries[0].first;
        failing = 0;
    }

    template <class Address>
    static std::string joined(const CKestaArray<Address>& list)
    {
        std::string text;
        for (unsigned i = 0; i < list.size(); ++i)
            text += list.getAt(i).getStrAddress() + " ";
        return text;
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

    std::pair<ifaddrs, sockaddr_storage> entries[6] = {};
    unsigned count = 0;
    CKestaArray<KestaIPv4Address> list4, kept4;
    CKestaArray<KestaIPv6Address> list6, kept6;
    const Lines queryIn{"FH:In KestaIPUtilities::queryHostIP()",
        "FH:Entered KestaIPUtilities::getInterfaceAddresses()"};
};

TEST_F(UtilitiesTest, HostAddresses)
{
    const Lines got = traced([&] { Utilities::queryHostIP(nullptr, list6, list4); });
    const Lines queryOut{"FH:KestaIPUtilities::getInterfaceAddresses: Exiting with Success",
        "FH:Out KestaIPUtilities::queryHostIP()"};
    const Lines other{"FH:Unknown address family", ""};
    EXPECT_EQ(got, queryIn + other + added("IPv4", "127.0.0.1") + added("IPv6", "::1") +
                       added("IPv4", "192.168.1.5") + added("IPv6", "fe80::1") + queryOut);
    EXPECT_EQ(Utilities::queryHostIP(nullptr, list6, list4), 0);
    EXPECT_EQ(joined(list4), "127.0.0.1 192.168.1.5 127.0.0.1 192.168.1.5 ");
    EXPECT_EQ(joined(list6), "::1 fe80::1 ::1 fe80::1 ");
}

TEST_F(UtilitiesTest, FilteredAddresses)
{
    Utilities::queryHostIP(nullptr, list6, list4);
    const std::string get4 = "KestaIPUtilities::getfilteredIPv4Addresses";
    const std::string get6 = "KestaIPUtilities::getfilteredIPv6Addresses";
    const Lines kept{get4 + "()- adding filtered IPv4 address to the list :-:192.168.1.5"};
    setExclusions(true, false, false);
    EXPECT_EQ(traced([&] { Utilities::getfilteredIPv4Addresses(kept4, list4); }),
        Lines{"FH:Entered " + get4} + checked("IPv4", false) + checked("IPv4", false) + kept +
            Lines{"FH:" + get4 + ": Exiting "});
    EXPECT_EQ(traced([&] { Utilities::getfilteredIPv6Addresses(kept6, list6); }),
        Lines{"FH:Entered " + get6} + checked("IPv6", false) + checked("IPv6", true) +
            Lines{"FH:" + get6 + ": Exiting "});
    EXPECT_EQ(joined(kept4) + joined(kept6), "192.168.1.5 ");
    setExclusions(false, false, false);
    Utilities::getfilteredIPv6Addresses(kept6, list6);
    EXPECT_EQ(joined(kept6), "fe80::1 ");
}

TEST_F(UtilitiesTest, NamesAndFailures)
{
    const Lines osIn{"FH:In KestaIPUtilities::setOSName()", "FH:Setting OS Name for Non-Windows"},
        osOut{"FH:Out KestaIPUtilities::setOSName()"},
        nameIn{"FH:In KestaIPUtilities::queryHostName()"},
        nameOut{"FH:Out KestaIPUtilities::queryHostName()"},
        nameFound{"KestaIPUtilities::queryHostName Local Host Name : :castle"},
        osFound{"Return code in setOSName :0", "OS name in objOSName :Linux",
            "OS name in bufHost.sysname :Linux"},
        osFailed{"setOSName :: Error number after executing uname :12",
            "FH:setOSName :: Error in getting OS Name", "Return code in setOSName :-1"},
        queryFailed{"KestaIPUtilities::getInterfaceAddresses: getifaddrs() call failed :Cannot "
                    "allocate memory",
            "KestaIPUtilities::queryHostIP()-getInterfaceAddresses() failed :Unable to detect IP "
            "address"},
        wsa{"FH:In KestaIPUtilities::StartWSA()", "FH:Out KestaIPUtilities::StartWSA()"};
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
    EXPECT_EQ(os + CKestaString(result) + joined(list4) + joined(list6), "untouched-3");
    failing = 0;
    EXPECT_EQ(traced(askOs), osIn + osFound + osOut);
    EXPECT_EQ(os, "Linux");
    EXPECT_EQ(traced([] { Utilities::StartWSA(), Utilities::EndWSA(); }), wsa);
}

TEST_F(UtilitiesTest, IPv6IsWrittenAsTheSystemWritesIt)
{
    for (unsigned bits = 0; bits < 3 * 256; ++bits)   // which of the eight groups are not zero
    {
        sockaddr_in6 sa{};
        for (int i = 0; i < 8; ++i)
            if (bits >> i & 1)
                sa.sin6_addr.s6_addr16[i] = htons(bits < 256 ? 1 : bits < 512 ? 0xabc : 0xffff);
        char want[INET6_ADDRSTRLEN];
        inet_ntop(AF_INET6, &sa.sin6_addr, want, sizeof want);
        CKestaString got;
        EXPECT_EQ(Utilities::convertIPv6AddressToString(&sa, got), 0);
        EXPECT_EQ(got, want);
    }
}

TEST_F(UtilitiesTest, PrefixStartAndEnd)
{
    const std::string f = ":ffff:ffff:ffff:ffff:ffff:ffff";
    const std::tuple<const char*, int, bool, std::string> rows[] = {
        {"2001:db8::", 32, true, "2001:db8" + f},
        {"2001:db8::1", 64, false, "2001:db8::ffff:ffff:ffff:ffff"},
        {"2001:a000::", 20, true, "2001:afff" + f}, {"2001:a800::", 20, false, "2001:afff" + f},
        {"::", 0, true, "ffff:ffff" + f}, {"8000::", 0, false, "ffff:ffff" + f},
        {"8000::", -9, false, "ffff:ffff" + f}, {"::1", 127, false, "::1"},
        {"::1", 128, true, "::1"}, {"::1", 1000, true, "::1"}};
    for (const auto& [start, length, valid, wantEnd] : rows)
    {
        sockaddr_storage storage = KestaIPv6Address(start).getSockAddress();
        auto* sa = reinterpret_cast<sockaddr_in6*>(&storage);
        KestaIPAddress* end = nullptr;
        Utilities::InitialiseIPv6EndAddress(sa, &end, length);
        const std::unique_ptr<KestaIPAddress> owner(end);
        const KestaIPv6Address want(wantEnd);
        EXPECT_TRUE(*end == &want) << start << "/" << length;
        EXPECT_EQ(end->getStrAddress(), wantEnd) << start << "/" << length;
        EXPECT_EQ(Utilities::ValidateIPv6StartAddress(sa, length), valid) << start << "/" << length;
        EXPECT_EQ(!!IN6_IS_ADDR_UNSPECIFIED(&sa->sin6_addr), valid) << "the prefix is cleared";
    }
    KestaIPAddress* untouched = nullptr;
    Utilities::InitialiseIPv6EndAddress(nullptr, &untouched, 0);
    EXPECT_EQ(untouched, nullptr);
    EXPECT_FALSE(Utilities::ValidateIPv6StartAddress(nullptr, 0));
}
