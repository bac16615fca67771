// The retrograde of one long layer: the reversal in the plug-in and the rebar in the engine.
#include <benchmark/benchmark.h>

#include <string>

#include "engine/edit/rebar.h"
#include "over_score.h"
#include "ratios.h"
#include "retrograde/reverser.h"

namespace rovescio::bench {
namespace {

constexpr std::int64_t kSmall = 100'000;
constexpr std::int64_t kLarge = 1'000'000;
constexpr int kNotesPerMeasure = 32;

// All frames are held at once, as a reversal holds them.
void copyLayer(benchmark::State& state) {
    overScore(
        state,
        [](engine::Session& session, const EREGION& region, const CProgress&) {
            std::vector<EXTGF2005a*> frames;
            for (short measure = 1; measure <= region.end.measure; ++measure) {
                frames.push_back(session.frames.load({1, measure, 0}));
            }
            for (EXTGF2005a* frame : frames) {
                session.frames.save(frame);
                session.frames.free(frame);
            }
        },
        kNotesPerMeasure);
}

void reverseLayer(benchmark::State& state) {
    overScore(
        state,
        [](engine::Session&, const EREGION& region, CProgress& progress) {
            Reverser reverser(&region, 1, 0);
            while (reverser.NextEntry() && !kit::isCancelled(progress)) reverser.ReverseEntries();
        },
        kNotesPerMeasure);
}

void rebarLayer(benchmark::State& state) {
    overScore(
        state,
        [](engine::Session& session, const EREGION& region, const CProgress&) { session.rebar(region); },
        kNotesPerMeasure);
}

const bool registered = [] {
    const std::pair<const char*, void (*)(benchmark::State&)> parts[] = {
        {"copyLayer", copyLayer}, {"reverseLayer", reverseLayer}, {"rebarLayer", rebarLayer}};
    for (const auto& [name, run] : parts) {
        benchmark::RegisterBenchmark(name, run)
            ->Arg(kSmall)
            ->Arg(kLarge)
            ->Unit(benchmark::kMillisecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly();
    }
    ratios().push_back({"reversal of a layer, 1,000,000 entries : copy of its frames", "reverseLayer/1000000",
                        "copyLayer/1000000", "", 3});
    for (const char* name : {"reverseLayer", "rebarLayer"}) {
        const std::string text(name);
        ratios().push_back({text + ", cost per entry, 1,000,000 entries : 100,000 entries", text + "/1000000",
                            text + "/100000", "ns_per_note", 1.15});
    }
    return true;
}();

}  // namespace
}  // namespace rovescio::bench
