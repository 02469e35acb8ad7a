#ifndef KESTA_CONFIGURATION_H
#define KESTA_CONFIGURATION_H

#include "KestaExport.h"
#include "KestaString.h"

/// The trace settings, read from conf/KestaDebug.ini below the installation directory. The file is
/// never written. Everything is static: the settings are process-wide and keep their last values
/// for the life of the process.
///
/// The file holds lines KEY=value. Blanks around key and value are trimmed, lines that begin with
/// "#" are comments, keys are case-sensitive and count wherever they stand; the last of two equal
/// keys wins. docs/trace-log.md describes the whole format.
///
/// Thread contract: any thread may call anything at any time, also while the file changes. A
/// reading replaces all its values at once, and an accessor never returns half a value.
///
/// Throws: `std::bad_alloc` only, after which every setting is as it was. A file that cannot be
/// read and lines that make no sense are not errors.
class KESTA_API CKestaConfiguration
{
public:
    CKestaConfiguration();
    virtual ~CKestaConfiguration();

    /// Takes the directories of the host set-up, resets the item filter to "ALL", and reads the
    /// file whose path is the installation directory + "conf/" + the given name. Nothing is put
    /// between the directory and "conf": the directory is expected to end with "/".
    ///
    /// Returns 0 when the file could be opened, whatever it holds, and -1 otherwise; the other
    /// settings then keep their values. Settings are read from a regular file only, and opening
    /// never waits: a pipe counts as a file that could not be opened.
    static int initialize(const CKestaString& strConfigurationFile);

    /// Reads the file at a path; the results are those of `initialize`.
    static int setDebugInfo(const CKestaString& strDebugConf);

    /// Splits a line at "=": the key is what stands before the first, the value what stands between
    /// it and the second or the end; both are trimmed.
    ///
    /// Intended: a line that ends with its first "=" leaves `strValue` as it was.
    ///
    ///     A=b=c   "A", "b"
    ///     A==     "A", ""
    ///     A=      "A", and the value stays
    ///
    /// Returns false, and leaves both arguments as they were, for a line without "=".
    static bool getKeyValue(const CKestaString& strSource, CKestaString& strKey,
                            CKestaString& strValue);

    /// True when the line begins with "#".
    static bool isComment(const CKestaString& strLine);

    /// The path of the file that `initialize("KestaDebug.ini")` would read now.
    static CKestaString getConfigurationFile();

    /// The trace level ("DEBUGLEVEL"); 0 means no trace log.
    static int getDebugLevel();
    /// The size limit of the trace log in units of 1000 bytes ("DEBUGSIZE").
    static int getDebugSize();
    /// The directory of the trace log ("DEBUGFILEPATH").
    static CKestaString getDebugFile();
    /// The switch ("DEBUG"): "Y" and "y" mean on.
    static CKestaString getDebugInfo();
    /// The item filter ("DEBUGITEMS"), "ALL" by default; the library does not interpret it.
    static CKestaString getDebugItems();
    /// The directory of the rolled-over trace log ("DEBUGNEWFILE").
    static CKestaString getNewFile();
    /// The data directory that the last `initialize` found.
    static CKestaString getDataDir();
    /// The installation directory that the last `initialize` found.
    static CKestaString getInstalledDir();
};

#endif
