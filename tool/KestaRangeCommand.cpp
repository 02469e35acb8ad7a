#include "KestaAddressText.h"
#include "KestaArgument.h"
#include "KestaCommands.h"
#include "KestaExclusion.h"
#include "KestaHostAddresses.h"
#include "KestaJson.h"
#include "KestaTable.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace
{

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
    // The library compares like with like only.
    const bool bSameFamily = isIPv6(range) == (pAddress->viewSockAddress().ss_family == AF_INET6);
    return bSameFamily && range.isMember(pAddress.get());
}

class CRangeCommand : public CKestaCommand
{
public:
    explicit CRangeCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    struct CMember
    {
        std::string strText;
        bool bInside;
    };

    std::vector<CMember> judgeArguments(const KestaIPRange& range) const;
    static std::vector<CMember> judgeHost(const KestaIPRange& range);
    static void print(const KestaIPRange& range, const std::vector<CMember>& members,
                      CKestaOutput& output);
    void printAsJson(const KestaIPRange& range, const std::vector<CMember>& members,
                     CKestaOutput& output) const;

    std::string m_strRange;
    std::vector<std::string> m_arguments;
    std::string m_strExcluded;
    bool m_bJson = false;
};

CRangeCommand::CRangeCommand(CLI::App& root)
    : CKestaCommand(root, "range", "Tell whether addresses and ranges lie inside a range",
                    "Prints the family and both ends of the range, then for each argument whether "
                    "it is inside.\nWithout arguments it asks for this host's own addresses of the "
                    "range's family.\nOf two ranges, it does not matter which contains the other."
                    "\n\nRanges: 10.1.2.3, 10.1.*.*, ::ffff:10.1.*.*, 2001:db8::1, 2001:db8::/32, "
                    "2001:db8:1*\nExit status: 0 when something is inside, 1 when nothing is, 2 "
                    "after an error")
{
    m_app.add_option("TEXT", m_strRange, "The range")->type_name("")->required();
    m_app
        .add_option("ADDRESS|RANGE", m_arguments,
                    "What to ask for; a text with \"*\" or \"/\" is a range")
        ->type_name("");
    m_app.add_option("--exclude", m_strExcluded, szExclusionHelp)->type_name("CLASSES");
    m_app.add_flag("--json", m_bJson, "Write JSON");
}

int CRangeCommand::run(CKestaOutput& output)
{
    if (has("--exclude"))
        excludeClasses(m_strExcluded);
    const std::unique_ptr<KestaIPRange> pRange = readRange(m_strRange);
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

std::vector<CRangeCommand::CMember> CRangeCommand::judgeArguments(const KestaIPRange& range) const
{
    std::vector<CMember> members;
    for (const std::string& strArgument : m_arguments)
        members.push_back({strArgument, isInside(range, strArgument)});
    return members;
}

std::vector<CRangeCommand::CMember> CRangeCommand::judgeHost(const KestaIPRange& range)
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

void CRangeCommand::print(const KestaIPRange& range, const std::vector<CMember>& members,
                          CKestaOutput& output)
{
    CKestaTable table;
    table.add(CKestaTable::EColour::plain, {"family", familyOf(*range.getStartAddress())});
    table.add(CKestaTable::EColour::plain, {"start", textOf(*range.getStartAddress())});
    table.add(CKestaTable::EColour::plain, {"end", textOf(*range.getEndAddress())});
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
    CKestaJson asked = CKestaJson::array();
    for (const CMember& member : members)
        asked.push_back({{"text", member.strText}, {"inside", member.bInside}});
    printJson({{"range", m_strRange},
               {"family", familyOf(*range.getStartAddress())},
               {"start", textOf(*range.getStartAddress())},
               {"end", textOf(*range.getEndAddress())},
               {"asked", m_arguments.empty() ? "host" : "arguments"},
               {"members", asked}},
              output);
}

}   // namespace

std::unique_ptr<CKestaCommand> makeRangeCommand(CLI::App& root)
{
    return std::make_unique<CRangeCommand>(root);
}
