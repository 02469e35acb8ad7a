#include "KestaHostSetup.h"

#include "KestaProcess.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#ifndef KESTA_DEFAULT_INSTALLED_DIR
#define KESTA_DEFAULT_INSTALLED_DIR "/opt/fernhold/"
#endif
#ifndef KESTA_DEFAULT_DATA_DIR
#define KESTA_DEFAULT_DATA_DIR "/var/opt/fernhold/"
#endif

namespace
{

struct CParameter
{
    const char* pszEnvironment;
    const char* pszDefault;
};

constexpr CParameter parameters[] = {
    {"KESTA_INSTALLED_DIR", KESTA_DEFAULT_INSTALLED_DIR},
    {"KESTA_DATA_DIR", KESTA_DEFAULT_DATA_DIR},
};
constexpr int iParameters = 2;

// What the host has set. Plain buffers need no initialisation when the library is loaded.
struct CHostValue
{
    bool bSet;
    char szText[CKestaHostSetup::KESTA_LONGEST_PARAMETER + 1];
};

CHostValue hostValues[iParameters];
std::atomic<CKestaHostSetup::LineCipher> pLineCipher{nullptr};

bool isParameter(int iNumber)
{
    return iNumber >= 1 && iNumber <= iParameters;
}

}   // namespace

bool CKestaHostSetup::setParameter(int iNumber, CKestaString strValue)
{
    if (!isParameter(iNumber) || strValue.size() > KESTA_LONGEST_PARAMETER)
        return false;
    const CKestaLock lock(hKestaSettingsMutex);
    CHostValue& value = hostValues[iNumber - 1];
    std::strcpy(value.szText, strValue.c_str());
    value.bSet = true;
    return true;
}

CKestaString CKestaHostSetup::getParameter(int iNumber)
{
    if (!isParameter(iNumber))
        return CKestaString();
    {
        const CKestaLock lock(hKestaSettingsMutex);
        if (hostValues[iNumber - 1].bSet)
            return hostValues[iNumber - 1].szText;
    }

    // secure_getenv returns null in a process with raised privileges: whoever starts such a process
    // must not choose where it reads its configuration and writes its log.
    const CParameter& parameter = parameters[iNumber - 1];
    const char* pszEnvironment = secure_getenv(parameter.pszEnvironment);
    if (pszEnvironment != nullptr && *pszEnvironment != '\0' &&
        std::strlen(pszEnvironment) <= KESTA_LONGEST_PARAMETER)
        return pszEnvironment;
    return parameter.pszDefault;
}

void CKestaHostSetup::setLineCipher(LineCipher pCipher)
{
    pLineCipher = pCipher;
}

CKestaHostSetup::LineCipher CKestaHostSetup::getLineCipher()
{
    return pLineCipher;
}
