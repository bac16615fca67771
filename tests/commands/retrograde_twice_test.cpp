// A retrograde of a retrograde is the first music again, over generated scores with uneven measures.
#include "retrograde/retrograde.h"

#include "engine_fixture.h"

// After gtest, which it builds on.
#include <rapidcheck/gtest.h>

namespace rovescio::test {
namespace {

// Music from G to G, so that any two can be tied, each with its length in duration units.
const std::vector<std::pair<std::string, std::int32_t>> kMeasures = {
    {"g4:s", 256},
    {"g4:e.", 768},
    {"g4:e*3:2 bb4:e*3:2 g4:e*3:2", 1024},
    {"g4:q. d#4:s g4:s", 2048},
    {"g4:e*3:2 a4:e*3:2 gb4:e*3:2 g4:q.", 2560},
    {"g4:e f#4:h g4:e", 3072},
    {"g4~:q g4^:q e4:s e4:s g4:q.", 4096},
    {"g4:e. c5~:e. c5^:q c4:s f#4:s g4:q.", 4096},
};

// The notes alone: accidentals are shown by their place.
std::string notesOf(const engine::Document& document) {
    std::string text = textOf(document);
    std::erase(text, '!');
    return text;
}

RC_GTEST_PROP(Retrograde, TwiceIsTheFirstMusic, ()) {
    std::string line = "C 4/4 ";
    std::vector<std::int32_t> lengths;
    for (int count = *rc::gen::inRange(1, 7); count > 0; --count) {
        auto [music, length] = *rc::gen::elementOf(kMeasures);
        if (!lengths.empty()) {
            if (*rc::gen::arbitrary<bool>()) {
                line.insert(line.rfind("g4") + 2, "~");
                music.insert(2, "^");
            }
            line += " | ";
        }
        line += music;
        lengths.push_back(length);
    }
    EngineFixture engine({line});
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        engine.document.staffMeasure(1, static_cast<short>(i + 1)).duration = lengths[i];
    }
    const std::string before = notesOf(engine.document);
    for (int time = 0; time < 2; ++time) {
        RC_ASSERT(engine.transform(engine.everything(), Retrograde, 0U) == 1);
        if (engine.session.refusal) RC_DISCARD("a triplet that no value can cut");
    }
    RC_ASSERT(notesOf(engine.document) == before);
}

}  // namespace
}  // namespace rovescio::test
