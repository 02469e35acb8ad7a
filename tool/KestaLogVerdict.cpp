#include "KestaLogVerdict.h"

#include "KestaFileFacts.h"
#include "KestaHostSetup.h"
#include "KestaLogFacts.h"
#include "KestaToolError.h"
#include "KestaToolText.h"

#include <cerrno>
#include <optional>

#include <strings.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace
{

typedef std::optional<CKestaFinding> CObstacle;

constexpr int iErrorLevel = 1;     // of error objects
constexpr int iLibraryLevel = 3;   // of the library's own lines

std::string user()
{
    return "user " + userName();
}

std::string lineOf(const CKestaCheckedSetting& setting)
{
    return "line " + std::to_string(setting.ulLine);
}

std::string permissions(const CKestaFileFacts& file)
{
    return file.isThere() ? " (" + file.owner() + ", mode " + file.mode() + ")" : "";
}

CKestaFinding missingConfiguration(const CKestaLogFacts& facts)
{
    const CKestaCheckedVariable& variable = facts.variables.front();
    const std::string strWhat = "there is no configuration file " + facts.configuration.strPath;
    const std::string& strDirectory = facts.strInstalledDir;
    if (!strDirectory.empty() && strDirectory.back() != '/')
        return {strWhat + ": the installation directory does not end with \"/\"",
                "set " + variable.strName + "=" + strDirectory + "/"};
    switch (variable.eState)
    {
    case CKestaCheckedVariable::EState::empty:
        return {strWhat + ", and " + variable.strName + " is empty, which counts as not set",
                "set " + variable.strName + " to the installation directory"};
    case CKestaCheckedVariable::EState::tooLong:
        return {strWhat + ", and " + variable.strName + " is too long and therefore ignored",
                "shorten it to at most " +
                    std::to_string(CKestaHostSetup::KESTA_LONGEST_PARAMETER) + " bytes"};
    case CKestaCheckedVariable::EState::privileged:
        return {strWhat + ", and " + variable.strName +
                    " is ignored because the process has raised privileges",
                "have the host set its installation directory itself"};
    default:
        return {strWhat,
                "create it, with the lines DEBUG=Y, DEBUGLEVEL=3 and DEBUGSIZE=500, or set " +
                    variable.strName + " to another installation directory"};
    }
}

CObstacle findInConfiguration(const CKestaLogFacts& facts)
{
    const CKestaFileFacts& file = facts.configuration;
    const int iError = facts.iConfigurationError;
    if (iError == ENOENT)
        return missingConfiguration(facts);
    if (iError == EACCES)
        return CKestaFinding{user() + " can't read the configuration file " +
                                 systemError(file.strPath, iError) + permissions(file),
                             "let " + user() + " read it and search the directories above it"};
    if (iError != 0)
        return CKestaFinding{"can't read the configuration file " +
                                 systemError(file.strPath, iError),
                             "put a regular file there"};
    if (!file.isFile())
        return CKestaFinding{"the configuration file " + file.strPath + " is not a regular file",
                             "put a regular file there"};
    return std::nullopt;
}

// Why the file does not hold a key.
CKestaFinding missingKey(const CKestaLogFacts& facts, const std::string& strKey,
                         const std::string& strWanted)
{
    const std::string& strPath = facts.configuration.strPath;
    if (facts.strByteOrderMark == "UTF-16")
        return {strPath + " is in UTF-16, which can't be read",
                "save it as UTF-8 without a byte-order mark"};
    for (const CKestaCheckedSetting& setting : facts.settings)
    {
        // The library reads the mark as part of the key.
        if (setting.strKey == std::string(byteOrderMark) + strKey)
            return {"a byte-order mark hides " + strKey + " in " + lineOf(setting),
                    "save " + strPath + " without the byte-order mark"};
        if (strcasecmp(setting.strKey.c_str(), strKey.c_str()) == 0)
            return {inQuotes(setting.strKey) + " in " + lineOf(setting) +
                        " is not a key: keys are upper case",
                    "write " + strWanted};
    }
    return {strPath + " does not set " + strKey, "add the line " + strWanted};
}

// Why a setting has not the effect that is wanted.
CKestaFinding uselessSetting(const CKestaLogFacts& facts, const CKestaCheckedSetting& setting,
                             const std::string& strWhy, const std::string& strWanted)
{
    const std::string strWhat =
        setting.strKey + " is " + inQuotes(setting.strValue) + " in " + lineOf(setting);
    if (setting.bTakenOver)
        return {strWhat + ", which has no value and takes that of " + facts.valueOrigin(setting) +
                    ": " + strWhy,
                "write " + strWanted};
    if (setting.bCut)
        return {strWhat + ", which is too long and read as several lines: " + strWhy,
                "keep lines shorter than 1024 bytes"};
    if (setting.strValue.find('#') != std::string::npos)
        return {strWhat + ", because a \"#\" after a value is part of it: " + strWhy,
                "write " + strWanted + " and put the comment on a line of its own"};
    return {strWhat + ": " + strWhy, "write " + strWanted};
}

CObstacle findInLevel(const CKestaLogFacts& facts)
{
    const std::string strWanted = "DEBUGLEVEL=3";
    if (facts.iLevel >= iErrorLevel)
        return std::nullopt;
    const CKestaCheckedSetting* const pSetting = facts.setting("DEBUGLEVEL");
    if (pSetting == nullptr)
        return missingKey(facts, "DEBUGLEVEL", strWanted);
    const bool bNumber = pSetting->strValue.find_first_of("0123456789") != std::string::npos;
    return uselessSetting(facts, *pSetting,
                          facts.iLevel < 0 ? "lines of higher levels are not written"
                          : bNumber        ? "there is no log at level 0"
                                           : "it is not a number and counts as 0, no log",
                          strWanted);
}

CObstacle findInSwitch(const CKestaLogFacts& facts)
{
    if (facts.bSwitchedOn)
        return std::nullopt;
    const CKestaCheckedSetting* const pSetting = facts.setting("DEBUG");
    if (pSetting == nullptr)
        return missingKey(facts, "DEBUG", "DEBUG=Y");
    return uselessSetting(facts, *pSetting, "only Y and y mean on", "DEBUG=Y");
}

CObstacle findInDirectory(const CKestaLogFacts& facts)
{
    const CKestaFileFacts& directory = facts.logDirectory;
    if (facts.log.isThere())
        return std::nullopt;
    const std::string strName = "the log directory " + directory.strPath;
    if (directory.iError == ENOENT)
        return CKestaFinding{strName + " does not exist",
                             "create it and make it writable for " + user()};
    if (directory.iAccessError != 0)
        return CKestaFinding{
            systemError(user() + " can't write to " + strName, directory.iAccessError) +
                permissions(directory),
            "let " + user() + " write to it and search the directories above it"};
    return std::nullopt;
}

CObstacle findInLog(const CKestaLogFacts& facts)
{
    const CKestaFileFacts& log = facts.log;
    if (!log.isThere())
        return std::nullopt;
    if (!log.isFile() && !S_ISCHR(log.status.st_mode))
        return CKestaFinding{"the log " + log.strPath + " is not a regular file", "remove it"};
    if (log.iAccessError != 0)
        return CKestaFinding{user() + " can't read and write the log " +
                                 systemError(log.strPath, log.iAccessError) + permissions(log),
                             "make " + user() + " its owner, or remove it"};
    return std::nullopt;
}

CObstacle findInSpace(const CKestaLogFacts& facts)
{
    if (facts.logDirectory.ulFree == 0)
        return CKestaFinding{"the file system of " + facts.logDirectory.strPath + " is full",
                             "free some space"};
    rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 &&
        limit.rlim_cur <= static_cast<rlim_t>(facts.log.status.st_size))
        return CKestaFinding{"the log " + facts.log.strPath +
                                 " has reached the file-size limit of the process (ulimit -f)",
                             "raise the limit, or move the log away"};
    return std::nullopt;
}

