#include "KestaAddressNumber.h"
#include "KestaAddresses.h"
#include "KestaArgument.h"
#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaHostAddresses.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"
#include "KestaJson.h"
#include "KestaOutput.h"
#include "KestaRangeEntry.h"
#include "KestaTable.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

namespace
{

/// An address or a range that was tested, and the result.
struct CMember
{
    std::string strText;
    bool bInside;
};

// A dash may be part of a scope, too.
bool isRange(const std::string& strText)
{
    return strText.find_first_of("*/") != std::string::npos ||
           strText.substr(0, strText.find('%')).find('-') != std::string::npos;
}

// The library is asked where it can be, so that it traces.
bool isInside(const CKestaRangeArgument& range, const KestaIPAddress& address)
{
    const CKestaAddressInterval asked = intervalOf(address);
    if (range.pRange == nullptr || asked.bIPv6 != range.addresses.bIPv6)
        return contains(range.addresses, asked);
    return range.pRange->isMember(&address);
}

bool isInside(const CKestaRangeArgument& range, const std::string& strText)
{
    if (!isRange(strText))
        return isInside(range, *readAddressArgument(strText));
    const CKestaRangeArgument other = readRangeArgument(strText);
    if (range.pRange != nullptr && other.pRange != nullptr)
        return range.pRange->isMember(*other.pRange);
    return contains(range.addresses, other.addresses) || contains(other.addresses, range.addresses);
}

std::vector<CMember> judgeHost(const CKestaRangeArgument& range)
{
    const CKestaHostAddresses host;
    std::vector<CMember> members;
    const auto judge = [&](const auto& addresses)
    {
        for (unsigned int u = 0; u < addresses.size(); ++u)
            members.push_back({textOf(addresses.getAt(u)), isInside(range, addresses.getAt(u))});
    };
    if (range.addresses.bIPv6)
        judge(host.filteredIPv6());
    else
        judge(host.filteredIPv4());
    return members;
}

// The one text that hosts read as a range of just these addresses; empty if there is none.
std::string rangeText(const CKestaAddressInterval& addresses)
{
    const std::vector<std::string> blocks = blocksOf(addresses);
    if (blocks.size() > 1)
        return "";
    const std::size_t ulSlash = blocks.front().find('/');
    const std::string strLength = blocks.front().substr(ulSlash);
    if (addresses.bIPv6 && addresses.first >> 32 == 0xFFFF)   // a text with dots would be IPv4
    {
        const auto uIPv4 = static_cast<KestaIPv4Number>(addresses.first);
        char szGroups[] = "::ffff:xxxx:xxxx";
        std::snprintf(szGroups, sizeof szGroups, "::ffff:%x:%x", uIPv4 >> 16, uIPv4 & 0xFFFF);
        return szGroups + strLength;
    }
    if (addresses.bIPv6)
        return blocks.front();
    const int iLength = std::stoi(strLength.substr(1));
    std::string strText = blocks.front().substr(0, ulSlash);
    for (int iStars = iLength; iStars < 32; iStars += 8)
        strText.erase(strText.rfind('.'));
    for (int iStars = iLength; iStars < 32; iStars += 8)
        strText += ".*";
    return iLength % 8 == 0 ? strText : "";
}

// Says so where the command takes a text that hosts don't.
std::string noteOn(const CKestaRangeArgument& range)
{
    if (range.pRange != nullptr)
        return "";
    const std::string strNote = "hosts can't read this text as a range; ";
    const CKestaAddressInterval& addresses = range.addresses;
    const bool bCompatible = addresses.bIPv6 && addresses.first >> 32 == 0 && addresses.first != 1;
    if (addresses.first == 0 || bCompatible)
        return strNote + "they refuse those that begin with " +
               addressText(addresses.bIPv6, addresses.first);
    const std::string strText = rangeText(addresses);
    return strNote + "write " + (strText.empty() ? "several ranges" : strText);
}

class CRangeCommand : public CKestaCommand
{
public:
    explicit CRangeCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    void printBlocks(CKestaOutput& output) const;
    std::vector<CMember> judgeArguments(const CKestaRangeArgument& range) const;
    void print(const CKestaRangeArgument& range, const std::vector<CMember>& members,
               CKestaOutput& output) const;
    void printAsJson(const CKestaRangeArgument& range, const std::vector<CMember>& members,
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
          "excluded classes are refused. The command also takes 10.0.0.0/8 and\n"
          "10.1.2.7-10.1.2.99, which hosts can't read; it then says so.\n\n"
          "Exit status: 0 if something is inside, 1 if nothing is, 2 after an error")
{
    m_app.add_option("TEXT", m_strRange, "The range")->type_name("")->required();
    m_app
        .add_option("ADDRESS|RANGE", m_arguments,
                    "Addresses and ranges to test; a text with \"*\", \"/\" or \"-\" is a range")
        ->type_name("");
    m_app.add_option("--exclude", m_strExcluded, exclusionHelp())->type_name("CLASSES");
    CLI::Option* const pJson = m_app.add_flag("--json", m_bJson, "Write JSON");
    m_app
        .add_flag("--cidr", m_bCidr,
                  "Print only the shortest list of CIDR blocks that covers all arguments")
        ->excludes(pJson);
}

int CRangeCommand::run(CKestaOutput& output)
{
    if (has("--exclude"))
        excludeClasses(m_strExcluded);
    if (m_bCidr)
    {
        printBlocks(output);
        return iStatusYes;
    }
    const CKestaRangeArgument range = readRangeArgument(m_strRange);
    const std::vector<CMember> members =
        m_arguments.empty() ? judgeHost(range) : judgeArguments(range);
    if (m_bJson)
        printAsJson(range, members, output);
    else
        print(range, members, output);
    const bool bSomeInside = std::any_of(members.begin(), members.end(),
                                         [](const CMember& member) { return member.bInside; });
    return bSomeInside ? iStatusYes : iStatusNo;
}

void CRangeCommand::printBlocks(CKestaOutput& output) const
{
    std::vector<CKestaAddressInterval> intervals{readRangeArgument(m_strRange).addresses};
    for (const std::string& strArgument : m_arguments)
        intervals.push_back(readRangeArgument(strArgument).addresses);
    for (const CKestaAddressInterval& interval : joined(intervals))
    {
        for (const std::string& strBlock : blocksOf(interval))
            output.write(strBlock + "\n");
    }
}

std::vector<CMember> CRangeCommand::judgeArguments(const CKestaRangeArgument& range) const
{
    std::vector<CMember> members;
    for (const std::string& strArgument : m_arguments)
        members.push_back({strArgument, isInside(range, strArgument)});
    return members;
}

void CRangeCommand::print(const CKestaRangeArgument& range, const std::vector<CMember>& members,
                          CKestaOutput& output) const
{
    const CKestaAddressInterval& interval = range.addresses;
    CKestaTable table;
    const auto tell = [&table](const char* pszWhat, const std::string& strValue)
    {
        table.add(CKestaTable::EColour::plain, {pszWhat, strValue});
    };
    tell("family", familyOf(interval));
    tell("start", addressText(interval.bIPv6, interval.first));
    tell("end", addressText(interval.bIPv6, interval.last));
    tell("addresses", sizeOf(interval));
    tell("class", classOf(interval));
    for (const std::string& strBlock : blocksOf(interval))
        tell("block", strBlock);
    if (const std::string strNote = noteOn(range); !strNote.empty())
        tell("note", strNote);
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

void CRangeCommand::printAsJson(const CKestaRangeArgument& range,
                                const std::vector<CMember>& members, CKestaOutput& output) const
{
    const CKestaAddressInterval& interval = range.addresses;
    CKestaJson asked = CKestaJson::array();
    for (const CMember& member : members)
        asked.push_back({{"text", member.strText}, {"inside", member.bInside}});
    CKestaJson json{{"range", m_strRange},
                    {"family", familyOf(interval)},
                    {"start", addressText(interval.bIPv6, interval.first)},
                    {"end", addressText(interval.bIPv6, interval.last)},
                    {"addresses", sizeOf(interval)},   // many readers lose digits above 2^53
                    {"class", classOf(interval)},
                    {"blocks", blocksOf(interval)},
                    {"asked", m_arguments.empty() ? "host" : "arguments"},
                    {"members", asked}};
    if (const std::string strNote = noteOn(range); !strNote.empty())
        json["note"] = strNote;
    printJson(json, output);
}

}   // namespace

std::unique_ptr<CKestaCommand> makeRangeCommand(CLI::App& root)
{
    return std::make_unique<CRangeCommand>(root);
}
