#ifndef KESTA_EXCLUSION_H
#define KESTA_EXCLUSION_H

#include <string>

/// The help text of --exclude.
std::string exclusionHelp();

/// Sets the exclusion flags of both address families by a comma-separated list of the classes that
/// `exclusionHelp` names.
///
/// Throws: `CKestaToolError` for another name; no flag is set then.
void excludeClasses(const std::string& strClasses);

#endif
