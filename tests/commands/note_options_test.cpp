// The note-flag options, note by note, and their own order of walking.
#include "shell/note_options.h"

#include "engine_fixture.h"

namespace rovescio::test {
namespace {

TEST(DoSUOptions, EachOptionShowsOrHidesAccidentals) {
    const std::tuple<const char*, short, const char*> cases[] = {
        // As needed: marked, so the host decides; what was decided by hand keeps the flag it was given.
        {"C 4/4 f#4:q f4+:q f4!+:q c4!:q", 2, "f#4!:q f4!+:q f4!+:q c4:q"},
        {"C 4/4 f#4:q f4:h r:q", 3, "f#4!+:q f4!+:h r:q"},
        {"C 4/4 f#4!:q f4!:h r:q", 4, "f#4+:q f4+:h r:q"},
        {"C 4/4 f#4+:q f4!+:q c4!+:h", 5, "f#4!:q f4!:q c4:h"},
        {"D 4/4 f4!:q c##5!+:q <d4 g#4!>:h", 6, "f#4:q c#5:q <d4 g4>:h"},
        {"C 4/4 f#4:q f4!+:h r:q", 1, "f#4:q f4!+:h r:q"},
    };
    for (const auto& [before, option, after] : cases)
        EXPECT_EQ(textAfter(before, DoSUOptions, option, 0), after) << "option " << option;
}

TEST(DoSUOptions, TiesAreRemovedWithAnyOption) {
    EXPECT_EQ(textAfter("C 4/4 f#4~!:h <f#4^~ a4>:h | f#4^:w", DoSUOptions, 1, 1),
              "f#4!:h <f#4 a4>:h | f#4!:w");
    EXPECT_EQ(textAfter("C 4/4 c4~:h c4^:h", DoSUOptions, 3, 1), "c4!+:h c4!+:h");
}

TEST(DoSUOptions, PositionsAndCancels) {
    EngineFixture engine({"C 4/4 c4:h d4:h | e4:h f4:h"});
    engine.transform(EngineFixture::region(1, 1, 1, 2, 2048, 0), DoSUOptions, 3, 0);
    EXPECT_EQ(textOf(engine.document), "c4:h d4!+:h | e4!+:h f4:h");
    engine.front.cancelAfter = engine.front.polls + 1;
    EXPECT_EQ(engine.transform(engine.everything(), DoSUOptions, 6, 0), 1);
    EXPECT_TRUE(engine.cancelled);
    EXPECT_EQ(textOf(engine.document), "c4:h d4!+:h | e4!+:h f4:h");
}

}  // namespace
}  // namespace rovescio::test
