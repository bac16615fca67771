// Transformations of whole scores inside plug-in and engine, against copying the same frames in and out.
#include <benchmark/benchmark.h>

#include <string>
#include <utility>

#include "over_score.h"
#include "ratios.h"
#include "transform/inversion.h"
#include "transform/transpose_region.h"

namespace rovescio::bench {
namespace {

void copyFrames(benchmark::State& state) {
    overScore(state, [](engine::Session& session, const EREGION& region, const CProgress&) {
        for (short measure = 1; measure <= region.end.measure; ++measure) {
            for (short staff = 1; staff <= region.end.slot; ++staff) {
                for (short layer = 0; layer < engine::kMaxLayers; ++layer) {
                    EXTGF2005a* frame = session.frames.load({staff, measure, layer});
                    if (frame->entryCount != 0) session.frames.save(frame);
                    session.frames.free(frame);
                }
            }
        }
    });
}

void transposeChromatic(benchmark::State& state) {
    overScore(state, [](engine::Session&, EREGION& region, CProgress& progress) {
        TransposeChromatic(&region, 2, -1, &progress);
    });
}

void invertDiatonic(benchmark::State& state) {
    overScore(state, [](engine::Session&, EREGION& region, CProgress& progress) {
        InvDiatonic(&region, 2, &progress);
    });
}

void invertChromatic(benchmark::State& state) {
    overScore(state, [](engine::Session&, EREGION& region, CProgress& progress) {
        InvChromatic(&region, 2, 0, 1, &progress);
    });
}

void invertChords(benchmark::State& state) {
    overScore(state, [](engine::Session&, EREGION& region, CProgress& progress) {
        InvChordUp(&region, kSingleNotesInSteps, 0, 0, &progress);
    });
}

constexpr std::int64_t kSmall = 10'000;
constexpr std::int64_t kLarge = 1'000'000;

// Each transformation is asked to stay within a multiple of the copy and to cost the same per note in small
// and large scores.
const bool registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)
            ->Arg(kSmall)
            ->Arg(kLarge)
            ->Unit(benchmark::kMillisecond)
            ->Repetitions(5)
            ->ReportAggregatesOnly();
    };
    add("copyFrames", copyFrames);
    const std::pair<const char*, void (*)(benchmark::State&)> transformations[] = {
        {"transposeChromatic", transposeChromatic},
        {"invertDiatonic", invertDiatonic},
        {"invertChromatic", invertChromatic},
        {"invertChords", invertChords},
    };
    for (const auto& [name, run] : transformations) {
        add(name, run);
        const std::string text(name);
        ratios().push_back({text + ", 1,000,000 notes : copy of the frames", text + "/1000000",
                            "copyFrames/1000000", "", 2.5});
        ratios().push_back({text + ", cost per note, 1,000,000 notes : 10,000 notes", text + "/1000000",
                            text + "/10000", "ns_per_note", 1.15});
    }
    ratios().push_back({"transposeChromatic, allocations per note, 8 notes to the frame",
                        "transposeChromatic/1000000", "", "allocations_per_note", 0.5});
    return true;
}();

}  // namespace
}  // namespace rovescio::bench
