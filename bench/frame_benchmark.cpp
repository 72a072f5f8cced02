// The cost of the frame around every backend call, against the same work done
// through the table with nothing around it (the floor for any wrapper).
//
//   build/bin/frame_benchmark --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>
#include <tessera/Tessera.h>

#include <cstdlib>
#include <filesystem>

#include "LuSVNBackendFrame.h"

namespace {

std::shared_ptr<LuSVNBundleProxy> backend()
{
    static const auto newest = [] {
        const auto home = std::filesystem::temp_directory_path() / "tessera-bench-home";
        std::filesystem::create_directories(home);
        setenv("HOME", home.c_str(), 1);
        LuSVNInitialize();
        return LuSVNBundleLoader::sharedInstance()->newestBundle();
    }();
    return newest;
}

using PoolCreate = tessera_private::LuSVNSlot<19>::Type;
using PoolDestroy = tessera_private::LuSVNSlot<20>::Type;
using Allocate = tessera_private::LuSVNSlot<3>::Type;

// Pool, one allocation, destroy: straight through the table.
void RawPoolCycle(benchmark::State& state)
{
    const LuSVNBundleEntryPoints* table = backend()->entryPoints();
    auto create = reinterpret_cast<PoolCreate>(table->slots[19]);
    auto destroy = reinterpret_cast<PoolDestroy>(table->slots[20]);
    auto allocate = reinterpret_cast<Allocate>(table->slots[3]);
    for (auto _ : state) {
        apr_pool_t* pool = create(nullptr, nullptr);
        benchmark::DoNotOptimize(allocate(pool, 64));
        destroy(pool);
    }
}
BENCHMARK(RawPoolCycle);

// The same work in the library's frame: push, pool, typed slot, destroy, pop.
void FramePoolCycle(benchmark::State& state)
{
    const auto proxy = backend();
    for (auto _ : state) {
        LuSVNBackendFrame frame(proxy);
        benchmark::DoNotOptimize(LuSVNEntry<3>()(frame.pool(), 64));
    }
}
BENCHMARK(FramePoolCycle);

// Converting a Subversion error into the exception of its class and throwing it.
void ErrorConversion(benchmark::State& state)
{
    LuSVNBackendFrame frame(backend());
    for (auto _ : state) {
        svn_error_t* error = LuSVNEntry<31>()(155007, LuSVNEntry<31>()(2, nullptr, "inner"), "outer");
        try {
            LuSVNThrowIfError(error);
        } catch (const LuSVNException& e) {
            benchmark::DoNotOptimize(e.status());
        }
    }
}
BENCHMARK(ErrorConversion);

void VersionParsing(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(LuSVNVersion::versionWithString("1.14.2-dev"));
}
BENCHMARK(VersionParsing);

}  // namespace

BENCHMARK_MAIN();
