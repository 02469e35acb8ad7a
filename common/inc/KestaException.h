#ifndef KESTA_EXCEPTION_H
#define KESTA_EXCEPTION_H

#include "KestaExport.h"
#include "KestaString.h"

#include <iosfwd>

class CKestaExc;

/// Writes one line, "number;source;message", and flushes the stream.
KESTA_API std::ostream& operator<<(std::ostream& os, CKestaExc& refException);

/// The error object that every failure of the library is thrown as: a number, a source and a
/// message. Thrown by value, caught by reference.
///
///     try { KestaIPRange range("no address"); }
///     catch (const CKestaExc& exc) { std::cerr << exc; }   // -9999;Fernhold;Not a valid IP ...
///
/// It is not derived from `std::exception`: a host that catches only those does not catch it.
///
/// Error objects are values; each belongs to whoever holds it. Thread contract: distinct objects
/// are independent, and the catalogue of standard messages is constant. Building one throws
/// nothing but the standard library's exceptions when memory is exhausted.
class KESTA_API CKestaExc
{
public:
    /// Number -9999, source "Kesta_Fernhold" (the library), no message.
    CKestaExc();

    /// Number -9999, source "Fernhold" (the product), the given message. The two default sources
    /// differ on purpose.
    CKestaExc(CKestaString strMessage);

    /// The given number and source; the message is the catalogue's text for the number, ":" and
    /// the given message. A number that the catalogue does not hold has no text.
    CKestaExc(long lNumber, CKestaString strSource, CKestaString strMessage);

    /// A copy. An object initialised with itself, `CKestaExc e(e)`, has number -9999 and no texts.
    CKestaExc(const CKestaExc& refException);
    CKestaExc& operator=(const CKestaExc& refException) = default;
    virtual ~CKestaExc();

    /// A copy of the message.
    virtual CKestaString GetErrorMessage() const;
    /// A copy of the source.
    virtual CKestaString GetErrorSource() const;
    /// The number; -9999 when none was given.
    virtual long GetErrorNumber() const;

    /// `SetErrorNumber`, `SetErrorSource` and `SetErrorMessage`, in this order: the message becomes
    /// the catalogue's text, ":" and the given message. A subclass that overrides one of the three
    /// sees it called.
    virtual void SetError(long lNumber, CKestaString strSource, CKestaString strMessage);

    /// Appends ":" and the given text to the message, also to an empty one. Intended: `SetError`
    /// completes the catalogue's text with it.
    virtual void SetErrorMessage(CKestaString strMessage);

    /// Replaces the source.
    virtual void SetErrorSource(CKestaString strSource);

    /// Stores the number and replaces the message by the catalogue's text for it, or by the empty
    /// text when the catalogue does not hold it.
    virtual void SetErrorNumber(long lNumber);

    /// Looks a number up in the catalogue of standard messages.
    ///
    /// REQUIRES: `pszMessage` has room for 512 bytes.
    /// Returns 0, the NUL-terminated text in `pszMessage`; or -1, `pszMessage` left as it was.
    static int getErrMessage(long lNumber, char* pszMessage);

    /// Writes a const error object, as the operator above does. A template, so that a host's own
    /// operator wins.
    template <class = void>
    friend std::ostream& operator<<(std::ostream& os, const CKestaExc& refException)
    {
        return os << const_cast<CKestaExc&>(refException);
    }

private:
    long m_lErrorNumber;
    CKestaString m_strErrorSource;
    CKestaString m_strErrorMessage;
};

/// Thrown when the cursor of a map is read past its end. Always -9999, "Kesta_Fernhold" and no
/// message.
class KESTA_API CKestaExc_ArrayOutOfBound : public CKestaExc
{
public:
    CKestaExc_ArrayOutOfBound();
    CKestaExc_ArrayOutOfBound(const CKestaExc_ArrayOutOfBound& refException) = default;
    CKestaExc_ArrayOutOfBound& operator=(const CKestaExc_ArrayOutOfBound& refException) = default;
    ~CKestaExc_ArrayOutOfBound() override;
};

/// Thrown when a file that must exist is missing. Always -9999, "Kesta_Fernhold" and no message.
class KESTA_API CKestaExc_FileNotFound : public CKestaExc
{
public:
    CKestaExc_FileNotFound();

    /// Intended: the text is not stored anywhere. Callers recognise this error by its type alone.
    CKestaExc_FileNotFound(CKestaString strIgnored);

    CKestaExc_FileNotFound(const CKestaExc_FileNotFound& refException) = default;
    CKestaExc_FileNotFound& operator=(const CKestaExc_FileNotFound& refException) = default;
    ~CKestaExc_FileNotFound() override;
};

#endif
