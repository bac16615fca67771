// Several steps in one run of the plug-in are the same as one run for each step.
#include "engine/model/note_state.h"
#include "engine_fixture.h"
#include "shell/apply.h"
#include "shell/settings.h"

// After gtest, which it builds on.
#include <rapidcheck/gtest.h>

#include <random>

namespace rovescio::test {
namespace {

using engine::KeySignature;

// Five measures in keys of their own, with double accidentals, reminders, quarter tones and ties over the
// barlines.
engine::Document randomScore(unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    engine::Document document =
        scoreFromText({"C 4/4 c4:q d4:q e4:q f4:q | g4:q a4:q b4:q c5:q | c4:h d4:h | "
                       "e4:q f4:q g4:h | d4:q c4:q b4:q c4:q"});
    engine::SpelledPitch last{0, 0};
    std::uint32_t lastCents = 0;
    ENOTE* previous = nullptr;
    std::vector<std::vector<EXENTRY>> measures;
    KeySignature key = KeySignature::standard(below(15) - 7, below(2) == 0);
    for (const short measure : document.measureNumbers()) {
        if (below(2) == 0) key = KeySignature::standard(below(15) - 7, below(2) == 0);
        document.staffMeasure(1, measure).key = key;
        measures.push_back(std::as_const(document).entries({1, measure, 0}).expanded());
        for (EXENTRY& entry : measures.back()) {
            ENOTE& note = entry.notes[0];
            const bool tied = previous != nullptr && below(4) == 0;
            if (!tied) {
                last = {below(15) - 4, below(5) - 2};
                lastCents = below(4) == 0 ? engine::flagsOfCents(50) : 0;
            }
            key.store(last, note);
            note.noteFlags |= lastCents | (below(4) == 0 ? NOTE_FLAG24 : 0);
            if (tied) {
                previous->noteFlags |= NOTE_TIE_START;
                note.noteFlags |= NOTE_TIE_END;
            }
            previous = &note;
            // A second note of a chord, which no tie leaves.
            if (below(3) != 0) continue;
            ENOTE& upper = entry.notes[entry.noteCount++];
            key.store({last.step + 1 + below(8), below(3) - 1}, upper);
            upper.noteId = 2;
            upper.noteFlags = below(4) == 0 ? NOTE_FLAG24 : 0;
        }
    }
    for (const short measure : document.measureNumbers()) {
        document.setEntries({1, measure, 0}, measures[static_cast<std::size_t>(measure - 1)]);
    }
    return document;
}

void apply(EngineFixture& engine, const SUItemsRecord& settings) {
    SUItems = settings;
    const bool mirrors =
        settings.inversionKind == kDiatonicInversion || settings.inversionKind == kChromaticInversion;
    engine.session.fractions = {};
    if (mirrors)
        engine.session.fractions = {engine::Fractions::mirrored, settings.transpose.kind > 1 ? 2 : 1};
    if (settings.optionKind == 6) engine.session.fractions = {engine::Fractions::dropped};
    engine.session.selection = engine.everything();
    applyTransformations(nullptr);
}

std::string shown(const engine::Document& document) {
    std::string keys;
    for (const short measure : document.measureNumbers()) {
        keys += std::to_string(document.staffMeasure(1, measure).key.word()) + " ";
    }
    return keys + textOf(document);
}

std::string oneRunAndSeveral(unsigned seed, const SUItemsRecord& all, bool inOneRun) {
    EngineFixture engine({"C 4/4 c4:w"});
    engine.document = randomScore(seed);
    std::vector<SUItemsRecord> runs;
    if (inOneRun) {
        runs.push_back(all);
    } else {
        SUItemsRecord none;
        none.retrogradeOptions = all.retrogradeOptions;
        none.mirrorAxisStep = all.mirrorAxisStep;
        none.mirrorAxisAlteration = all.mirrorAxisAlteration;
        none.mirrorCheck = all.mirrorCheck;
        runs.assign(4, none);
        runs[0].retrograde = all.retrograde;
        runs[1].transpose = all.transpose;
        runs[2].inversionKind = all.inversionKind;
        runs[3].optionKind = all.optionKind;
        runs[3].removeTies = all.removeTies;
    }
    const std::string before = shown(engine.document);
    for (const SUItemsRecord& run : runs) apply(engine, run);
    std::string after = shown(engine.document);
    // Back and forth again.
    int steps = 0;
    while (engine.session.massEdits.undo()) ++steps;
    EXPECT_EQ(shown(engine.document), before);
    for (; steps > 0; --steps) engine.session.massEdits.redo();
    EXPECT_EQ(shown(engine.document), after);
    return after;
}

RC_GTEST_PROP(OneRun, IsTheSameAsItsStepsInSeveralRuns, ()) {
    const auto seed = *rc::gen::arbitrary<unsigned>();
    SUItemsRecord all;
    all.retrograde = *rc::gen::inRange<std::int16_t>(0, 2);
    all.transpose.kind = *rc::gen::inRange<std::int16_t>(1, 5);
    all.transpose.steps = *rc::gen::inRange<std::int16_t>(-8, 9);
    all.transpose.alteration = *rc::gen::inRange<std::int16_t>(-1, 2);
    all.inversionKind = *rc::gen::inRange<std::int16_t>(1, 6);
    all.mirrorAxisStep = *rc::gen::inRange<std::int16_t>(-7, 8);
    all.mirrorAxisAlteration = *rc::gen::inRange<std::int16_t>(-1, 2);
    all.mirrorCheck = *rc::gen::inRange<std::int16_t>(0, 2);
    all.optionKind = *rc::gen::inRange<std::int16_t>(1, 7);
    all.removeTies = *rc::gen::inRange<std::int16_t>(0, 2);
    RC_ASSERT(oneRunAndSeveral(seed, all, true) == oneRunAndSeveral(seed, all, false));
}

}  // namespace
}  // namespace rovescio::test
