#ifndef KESTA_EXCLUSION_H
#define KESTA_EXCLUSION_H

#include <string>

/// The help text of --exclude.
extern const char szExclusionHelp[];

/// Sets the exclusion flags of both address families by a comma-separated list of the classes
/// loopback, multicast, link-local and site-local.
///
/// Throws: `CKestaToolError` for a name that is none of these; no flag is set then.
void excludeClasses(const std::string& strClasses);

#endif
