#ifndef KESTA_LOG_FOLLOWER_H
#define KESTA_LOG_FOLLOWER_H

#include "KestaDescriptor.h"
#include "KestaInput.h"
#include "KestaLogDecoder.h"

#include <memory>
#include <string>

class CKestaOutput;

/// Writes a trace log and what is added to it, until the process is told to end (SIGINT, SIGTERM,
/// SIGHUP). When another file takes the log's path, what is left in the old one comes first. A log
/// that does not exist yet is waited for.
class CKestaLogFollower
{
public:
    CKestaLogFollower(const std::string& strPath, CKestaOutput& output);

    /// Throws: `CKestaToolError` when the log can't be read, or the output can't be written.
    void run();

private:
    void catchUp();
    void copyRest();
    void endLog();
    void wait() const;

    std::string m_strPath;
    CKestaOutput& m_output;
    CKestaDescriptor m_watch;
    std::unique_ptr<CKestaInput> m_pInput;
    CKestaLogDecoder m_decoder;
};

#endif
