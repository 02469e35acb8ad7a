#ifndef KESTA_HOST_SETUP_H
#define KESTA_HOST_SETUP_H

#include "KestaExport.h"
#include "KestaString.h"

#include <cstddef>
#include <string>

/// What the host tells the library about its installation: two directories, and the cipher of its
/// trace log.
///
///     // conf/KestaDebug.ini is below the first, log/ below the second
///     CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_INSTALLED_DIR, "/opt/acme/");
///     CKestaHostSetup::setParameter(CKestaHostSetup::KESTA_DATA_DIR, "/var/acme/");
///
/// Thread contract: process-wide; any thread may call anything at any time. A directory takes
/// effect at the next entry into the library, a cipher at the next line.
class KESTA_API CKestaHostSetup
{
public:
    /// Turns a plain trace line (its newline included) into its enciphered form, which may hold
    /// any bytes. A line whose cipher throws is not written. A cipher runs while the log is locked:
    /// it must not trace, begin or end an entry, fork, or wait for another thread.
    typedef std::string (*LineCipher)(const std::string& strLine);

    /// The start-up parameters.
    static constexpr int KESTA_INSTALLED_DIR = 1;   ///< The installation directory.
    static constexpr int KESTA_DATA_DIR = 2;        ///< The data directory.

    /// The length of the longest text that a start-up parameter can have, in bytes.
    static constexpr std::size_t KESTA_LONGEST_PARAMETER = 2047;

    /// Sets a start-up parameter. Both directories are expected to end with "/". An empty text
    /// counts as set.
    ///
    /// Returns false, and stores nothing, for another number or a text that is too long.
    static bool setParameter(int iNumber, CKestaString strValue);

    /// A start-up parameter: what the host has set; else the environment variable
    /// KESTA_INSTALLED_DIR or KESTA_DATA_DIR, unless it is empty or too long, or the process runs
    /// with raised privileges; else the default that was fixed when the library was built
    /// (/opt/fernhold/ and /var/opt/fernhold/). The empty text for another number.
    static CKestaString getParameter(int iNumber);

    /// Sets the cipher of enciphered trace logs. Null, the default, means no cipher: the log is
    /// then framed only, and readable by anyone who can open the file.
    static void setLineCipher(LineCipher pCipher);

    /// The cipher set last, or null.
    static LineCipher getLineCipher();
};

#endif
