#include "KestaConfiguration.h"

#include "KestaHostSetup.h"
#include "KestaProcess.h"
#include "KestaSettingsReader.h"
#include "KestaTraceSettings.h"

#include <memory>
#include <optional>
#include <string>
#include <tuple>

namespace
{

bool areEqual(const CKestaTraceSettings& left, const CKestaTraceSettings& right)
{
    const auto valuesOf = [](const CKestaTraceSettings& settings)
    {
        return std::tie(settings.strInstalledDir, settings.strDataDir, settings.strDebugItems,
                        settings.strDebugFile, settings.strDebugEnabled, settings.strNewFile,
                        settings.iDebugLevel, settings.iDebugSize);
    };
    return valuesOf(left) == valuesOf(right);
}

void apply(const CKestaSetting& found, CKestaTraceSettings& settings)
{
    const CKestaString strValue(found.value);
    if (found.key == "DEBUGFILEPATH")
        settings.strDebugFile = strValue;
    else if (found.key == "DEBUG")
        settings.strDebugEnabled = strValue;
    else if (found.key == "DEBUGLEVEL")
        settings.iDebugLevel = strValue.toInt();
    else if (found.key == "DEBUGITEMS")
        settings.strDebugItems = strValue;
    else if (found.key == "DEBUGSIZE")
        settings.iDebugSize = strValue.toInt();
    else if (found.key == "DEBUGNEWFILE")
        settings.strNewFile = strValue;
}

int read(const CKestaString& strPath, CKestaTraceSettings& settings)
{
    CKestaSettingsReader reader(strPath.c_str());
    if (!reader.isOpen())
        return -1;
    CKestaSetting found;
    while (reader.next(found))
        apply(found, settings);
    return 0;
}

/// Changes a copy of the settings, and replaces them with it: other threads see all the changes or
/// none, and an error changes nothing. If another thread replaces them meanwhile, begins again, so
/// that the changes of both count. Settings that stay equal are not replaced, so threads that only
/// read the same file again don't get into each other's way.
template <class Change>
int changeSettings(Change change)
{
    const CKestaNoCancellation noCancellation;
    for (;;)
    {
        const CKestaSharedSettings pBefore = currentTraceSettings();
        CKestaTraceSettings settings = *pBefore;
        const int iResult = change(settings);
        if (areEqual(settings, *pBefore) ||
            replaceTraceSettings(pBefore, std::make_shared<CKestaTraceSettings>(settings)))
            return iResult;
    }
}

}   // namespace

CKestaConfiguration::CKestaConfiguration() = default;

CKestaConfiguration::~CKestaConfiguration() = default;

int CKestaConfiguration::initialize(const CKestaString& strConfigurationFile)
{
    return changeSettings(
        [&](CKestaTraceSettings& settings)
        {
            settings.strInstalledDir =
                CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_INSTALLED_DIR);
            settings.strDataDir = CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_DATA_DIR);
            settings.strDebugItems = "ALL";
            return read(settings.strInstalledDir + "conf/" + strConfigurationFile, settings);
        });
}

int CKestaConfiguration::setDebugInfo(const CKestaString& strDebugConf)
{
    return changeSettings([&](CKestaTraceSettings& settings)
                          { return read(strDebugConf, settings); });
}

bool CKestaConfiguration::getKeyValue(const CKestaString& strSource, CKestaString& strKey,
                                      CKestaString& strValue)
{
    // A copy, because a result may be the same object as the source.
    const std::string strLine(strSource.data(), strSource.size());
    const CKestaKeyValue found(strLine);
    if (!found.bFound)
        return false;
    strKey = CKestaString(found.key);
    if (found.value.has_value())
        strValue = CKestaString(*found.value);
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
    return currentTraceSettings()->iDebugLevel;
}

int CKestaConfiguration::getDebugSize()
{
    return currentTraceSettings()->iDebugSize;
}

CKestaString CKestaConfiguration::getDebugFile()
{
    return currentTraceSettings()->strDebugFile;
}

CKestaString CKestaConfiguration::getDebugInfo()
{
    return currentTraceSettings()->strDebugEnabled;
}

CKestaString CKestaConfiguration::getDebugItems()
{
    return currentTraceSettings()->strDebugItems;
}

CKestaString CKestaConfiguration::getNewFile()
{
    return currentTraceSettings()->strNewFile;
}

CKestaString CKestaConfiguration::getDataDir()
{
    return currentTraceSettings()->strDataDir;
}

CKestaString CKestaConfiguration::getInstalledDir()
{
    return currentTraceSettings()->strInstalledDir;
}
