#include "bench.h"

#include <filesystem>

#include <dlfcn.h>
#include <unistd.h>

namespace
{

// The program is linked with the library, so loading that again would cost nothing. To the loader,
// a copy of the file is another library.
std::filesystem::path copied(const std::filesystem::path& library)
{
    const auto copy = std::filesystem::temp_directory_path() /
                      ("kesta_bench_" + std::to_string(getpid()) + library.filename().string());
    std::filesystem::copy_file(library, copy, std::filesystem::copy_options::overwrite_existing);
    return copy;
}

void load(const char* library)
{
    void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        disagree("loading the library", dlerror());
    dlclose(handle);
}

void addLoad(const std::string& who, const char* library)
{
    measure("loading the library", who,
            [library](benchmark::State& state)
            {
                const auto copy = copied(library);
                for (auto _ : state)
                    load(copy.c_str());
                const bool stayed = dlopen(copy.c_str(), RTLD_NOLOAD | RTLD_NOW) != nullptr;
                std::filesystem::remove(copy);
                if (stayed)
                    state.SkipWithError("the library stays loaded: nothing was measured");
            });
}

}   // namespace

void addLoadWork()
{
    addLoad("kesta", LOADED_LIBRARY);
    addLoad("floor", EMPTY_LIBRARY);
}
