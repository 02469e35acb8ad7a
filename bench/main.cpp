#include "bench.h"

// Compares this library with its peers. scripts/bench runs it and makes tables of its outcome. It
// takes the options of Google Benchmark.
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
