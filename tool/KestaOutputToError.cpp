#include "KestaOutputToError.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

CKestaOutputToError::CKestaOutputToError()
    : m_output(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1))
{
    if (m_output.get() >= 0)   // otherwise it could not be restored
        dup2(STDERR_FILENO, STDOUT_FILENO);
}

CKestaOutputToError::~CKestaOutputToError()
{
    std::fflush(stdout);
    if (m_output.get() >= 0)
        dup2(m_output.get(), STDOUT_FILENO);
}
