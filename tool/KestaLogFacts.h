#ifndef KESTA_LOG_FACTS_H
#define KESTA_LOG_FACTS_H

#include "KestaFileFacts.h"

#include <cstdint>
#include <string>
#include <vector>

/// A line of the configuration file that sets a key, known to the library or not.
struct CKestaCheckedSetting
{
    unsigned long ulLine;
    std::string strKey;
    std::string strValue;
    bool bCut;         ///< The line is too long to be read as one.
    bool bTakenOver;   ///< The line ends with its first "=": the value is an earlier line's.
};

/// An environment variable that names a directory.
struct CKestaCheckedVariable
{
    enum class EState
    {
        notSet,
        empty,   ///< Counts as not set.
        used,
        replaced,     ///< An option of the command overrides it.
        tooLong,      ///< Ignored.
        privileged,   ///< Ignored, because the process has raised privileges.
    };

    std::string strName;
    std::string strValue;
    EState eState;
};

/// Everything that decides whether a line that a host traces now is written, as an entry of this
/// user in this environment would find it. Collecting it creates and changes nothing.
struct CKestaLogFacts
{
    /// Reads the configuration, and looks at the files that it names.
    CKestaLogFacts();

    /// The last setting of a key, which is the one that counts; or null.
    const CKestaCheckedSetting* setting(const std::string& strKey) const;

    /// The line whose value a setting without one takes over, such as "line 3".
    std::string valueOrigin(const CKestaCheckedSetting& setting) const;

    std::vector<CKestaCheckedVariable> variables;
    std::string strInstalledDir;
    CKestaFileFacts configuration;
    int iConfigurationError = 0;    ///< The errno of a configuration that can't be opened.
    std::string strByteOrderMark;   ///< "UTF-8" or "UTF-16" when the file begins with a mark.
    std::vector<CKestaCheckedSetting> settings;

    bool bSwitchedOn = false;
    int iLevel = 0;
    std::int32_t iSizeLimit = 0;   ///< A log of more bytes is rolled over at the end of an entry.

    CKestaFileFacts log;
    CKestaFileFacts logDirectory;
    CKestaFileFacts oldLog;
    CKestaFileFacts oldLogDirectory;

private:
    void readSettings();
};

#endif
