// The library is loaded and unloaded many times, and used by an exit handler that was registered
// before it was loaded, and so runs after the library's own. With a third argument, the host
// has used up all keys for thread-specific data before. The host exports functions of the same name
// as the library's, which entries must not call.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

void initialize() { std::abort(); }
void unInitialize() { std::abort(); }

static void* part = nullptr;

template <class Function>
static Function* find(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(part, name));
}

static int host(const char* path, const std::string& directory)
{
    std::atexit([] { find<void(const char*)>("trace")("at exit"); });
    for (int time = 0; time < 50; ++time)
    {
        if (part != nullptr)
            dlclose(part);
        part = dlopen(path, RTLD_NOW);
        find<void(const char*)>("setUp")(directory.c_str());
        find<void(const char*)>("trace")("loaded");
    }
    return 0;
}

int main(int, char** arguments)
{
    const std::string directory = std::string(arguments[2]) + "/";
    std::filesystem::remove_all(directory);
    for (const char* name : {"conf", "log"})
        std::filesystem::create_directories(directory + name);
    std::ofstream(directory + "conf/KestaDebug.ini")
        << "DEBUG=Y\nDEBUGLEVEL=52813\nDEBUGSIZE=1000\nDEBUGITEMS=" << std::string(500, 'x')
        << "\n";
    pthread_key_t key;
    while (arguments[3] != nullptr && pthread_key_create(&key, nullptr) == 0)
        continue;
    const pid_t child = fork();
    if (child == 0)
        std::exit(host(arguments[1], directory));
    int status = -1;
    waitpid(child, &status, 0);

    std::string want;
    for (int time = 0; time < 50; ++time)
        want += "[MSG]:FH:loaded\n";
    want += "[MSG]:FH:at exit\n";
    std::ifstream log(directory + "log/KestaDebug_C.log", std::ios::binary);
    const std::string got{std::istreambuf_iterator<char>(log), {}};
    if (status != 0 || got != want)
        std::cerr << "status " << status << ", log:\n" << got;
    return status == 0 && got == want ? 0 : 1;
}
