#include "KestaExclusion.h"

#include "KestaIPv4Address.h"
#include "KestaIPv6Address.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

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

std::string allNames()
{
    std::string strNames;
    for (const CAddressClass& known : addressClasses)
        strNames += (strNames.empty() ? "" : ", ") + std::string(known.pszName);
    return strNames;
}

const CAddressClass& findClass(std::string_view name)
{
    for (const CAddressClass& known : addressClasses)
    {
        if (name == known.pszName)
            return known;
    }
    throw CKestaToolError("--exclude: unknown class " + inQuotes(name) + " (" + allNames() + ")");
}

}   // namespace

std::string exclusionHelp()
{
    return "Comma-separated classes of addresses to exclude: " + allNames();
}

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
