#ifndef KESTA_ARGUMENT_H
#define KESTA_ARGUMENT_H

#include "KestaDate.h"
#include "KestaIPRange.h"

#include <memory>
#include <string>

/// Makes what an argument stands for. Each throws `CKestaToolError` that names the argument and
/// says what would be right; the library's own error is traced.

/// A range.
std::unique_ptr<KestaIPRange> readRange(const std::string& strText);

/// An address; one that holds a ":" is an IPv6 address.
std::unique_ptr<KestaIPAddress> readAddressArgument(const std::string& strText);

/// A date, month/day/year.
CKestaDate readDate(const std::string& strName, const std::string& strText);

/// A number of an option, both limits included.
long readNumber(const std::string& strName, const std::string& strText, long lLowest,
                long lHighest);

#endif
