#ifndef KESTA_DEBUG_H
#define KESTA_DEBUG_H

#include "KestaExport.h"
#include "KestaString.h"
#include "KestaTextDetail.h"

#include <atomic>
#include <string_view>
#include <type_traits>

#include <pthread.h>

class CKestaExc;

/// Held from `CKestaDebug::initialize` to `CKestaDebug::unInitialize`: while tracing is set up, it
/// serialises whole entries into the library. Plain and not recursive: a second `initialize` on
/// the same thread blocks for ever.
KESTA_API extern pthread_mutex_t ghMutex;

/// The highest level that is traced now; below every level while tracing is off. Only the library
/// writes it; hosts ask `CKestaDebug::isTraced`.
KESTA_API extern std::atomic<long> glKestaTracedLevel;

/// Starts an entry into the library: reads the configuration and, unless its level is 0, takes the
/// mutex and opens the trace log. `unInitialize` ends the entry. Hosts should use `CKestaEntry`,
/// which calls both, even when an exception is thrown.
///
/// Level 52813 gives a plain log, and writes every line; any other level gives an enciphered one.
/// If the log can't be opened, there is no tracing, and a line of warning on standard output when
/// the switch of the configuration is on.
///
/// Blocks while another thread is in an entry with tracing. An entry whose thread has ended is
/// there for other threads to trace in it and to end it, but blocks nobody: the next entry with
/// tracing ends it first. A thread may be cancelled at the start of this function and while it
/// waits; it has then begun nothing. Leaves errno unchanged.
///
/// Throws: `std::bad_alloc` only. Nothing is held in that case; do not call `unInitialize`.
KESTA_API void initialize();

/// Ends an entry into the library: closes the trace log, and rolls it over when it has grown too
/// large.
///
/// Intended: the mutex is released even when `initialize` did not take it (level 0), and a thread
/// that is in no entry ends the one in progress, so that an entry may begin on one thread and end
/// on another. A thread that is in an entry of its own ends only that one: entries of other threads
/// keep their log and the mutex. Leaves errno unchanged.
KESTA_API void unInitialize();

namespace KestaTraceDetail
{

template <class T>
constexpr bool isFormatted = std::is_convertible_v<const T&, CKestaString>;

// A host's class that converts to a CKestaString is traced as that, whatever else it converts to.
template <class T>
constexpr bool
    isUsedInPlace = std::is_convertible_v<const T&, std::string_view> &&
                    (std::is_pointer_v<std::decay_t<T>> || std::is_same_v<T, std::string> ||
                     std::is_same_v<T, std::string_view> ||
                     std::is_convertible_v<const T*, const CKestaString*> || !isFormatted<T>);

template <class T>
constexpr bool isTraceable = isFormatted<T> || isUsedInPlace<T>;

template <class T>
constexpr bool isObject = std::is_class_v<T> || std::is_union_v<T>;

template <class T>
using IfObject = std::enable_if_t<isTraceable<T> && isObject<T>, int>;

template <class T>
using IfValue = std::enable_if_t<isTraceable<T> && !isObject<T>, int>;

}   // namespace KestaTraceDetail

/// The trace log. Everything is static and process-wide.
///
/// A line is "[" item type "]:" source ":" message and a newline. It is written when the switch is
/// on and the configured level is at least the level of the line; docs/trace-log.md describes the
/// bytes of the file.
///
/// Thread contract: any thread may call anything at any time. Lines go to the log of the entry in
/// progress, each whole: those of the thread that made the entry, and those of threads that are in
/// no entry. A thread whose own entry is at level 0 writes nothing. A thread may be cancelled
/// before it writes a line, but never in the middle of one.
///
/// All functions leave errno unchanged. A line for which there is no memory, or no room on the
/// disk, is lost without an error. Making a text of an argument may throw, before anything is
/// written.
class KESTA_API CKestaDebug
{
public:
    CKestaDebug();
    virtual ~CKestaDebug();

    /// Takes the mutex, loads the settings and opens the log in the given directory, or, when that
    /// is empty, in "log/" below the data directory. Always returns 0, the mutex held: a log that
    /// can't be opened leaves tracing off, with a warning on standard output when the switch of the
    /// configuration was on. In an entry that is set up already it does nothing more.
    ///
    /// Throws: `std::bad_alloc` only; nothing is held then.
    static int initialize(const CKestaString& strFilePath, bool bEncrypted, int iLevel);

    /// Closes the log, renames it when it is larger than the configured size, resets the settings
    /// and releases the mutex. If no log is set up, it only releases the mutex. While another
    /// thread's entry is in progress, a thread with an entry of its own ends only that one.
    static void unInitialize();

    /// Writes one line, if it is to be traced at this level.
    static void logMessage(const CKestaString& strMessage, const CKestaString& strSource,
                           const CKestaString& strItemType, int iLevel);

    /// Writes an error object as one line of item type "EXC" at level 1: its source, then its
    /// number, "," and its message.
    static void logMessage(const CKestaExc& refException);

    /// Turns the switch on or off until the entry ends or, if no log is open, until the next one
    /// begins.
    static void enable(bool bEnable);

    /// Writes a text as it stands, if the switch is on, whatever the level.
    static void writeMessage(const CKestaString& strMessage);

