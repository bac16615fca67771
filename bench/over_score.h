// Work on whole scores in the engine, measured per note.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>

#include "engine/interface/session.h"
#include "kit/engine_bundle.h"
#include "kit/mass_edit.h"
#include "quiet_front.h"
#include "score_maker.h"

namespace rovescio::bench {

// Allocations of the program so far.
std::int64_t allocations();

inline EREGION everythingIn(const engine::Document& document) {
    return {{0, 1, 1, 0}, {0, document.staffCount(), document.measureCount(), 0x7FFFFFFF}};
}

// Runs work(session, region, progress) inside a mass edit over a fresh score of as many notes as the
// benchmark asks for.
template <class Work>
void overScore(benchmark::State& state, Work&& work, int notesPerMeasure = 8) {
    InitializeGlobals();
    const std::int64_t notes = state.range(0);
    std::int64_t allocated = 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            engine::Document document = makeDocument(notes, notesPerMeasure);
            QuietFront front;
            engine::Session session(document, front);
            EREGION region = everythingIn(document);
            state.ResumeTiming();
            const std::int64_t before = allocations();
            kit::MassEdit massEdit;
            work(session, region, massEdit.progress);
            massEdit.end();
            allocated += allocations() - before;
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    const auto total = static_cast<double>(state.iterations() * notes);
    state.counters["ns_per_note"] =
        benchmark::Counter(total * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["allocations_per_note"] = static_cast<double>(allocated) / total;
}

}  // namespace rovescio::bench
