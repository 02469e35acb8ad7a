// Part of the library and of the tool when coverage is counted: many tests look at a child that
// ends with _exit, or end the tool with a signal, and what was counted would be lost.

#include <csignal>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#define SHOWN extern "C" __attribute__((visibility("default")))

extern "C" void __gcov_dump();

namespace
{

typedef void (*Handler)(int);

void dump()
{
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);   // the test may have set one
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_FSIZE, &limit);
    __gcov_dump();
}

Handler handle(int signal, Handler handler)
{
    struct sigaction action = {}, before = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, &before);
    return before.sa_handler;
}

void dumpAndEnd(int signal)
{
    dump();
    handle(signal, SIG_DFL);
    raise(signal);
}

}   // namespace

SHOWN void _exit(int status)
{
    dump();
    syscall(SYS_exit_group, status);
    __builtin_unreachable();
}

SHOWN Handler signal(int signal, Handler handler)
{
    const bool ends = (signal == SIGINT || signal == SIGTERM) && handler == SIG_DFL;
    return handle(signal, ends ? &dumpAndEnd : handler);
}
