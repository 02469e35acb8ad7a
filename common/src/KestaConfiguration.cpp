#include "KestaConfiguration.h"

#include "KestaHostSetup.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

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

/// What a reading has found; a setting that it has not found keeps its value.
struct CKestaConfiguration::CFindings
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
    void take(std::string_view key, const std::string& strValue);
    void publish() const;
};

/// One line split at "=", as a tokeniser would: a value is there only when something follows the
/// first "=".
struct CKestaConfiguration::CKeyValue
{
    explicit CKeyValue(std::string_view line) : bFound(line.find('=') != std::string_view::npos)
    {
        if (!bFound)
            return;
        const std::size_t ulKeyEnd = line.find('=');
        const std::string_view rest = line.substr(ulKeyEnd + 1);
        key = KestaTextDetail::trimmed(line.substr(0, ulKeyEnd));
        if (!rest.empty())
            value = KestaTextDetail::trimmed(rest.substr(0, rest.find('=')));
    }

    bool bFound;
    std::string_view key;
    std::optional<std::string_view> value;
};

CKestaConfiguration::CKestaConfiguration() = default;

CKestaConfiguration::~CKestaConfiguration() = default;

int CKestaConfiguration::initialize(const CKestaString& strConfigurationFile)
{
    CFindings findings;
    findings.strInstalledDir = CKestaHostSetup::getParameter(1);
    findings.strDataDir = CKestaHostSetup::getParameter(2);
    findings.strDebugItems = "ALL";
    const int iResult = findings.read(*findings.strInstalledDir + "conf/" + strConfigurationFile);
    findings.publish();
    return iResult;
}

int CKestaConfiguration::setDebugInfo(const CKestaString& strDebugConf)
{
    CFindings findings;
    const int iResult = findings.read(strDebugConf);
    findings.publish();
    return iResult;
}

int CKestaConfiguration::CFindings::read(const CKestaString& strPath)
{
    char szBuffer[BUFSIZ];   // here, not on the heap: the file is read at every entry
    const std::unique_ptr<std::FILE, decltype(&closeFile)> pFile(std::fopen(strPath.c_str(), "re"),
                                                                 &closeFile);
    if (pFile == nullptr)
        return -1;
    std::setvbuf(pFile.get(), szBuffer, _IOFBF, sizeof szBuffer);

    char szPiece[1024];     // a longer line is taken as several
    std::string strValue;   // outlives its line: a line that ends with "=" takes it over
    bool bSectionFound = false;
    while (std::fgets(szPiece, sizeof szPiece, pFile.get()) != nullptr)
    {
        const std::string_view line = KestaTextDetail::trimmed(szPiece);
        if (line.empty() || line.front() == '#')
            continue;
        if (!bSectionFound && line == "[DEBUGINFORMATION]")
        {
            bSectionFound = true;
            continue;
        }
        const CKeyValue found(line);
        if (found.value.has_value())
            strValue = *found.value;
        if (found.bFound)
            take(found.key, strValue);   // wherever it stands: the header opens nothing
    }
    return 0;
}

void CKestaConfiguration::CFindings::take(std::string_view key, const std::string& strValue)
{
    if (key == "DEBUGFILEPATH")
        strDebugFile = strValue;
    else if (key == "DEBUG")
        strDebugEnabled = strValue;
    else if (key == "DEBUGLEVEL")
        iDebugLevel = std::atoi(strValue.c_str());
    else if (key == "DEBUGITEMS")
        strDebugItems = strValue;
    else if (key == "DEBUGSIZE")
        iDebugSize = std::atoi(strValue.c_str());
    else if (key == "DEBUGNEWFILE")
        strNewFile = strValue;
}

void CKestaConfiguration::CFindings::publish() const
{
    // A member that keeps its value is not written: threads under an unchanged file only read.
    const auto assignChanged = [](auto& member, const auto& found)
    {
        if (found.has_value() && !(member == *found))
            member = *found;
    };
    assignChanged(m_strInstalledDir, strInstalledDir);
    assignChanged(m_strDataDir, strDataDir);
    assignChanged(m_strDebugItems, strDebugItems);
    assignChanged(m_stdDebugFile, strDebugFile);
    assignChanged(m_strDebugEnabled, strDebugEnabled);
    assignChanged(m_strNewFile, strNewFile);
    assignChanged(m_iDebugLevel, iDebugLevel);
    assignChanged(m_iDebugSize, iDebugSize);
}

bool CKestaConfiguration::getKeyValue(const CKestaString& strSource, CKestaString& strKey,
                                      CKestaString& strValue)
{
    const CKeyValue found(strSource);
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
