#include "KestaAddresses.h"
#include "KestaArgument.h"
#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaHostAddresses.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"
#include "KestaJson.h"
#include "KestaOutput.h"
#include "KestaRangeArgument.h"
#include "KestaTable.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

#include <sys/socket.h>

namespace
{

/// An address or a range that was tested, and the result.
struct CMember
{
    std::string strText;
    bool bInside;
};

bool isRange(const std::string& strText)
{
    return strText.find_first_of("*/") != std::string::npos;
}

bool isIPv6(const KestaIPRange& range)
{
    return range.getAddressFamily() == KestaIPRange::KESTA_IPV6_FAMILY;
}

bool isInside(const KestaIPRange& range, const std::string& strText)
{
    if (isRange(strText))
        return range.isMember(*readRange(strText));
    const std::unique_ptr<KestaIPAddress> pAddress = readAddressArgument(strText);
    // The library does not compare the families.
    const bool bSameFamily = isIPv6(range) == (pAddress->viewSockAddress().ss_family == AF_INET6);
    return bSameFamily && range.isMember(pAddress.get());
}

std::vector<CMember> judgeHost(const KestaIPRange& range)
{
    const CKestaHostAddresses host;
    std::vector<CMember> members;
    const auto judge = [&](const auto& addresses)
    {
        for (unsigned int u = 0; u < addresses.size(); ++u)
            members.push_back({textOf(addresses.getAt(u)), range.isMember(&addresses.getAt(u))});
    };
    if (isIPv6(range))
        judge(host.filteredIPv6());
    else
        judge(host.filteredIPv4());
    return members;
}

class CRangeCommand : public CKestaCommand
{
public:
    explicit CRangeCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    std::vector<CMember> judgeArguments(const KestaIPRange& range) const;
    void print(const KestaIPRange& range, const std::vector<CMember>& members,
               CKestaOutput& output) const;
    void printAsJson(const KestaIPRange& range, const std::vector<CMember>& members,
                     CKestaOutput& output) const;

    std::string m_strRange;
    std::vector<std::string> m_arguments;
    std::string m_strExcluded;
    bool m_bJson = false;
    bool m_bCidr = false;
};

CRangeCommand::CRangeCommand(CLI::App& root)
    : CKestaCommand(
          root, "range", "Describe a range; test addresses and ranges against it",
          "Prints the family of the range, its first and last address, the number and the\n"
          "class of its addresses, and the shortest list of CIDR blocks that holds exactly\n"
          "these addresses; then, for each argument, whether it is inside. Without\n"
          "arguments the addresses of this host are tested. A range is inside when either\n"
          "of the two ranges contains the other.\n\n"
          "Ranges: 10.1.2.3, 10.1.*.*, ::ffff:10.1.*.*, 2001:db8::1, 2001:db8:1* and\n"
          "2001:db8::/32 (the first address of the block). 0.0.0.0, :: and addresses of\n"
          "excluded classes are refused.\n\n"
          "Exit status: 0 if something is inside, 1 if nothing is, 2 after an error")
{
    m_app.add_option("TEXT", m_strRange, "The range")->type_name("")->required();
    CLI::Option* const pArguments =
        m_app
            .add_option("ADDRESS|RANGE", m_arguments,
                        "Addresses and ranges to test; a text with \"*\" or \"/\" is a range")
            ->type_name("");
    m_app.add_option("--exclude", m_strExcluded, exclusionHelp())->type_name("CLASSES");
    CLI::Option* const pJson = m_app.add_flag("--json", m_bJson, "Write JSON");
    m_app.add_flag("--cidr", m_bCidr, "Print only the CIDR blocks of the range, one per line")
        ->excludes(pArguments)
        ->excludes(pJson);
}

int CRangeCommand::run(CKestaOutput& output)
{
    if (has("--exclude"))
        excludeClasses(m_strExcluded);
    const std::unique_ptr<KestaIPRange> pRange = readRange(m_strRange);
    if (m_bCidr)
    {
        for (const std::string& strBlock : blocksOf(intervalOf(*pRange)))
            output.write(strBlock + "\n");
        return iStatusYes;
    }
    const std::vector<CMember> members =
        m_arguments.empty() ? judgeHost(*pRange) : judgeArguments(*pRange);
    if (m_bJson)
        printAsJson(*pRange, members, output);
    else
        print(*pRange, members, output);
    const bool bSomeInside = std::any_of(members.begin(), members.end(),
                                         [](const CMember& member) { return member.bInside; });
    return bSomeInside ? iStatusYes : iStatusNo;
}

std::vector<CMember> CRangeCommand::judgeArguments(const KestaIPRange& range) const
{
    std::vector<CMember> members;
    for (const std::string& strArgument : m_arguments)
        members.push_back({strArgument, isInside(range, strArgument)});
    return members;
}

void CRangeCommand::print(const KestaIPRange& range, const std::vector<CMember>& members,
                          CKestaOutput& output) const
{
    const CKestaAddressInterval interval = intervalOf(range);
    CKestaTable table;
    const auto tell = [&table](const char* pszWhat, const std::string& strValue)
    {
        table.add(CKestaTable::EColour::plain, {pszWhat, strValue});
    };
    tell("family", familyOf(*range.getStartAddress()));
    tell("start", textOf({interval.bIPv6, interval.first}));
    tell("end", textOf({interval.bIPv6, interval.last}));
    tell("addresses", sizeOf(interval));
    tell("class", classOf(interval));
    for (const std::string& strBlock : blocksOf(interval))
        tell("block", strBlock);
    if (m_arguments.empty())
        tell("tested", members.empty() ? "no address of this host" : "addresses of this host");
    for (const CMember& member : members)
    {
        if (member.bInside)
            table.add(CKestaTable::EColour::good, {"inside", member.strText});
        else
            table.add(CKestaTable::EColour::bad, {"outside", member.strText});
    }
    table.print(output);
}

void CRangeCommand::printAsJson(const KestaIPRange& range, const std::vector<CMember>& members,
                                CKestaOutput& output) const
{
    const CKestaAddressInterval interval = intervalOf(range);
    CKestaJson asked = CKestaJson::array();
    for (const CMember& member : members)
        asked.push_back({{"text", member.strText}, {"inside", member.bInside}});
    printJson({{"range", m_strRange},
               {"family", familyOf(*range.getStartAddress())},
               {"start", textOf({interval.bIPv6, interval.first})},
               {"end", textOf({interval.bIPv6, interval.last})},
               {"addresses", sizeOf(interval)},   // a text: many readers lose digits above 2^53
               {"class", classOf(interval)},
               {"blocks", blocksOf(interval)},
               {"asked", m_arguments.empty() ? "host" : "arguments"},
               {"members", asked}},
              output);
}

}   // namespace

std::unique_ptr<CKestaCommand> makeRangeCommand(CLI::App& root)
{
    return std::make_unique<CRangeCommand>(root);
}
