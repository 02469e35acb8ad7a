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
    bool bTakenOver;   ///< The line ends with its first "=": the value is of an earlier line.
};

/// An environment variable that names a directory.
struct CKestaCheckedVariable
{
    enum class EState
    {
        notSet,
        empty,   ///< Which counts as not set.
        heeded,
        replaced,     ///< By an option of the command.
        tooLong,      ///< So it is not heeded.
        privileged,   ///< The process has raised privileges, and does not heed it.
    };

    std::string strName;
    std::string strValue;
    EState eState;
};

/// Everything that decides whether a line that a host traces now is written: what an entry of this
/// user in this environment would find. Looking at it creates and changes nothing.
struct CKestaLogFacts
{
    /// Reads the configuration, and looks at the files that it names.
    CKestaLogFacts();

    /// The setting of a key that counts, the last one; or null.
    const CKestaCheckedSetting* setting(const std::string& strKey) const;

    std::vector<CKestaCheckedVariable> variables;
    std::string strInstalledDir;
    CKestaFileFacts configuration;
    int iConfigurationError = 0;    ///< The errno of a configuration that can't be opened.
    std::string strByteOrderMark;   ///< "UTF-8" or "UTF-16" when the file begins with a mark.
    std::vector<CKestaCheckedSetting> settings;

    bool bSwitchedOn = false;
    int iLevel = 0;
    std::int32_t iSizeLimit = 0;   ///< A log with more bytes is rolled over at the end of an entry.

    CKestaFileFacts log;
    CKestaFileFacts logDirectory;
    CKestaFileFacts oldLog;
    CKestaFileFacts oldLogDirectory;

private:
    void readSettings();
};

#endif
