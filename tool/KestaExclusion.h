#ifndef KESTA_EXCLUSION_H
#define KESTA_EXCLUSION_H

#include <string>

/// The help text of --exclude.
std::string exclusionHelp();

/// Sets the exclusion flags of both address families for a comma-separated list of classes.
///
/// Throws: `CKestaToolError` for a name that `exclusionHelp` does not list; no flag is set then.
void excludeClasses(const std::string& strClasses);

#endif
