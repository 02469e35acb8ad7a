#ifndef KESTA_OUTPUT_TO_ERROR_H
#define KESTA_OUTPUT_TO_ERROR_H

#include "KestaDescriptor.h"

/// While it lives, standard output goes to standard error. Scripts parse standard output, so it
/// must carry only results; the library's warning about its log goes there, too.
class CKestaOutputToError
{
public:
    CKestaOutputToError();
    ~CKestaOutputToError();

    CKestaOutputToError(const CKestaOutputToError&) = delete;
    CKestaOutputToError& operator=(const CKestaOutputToError&) = delete;

private:
    CKestaDescriptor m_output;
};

#endif