// What keeps the log from becoming the old log.
CObstacle findInRollOver(const CKestaLogFacts& facts)
{
    const std::string strWhat = "the log can't be rolled over and grows without limit: ";
    const CKestaFileFacts& from = facts.logDirectory;
    const CKestaFileFacts& to = facts.oldLogDirectory;
    if (facts.oldLog.isDirectory())
        return CKestaFinding{strWhat + systemError(facts.oldLog.strPath, EISDIR), "remove it"};
    if (from.iAccessError != 0)
        return CKestaFinding{strWhat + systemError(from.strPath, from.iAccessError),
                             "let " + user() + " write to it"};
    const int iError =
        to.isThere() && to.status.st_dev != from.status.st_dev ? EXDEV : to.iAccessError;
    if (iError != 0)
        return CKestaFinding{strWhat + systemError(to.strPath, iError),
                             "set DEBUGNEWFILE to a directory of the same file system that " +
                                 user() + " can write to"};
    return std::nullopt;
}

std::vector<CKestaFinding> findSurprises(const CKestaLogFacts& facts)
{
    std::vector<CKestaFinding> result;
    if (facts.iLevel < iLibraryLevel)
        result.push_back({"the library's own lines have level 3, error objects have level 1",
                          "write DEBUGLEVEL=3 to get them all"});
    if (const CObstacle obstacle = findInRollOver(facts))
        result.push_back(*obstacle);
    else if (facts.iSizeLimit <= 0)
        result.push_back({"the log is rolled over to " + facts.oldLog.strPath +
                              " at the end of every entry, because the size limit is 0 or negative",
                          "look there, or write DEBUGSIZE=1000"});
    return result;
}

}   // namespace

CKestaLogVerdict::CKestaLogVerdict(const CKestaLogFacts& facts)
{
    for (const auto find : {&findInConfiguration, &findInLevel, &findInSwitch, &findInDirectory,
                            &findInLog, &findInSpace})
    {
        if (const CObstacle obstacle = find(facts))
        {
            finding = *obstacle;
            return;
        }
    }
    bTraced = true;
    finding = {"lines up to level " + std::to_string(facts.iLevel) + " are written to " +
                   facts.log.strPath,
               "run the host, then kesta log"};
    notes = findSurprises(facts);
}
