#include "KestaException.h"

#include <cstring>
#include <ostream>

namespace
{

// Fields of fixed width instead of pointers: so the whole table is read-only data that the loader
// need not relocate.
struct CCatalogueRecord
{
    long lNumber;
    char szMessage[512];
};

constexpr long lLastRecord = 7777;

constexpr CCatalogueRecord catalogue[] = {
    {-1, "Unknown Error"},
    {1008, "Error in Opening the file"},
    {1009, "File not open"},
    {1115, "Memory allocation failed"},
    {-9985, "Error Occurred in Opening Input File"},
    {-9986, "The value passed for one of the parameter to API is not allowed"},
    {lLastRecord, "Last error entry "},
};

CKestaString catalogueText(long lNumber)
{
    char szMessage[1024] = "";
    CKestaExc::getErrMessage(lNumber, szMessage);
    return szMessage;
}

}   // namespace

CKestaExc::CKestaExc() : m_lErrorNumber(-9999), m_strErrorSource("Kesta_Fernhold") {}

CKestaExc::CKestaExc(CKestaString strMessage)
    : m_lErrorNumber(-9999), m_strErrorSource("Fernhold"), m_strErrorMessage(strMessage)
{
}

CKestaExc::CKestaExc(long lNumber, CKestaString strSource, CKestaString strMessage)
    : m_lErrorNumber(lNumber), m_strErrorSource(strSource),
      m_strErrorMessage(catalogueText(lNumber) + ":" + strMessage)
{
}

CKestaExc::CKestaExc(const CKestaExc& refException) : m_lErrorNumber(-9999)
{
    if (this != &refException)   // `CKestaExc e(e)` has no texts
        *this = refException;
}

CKestaExc::~CKestaExc() = default;

CKestaString CKestaExc::GetErrorMessage() const
{
    return m_strErrorMessage;
}

CKestaString CKestaExc::GetErrorSource() const
{
    return m_strErrorSource;
}

long CKestaExc::GetErrorNumber() const
{
    return m_lErrorNumber;
}

void CKestaExc::SetError(long lNumber, CKestaString strSource, CKestaString strMessage)
{
    SetErrorNumber(lNumber);
    SetErrorSource(strSource);
    SetErrorMessage(strMessage);
}

void CKestaExc::SetErrorMessage(CKestaString strMessage)
{
    m_strErrorMessage = m_strErrorMessage + ":" + strMessage;
}

void CKestaExc::SetErrorSource(CKestaString strSource)
{
    m_strErrorSource = strSource;
}

void CKestaExc::SetErrorNumber(long lNumber)
{
    m_lErrorNumber = lNumber;
    m_strErrorMessage = catalogueText(lNumber);
}

int CKestaExc::getErrMessage(long lNumber, char* pszMessage)
{
    for (const CCatalogueRecord* pRecord = catalogue; pRecord->lNumber != lLastRecord; ++pRecord)
    {
        if (pRecord->lNumber == lNumber)
        {
            std::strcpy(pszMessage, pRecord->szMessage);
            return 0;
        }
    }
    return -1;
}

CKestaExc_ArrayOutOfBound::CKestaExc_ArrayOutOfBound() = default;

CKestaExc_ArrayOutOfBound::~CKestaExc_ArrayOutOfBound() = default;

CKestaExc_FileNotFound::CKestaExc_FileNotFound() = default;

CKestaExc_FileNotFound::CKestaExc_FileNotFound(CKestaString /*strIgnored*/) {}

CKestaExc_FileNotFound::~CKestaExc_FileNotFound() = default;

std::ostream& operator<<(std::ostream& os, CKestaExc& refException)
{
    // The number is written as a text, so in decimal, whatever base the stream is set to.
    return os << CKestaString(refException.GetErrorNumber()) << ';' << refException.GetErrorSource()
              << ';' << refException.GetErrorMessage() << std::endl;
}
