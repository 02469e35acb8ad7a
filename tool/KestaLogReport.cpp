#include "KestaLogReport.h"

#include "KestaFileFacts.h"
#include "KestaHostSetup.h"
#include "KestaJson.h"
#include "KestaLogFacts.h"
#include "KestaLogVerdict.h"
#include "KestaOutput.h"
#include "KestaTable.h"
#include "KestaToolText.h"
#include "KestaTraceSettings.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include <sys/stat.h>

namespace
{

typedef CKestaTable::EColour EColour;

constexpr char szUnknownKey[] = "unknown key";

std::string stateOf(const CKestaCheckedVariable& variable)
{
    switch (variable.eState)
    {
    case CKestaCheckedVariable::EState::notSet:
        return "not set";
    case CKestaCheckedVariable::EState::empty:
        return "empty, counts as not set";
    case CKestaCheckedVariable::EState::used:
        return "used";
    case CKestaCheckedVariable::EState::replaced:
        return "ignored, an option overrides it";
    case CKestaCheckedVariable::EState::tooLong:
        return "ignored, longer than " + std::to_string(CKestaHostSetup::KESTA_LONGEST_PARAMETER) +
               " bytes";
    default:
        return "ignored, the process has raised privileges";
    }
}

std::string directoryMeaning(const std::string& strDirectory, const char* pszDefault)
{
    if (strDirectory.empty())
        return pszDefault;
    return strDirectory.front() == '/' ? "directory"
                                       : "directory, relative to the host's working directory";
}

// What the library makes of a value, whether another line replaces it or not.
std::string meaningOf(const std::string& strKey, const std::string& strValue)
{
    const int iNumber = std::atoi(strValue.c_str());
    if (strKey == "DEBUG")
        return isOn(strValue) ? "on" : "off";
    if (strKey == "DEBUGLEVEL")
        return iNumber == 0 ? "0, no log" : std::to_string(iNumber);
    if (strKey == "DEBUGSIZE")
        return std::to_string(sizeLimit(iNumber)) + " bytes";
    if (strKey == "DEBUGFILEPATH")
        return directoryMeaning(strValue, "log/ below the data directory");
    if (strKey == "DEBUGNEWFILE")
        return directoryMeaning(strValue, "the root directory");
    if (strKey == "DEBUGITEMS")
        return "kept for the host";
    return szUnknownKey;
}

std::string remarksOn(const CKestaLogFacts& facts, const CKestaCheckedSetting& setting)
{
    std::string strRemarks;
    if (setting.bTakenOver)
        strRemarks += ", value taken from " + facts.valueOrigin(setting);
    if (setting.bCut)
        strRemarks += ", line is split after 1023 bytes";
    const CKestaCheckedSetting* const pCounted = facts.setting(setting.strKey);
    if (pCounted != &setting)
        strRemarks += ", replaced by line " + std::to_string(pCounted->ulLine);
    return strRemarks;
}

std::string configurationState(const CKestaLogFacts& facts)
{
    if (facts.iConfigurationError != 0)
        return std::strerror(facts.iConfigurationError);
    if (!facts.configuration.isFile())
        return "not a regular file";
    const std::string& strMark = facts.strByteOrderMark;
    return "found" + (strMark.empty() ? "" : ", begins with a " + strMark + " byte-order mark");
}

std::string ageText(std::time_t lSeconds)
{
    constexpr std::time_t lMinute = 60;
    constexpr std::time_t lHour = 60 * lMinute;
    constexpr std::time_t lDay = 24 * lHour;
    if (lSeconds < lMinute)
        return std::to_string(lSeconds) + " s";
    if (lSeconds < lHour)
        return std::to_string(lSeconds / lMinute) + " min";
    if (lSeconds < lDay)
        return std::to_string(lSeconds / lHour) + " h";
    return std::to_string(lSeconds / lDay) + " d";
}

std::string accessText(const CKestaFileFacts& file)
{
    return file.owner() + ", mode " + file.mode() +
           (file.iAccessError == 0
                ? ", writable"
                : std::string(", not writable: ") + std::strerror(file.iAccessError));
}

std::string directoryText(const CKestaFileFacts& directory)
{
    constexpr std::uint64_t ulMegabyte = 1000000;
    if (!directory.isThere())
        return std::strerror(directory.iError);
    return accessText(directory) + ", " + std::to_string(directory.ulFree / ulMegabyte) +
           " MB free";
}

std::string logText(const CKestaFileFacts& log)
{
    if (!log.isThere())
        return std::strerror(log.iError);
    return accessText(log) + ", " + std::to_string(log.status.st_size) + " bytes, changed " +
           ageText(log.age()) + " ago";
}

CKestaJson jsonOf(const CKestaFileFacts& file)
{
    CKestaJson json = {{"path", file.strPath}};
    if (!file.isThere())
    {
        json["error"] = std::strerror(file.iError);
        return json;
    }
    json.update(
        {{"owner", file.owner()}, {"mode", file.mode()}, {"writable", file.iAccessError == 0}});
    if (file.isDirectory())
        json["free"] = file.ulFree;
    else
        json.update({{"size", file.status.st_size}, {"age", file.age()}});
    return json;
}

CKestaJson jsonOf(const CKestaFinding& finding)
{
    return {{"what", finding.strWhat}, {"next", finding.strNext}};
}

CKestaJson jsonOfConfiguration(const CKestaLogFacts& facts)
{
    CKestaJson json = {{"path", facts.configuration.strPath},
                       {"state", configurationState(facts)},
                       {"settings", CKestaJson::array()}};
    for (const CKestaCheckedSetting& setting : facts.settings)
        json["settings"].push_back(
            {{"line", setting.ulLine},
             {"key", setting.strKey},
             {"value", setting.strValue},
             {"meaning", meaningOf(setting.strKey, setting.strValue) + remarksOn(facts, setting)}});
    return json;
}

}   // namespace

