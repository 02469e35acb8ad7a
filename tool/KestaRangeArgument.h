#ifndef KESTA_RANGE_ARGUMENT_H
#define KESTA_RANGE_ARGUMENT_H

#include "KestaIPRange.h"
#include "KestaToolError.h"

#include <memory>

/// Makes a range of an argument. Throws: `CKestaToolError` that names it and tells what is right.
inline std::unique_ptr<KestaIPRange> readRange(const std::string& strText)
{
    return readArgument("range " + inQuotes(strText),
                        "a range is an address, 10.1.*.*, 2001:db8::/32 (from the first address of "
                        "its block) or 2001:db8:1*; 0.0.0.0, :: and excluded classes are refused",
                        [&] { return std::make_unique<KestaIPRange>(strText); });
}

#endif
