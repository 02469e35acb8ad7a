#ifndef KESTA_LINE_FILE_H
#define KESTA_LINE_FILE_H

#include "KestaExport.h"
#include "KestaString.h"

#include <string>
#include <string_view>

#include <sys/types.h>

/// A file that is written a line at a time: the file behind the trace log.
///
/// A line is one unbuffered `write`, so it is in the file when the call returns and survives the
/// death of the process. The object owns its descriptor, which programs that the host executes do
/// not inherit. The file does not stay on a descriptor below 3: where the host has closed standard
/// input, output or error, opening takes its number for a moment, and moves on to another.
///
/// When the disk is full, or a terminal is blocked, the rest of a line is dropped and never written
/// later; the next line that finds room starts on a line of its own.
///
/// A host may have closed the descriptor by mistake, and opened a file of its own under its number.
/// So the descriptor is only closed while it still is that of the file. In a forked child, which
/// may have closed all descriptors, this is also checked before each line.
///
/// Thread contract: one thread at a time. Several objects and processes may append to one file;
/// each line stays whole.
class KESTA_API CKestaLineFile
{
public:
    /// A closed file.
    CKestaLineFile() = default;

    /// Closes the file.
    ~CKestaLineFile();

    CKestaLineFile(const CKestaLineFile&) = delete;
    CKestaLineFile& operator=(const CKestaLineFile&) = delete;

    /// Opens a file with a mode of `fopen`; a file that is open already is closed first. Opening
    /// never waits: anything but a regular file or a character device, such as a pipe, counts as a
    /// file that can't be opened.
    ///
    /// Throws: `CKestaExc` 1008 with the path when the file can't be opened; the object is then
    /// closed.
    void open(const CKestaString& strPath, const CKestaString& strMode, bool bEnciphered);

    /// True between a successful `open` and `close`.
    bool isOpen() const;

    /// Closes the file, if it is open.
    void close();

    /// Closes the file. Before that, the file at `strPath`, where it was opened, is renamed to
    /// `strNewPath` if it is larger than `lLimit` bytes. Of several processes that have the file
    /// open, one renames it, and none renames the file that has taken its place. They lock the file
    /// for this; a lock of somebody else delays the roll-over by a few milliseconds only. A rename
    /// that fails is not an error.
    void rollOver(const CKestaString& strPath, const CKestaString& strNewPath, long lLimit);

    /// Writes a line, which carries its own newline. In a file opened as enciphered, the host's
    /// cipher, if any, is applied, and the bytes 00 0A follow; the bytes FE FF precede the first
    /// line written at file position 0. The position of a file opened to append counts from 0 at
    /// every open, so these bytes also stand in the middle of a log that was opened again.
    ///
    /// Returns false when not all of it could be written, or the file is not open.
    bool writeLine(std::string strLine);

private:
    friend class CKestaTraceLog;

    // Like `writeLine`, but uses the memory of the line.
    KESTA_LOCAL bool writeInPlace(std::string& strLine);
    KESTA_LOCAL bool encipher(std::string& strLine) const;
    KESTA_LOCAL bool write(const std::string& strBytes);
    KESTA_LOCAL bool endsWith(std::string_view lineEnd) const;
    KESTA_LOCAL void renameLocked(const CKestaString& strPath, const CKestaString& strNewPath,
                                  long lLimit) const;
    KESTA_LOCAL bool isRolledOver(const CKestaString& strPath,
                                  const CKestaString& strNewPath) const;

    KESTA_LOCAL bool isOwn() const;

    int m_iFile = -1;   // none
    dev_t m_ulDevice = 0;
    ino_t m_ulNumber = 0;    // of the file, on its device
    unsigned m_uForks = 0;   // how often the process had been forked when the file was opened
    bool m_bEnciphered = false;
    bool m_bAtStart = false;   // nothing was written since the file was opened
    bool m_bLimited = false;   // the process had a file-size limit before the first line
    bool m_bTorn = false;      // the last line was not written whole; outlives closing
};

#endif