void printReport(const CKestaLogFacts& facts, const CKestaLogVerdict& verdict, CKestaOutput& output)
{
    CKestaTable table;
    table.add(EColour::plain, {"user", userName()});
    for (const CKestaCheckedVariable& variable : facts.variables)
        table.add(EColour::plain, {variable.strName, variable.strValue, stateOf(variable)});
    table.add(EColour::plain,
              {"configuration", facts.configuration.strPath, configurationState(facts)});
    for (const CKestaCheckedSetting& setting : facts.settings)
    {
        const std::string strMeaning = meaningOf(setting.strKey, setting.strValue);
        const bool bBad = setting.bCut || setting.bTakenOver || strMeaning == szUnknownKey;
        table.add(bBad ? EColour::bad : EColour::plain, {"  line " + std::to_string(setting.ulLine),
                                                         setting.strKey + "=" + setting.strValue,
                                                         strMeaning + remarksOn(facts, setting)});
    }
    table.add(EColour::plain, {"switch", facts.bSwitchedOn ? "on" : "off"});
    table.add(EColour::plain, {"level", std::to_string(facts.iLevel)});
    table.add(EColour::plain, {"size limit", std::to_string(facts.iSizeLimit) + " bytes"});
    table.add(EColour::plain,
              {"log directory", facts.logDirectory.strPath, directoryText(facts.logDirectory)});
    table.add(EColour::plain, {"log", facts.log.strPath, logText(facts.log)});
    table.add(EColour::plain, {"old log directory", facts.oldLogDirectory.strPath,
                               directoryText(facts.oldLogDirectory)});
    table.add(EColour::plain, {"old log", facts.oldLog.strPath, logText(facts.oldLog)});
    table.print(output);

    const auto printFinding = [&](const char* pszName, const CKestaFinding& finding)
    {
        output.write(std::string(pszName) + ": " + printable(finding.strWhat) + "\n");
        output.write("next: " + printable(finding.strNext) + "\n");
    };
    printFinding(verdict.bTraced ? "traced" : "not traced", verdict.finding);
    for (const CKestaFinding& finding : verdict.notes)
        printFinding("note", finding);
}

void printReportAsJson(const CKestaLogFacts& facts, const CKestaLogVerdict& verdict,
                       CKestaOutput& output)
{
    CKestaJson json = {
        {"traced", verdict.bTraced},          {"verdict", jsonOf(verdict.finding)},
        {"notes", CKestaJson::array()},       {"user", userName()},
        {"environment", CKestaJson::array()}, {"configuration", jsonOfConfiguration(facts)},
        {"switch", facts.bSwitchedOn},        {"level", facts.iLevel},
        {"sizeLimit", facts.iSizeLimit},      {"logDirectory", jsonOf(facts.logDirectory)},
        {"log", jsonOf(facts.log)},           {"oldLogDirectory", jsonOf(facts.oldLogDirectory)},
        {"oldLog", jsonOf(facts.oldLog)}};
    for (const CKestaFinding& finding : verdict.notes)
        json["notes"].push_back(jsonOf(finding));
    for (const CKestaCheckedVariable& variable : facts.variables)
        json["environment"].push_back({{"name", variable.strName},
                                       {"value", variable.strValue},
                                       {"state", stateOf(variable)}});
    printJson(json, output);
}
