#include "bench.h"

#include <new>

static std::size_t allocated = 0;   // all works are done in one thread

std::size_t allocations()
{
    return allocated;
}

// Not inlined, because g++ would take the pair of malloc and delete for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    ++allocated;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

// Compares this library with its peers. scripts/bench runs it and makes a table of the outcome; by
// itself it takes the options of Google Benchmark.
int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    addTraceWork();
    addAddressWork();
    addSetWork();
    addTextWork();
    addDateWork();
    addLoadWork();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
