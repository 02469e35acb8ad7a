#include "KestaDebug.h"

#include "KestaConfiguration.h"
#include "KestaEntries.h"
#include "KestaException.h"
#include "KestaProcess.h"
#include "KestaSettingsReader.h"
#include "KestaTextDetail.h"
#include "KestaTraceLog.h"
#include "KestaTraceSettings.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace
{

constexpr int iNoTrace = 0;
constexpr int iPlainText = 52813;   // the one level that leaves the log unenciphered
constexpr int iLowestLevel = std::numeric_limits<int>::min();   // traced whenever the switch is on

// The whole of several pieces, with room for the frame of an enciphered line.
std::string joined(std::initializer_list<std::string_view> pieces)
{
    constexpr std::size_t ulFrame = 8;
    std::size_t ulSize = 0;
    for (const std::string_view piece : pieces)
        ulSize += piece.size();
    std::string strWhole;
    strWhole.reserve(ulSize + ulFrame);
    strWhole.resize(ulSize);
    char* pEnd = strWhole.data();
    for (const std::string_view piece : pieces)
        pEnd = std::copy(piece.begin(), piece.end(), pEnd);
    return strWhole;
}

// Begins an entry with tracing. If `pSettings` is null, the settings read last are used.
void beginTraced(const CKestaString& strFilePath, bool bEncrypted, int iLevel,
                 const CKestaTraceSettings* pSettings)
{
    bool bWarning = false;
    {
        const CKestaLock lock(CKestaEntries::mutex());
        CKestaEntries::begin();
        const CKestaNoCancellation noCancellation;
        CKestaTraceLog& log = CKestaTraceLog::instance();
        if (log.isSetUp())
            return;
        try
        {
            std::optional<CKestaTraceSettings> current;
            if (pSettings == nullptr)
                pSettings = &current.emplace(currentTraceSettings());
            bWarning = !log.setUp(strFilePath, bEncrypted, iLevel, *pSettings) &&
                       pSettings->strDebugEnabled.equals("Y", false);
        }
        catch (...)
        {
            CKestaEntries::end();   // an entry that throws holds nothing
            throw;
        }
    }
    const CKestaNoCancellation noCancellation;
    if (bWarning)
        std::fputs("Warning: Fernhold may not be able to Debug!!!\n", stdout);
}

}   // namespace

void initialize()
{
    pthread_testcancel();   // here, where nothing is held yet
    CKestaConfiguration::initialize(szKestaConfigurationFile);
    const CKestaTraceSettings settings = currentTraceSettings();
    if (settings.iDebugLevel == iNoTrace)
    {
        const CKestaLock lock(CKestaEntries::mutex());
        CKestaEntries::beginIdle();
    }
    else
        beginTraced(settings.strDebugFile, settings.iDebugLevel != iPlainText, settings.iDebugLevel,
                    &settings);
}

void unInitialize()
{
    CKestaDebug::unInitialize();
}

CKestaDebug::CKestaDebug() = default;

CKestaDebug::~CKestaDebug() = default;

int CKestaDebug::initialize(const CKestaString& strFilePath, bool bEncrypted, int iLevel)
{
    pthread_testcancel();
    beginTraced(strFilePath, bEncrypted, iLevel, nullptr);
    return 0;
}

void CKestaDebug::unInitialize()
{
    const CKestaNoCancellation noCancellation;
    const CKestaLock lock(CKestaEntries::mutex());
    CKestaEntries::end();
}

void CKestaDebug::logMessage(const CKestaString& strMessage, const CKestaString& strSource,
                             const CKestaString& strItemType, int iLevel)
{
    if (isTraced(iLevel))
        logText(strItemType, strSource, strMessage, iLevel);
}

void CKestaDebug::logMessage(const CKestaExc& refException)
try
{
    constexpr int iExceptionLevel = 1;
    if (!isTraced(iExceptionLevel))
        return;
    const CKestaString strSource = refException.GetErrorSource();
    CKestaString strMessage(refException.GetErrorNumber());
    strMessage += ",";
    strMessage += refException.GetErrorMessage();
    logText("EXC", strSource, strMessage, iExceptionLevel);
}
catch (const std::bad_alloc&)
{
    // Lost, as below.
}

void CKestaDebug::enable(bool bEnable)
{
    const CKestaLock lock(CKestaEntries::mutex());
    if (!CKestaEntries::isLogOfOthers())
        CKestaTraceLog::instance().enable(bEnable);
}

void CKestaDebug::writeMessage(const CKestaString& strMessage)
try
{
    if (!isTraced(iLowestLevel))
        return;
    pthread_testcancel();
    std::string strText(strMessage.c_str());
    const CKestaLock lock(CKestaEntries::mutex());
    if (!CKestaEntries::isLogOfOthers())
        CKestaTraceLog::instance().writeText(std::move(strText));
}
catch (const std::bad_alloc&)
{
    // A line for which there is no memory is lost, like one for which there is no disk space.
}

void CKestaDebug::logText(std::string_view itemType, std::string_view source,
                          std::string_view message, int iLevel)
try
{
    pthread_testcancel();   // a trace call is cancelled only here: lines stay whole
    using KestaTextDetail::upToNul;
    std::string strLine =
        joined({"[", upToNul(itemType), "]:", upToNul(source), ":", upToNul(message), "\n"});
    const CKestaLock lock(CKestaEntries::mutex());
    if (!CKestaEntries::isLogOfOthers())
        CKestaTraceLog::instance().writeLine(std::move(strLine), iLevel);
}
catch (const std::bad_alloc&)
{
    // Lost, as above.
}

CKestaString CKestaDebug::getLogFile()
{
    const CKestaTraceSettings settings = currentTraceSettings();
    return logFiles(settings.strDebugFile, settings.strNewFile).strLog;
}

CKestaString CKestaDebug::getOldLogFile()
{
    const CKestaTraceSettings settings = currentTraceSettings();
    return logFiles(settings.strDebugFile, settings.strNewFile).strOldLog;
}

void(KESTA_DEBUG1)(CKestaString strMessage, int iLevel)
{
    KESTA_DEBUG1(strMessage, iLevel);
}

void(KESTA_DEBUG2)(CKestaString strSource, CKestaString strMessage, int iLevel)
{
    KESTA_DEBUG2(strSource, strMessage, iLevel);
}
