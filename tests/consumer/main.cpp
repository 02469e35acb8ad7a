// A host as any other: it uses what the headers offer, catches what the library throws, and was
// told the version that it is linked with.

#include "KestaDate.h"
#include "KestaEntry.h"
#include "KestaException.h"
#include "KestaIPRange.h"
#include "KestaIPv4Address.h"
#include "KestaMap.h"
#include "KestaVersion.h"

#include <iostream>

int main()
{
    std::cout << KESTA_VERSION_MAJOR << '.' << KESTA_VERSION_MINOR << '.' << KESTA_VERSION_PATCH
              << '\n';
    const CKestaEntry entry;
    const KestaIPRange range("10.1.*.*");
    const KestaIPv4Address inside("10.1.2.3");
    CKestaMap<CKestaString, CKestaDate> dates;
    dates.add("release", CKestaDate("2/29/2000"));
    const CKestaString after = (dates.get("release") + 1).getDateString(CKestaDate::DDMMYYYY);
    if (!range.isMember(&inside) || after != "01/03/2000")
        return 1;
    try
    {
        const KestaIPRange refused("no address");
    }
    catch (const CKestaExc& exc)   // the type is one and the same on both sides
    {
        return exc.GetErrorMessage() == "Not a valid IP address no address" ? 0 : 1;
    }
    return 1;
}
