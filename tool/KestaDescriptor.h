#ifndef KESTA_DESCRIPTOR_H
#define KESTA_DESCRIPTOR_H

#include <unistd.h>

/// Owns a file descriptor, or none (-1). Standard input, output and error are left open.
class CKestaDescriptor
{
public:
    explicit CKestaDescriptor(int iFile) : m_iFile(iFile) {}

    ~CKestaDescriptor()
    {
        if (m_iFile > STDERR_FILENO)
            close(m_iFile);
    }

    CKestaDescriptor(const CKestaDescriptor&) = delete;
    CKestaDescriptor& operator=(const CKestaDescriptor&) = delete;

    int get() const { return m_iFile; }

private:
    int m_iFile;
};

#endif
