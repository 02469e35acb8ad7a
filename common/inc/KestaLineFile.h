#ifndef KESTA_LINE_FILE_H
#define KESTA_LINE_FILE_H

#include "KestaExport.h"
#include "KestaString.h"

#include <string>
#include <string_view>

/// A file that is written a line at a time: the bytes under the trace log.
///
/// A line is one write of the system, without a buffer between: what was written is in the file
/// when the call returns, and survives the death of the process. The object owns its descriptor,
/// which programs that the host executes do not inherit, and which is never that of standard input,
/// output or error.
///
/// When the disk is full, or a terminal takes no more, what can't be written of a line is given up
/// and never comes later; the next line that finds room starts on a line of its own.
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
    /// never waits: what is neither a regular file nor a character device, such as a pipe, counts
    /// as a file that can't be opened.
    ///
    /// Throws: `CKestaExc` 1008 with the path, when the file can't be opened; the object is closed
    /// then.
    void open(const CKestaString& strPath, const CKestaString& strMode, bool bEnciphered);

    /// True between a successful `open` and `close`.
    bool isOpen() const;

    /// Closes the file, if it is open.
    void close();

    /// Closes the file; before that, what stands at `strPath`, where it was opened, is renamed to
    /// `strNewPath` if it is larger than so many bytes. Of several processes that have the file
    /// open, one renames it, and none the file that has taken its place. That it can't be renamed
    /// is no error.
    void rollOver(const CKestaString& strPath, const CKestaString& strNewPath, long lLimit);

    /// Writes a line, which carries its own newline: as it stands, or, in a file opened as
    /// enciphered, as the host's cipher gives it (as it stands without one), followed by the bytes
    /// 00 0A. The bytes FE FF precede the first line that goes out at file position 0; the position
    /// of a file opened to append counts from 0 at every open, so they also stand amid a log that
    /// was opened again.
    ///
    /// Returns false when not all of it could be written, or the file is not open.
    bool writeLine(std::string strLine);

private:
    KESTA_LOCAL bool encipher(std::string& strLine) const;
    KESTA_LOCAL bool write(const std::string& strBytes);
    KESTA_LOCAL bool endsWith(std::string_view lineEnd) const;
    KESTA_LOCAL void renameLocked(const CKestaString& strPath, const CKestaString& strNewPath,
                                  long lLimit) const;
    KESTA_LOCAL bool isRolledOver(const CKestaString& strPath,
                                  const CKestaString& strNewPath) const;

    int m_iFile = -1;   // none
    bool m_bEnciphered = false;
    bool m_bAtStart = false;   // nothing was written since the file was opened
    bool m_bLimited = false;   // before the first line, the process had a file-size limit
    bool m_bTorn = false;      // the last line was not written whole; outlives closing
};

#endif
