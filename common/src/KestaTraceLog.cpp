#include "KestaTraceLog.h"

#include "KestaException.h"
#include "KestaHostSetup.h"
#include "KestaProcess.h"

#include <limits>
#include <new>

namespace
{

constexpr char szLogName[] = "/KestaDebug_C.log";
constexpr char szOldLogName[] = "/KestaDebugOld_C.log";
constexpr char szDefaultDirectory[] = "log";   // below the data directory

constexpr long lNothing = std::numeric_limits<long>::min();   // below every level

}   // namespace

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

bool CKestaTraceLog::open(const CKestaString& strFilePath, bool bEncrypted, int iLevel,
                          const CKestaTraceSettings& settings)
{
    CKestaLogFiles files = logFiles(strFilePath, settings.strNewFile);
    try
    {
        m_File.open(files.strLog, "a+b", bEncrypted);
    }
    catch (const CKestaExc&)
    {
        return false;
    }
    m_files.strLog.swap(files.strLog);
    m_files.strOldLog.swap(files.strOldLog);
    m_iDebugSize = settings.iDebugSize;
    m_iConfiguredLevel = iLevel;
    m_bConfiguredSwitch = isOn(settings.strDebugEnabled);
    return true;
}

void CKestaTraceLog::start()
{
    m_bInitialized = true;
    m_bEnabled = m_bConfiguredSwitch;
    m_iLevel = m_iConfiguredLevel;
}

void CKestaTraceLog::stop()
{
    m_bInitialized = false;
    m_bEnabled = false;
    m_iLevel = 0;
}

void CKestaTraceLog::rollOver()
{
    m_File.rollOver(m_files.strLog, m_files.strOldLog, sizeLimit(m_iDebugSize));
    close();
}

// Swapping frees the memory of strings: none may be left behind when the library is unloaded.
void CKestaTraceLog::close()
{
    m_File.close();
    CKestaString().swap(m_files.strLog);
    CKestaString().swap(m_files.strOldLog);
    std::string().swap(m_strLine);
}

void CKestaTraceLog::enable(bool bEnable)
{
    m_bEnabled = bEnable;
}

long CKestaTraceLog::tracedLevel() const
{
    return m_bEnabled ? m_iLevel : lNothing;
}

void CKestaTraceLog::writeLine(std::string_view itemType, std::string_view source,
                               std::string_view message, int iLevel)
{
    if (!m_bInitialized || iLevel > tracedLevel())
        return;
    m_strLine.assign(1, '[').append(itemType).append("]:", 2).append(source);
    m_strLine.append(1, ':').append(message).append(1, '\n');
    m_File.writeInPlace(m_strLine);
}

void CKestaTraceLog::writeText(std::string_view text)
{
    if (!m_bInitialized || !m_bEnabled)
        return;
    m_strLine.assign(text);
    m_File.writeInPlace(m_strLine);
}

// What is made anew is not destroyed before: it may be in any state.
void CKestaTraceLog::repairInChild()
{
    if (m_bInitialized)
        new (&m_strLine) std::string;
    else
        new (this) CKestaTraceLog;
}
