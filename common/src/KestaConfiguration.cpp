#include "KestaConfiguration.h"

#include "KestaHostSetup.h"
#include "KestaProcess.h"
#include "KestaSettingsReader.h"
#include "KestaTraceSettings.h"

#include <optional>
#include <string>
#include <string_view>

namespace
{

/// The settings of the process.
struct CSettings
{
    CKestaString m_strInstalledDir;
    CKestaString m_strDataDir;
    CKestaString m_strDebugItems = "ALL";
    CKestaString m_stdDebugFile;   // sic: established name
    CKestaString m_strConfFile;    // reserved
    CKestaString m_strDebugEnabled;
    CKestaString m_strNewFile;
    int m_iDebugLevel = 0;
    int m_iDebugSize = 0;
};

CKestaImmortal<CSettings>& theSettings()
{
    static CKestaImmortal<CSettings> settings;
    return settings;
}

// When the library is unloaded, or the process ends, the settings hold no memory any more, but can
// still be used.
[[gnu::destructor]] void giveMemoryBack()
{
    const CKestaLock lock(hKestaSettingsMutex);
    theSettings().renew();
}

/// A copy of one setting, made while no other thread changes it.
template <class T>
T copyOf(T CSettings::*pSetting)
{
    const CKestaLock lock(hKestaSettingsMutex);
    return theSettings().get().*pSetting;
}

/// What a reading has found; a setting that it has not found keeps its value.
struct CFindings
{
    std::optional<CKestaString> strInstalledDir;
    std::optional<CKestaString> strDataDir;
    std::optional<CKestaString> strDebugItems;
    std::optional<CKestaString> strDebugFile;
    std::optional<CKestaString> strDebugEnabled;
    std::optional<CKestaString> strNewFile;
    std::optional<int> iDebugLevel;
    std::optional<int> iDebugSize;

    int read(const CKestaString& strPath);
    void take(const CKestaSetting& setting);
    void publish();
};

int CFindings::read(const CKestaString& strPath)
{
    CKestaSettingsReader reader(strPath.c_str());
    if (!reader.isOpen())
        return -1;
    CKestaSetting setting;
    while (reader.next(setting))
        take(setting);
    return 0;
}

void CFindings::take(const CKestaSetting& setting)
{
    if (setting.key == "DEBUGFILEPATH")
        strDebugFile.emplace(setting.value);
    else if (setting.key == "DEBUG")
        strDebugEnabled.emplace(setting.value);
    else if (setting.key == "DEBUGLEVEL")
        iDebugLevel = CKestaString(setting.value).toInt();
    else if (setting.key == "DEBUGITEMS")
        strDebugItems.emplace(setting.value);
    else if (setting.key == "DEBUGSIZE")
        iDebugSize = CKestaString(setting.value).toInt();
    else if (setting.key == "DEBUGNEWFILE")
        strNewFile.emplace(setting.value);
}

// All at once, and without allocating: whoever reads meanwhile gets values of one file only, and a
// reading that has run out of memory has changed nothing.
void CFindings::publish()
{
    const auto takeText = [](CKestaString& strSetting, std::optional<CKestaString>& found)
    {
        if (found.has_value())
            strSetting.swap(*found);
    };
    const CKestaLock lock(hKestaSettingsMutex);
    CSettings& settings = theSettings().get();
    takeText(settings.m_strInstalledDir, strInstalledDir);
    takeText(settings.m_strDataDir, strDataDir);
    takeText(settings.m_strDebugItems, strDebugItems);
    takeText(settings.m_stdDebugFile, strDebugFile);
    takeText(settings.m_strDebugEnabled, strDebugEnabled);
    takeText(settings.m_strNewFile, strNewFile);
    settings.m_iDebugLevel = iDebugLevel.value_or(settings.m_iDebugLevel);
    settings.m_iDebugSize = iDebugSize.value_or(settings.m_iDebugSize);
}

}   // namespace

CKestaTraceSettings currentTraceSettings()
{
    const CKestaLock lock(hKestaSettingsMutex);
    const CSettings& settings = theSettings().get();
    return {settings.m_stdDebugFile, settings.m_strDebugEnabled, settings.m_strNewFile,
            settings.m_iDebugLevel, settings.m_iDebugSize};
}

CKestaConfiguration::CKestaConfiguration() = default;

CKestaConfiguration::~CKestaConfiguration() = default;

int CKestaConfiguration::initialize(const CKestaString& strConfigurationFile)
{
    const CKestaNoCancellation noCancellation;
    CFindings findings;
    findings.strInstalledDir = CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_INSTALLED_DIR);
    findings.strDataDir = CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_DATA_DIR);
    findings.strDebugItems = "ALL";
    const int iResult = findings.read(*findings.strInstalledDir + "conf/" + strConfigurationFile);
    findings.publish();
    return iResult;
}

int CKestaConfiguration::setDebugInfo(const CKestaString& strDebugConf)
{
    const CKestaNoCancellation noCancellation;
    CFindings findings;
    const int iResult = findings.read(strDebugConf);
    findings.publish();
    return iResult;
}

bool CKestaConfiguration::getKeyValue(const CKestaString& strSource, CKestaString& strKey,
                                      CKestaString& strValue)
{
    const CKestaKeyValue found(strSource);
    if (!found.bFound)
        return false;
    const CKestaString strFoundKey(std::string(found.key));   // strKey may be the source
    if (found.value.has_value())
        strValue = std::string(*found.value);
    strKey = strFoundKey;
    return true;
}

bool CKestaConfiguration::isComment(const CKestaString& strLine)
{
    return strLine.c_str()[0] == '#';
}

CKestaString CKestaConfiguration::getConfigurationFile()
{
    return CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_INSTALLED_DIR) + "conf/" +
           szKestaConfigurationFile;
}

int CKestaConfiguration::getDebugLevel()
{
    return copyOf(&CSettings::m_iDebugLevel);
}

int CKestaConfiguration::getDebugSize()
{
    return copyOf(&CSettings::m_iDebugSize);
}

CKestaString CKestaConfiguration::getDebugFile()
{
    return copyOf(&CSettings::m_stdDebugFile);
}

CKestaString CKestaConfiguration::getDebugInfo()
{
    return copyOf(&CSettings::m_strDebugEnabled);
}

CKestaString CKestaConfiguration::getDebugItems()
{
    return copyOf(&CSettings::m_strDebugItems);
}

CKestaString CKestaConfiguration::getNewFile()
{
    return copyOf(&CSettings::m_strNewFile);
}

CKestaString CKestaConfiguration::getDataDir()
{
    return copyOf(&CSettings::m_strDataDir);
}

CKestaString CKestaConfiguration::getInstalledDir()
{
    return copyOf(&CSettings::m_strInstalledDir);
}
