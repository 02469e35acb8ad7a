#include "KestaAddresses.h"
#include "KestaArgument.h"
#include "KestaArray.h"
#include "KestaCommand.h"
#include "KestaCommands.h"
#include "KestaHostAddresses.h"
#include "KestaIPUtilities.h"
#include "KestaJson.h"
#include "KestaOutput.h"
#include "KestaRangeEntry.h"
#include "KestaString.h"
#include "KestaTable.h"
#include "KestaToolError.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <vector>

namespace
{

struct CHost
{
    struct CEntry
    {
        std::string strAddress;
        std::string strFamily;
        std::string strClass;
        bool bKept;
    };

    std::string strName;
    std::string strSystem;
    std::vector<CEntry> entries;

    // The filter keeps the order, and keeps either all or none of several equal addresses.
    template <class TAddress>
    void add(const CKestaArray<TAddress>& all, const CKestaArray<TAddress>& kept)
    {
        unsigned int uKept = 0;
        for (unsigned int u = 0; u < all.size(); ++u)
        {
            const TAddress& address = all.getAt(u);
            const bool bKept = uKept < kept.size() && textOf(kept.getAt(uKept)) == textOf(address);
            uKept += bKept;
            entries.push_back({textOf(address), familyOf(intervalOf(address)),
                               classOf(intervalOf(address)), bKept});
        }
    }
};

std::string hostName()
{
    char szName[KestaIPUtilities::KESTA_HOST_NAME_SIZE];
    if (KestaIPUtilities::queryHostName(szName) != 0)
        throw CKestaToolError(systemError("cannot determine the host name", errno));
    return szName;
}

std::string systemName()
{
    CKestaString strName;
    if (KestaIPUtilities::setOSName(strName) != 0)
        throw CKestaToolError(systemError("cannot determine the operating system's name", errno));
    return strName;
}

class CHostCommand : public CKestaCommand
{
public:
    explicit CHostCommand(CLI::App& root);

    int run(CKestaOutput& output) override;

private:
    static void print(const CHost& host, CKestaOutput& output);
    static void printAsJson(const CHost& host, CKestaOutput& output);

    std::string m_strExcluded;
    bool m_bJson = false;
};

CHostCommand::CHostCommand(CLI::App& root)
    : CKestaCommand(root, "host", "Show the host's name, system and addresses",
                    "Shows every interface address with its family, its class, and whether the\n"
                    "filter keeps it. The filter drops loopback, unspecified and IPv4-compatible\n"
                    "addresses, and the classes given with --exclude.")
{
    m_app.add_option("--exclude", m_strExcluded, exclusionHelp())->type_name("CLASSES");
    m_app.add_flag("--json", m_bJson, "Write JSON");
}

int CHostCommand::run(CKestaOutput& output)
{
    if (has("--exclude"))
        excludeClasses(m_strExcluded);
    const CKestaHostAddresses addresses;
    CHost host{hostName(), systemName(), {}};
    host.add(addresses.ipv4(), addresses.filteredIPv4());
    host.add(addresses.ipv6(), addresses.filteredIPv6());
    if (m_bJson)
        printAsJson(host, output);
    else
        print(host, output);
    return iStatusYes;
}

void CHostCommand::print(const CHost& host, CKestaOutput& output)
{
    CKestaTable names;
    names.add(CKestaTable::EColour::plain, {"host", host.strName});
    names.add(CKestaTable::EColour::plain, {"system", host.strSystem});
    names.print(output);
    output.write("\n");

    CKestaTable table;
    table.add(CKestaTable::EColour::heading, {"ADDRESS", "FAMILY", "CLASS", "FILTER"});
    for (const CHost::CEntry& entry : host.entries)
        table.add(
            entry.bKept ? CKestaTable::EColour::good : CKestaTable::EColour::bad,
            {entry.strAddress, entry.strFamily, entry.strClass, entry.bKept ? "kept" : "dropped"});
    table.print(output);
}

void CHostCommand::printAsJson(const CHost& host, CKestaOutput& output)
{
    CKestaJson addresses = CKestaJson::array();
    for (const CHost::CEntry& entry : host.entries)
        addresses.push_back({{"address", entry.strAddress},
                             {"family", entry.strFamily},
                             {"class", entry.strClass},
                             {"kept", entry.bKept}});
    printJson({{"host", host.strName}, {"system", host.strSystem}, {"addresses", addresses}},
              output);
}

}   // namespace

std::unique_ptr<CKestaCommand> makeHostCommand(CLI::App& root)
{
    return std::make_unique<CHostCommand>(root);
}
