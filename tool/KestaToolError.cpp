#include "KestaToolError.h"

#include "KestaProgress.h"
#include "KestaToolText.h"

#include <cstring>

#include <unistd.h>

void report(const std::string& strMessage)
{
    const std::string strLine = "kesta: " + printable(strMessage) + "\n";
    CKestaProgress::hide();
    // If standard error fails, there is nowhere left to say so.
    [[maybe_unused]] const ssize_t lWritten = write(STDERR_FILENO, strLine.data(), strLine.size());
}

std::string systemError(const std::string& strName, int iError)
{
    return strName + ": " + std::strerror(iError);
}
