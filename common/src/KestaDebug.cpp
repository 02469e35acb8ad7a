#include "KestaDebug.h"

#include "KestaConfiguration.h"
#include "KestaException.h"
#include "KestaHostSetup.h"
#include "KestaLineFile.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>

#include <sys/stat.h>

pthread_mutex_t ghMutex = PTHREAD_MUTEX_INITIALIZER;

bool CKestaDebug::m_bEncrypted = true;
CKestaString CKestaDebug::m_strEnabled;
int CKestaDebug::m_iLevel = 0;
int CKestaDebug::m_iDebugSize = 0;
bool CKestaDebug::m_bInitialized = false;
CKestaString CKestaDebug::m_strFilePath;
CKestaString CKestaDebug::m_strNewFile;
CKestaLineFile CKestaDebug::m_File;

namespace
{

constexpr char szConfigurationFile[] = "KestaDebug.ini";
constexpr char szLogName[] = "/KestaDebug_C.log";
constexpr char szOldLogName[] = "/KestaDebugOld_C.log";
constexpr char szDefaultDirectory[] = "log";   // below the data directory

constexpr int iNoTrace = 0;
constexpr int iPlainText = 52813;   // the one level that leaves the log unenciphered

constexpr int iDataDirectory = 2;

// The size limit in bytes: decimal thousands, in 32-bit arithmetic that wraps.
std::int32_t sizeLimit(int iDebugSize)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(iDebugSize) * 1000u);
}

}   // namespace

void initialize()
{
    CKestaConfiguration::initialize(szConfigurationFile);
    const int iLevel = CKestaConfiguration::getDebugLevel();
    if (iLevel != iNoTrace)
        CKestaDebug::initialize(CKestaConfiguration::getDebugFile(), iLevel != iPlainText, iLevel);
}

void unInitialize()
{
    CKestaDebug::unInitialize();
}

CKestaDebug::CKestaDebug() = default;

CKestaDebug::~CKestaDebug() = default;

int CKestaDebug::initialize(const CKestaString& strFilePath, bool bEncrypted, int iLevel)
{
    pthread_mutex_lock(&ghMutex);   // until unInitialize
    if (m_bInitialized)
        return 0;
    m_File.close();
    try
    {
        loadSettings(strFilePath);
        m_File.open(m_strFilePath, "a+b", bEncrypted);
        m_iLevel = iLevel;
        m_bEncrypted = bEncrypted;
        m_bInitialized = true;
    }
    catch (const CKestaExc&)
    {
        if (m_strEnabled.equals("Y", false))
            std::fputs("Warning: Fernhold may not be able to Debug!!!\n", stdout);
        m_strEnabled = "";
        m_bInitialized = false;
        m_iLevel = 0;
    }
    return 0;
}

void CKestaDebug::loadSettings(const CKestaString& strFilePath)
{
    if (!strFilePath.empty())
    {
        m_strFilePath = strFilePath;
        m_strNewFile = CKestaConfiguration::getNewFile();
    }
    else
    {
        m_strFilePath = CKestaHostSetup::getParameter(iDataDirectory) + szDefaultDirectory;
        m_strNewFile = m_strFilePath;
    }
    m_strFilePath += szLogName;
    m_strNewFile += szOldLogName;
    m_strEnabled = CKestaConfiguration::getDebugInfo();
    m_iDebugSize = CKestaConfiguration::getDebugSize();
}

void CKestaDebug::unInitialize()
{
    if (!m_bInitialized)
    {
        // Intended: the mutex is released even if this entry never took it.
        pthread_mutex_unlock(&ghMutex);
        return;
    }
    m_File.close();
    struct stat status;
    if (stat(m_strFilePath.c_str(), &status) == 0 && status.st_size > sizeLimit(m_iDebugSize))
        std::rename(m_strFilePath.c_str(), m_strNewFile.c_str());
    m_strEnabled = "";
    m_iLevel = 0;
    m_strFilePath = "";
    m_bEncrypted = true;
    m_bInitialized = false;
    m_strNewFile = "";
    m_iDebugSize = 0;
    pthread_mutex_unlock(&ghMutex);
}

void CKestaDebug::logMessage(const CKestaString& strMessage, const CKestaString& strSource,
                             const CKestaString& strItemType, int iLevel)
{
    if (isTraced(iLevel))
        writeTrace(strItemType, strSource, strMessage);
}

void CKestaDebug::logMessage(const CKestaExc& refException)
{
    constexpr int iExceptionLevel = 1;
    if (isTraced(iExceptionLevel))
    {
        const CKestaString strSource = refException.GetErrorSource();
        const CKestaString strNumber(refException.GetErrorNumber());
        writeTrace("EXC", strSource, strNumber + "," + refException.GetErrorMessage());
    }
}

void CKestaDebug::enable(bool bEnable)
{
    m_strEnabled = bEnable ? "Y" : "N";
}

void CKestaDebug::writeMessage(const CKestaString& strMessage)
{
    if (isEnabled())
        m_File.writeLine(strMessage.c_str());
}

void CKestaDebug::writeTrace(std::string_view itemType, std::string_view source,
                             std::string_view message)
{
    constexpr std::size_t ulPunctuation = 16;   // and the frame of an enciphered line
    std::string strLine;
    strLine.reserve(itemType.size() + source.size() + message.size() + ulPunctuation);
    strLine += '[';
    strLine += KestaTextDetail::upToNul(itemType);
    strLine += "]:";
    strLine += KestaTextDetail::upToNul(source);
    strLine += ':';
    strLine += KestaTextDetail::upToNul(message);
    strLine += '\n';
    m_File.writeLine(std::move(strLine));
}

void(KESTA_DEBUG1)(CKestaString strMessage, int iLevel)
{
    KESTA_DEBUG1(strMessage, iLevel);
}

void(KESTA_DEBUG2)(CKestaString strSource, CKestaString strMessage, int iLevel)
{
    KESTA_DEBUG2(strSource, strMessage, iLevel);
}
