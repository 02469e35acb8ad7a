#ifndef KESTA_INPUT_H
#define KESTA_INPUT_H

#include "KestaDescriptor.h"
#include "KestaToolError.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

/// A file that can't be read; the message names it.
class CKestaInputError : public CKestaToolError
{
public:
    using CKestaToolError::CKestaToolError;
};

/// Identifies a file, whatever its name; by default, no file. While a file is open, no other file
/// has its id.
struct CKestaFileId
{
    dev_t device = 0;
    ino_t node = 0;

    /// The file that a path leads to, or none.
    static CKestaFileId at(const std::string& strPath);

    bool operator==(const CKestaFileId& other) const
    {
        return device == other.device && node == other.node;
    }
    bool operator!=(const CKestaFileId& other) const { return !(*this == other); }
};

/// A file, or standard input, read in large blocks.
///
/// Throws: `CKestaInputError`.
class CKestaInput
{
public:
    /// Opens a file; "-" is standard input. A file that is also standard output is refused: reading
    /// it would never end.
    explicit CKestaInput(const std::string& strPath);

    /// The same, or null if the file does not exist.
    static std::unique_ptr<CKestaInput> openIfThere(const std::string& strPath);

    /// The same, or null if there is no regular file, but a pipe or a directory, for instance.
    /// Never blocks.
    static std::unique_ptr<CKestaInput> openIfRegular(const std::string& strPath);

    /// The first bytes of a text, without a byte-order mark, which some editors put there.
    std::string_view readFirst();

    /// The next bytes; none at the end, for now. They are valid until the next call.
    std::string_view read();

    CKestaFileId id() const;

    /// Skips what the file holds now.
    void skip();

    /// If the file no longer contains what was read of it, as far as its length and the last bytes
    /// that were read show, goes back to its start and returns true.
    bool rewindIfReplaced();

    /// The size of a regular file; 0 for any other.
    std::uint64_t size() const;

    /// The name to show: the path, or "(standard input)".
    const std::string& name() const { return m_strName; }

private:
    CKestaInput(const std::string& strName, int iFile);
    std::string_view readBehind(std::size_t ulKept);
    bool endsWithTail(off_t lPosition) const;
    bool isStandardOutput() const;

    std::string m_strName;
    CKestaDescriptor m_file;
    std::vector<char> m_buffer;
    std::string m_strTail;   // the last bytes that were read
};

#endif
