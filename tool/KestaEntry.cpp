#include "KestaEntry.h"

#include "KestaDebug.h"
#include "KestaDescriptor.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace
{

/// While it lives, standard output is standard error.
class COutputToError
{
public:
    COutputToError() : m_output(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1))
    {
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }

    ~COutputToError()
    {
        std::fflush(stdout);
        dup2(m_output.get(), STDOUT_FILENO);
    }

    COutputToError(const COutputToError&) = delete;
    COutputToError& operator=(const COutputToError&) = delete;

private:
    CKestaDescriptor m_output;
};

}   // namespace

CKestaEntry::CKestaEntry()
{
    const COutputToError redirection;
    try
    {
        initialize();
    }
    catch (...)
    {
        unInitialize();
        throw;
    }
}

CKestaEntry::~CKestaEntry()
{
    unInitialize();
}
