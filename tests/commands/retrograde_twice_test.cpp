// A retrograde of a retrograde is the first music again, over generated scores with uneven measures.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>
#include <vector>

#include "engine_fixture.h"
#include "retrograde/retrograde.h"

namespace {

using rovescio::test::EngineFixture;
using rovescio::test::textOf;

struct Music {
    std::string line;
    std::vector<std::int32_t> lengths;  // of the measures, duration units
};

std::string pitch() {
    static const std::vector<std::string> kPitches = {"c4", "d#4", "e4", "f#4", "gb4", "a4", "bb4", "c5"};
    return *rc::gen::elementOf(kPitches);
}

// Values that fill a measure, some of them tied to the next note, with triplets among them.
std::string measure(std::int32_t length, bool& tied, std::string& last) {
    static const std::vector<std::pair<const char*, std::int32_t>> kValues = {
        {"s", 256}, {"e", 512}, {"e.", 768}, {"q", 1024}, {"q.", 1536}, {"h", 2048}};
    std::string text;
    const auto note = [&](const std::string& value) {
        const std::string sounding = tied ? last : pitch();
        const bool ties = *rc::gen::inRange(0, 4) == 0;
        text += sounding + (ties ? "~" : "") + (tied ? "^" : "") + ":" + value + " ";
        last = sounding;
        tied = ties;
    };
    while (length > 0) {
        if (*rc::gen::inRange(0, 8) == 0 && length >= 1024) {
            for (int i = 0; i < 3; ++i) note("e*3:2");
            length -= 1024;
            continue;
        }
        auto value = *rc::gen::elementOf(kValues);
        while (value.second > length) value = kValues[static_cast<std::size_t>(value.second > 512 ? 1 : 0)];
        note(value.first);
        length -= value.second;
    }
    return text;
}

Music music() {
    Music result;
    bool tied = false;
    std::string last;
    const int count = *rc::gen::inRange(1, 6);
    for (int i = 0; i < count; ++i) {
        result.lengths.push_back(*rc::gen::element(1024, 2048, 2560, 3072, 4096));
        result.line += (i > 0 ? "| " : "") + measure(result.lengths.back(), tied, last);
    }
    // The last tie has nowhere to go.
    if (tied) result.line.erase(result.line.rfind('~'), 1);
    return result;
}

// The notes alone: accidentals are shown by their place.
std::string notesOf(const rovescio::engine::Document& document) {
    std::string text = textOf(document);
    std::erase(text, '!');
    return text;
}

RC_GTEST_PROP(Retrograde, TwiceIsTheFirstMusic, ()) {
    const Music first = music();
    EngineFixture engine({"C 4/4 " + first.line});
    for (std::size_t i = 0; i < first.lengths.size(); ++i) {
        engine.document.staffMeasure(1, static_cast<short>(i + 1)).duration = first.lengths[i];
    }
    const std::string before = notesOf(engine.document);
    EREGION region = engine.everything();
    for (int time = 0; time < 2; ++time) {
        RC_ASSERT(engine.run([&](CProgress* p) { return Retrograde(&region, 0, p); }) == 1);
        if (engine.session.refusal) RC_DISCARD("a triplet that no value can cut");
    }
    RC_ASSERT(notesOf(engine.document) == before);
}

}  // namespace
