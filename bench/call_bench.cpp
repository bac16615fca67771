// The cost of a stub: a host call through it against the same call through a plain pointer.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include "engine/interface/session.h"
#include "kit/engine_bundle.h"
#include "kit/host_api.h"
#include "quiet_front.h"
#include "ratios.h"
#include "score_maker.h"

namespace rovescio::bench {
namespace {

struct Host {
    engine::Document document = makeDocument(8);
    QuietFront front;
    engine::Session session{document, front};
    Host() { InitializeGlobals(); }
};

void directCall(benchmark::State& state) {
    const Host host;
    using Procedure = short (*)(short, std::uint32_t);
    Procedure call = reinterpret_cast<Procedure>(dlsym(RTLD_DEFAULT, "SX_GetShowLayer"));
    benchmark::DoNotOptimize(call);
    for (auto _ : state) benchmark::DoNotOptimize(call(1, kKitVersion));
}

void stubCall(benchmark::State& state) {
    const Host host;
    for (auto _ : state) benchmark::DoNotOptimize(SX_GetShowLayer(1));
}

BENCHMARK(directCall)->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(stubCall)->Repetitions(5)->ReportAggregatesOnly();

const bool registered = [] {
    ratios().push_back({"stub call : call through a pointer", "stubCall", "directCall", "", 1.5});
    return true;
}();

}  // namespace
}  // namespace rovescio::bench
