// Quarter tones and reminders of accidentals, which the plug-in cannot see, through its
// transformations.
#include "engine_fixture.h"
#include "shell/note_options.h"
#include "transform/inversion.h"
#include "transform/transpose_region.h"

namespace rovescio::test {
namespace {

TEST(QuarterTones, AreMirroredAndCarriedExactly) {
    using engine::Fractions;
    const std::tuple<const char*, Fractions, std::function<short(EREGION*, CProgress*)>, const char*>
        cases[] = {
            // E half-sharp lies four and a half semitones above C, so A three-quarters flat mirrors it.
            {"C 3/4 e4':q e4:q d4':q", Fractions::mirrored,
             [](auto* r, auto* p) { return InvChromatic(r, 0, 0, 0, p); }, "abb3'!:q ab3!:q bbb3'!:q"},
            {"C 2/4 eb4':q r:q", Fractions::mirrored, [](auto* r, auto* p) { return InvDiatonic(r, 0, p); },
             "a3'!:q r:q"},
            {"C 2/4 <e4 e4'>:h", Fractions::mirrored,
             [](auto* r, auto* p) { return InvChromatic(r, 0, 0, 0, p); }, "<abb3'! ab3!>:h"},
            // Keys that a mirror passes over stay as they are.
            {"none 1/4 e4':q", Fractions::mirrored, [](auto* r, auto* p) { return InvDiatonic(r, 0, p); },
             "e4':q"},
            {"C 2/4 e4':q e4:q", Fractions::kept,
             [](auto* r, auto* p) { return TransposeChromatic(r, 2, 0, p); }, "g#4'!:q g#4!:q"},
            {"C 2/4 e4'!:q f#4'!:q", Fractions::dropped,
             [](auto* r, auto* p) { return DoSUOptions(r, 6, 0, p); }, "e4:q f4:q"},
        };
    for (const auto& [before, fractions, transformation, after] : cases) {
        EngineFixture engine({before});
        EREGION all = engine.everything();
        engine.session.selection = all;
        engine.session.fractions = {fractions};
        const std::string first = textOf(engine.document);
        engine.run([&, &apply = transformation](CProgress* progress) { return apply(&all, progress); });
        EXPECT_EQ(textOf(engine.document), after) << before;
        engine.session.massEdits.undo();
        EXPECT_EQ(textOf(engine.document), first);
    }
}

TEST(QuarterTones, OutsideTheSelectionStay) {
    EngineFixture engine({"C 4/4 e4'~!:w | e4'^:h e4':h"});
    engine.session.selection = EngineFixture::region(1, 1, 2, 2, 0, 0);
    engine.session.fractions = {engine::Fractions::mirrored};
    engine.transform(*engine.session.selection, InvDiatonic, 0);
    EXPECT_EQ(textOf(engine.document), "e4'!:w | ab3'!:h e4'!:h");
}

// "!" in the first text that no rule asks for is a reminder.
TEST(Reminders, StayWithTheirNotesUntilAccidentalsAreDecidedAnew) {
    const auto up = [](short steps, short alteration) {
        return [=](EREGION* r, CProgress* p) { return TransposeChromatic(r, steps, alteration, p); };
    };
    const std::tuple<const char*, std::function<short(EREGION*, CProgress*)>, const char*> cases[] = {
        {"C 4/4 f#4!:w | f4!:h f#4!:h", up(7, 0), "f#5!:w | f5!:h f#5!:h"},
        {"C 4/4 f#4!:w | f4!:w", up(1, 0), "g#4!:w | g4!:w"},
        {"C 4/4 f#4!:h f#4!:h", up(1, 0), "g#4!:h g#4!:h"},
        // A sign that was needed goes when it is not needed any more.
        {"C 4/4 bb4!:w | c5:w", up(1, 0), "c5:w | d5:w"},
        {"C 4/4 f#4~!:w | f#4^!:h f#4:h", up(7, 0), "f#5~!:w | f#5^!:h f#5:h"},
        {"C 4/4 c4!:w | e4!:h g4:h", [](auto* r, auto* p) { return InvDiatonic(r, 0, p); },
         "c4!:w | a3!:h f3:h"},
        {"C 4/4 c4!:w | e4!:h f#4!:h", [](auto* r, auto* p) { return DoSUOptions(r, 2, 0, p); },
         "c4:w | e4:h f#4!:h"},
    };
    for (const auto& [before, transformation, after] : cases) {
        EngineFixture engine({before});
        EREGION all = engine.everything();
        engine.run([&, &apply = transformation](CProgress* progress) { return apply(&all, progress); });
        EXPECT_EQ(textOf(engine.document), after) << before;
    }
}

}  // namespace
}  // namespace rovescio::test
