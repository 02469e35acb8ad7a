// The library's typical request: which addresses lie inside a range? They are given as arguments;
// without arguments, they are the host's own addresses that the filter keeps.

#include "KestaEntry.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPUtilities.h"

#include <iostream>

namespace
{

CKestaArray<KestaIPv4Address> ownAddresses()
{
    CKestaArray<KestaIPv4Address> ipv4List, usable;
    CKestaArray<KestaIPv6Address> ipv6List;
    KestaIPUtilities::StartWSA();
    if (KestaIPUtilities::queryHostIP(nullptr, ipv6List, ipv4List) == 0)
        KestaIPUtilities::getfilteredIPv4Addresses(usable, ipv4List);
    KestaIPUtilities::EndWSA();
    return usable;
}

void answer(int argc, char** argv)
{
    CKestaArray<KestaIPv4Address> addresses;
    for (int i = 1; i < argc; ++i)
        addresses.add(KestaIPv4Address(argv[i]));
    if (argc == 1)
        addresses = ownAddresses();

    const KestaIPRange range("10.1.*.*");
    for (unsigned int i = 0; i < addresses.size(); ++i)
    {
        const KestaIPv4Address& address = addresses.getAt(i);
        std::cout << (range.isMember(&address) ? "inside   " : "outside  ")
                  << address.getStrAddress() << '\n';
    }
    std::cout << addresses.size() << " asked\n";
}

}   // namespace

int main(int argc, char** argv)
{
    const CKestaEntry entry;   // one unit of work, traced if the configuration says so
    try
    {
        answer(argc, argv);
        return 0;
    }
    catch (const CKestaExc& exc)
    {
        std::cout << exc.GetErrorMessage() << '\n';
        return 2;
    }
}
