#include "KestaExclusion.h"

#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

const char szExclusionHelp[] = "Exclude these classes of addresses, parted by commas: loopback, "
                               "multicast, link-local, site-local";

namespace
{

struct CAddressClass
{
    const char* pszName;
    bool* pIPv4Flag;
    bool* pIPv6Flag;
};

const CAddressClass addressClasses[] = {
    {"loopback", &KestaIPv4Address::m_bIPv4LoopBack, &KestaIPv6Address::m_bIPv6LoopBack},
    {"multicast", &KestaIPv4Address::m_bIPv4MutliCast, &KestaIPv6Address::m_bIPv6MutliCast},
    {"link-local", &KestaIPv4Address::m_bIPv4LinkLocal, &KestaIPv6Address::m_bIPv6LinkLocal},
    {"site-local", &KestaIPv4Address::m_bIPv4SiteLocal, &KestaIPv6Address::m_bIPv6SiteLocal},
};

const CAddressClass& findClass(std::string_view name)
{
    const auto itClass =
        std::find_if(std::begin(addressClasses), std::end(addressClasses),
                     [name](const CAddressClass& known) { return name == known.pszName; });
    if (itClass == std::end(addressClasses))
        throw CKestaToolError("--exclude: no class " + inQuotes(name) +
                              "; there are loopback, multicast, link-local and site-local");
    return *itClass;
}

}   // namespace

void excludeClasses(const std::string& strClasses)
{
    std::vector<const CAddressClass*> excluded;
    std::size_t ulComma;
    for (std::size_t ulName = 0; ulName <= strClasses.size(); ulName = ulComma + 1)
    {
        ulComma = std::min(strClasses.find(',', ulName), strClasses.size());
        excluded.push_back(&findClass(strClasses.substr(ulName, ulComma - ulName)));
    }
    for (const CAddressClass* pClass : excluded)
        *pClass->pIPv4Flag = *pClass->pIPv6Flag = true;
}
