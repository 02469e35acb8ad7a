#ifndef KESTA_SETTINGS_READER_H
#define KESTA_SETTINGS_READER_H

#include <cstddef>
#include <optional>
#include <string_view>

#include <sys/types.h>

/// The file that `initialize()` reads, in conf/ below the installation directory.
constexpr char szKestaConfigurationFile[] = "KestaDebug.ini";

/// A line split at "=", as a tokeniser would: the key is what stands before the first "=", the
/// value what stands between it and the second or the end. There is a value only if something
/// follows the first "=". Both are trimmed.
struct CKestaKeyValue
{
    explicit CKestaKeyValue(std::string_view line);

    bool bFound;   // the line holds a "="
    std::string_view key;
    std::optional<std::string_view> value;
};

/// A setting that a configuration file makes.
struct CKestaSetting
{
    unsigned long ulLine = 0;   // in the file, counted from 1
    bool bCut = false;          // the line is too long to be read as one
    bool bTakenOver = false;    // the line ends with its first "=": the value is an earlier line's
    std::string_view key;
    std::string_view value;
};

/// Reads the settings of a configuration file, in their order, without allocating anything.
///
/// The library reads its settings with it, and the command explains them with it.
class CKestaSettingsReader
{
public:
    /// Opens a file without ever waiting. Anything but a regular file holds no settings; a pipe or
    /// socket counts as a file that can't be opened.
    explicit CKestaSettingsReader(const char* pszPath);
    ~CKestaSettingsReader();

    CKestaSettingsReader(const CKestaSettingsReader&) = delete;
    CKestaSettingsReader& operator=(const CKestaSettingsReader&) = delete;

    /// True when the file could be opened.
    bool isOpen() const { return m_iFile >= 0; }

    /// The errno of a file that could not be opened.
    int error() const { return m_iError; }

    /// Finds the next setting; false at the end. Key and value are valid until the next call.
    bool next(CKestaSetting& setting);

private:
    static constexpr std::size_t ulLongestPiece = 1023;   // a longer line is read as several

    bool nextPiece(std::string_view& piece, CKestaSetting& setting);
    void fill();

    int m_iFile = -1;
    int m_iError = 0;
    off_t m_lUnread = 0;          // bytes left of the size at opening
    bool m_bAtEnd = false;        // of the file
    bool m_bWithinLine = false;   // the last piece was not the end of its line
    unsigned long m_ulLine = 0;   // the line of the last piece
    std::size_t m_ulBegin = 0;    // of the unread part of the block
    std::size_t m_ulEnd = 0;
    std::size_t m_ulValue = 0;        // the length of m_szValue
    char m_szValue[ulLongestPiece];   // outlives its line: a line that ends with "=" takes it over
    char m_szBlock[8 * 1024];
};

#endif
