#include "KestaConfiguration.h"

#include "KestaHostSetup.h"

#include <cstdio>
#include <memory>

CKestaString CKestaConfiguration::m_strInstalledDir;
CKestaString CKestaConfiguration::m_strDataDir;
CKestaString CKestaConfiguration::m_strDebugItems("ALL");
CKestaString CKestaConfiguration::m_stdDebugFile;
CKestaString CKestaConfiguration::m_strConfFile;
CKestaString CKestaConfiguration::m_strDebugEnabled;
CKestaString CKestaConfiguration::m_strNewFile;
int CKestaConfiguration::m_iDebugLevel = 0;
int CKestaConfiguration::m_iDebugSize = 0;

namespace
{

void closeFile(std::FILE* pFile)
{
    std::fclose(pFile);
}

}   // namespace

/// What a reading gathers before it is stored.
struct CKestaConfiguration::CSettings
{
    CKestaString strInstalledDir;
    CKestaString strDataDir;
    CKestaString strDebugItems;
    CKestaString strDebugFile;
    CKestaString strDebugEnabled;
    CKestaString strNewFile;
    int iDebugLevel;
    int iDebugSize;

    int read(const CKestaString& strPath);
    void store(const CKestaString& strKey, const CKestaString& strValue);
};

CKestaConfiguration::CKestaConfiguration() = default;

CKestaConfiguration::~CKestaConfiguration() = default;

int CKestaConfiguration::initialize(const CKestaString& strConfigurationFile)
{
    CSettings next = settings();
    next.strInstalledDir = CKestaHostSetup::getParameter(1);
    next.strDataDir = CKestaHostSetup::getParameter(2);
    next.strDebugItems = "ALL";
    const int iResult = next.read(next.strInstalledDir + "conf" + "/" + strConfigurationFile);
    publish(next);
    return iResult;
}

int CKestaConfiguration::setDebugInfo(const CKestaString& strDebugConf)
{
    CSettings next = settings();
    const int iResult = next.read(strDebugConf);
    publish(next);
    return iResult;
}

int CKestaConfiguration::CSettings::read(const CKestaString& strPath)
{
    const std::unique_ptr<std::FILE, decltype(&closeFile)> pFile(std::fopen(strPath.c_str(), "re"),
                                                                 &closeFile);
    if (pFile == nullptr)
        return -1;
    char szBuffer[BUFSIZ];
    std::setvbuf(pFile.get(), szBuffer, _IOFBF, sizeof szBuffer);

    char szPiece[1024];   // a longer line is taken as several
    CKestaString strLine;
    CKestaString strKey;
    CKestaString strValue;   // outlives its line: a line that ends with "=" takes it over
    bool bSectionFound = false;
    while (std::fgets(szPiece, sizeof szPiece, pFile.get()) != nullptr)
    {
        strLine = szPiece;
        strLine.trim();
        if (strLine.empty() || isComment(strLine))
            continue;
        if (!bSectionFound && strLine == "[DEBUGINFORMATION]")
            bSectionFound = true;
        else if (getKeyValue(strLine, strKey, strValue))
            store(strKey, strValue);   // wherever it stands: the header opens nothing
    }
    return 0;
}

void CKestaConfiguration::CSettings::store(const CKestaString& strKey, const CKestaString& strValue)
{
    if (strKey == "DEBUGFILEPATH")
        strDebugFile = strValue;
    else if (strKey == "DEBUG")
        strDebugEnabled = strValue;
    else if (strKey == "DEBUGLEVEL")
        iDebugLevel = strValue.toInt();
    else if (strKey == "DEBUGITEMS")
        strDebugItems = strValue;
    else if (strKey == "DEBUGSIZE")
        iDebugSize = strValue.toInt();
    else if (strKey == "DEBUGNEWFILE")
        strNewFile = strValue;
}

bool CKestaConfiguration::getKeyValue(const CKestaString& strSource, CKestaString& strKey,
                                      CKestaString& strValue)
{
    const CKestaString strLine(strSource);   // tokenising must not move the caller's cursor
    if (!strLine.getNextToken(strKey, "="))
        return false;
    strKey.trim();
    if (strLine.getNextToken(strValue, ""))
        strValue.trim();
    return true;
}

bool CKestaConfiguration::isComment(const CKestaString& strLine)
{
    return strLine.beginsWith("#");
}

CKestaConfiguration::CSettings CKestaConfiguration::settings()
{
    return {m_strInstalledDir, m_strDataDir, m_strDebugItems, m_stdDebugFile,
            m_strDebugEnabled, m_strNewFile, m_iDebugLevel,   m_iDebugSize};
}

void CKestaConfiguration::publish(const CSettings& settings)
{
    // A member that keeps its value is not written: threads under an unchanged file only read.
    const auto assignChanged = [](auto& member, const auto& value)
    {
        if (!(member == value))
            member = value;
    };
    assignChanged(m_strInstalledDir, settings.strInstalledDir);
    assignChanged(m_strDataDir, settings.strDataDir);
    assignChanged(m_strDebugItems, settings.strDebugItems);
    assignChanged(m_stdDebugFile, settings.strDebugFile);
    assignChanged(m_strDebugEnabled, settings.strDebugEnabled);
    assignChanged(m_strNewFile, settings.strNewFile);
    assignChanged(m_iDebugLevel, settings.iDebugLevel);
    assignChanged(m_iDebugSize, settings.iDebugSize);
}

int CKestaConfiguration::getDebugLevel()
{
    return m_iDebugLevel;
}

int CKestaConfiguration::getDebugSize()
{
    return m_iDebugSize;
}

CKestaString CKestaConfiguration::getDebugFile()
{
    return m_stdDebugFile;
}

CKestaString CKestaConfiguration::getDebugInfo()
{
    return m_strDebugEnabled;
}

CKestaString CKestaConfiguration::getDebugItems()
{
    return m_strDebugItems;
}

CKestaString CKestaConfiguration::getNewFile()
{
    return m_strNewFile;
}

CKestaString CKestaConfiguration::getDataDir()
{
    return m_strDataDir;
}

CKestaString CKestaConfiguration::getInstalledDir()
{
    return m_strInstalledDir;
}