    /// True when lines of this level are traced. It is the test that every trace call makes before
    /// it does anything else; ask it before building a costly message.
    static bool isTraced(int iLevel)
    {
        return iLevel <= glKestaTracedLevel.load(std::memory_order_relaxed);
    }

    /// Does what `logMessage` does, without making texts of its arguments. Each ends before its
    /// first NUL byte.
    static void logText(std::string_view itemType, std::string_view source,
                        std::string_view message, int iLevel);

    /// What `KESTA_DEBUG1` and `KESTA_DEBUG2` do with a line that is to be traced: makes texts of
    /// the arguments and writes the line. Never inlined, so that only the test before it is.
    template <class TSource, class TMessage>
    [[gnu::noinline]] static void trace(const TSource& source, const TMessage& message, int iLevel)
    {
        logText("MSG", textOf(source), textOf(message), iLevel);
    }

    /// The path of the trace log, according to the configuration that was read last.
    static CKestaString getLogFile();

    /// The path that the log takes when it is rolled over.
    static CKestaString getOldLogFile();

private:
    friend class CKestaEntry;
    friend void ::initialize();
    friend void ::unInitialize();

    // Not exported, so that no function of a host can take their place.
    KESTA_LOCAL static void beginEntry();
    KESTA_LOCAL static void endEntry();

    template <class T>
    static auto textOf(const T& text)
    {
        if constexpr (KestaTraceDetail::isUsedInPlace<T>)
            return KestaTextDetail::viewOf(text);
        else
        {
            CKestaString strText = text;   // converts as passing the argument would
            return strText;
        }
    }
};

/// Traces a message of the library itself, item type "MSG" and source "FH", at a level.
///
/// The message is anything that converts to a `CKestaString`: texts, numbers (a single `char` too:
/// 'c' is written as 99), objects of the host. If the line is not to be traced, a call costs one
/// test: nothing is converted, nothing is allocated. A null pointer throws `std::logic_error`, but
/// only if the line is to be traced.
///
///     KESTA_DEBUG1("x", 1);   // [MSG]:FH:x
KESTA_API void KESTA_DEBUG1(CKestaString strMessage, int iLevel);

/// Traces a message of a source, item type "MSG", at a level; otherwise like `KESTA_DEBUG1`.
///
///     KESTA_DEBUG2("Acme::start()", "ready", 3);   // [MSG]:Acme::start():ready
KESTA_API void KESTA_DEBUG2(CKestaString strSource, CKestaString strMessage, int iLevel);

// Calls go to the overloads below, which convert nothing before the test. The name alone is the
// function above, for pointers, std::function, std::bind and std::thread.
#define KESTA_DEBUG1(...) kestaDebug1(__VA_ARGS__)
#define KESTA_DEBUG2(...) kestaDebug2(__VA_ARGS__)

// The templates take objects by reference, and everything else by value: a class constant need not
// be defined, and no reference can be bound to a bit-field or a packed member. The first function
// takes our own texts and what the templates do not: arguments in braces, and objects that convert
// only when they are not const. A host's overload for a type of its own wins over all of them.
inline void kestaDebug1(const CKestaString& strMessage, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace("FH", strMessage, iLevel);
}

template <class TMessage, KestaTraceDetail::IfObject<TMessage> = 0>
inline void kestaDebug1(const TMessage& message, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace("FH", message, iLevel);
}

template <class TMessage, KestaTraceDetail::IfValue<TMessage> = 0>
inline void kestaDebug1(TMessage message, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace("FH", message, iLevel);
}

// Loses against every other overload, and against those of hosts.
template <class T = void>
void kestaDebug1(...)
{
    static_assert(!std::is_void_v<T>,
                  "trace a string or a number: getDateString() of a date, getStrAddress() of an "
                  "address, GetErrorMessage() of an error object, string() of a path");
}

template <class T = void>
void kestaDebug2(...)
{
    kestaDebug1<T>();
}

inline void kestaDebug2(const CKestaString& strSource, const CKestaString& strMessage, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace(strSource, strMessage, iLevel);
}

template <class TSource, class TMessage, KestaTraceDetail::IfObject<TSource> = 0,
          KestaTraceDetail::IfObject<TMessage> = 0>
inline void kestaDebug2(const TSource& source, const TMessage& message, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace(source, message, iLevel);
}

template <class TSource, class TMessage, KestaTraceDetail::IfObject<TSource> = 0,
          KestaTraceDetail::IfValue<TMessage> = 0>
inline void kestaDebug2(const TSource& source, TMessage message, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace(source, message, iLevel);
}

template <class TSource, class TMessage, KestaTraceDetail::IfValue<TSource> = 0,
          KestaTraceDetail::IfObject<TMessage> = 0>
inline void kestaDebug2(TSource source, const TMessage& message, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace(source, message, iLevel);
}

template <class TSource, class TMessage, KestaTraceDetail::IfValue<TSource> = 0,
          KestaTraceDetail::IfValue<TMessage> = 0>
inline void kestaDebug2(TSource source, TMessage message, int iLevel)
{
    if (CKestaDebug::isTraced(iLevel))
        CKestaDebug::trace(source, message, iLevel);
}

#endif
