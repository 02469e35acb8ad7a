#include "KestaLogFacts.h"

#include "KestaConfiguration.h"
#include "KestaDebug.h"
#include "KestaHostSetup.h"
#include "KestaSettingsReader.h"
#include "KestaString.h"
#include "KestaToolText.h"
#include "KestaTraceSettings.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace
{

// The library itself decides which directory is used; only the reason is worked out here.
CKestaCheckedVariable checkVariable(const char* pszName, int iParameter)
{
    typedef CKestaCheckedVariable::EState EState;
    const char* const pszValue = std::getenv(pszName);
    if (pszValue == nullptr)
        return {pszName, "", EState::notSet};
    const std::string strValue = pszValue;
    EState eState = EState::replaced;
    if (strValue.empty())
        eState = EState::empty;
    else if (strValue == CKestaHostSetup::getParameter(iParameter))
        eState = EState::used;
    else if (secure_getenv(pszName) == nullptr)
        eState = EState::privileged;
    else if (strValue.size() > CKestaHostSetup::KESTA_LONGEST_PARAMETER)
        eState = EState::tooLong;
    return {pszName, strValue, eState};
}

std::string markOf(const std::string& strPath)
{
    char bytes[3] = {};
    std::ifstream(strPath, std::ios::binary).read(bytes, sizeof bytes);
    const std::string_view start(bytes, sizeof bytes);
    if (start == byteOrderMark)
        return "UTF-8";
    return start.substr(0, 2) == "\xFF\xFE" || start.substr(0, 2) == "\xFE\xFF" ? "UTF-16" : "";
}

}   // namespace

CKestaLogFacts::CKestaLogFacts()
    : variables{checkVariable("KESTA_INSTALLED_DIR", CKestaHostSetup::KESTA_INSTALLED_DIR),
                checkVariable("KESTA_DATA_DIR", CKestaHostSetup::KESTA_DATA_DIR)},
      strInstalledDir(CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_INSTALLED_DIR)),
      configuration(CKestaConfiguration::getConfigurationFile())
{
    readSettings();

    CKestaConfiguration::setDebugInfo(configuration.strPath);
    bSwitchedOn = isOn(CKestaConfiguration::getDebugInfo());
    iLevel = CKestaConfiguration::getDebugLevel();
    iSizeLimit = sizeLimit(CKestaConfiguration::getDebugSize());

    log = CKestaFileFacts(CKestaDebug::getLogFile());
    logDirectory = CKestaFileFacts(directoryOf(log.strPath));
    oldLog = CKestaFileFacts(CKestaDebug::getOldLogFile());
    oldLogDirectory = CKestaFileFacts(directoryOf(oldLog.strPath));
}

void CKestaLogFacts::readSettings()
{
    if (configuration.isFile())
        strByteOrderMark = markOf(configuration.strPath);
    CKestaSettingsReader reader(configuration.strPath.c_str());
    if (!reader.isOpen())
    {
        iConfigurationError = reader.error();
        return;
    }
    CKestaSetting found;
    while (reader.next(found))
        settings.push_back({found.ulLine, std::string(found.key), std::string(found.value),
                            found.bCut, found.bTakenOver});
}

const CKestaCheckedSetting* CKestaLogFacts::setting(const std::string& strKey) const
{
    const auto itLast =
        std::find_if(settings.rbegin(), settings.rend(),
                     [&](const CKestaCheckedSetting& setting) { return setting.strKey == strKey; });
    return itLast == settings.rend() ? nullptr : &*itLast;
}

std::string CKestaLogFacts::valueOrigin(const CKestaCheckedSetting& setting) const
{
    std::string strOrigin = "no line";
    for (const CKestaCheckedSetting& earlier : settings)
    {
        if (earlier.ulLine >= setting.ulLine)
            break;
        if (!earlier.bTakenOver)
            strOrigin = "line " + std::to_string(earlier.ulLine);
    }
    return strOrigin;
}
