#ifndef KESTA_ARGUMENT_H
#define KESTA_ARGUMENT_H

#include "KestaDate.h"
#include "KestaIPAddress.h"

#include <memory>
#include <string>

/// Each turns the text of an argument into its value, or throws a `CKestaToolError` that names the
/// argument and says what is expected.

/// An address; one that holds a ":" is an IPv6 address.
std::unique_ptr<KestaIPAddress> readAddressArgument(const std::string& strText);

/// A date, month/day/year.
CKestaDate readDate(const std::string& strName, const std::string& strText);

/// The number that an option was given; the limits are included.
long readNumber(const std::string& strName, const std::string& strText, long lLowest,
                long lHighest);

/// Reads a whole text as a decimal number; the limits are included. Returns false for any other
/// text.
bool scanNumber(const std::string& strText, long lLowest, long lHighest, long& lNumber);

/// The help text of --exclude.
std::string exclusionHelp();

/// Sets the exclusion flags of both address families for a comma-separated list of classes.
///
/// Throws: `CKestaToolError` for a name that `exclusionHelp` does not list; no flag is set then.
void excludeClasses(const std::string& strClasses);

#endif
