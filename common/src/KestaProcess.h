#ifndef KESTA_PROCESS_H
#define KESTA_PROCESS_H

#include <cerrno>
#include <new>

#include <pthread.h>

// What keeps process-wide state consistent: between threads, under cancellation, and to the very
// end of the process.

/// Holds a mutex while it lives.
class CKestaLock
{
public:
    explicit CKestaLock(pthread_mutex_t& hMutex) : m_hMutex(hMutex) { pthread_mutex_lock(&hMutex); }

    ~CKestaLock() { pthread_mutex_unlock(&m_hMutex); }

    CKestaLock(const CKestaLock&) = delete;
    CKestaLock& operator=(const CKestaLock&) = delete;

private:
    pthread_mutex_t& m_hMutex;
};

/// While it lives, the thread is not cancelled: what has begun, such as closing a file in a
/// destructor, is completed. A request made meanwhile stays pending.
class CKestaNoCancellation
{
public:
    CKestaNoCancellation() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_iBefore); }

    ~CKestaNoCancellation() { pthread_setcancelstate(m_iBefore, nullptr); }

    CKestaNoCancellation(const CKestaNoCancellation&) = delete;
    CKestaNoCancellation& operator=(const CKestaNoCancellation&) = delete;

private:
    int m_iBefore = PTHREAD_CANCEL_ENABLE;
};

/// Restores errno at the end of its lifetime: hosts trace between a failed call and their look at
/// errno.
class CKestaErrno
{
public:
    CKestaErrno() = default;

    ~CKestaErrno() { errno = m_iBefore; }

    CKestaErrno(const CKestaErrno&) = delete;
    CKestaErrno& operator=(const CKestaErrno&) = delete;

private:
    const int m_iBefore = errno;
};

/// A value that is never destroyed, so that it can be used while a process ends: handlers that run
/// after the destructors of the library's statics may still trace.
template <class T>
class CKestaImmortal
{
public:
    CKestaImmortal() { new (&m_storage) T; }

    CKestaImmortal(const CKestaImmortal&) = delete;
    CKestaImmortal& operator=(const CKestaImmortal&) = delete;

    T& get() { return *std::launder(reinterpret_cast<T*>(&m_storage)); }

private:
    alignas(T) unsigned char m_storage[sizeof(T)];
};

/// How often this process, and those that it was forked from, have been forked.
extern unsigned uKestaForks;

/// Guards the host set-up and the configuration. It is held only while values are copied in or out:
/// under it nothing calls the host, the file system or anything else that waits.
extern pthread_mutex_t hKestaSettingsMutex;

#endif
