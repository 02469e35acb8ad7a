#ifndef KESTA_OUTPUT_TO_ERROR_H
#define KESTA_OUTPUT_TO_ERROR_H

#include "KestaDescriptor.h"

/// While it lives, standard output is standard error: stdout carries only results, which scripts
/// parse, and the library warns there of a log that it can't open.
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
