#include "KestaTraceLog.h"

#include "KestaDebug.h"
#include "KestaException.h"
#include "KestaHostSetup.h"
#include "KestaProcess.h"

#include <atomic>
#include <limits>
#include <utility>

namespace
{

constexpr char szLogName[] = "/KestaDebug_C.log";
constexpr char szOldLogName[] = "/KestaDebugOld_C.log";
constexpr char szDefaultDirectory[] = "log";   // below the data directory

constexpr long lNothing = std::numeric_limits<long>::min();   // below every level

}   // namespace

std::atomic<long> glKestaTracedLevel{lNothing};

CKestaLogFiles logFiles(const CKestaString& strFilePath, const CKestaString& strNewFile)
{
    CKestaLogFiles files{strFilePath, strNewFile};
    if (strFilePath.empty())
    {
        files.strLog =
            CKestaHostSetup::getParameter(CKestaHostSetup::KESTA_DATA_DIR) + szDefaultDirectory;
        files.strOldLog = files.strLog;
    }
    files.strLog += szLogName;
    files.strOldLog += szOldLogName;
    return files;
}

CKestaTraceLog& CKestaTraceLog::instance()
{
    static CKestaImmortal<CKestaTraceLog> log;
    return log.get();
}

bool CKestaTraceLog::setUp(const CKestaString& strFilePath, bool bEncrypted, int iLevel,
                           const CKestaTraceSettings& settings)
{
    CKestaLogFiles files = logFiles(strFilePath, settings.strNewFile);
    CKestaString strEnabled = settings.strDebugEnabled;
    try
    {
        m_File.open(files.strLog, "a+b", bEncrypted);
    }
    catch (const CKestaExc&)
    {
        reset();
        return false;
    }
    m_strFilePath.swap(files.strLog);
    m_strNewFile.swap(files.strOldLog);
    m_strEnabled.swap(strEnabled);
    m_iDebugSize = settings.iDebugSize;
    m_iLevel = iLevel;
    m_bEncrypted = bEncrypted;
    m_bInitialized = true;
    publish();
    return true;
}

void CKestaTraceLog::end()
{
    if (!m_bInitialized)
        return;
    m_File.rollOver(m_strFilePath, m_strNewFile, sizeLimit(m_iDebugSize));
    reset();
}

void CKestaTraceLog::abandon()
{
    if (!m_bInitialized)
        return;   // a switch that was set without a log stays, as at the end of an entry
    m_File.close();
    reset();
}

void CKestaTraceLog::enable(bool bEnable)
{
    m_strEnabled = bEnable ? "Y" : "N";
    publish();
}

void CKestaTraceLog::writeLine(std::string&& strLine, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))   // now that nobody changes it
        m_File.writeLine(std::move(strLine));
}

void CKestaTraceLog::writeText(std::string&& strText)
{
    if (isEnabled())
        m_File.writeLine(std::move(strText));
}

bool CKestaTraceLog::isEnabled() const
{
    return m_strEnabled == "Y" || m_strEnabled == "y";
}

// Swapping frees the memory of the texts: none may be left behind when the library is unloaded.
void CKestaTraceLog::reset()
{
    CKestaString().swap(m_strEnabled);
    m_iLevel = 0;
    CKestaString().swap(m_strFilePath);
    m_bEncrypted = true;
    m_bInitialized = false;
    CKestaString().swap(m_strNewFile);
    m_iDebugSize = 0;
    publish();
}

void CKestaTraceLog::publish() const
{
    glKestaTracedLevel.store(isEnabled() ? m_iLevel : lNothing, std::memory_order_relaxed);
}
