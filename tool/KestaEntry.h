#ifndef KESTA_ENTRY_H
#define KESTA_ENTRY_H

/// One entry into the library, from `initialize()` to `unInitialize()`.
///
/// The library's warning of a log that can't be opened goes to standard error: what stands on
/// standard output is a command's result, and may be read by a program.
class CKestaEntry
{
public:
    CKestaEntry();
    ~CKestaEntry();

    CKestaEntry(const CKestaEntry&) = delete;
    CKestaEntry& operator=(const CKestaEntry&) = delete;
};

#endif
