#ifndef KESTA_ARGUMENT_H
#define KESTA_ARGUMENT_H

#include "KestaDate.h"
#include "KestaException.h"
#include "KestaIPAddress.h"
#include "KestaIPRange.h"
#include "KestaRangeEntry.h"
#include "KestaToolError.h"

#include <memory>
#include <string>
#include <string_view>

/// Each turns the text of an argument into its value, or throws a `CKestaToolError` that names the
/// argument and says what is expected.

/// An address; one that contains a ":" is an IPv6 address, and a number alone is none. An IPv4 text
/// in an unusual form is explained on standard error.
std::unique_ptr<KestaIPAddress> readAddressArgument(const std::string& strText);

/// Addresses that a text names: a range, a block or a span.
struct CKestaRangeArgument
{
    CKestaAddressInterval addresses;
    std::unique_ptr<KestaIPRange> pRange;   ///< Null for a text that hosts can't read as a range.
};

/// An entry of a list of ranges. A text that may not mean what it seems to mean is explained.
CKestaRangeArgument readRangeArgument(const std::string& strText);

/// What an IPv4 text means, such as "is read as 10.0.0.0 to 10.0.0.255" for 10.*; empty if it means
/// what it seems to.
std::string explanation(const std::string& strText, const CKestaAddressInterval& addresses);

/// True when `explanation` is known to be empty, without the addresses.
bool isPlain(std::string_view text);

/// The error of a text that is no range, when the library has refused it. It is traced.
CKestaToolError rangeError(const std::string& strText, const CKestaExc& exc);

/// A date, month/day/year.
CKestaDate readDate(const std::string& strName, const std::string& strText);

/// The number that an option was given; the limits are included.
long readNumber(const std::string& strName, const std::string& strText, long lLowest,
                long lHighest);

/// The help text of --exclude.
std::string exclusionHelp();

/// Sets the exclusion flags of both address families for a comma-separated list of classes.
///
/// Throws: `CKestaToolError` for a name that `exclusionHelp` does not list; no flag is set then.
void excludeClasses(const std::string& strClasses);

#endif
