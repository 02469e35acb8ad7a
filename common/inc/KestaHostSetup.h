#ifndef KESTA_HOST_SETUP_H
#define KESTA_HOST_SETUP_H

#include "KestaExport.h"
#include "KestaString.h"

#include <string>

/// What the host tells the library about its installation: two directories, and the cipher of its
/// trace log.
///
///     CKestaHostSetup::setParameter(1, "/opt/acme/");    // conf/KestaDebug.ini is below it
///     CKestaHostSetup::setParameter(2, "/var/acme/");    // log/ is below it
///
/// Thread contract: process-wide and unguarded. Set things up before the first entry into the
/// library; reading is safe from any thread then.
class KESTA_API CKestaHostSetup
{
public:
    /// Turns a plain trace line (its newline included) into its enciphered form, which may hold
    /// any bytes. A line whose cipher throws is not written. A cipher must not trace.
    typedef std::string (*LineCipher)(const std::string& strLine);

    /// Sets a start-up parameter: 1 is the installation directory, 2 the data directory. Both are
    /// expected to end with "/". An empty text counts as set.
    ///
    /// Returns false, and stores nothing, for another number or a text over 2047 bytes.
    static bool setParameter(int iNumber, CKestaString strValue);

    /// A start-up parameter: what the host has set; else the environment variable
    /// KESTA_INSTALLED_DIR or KESTA_DATA_DIR, unless it is over 2047 bytes or the process runs with
    /// raised privileges; else the default that was fixed when the library was built
    /// (/opt/fernhold/ and /var/opt/fernhold/). The empty text for another number.
    static CKestaString getParameter(int iNumber);

    /// Sets the cipher of enciphered trace logs. Null, the default, means that there is none: such
    /// a log is then framed, but readable by anyone who can open the file.
    static void setLineCipher(LineCipher pCipher);

    /// The cipher set last, or null.
    static LineCipher getLineCipher();
};

#endif
