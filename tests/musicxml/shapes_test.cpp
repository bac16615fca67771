// Slurs, hairpins, keys and spacing of measures as data records, and back in the text.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "contract/data_records.h"
#include "engine/interface/session.h"
#include "engine/model/smart_shapes.h"
#include "musicxml/score_builder.h"
#include "support/memory_user_interface.h"

namespace rovescio::test {
namespace {

using engine::Shape;

std::string inVoice(std::string noteText, const std::string& number, int staff = 1) {
    noteText.insert(noteText.find("<type>"), "<voice>" + number + "</voice>");
    const std::string place = "<staff>" + std::to_string(staff) + "</staff>";
    const std::size_t notations = noteText.find("<notations>");
    noteText.insert(notations == std::string::npos ? noteText.find("</note>") : notations, place);
    return noteText;
}

// An open score with the records that the plug-in sees.
struct Records {
    explicit Records(const std::string& score) : open(test::open(score)) {}

    OpenScore open;
    MemoryUserInterface front;
    engine::Session session{open.document, front};
    engine::DataRecords& records = session.dataRecords;

    template <class Record, class Key>
    std::optional<Record> load(std::uint32_t tag, Key key) const {
        const auto bytes = records.load(tag, &key);
        Record record{};
        if (!bytes || bytes->size() != sizeof record) return std::nullopt;
        std::memcpy(&record, bytes->data(), sizeof record);
        return record;
    }
    template <class Record, class Key>
    bool create(std::uint32_t tag, Key& key, const Record& record) {
        return records.create(tag, &key, std::as_bytes(std::span(&record, 1)));
    }
    template <class Change>
    void edit(Change&& change, bool cancelled = false) {
        const SXMassEdit massEdit = session.massEdits.start();
        change();
        session.massEdits.end(massEdit, cancelled);
    }

    // Shapes as "kind first-last", entries by number; with the staves of those that are not on the first, and
    // "^" or "_" for those placed above or below.
    std::string shapes() const {
        std::string text;
        for (const Shape& shape : open.document.shapes().asRead()) {
            text += std::to_string(shape.kind) + " " + std::to_string(shape.firstEntry) + "-" +
                    std::to_string(shape.lastEntry);
            if (shape.firstStaff + shape.lastStaff > 2) {
                text += "@" + std::to_string(shape.firstStaff) + "-" + std::to_string(shape.lastStaff);
            }
            constexpr const char* kEnds[] = {"; ", "^; ", "_; "};
            text += kEnds[shape.placement];
        }
        return text;
    }
    // The entries of a frame that carry shapes.
    std::string carriers(short measure, bool save = false) {
        std::string text;
        EXTGF2005a* const frame = session.frames.load({1, measure, 0});
        for (int i = 0; i < frame->entryCount; ++i) {
            text += frame->entries[i].updateFlags & ENTRY_HAS_SHAPES ? 's' : '.';
        }
        if (save) session.frames.save(frame);
        session.frames.free(frame);
        return text;
    }
    // The walk of the removal that a repair makes: by the marks of one entry.
    void removeShapesOf(std::uint32_t entry, short measure = 1) {
        EENTRYKEY entryKey{entry, 0};
        while (const auto mark = load<EntryMarkRecord>(kEntryMarkTag, entryKey)) {
            const auto shape = load<EDTOldSmartShape>(kSmartShapeTag, EDATAKEY{mark->shapeNumber, 0});
            const int last = shape ? shape->lastMeasure : measure;
            for (int m = shape ? shape->firstMeasure : measure; m <= last; ++m) {
                EDATAKEY key{static_cast<std::uint16_t>(m), 0};
                while (const auto at = load<MeasureMarkRecord>(kMeasureMarkTag, key)) {
                    if (at->shapeNumber != mark->shapeNumber) {
                        ++key.inci;
                        continue;
                    }
                    EDETAILKEY center{at->shapeNumber, at->centerNumber, 0};
                    EXPECT_EQ(records.remove(kCenterShapeTag, &center), at->centerNumber != 0);
                    EXPECT_TRUE(records.remove(kMeasureMarkTag, &key));
                }
            }
            ASSERT_TRUE(records.remove(kEntryMarkTag, &entryKey));
        }
    }
    // A shape with all its marks.
    void make(std::uint16_t kind, std::uint32_t first, std::uint32_t last, short lastMeasure,
              short staff = 1) {
        EDTOldSmartShape shape{};
        shape.kind = kind;
        shape.flags = SHAPE_ON_ENTRIES;
        shape.firstStaff = shape.lastStaff = staff;
        shape.firstMeasure = 1;
        shape.lastMeasure = lastMeasure;
        shape.firstEntry = static_cast<std::int32_t>(first);
        shape.lastEntry = static_cast<std::int32_t>(last);
        EDATAKEY key{kAppendNumber, 0};
        ASSERT_TRUE(create(kSmartShapeTag, key, shape));
        for (std::uint16_t m = 1; m <= lastMeasure; ++m) {
            EDATAKEY mark{m, kAppendNumber};
            ASSERT_TRUE(create(kMeasureMarkTag, mark, MeasureMarkRecord{key.cmper, 0, {}}));
        }
        for (const std::uint32_t entry : {first, last}) {
            EENTRYKEY mark{entry, kAppendNumber};
            ASSERT_TRUE(create(kEntryMarkTag, mark, EntryMarkRecord{key.cmper, {}}));
        }
    }
};

TEST(Shapes, areFoundByTheirEnds) {
    const std::string up = inVoice(note("e4:w", slur("start")), "1");
    const std::string down = inVoice(note("c3:w", slur("start")), "5", 2);
    const std::tuple<const char*, std::vector<std::string>, std::string> cases[] = {
        {"one measure", {note("c4:h", slur("start")) + note("d4:h", slur("stop"))}, "1 1-2; "},
        {"a chain, stop written last",
         {note("c4:h", slur("start")) +
          note("d4:q", "<notations><slur type=\"start\"/><slur type=\"stop\"/></notations>") +
          note("e4:q", slur("stop"))},
         "1 1-2; 1 2-3; "},
        {"nested and over measures",
         {note("c4:h", slur("start", "1")) + note("d4:h", slur("start", "2")), note("e4:w"),
          note("f4:h", slur("stop", "2")) + note("g4:h", slur("stop", "1"))},
         "1 2-4; 1 1-5; "},
        {"voices with the same number",
         {up + backup(4) + inVoice(note("c4:h", slur("start")), "2") +
              inVoice(note("d4:h", slur("stop")), "2"),
          note("g4:w", slur("stop"))},
         "1 2-3; 1 1-4; "},
        {"from the lower staff to the upper",
         {up, inVoice(note("g4:w", slur("stop")), "1") + backup(4) + down,
          inVoice(note("f4:w", slur("stop")), "1")},
         "1 1-2; 1 3-4@2-1; "},
        {"to the upper staff, end first in the text",
         {inVoice(note("e4:h"), "1") + inVoice(note("f4:h", slur("stop")), "1") + backup(4) + down},
         "1 3-2@2-1; "},
        {"a chord's later note",
         {note("c4:h") + chordNote("e4:h", slur("start")) + note("d4:h", slur("stop"))},
         "1 1-2; "},
        {"without another end", {note("c4:h", slur("stop")) + note("d4:h", slur("start"))}, ""},
        {"hairpins at notes",
         {wedge("crescendo") + note("c4:h") + note("d4:q") + wedge("stop") + wedge("diminuendo") +
              note("e4:q"),
          wedge("stop") + note("f4:w")},
         "2 1-3; 3 3-4; "},
        {"a hairpin inside a note",
         {note("c4:w") + backup(2) + wedge("crescendo") + forward(2) + wedge("stop")},
         "2 1-1; "},
        {"a hairpin below",
         {"<direction placement=\"below\">" + wedge("crescendo").substr(11) + note("c4:w") + wedge("stop")},
         "2 1-1_; "},
        {"a glissando",
         {note("c4:h", "<notations><glissando type=\"start\"/></notations>") +
          note("d4:h", "<notations><glissando type=\"stop\"/></notations>")},
         "4 1-2; "},
    };
    for (const auto& [what, measures, shapes] : cases) {
        const Records score(scoreOf(measures));
        EXPECT_EQ(score.shapes(), shapes) << what;
        EXPECT_EQ(score.open.written(), scoreOf(measures)) << what;
    }
}

TEST(Shapes, areRecordsWithMarks) {
    Records score(
        scoreOf({note("c4:w", slur("start")), note("d4:w"), note("e4:w"), note("f4:w", slur("stop"))}));
    const auto shape = score.load<EDTOldSmartShape>(kSmartShapeTag, EDATAKEY{1, 0});
    ASSERT_TRUE(shape);
    EXPECT_EQ(std::vector<int>({shape->kind, shape->firstMeasure, shape->firstEntry, shape->lastMeasure,
                                shape->lastEntry}),
              std::vector<int>({SHAPE_SLUR, 1, 1, 4, 4}));
    EXPECT_EQ(+shape->flags, SHAPE_ON_ENTRIES);
    for (std::uint16_t m = 1; m <= 4; ++m) {
        const auto mark = score.load<MeasureMarkRecord>(kMeasureMarkTag, EDATAKEY{m, 0});
        ASSERT_TRUE(mark);
        EXPECT_EQ(+mark->shapeNumber, 1);
        EXPECT_EQ(+mark->centerNumber, m == 2 ? 1 : m == 3 ? 2 : 0);
        EXPECT_FALSE(score.load<MeasureMarkRecord>(kMeasureMarkTag, EDATAKEY{m, 1}));
        EXPECT_EQ(score.carriers(static_cast<short>(m)), m == 1 || m == 4 ? "s" : ".");
        EXPECT_EQ(score.load<EntryMarkRecord>(kEntryMarkTag, EENTRYKEY{m, 0}).has_value(), m == 1 || m == 4);
        EXPECT_EQ(score.load<CenterShapeRecord>(kCenterShapeTag, EDETAILKEY{1, m, 0}).has_value(), m <= 2);
    }
}

TEST(Shapes, leaveTheTextWithTheirMarks) {
    const std::string tie = "<tied type=\"start\"/>";
    const auto scoreWith = [&](const std::string& start, const std::string& chained, const std::string& stop,
                               const std::string& opening, const std::string& closing) {
        return scoreOf({opening + note("c4:h", start) + note("d4:h", chained), note("e4:w"),
                        note("f4:w", stop) + closing});
    };
    const std::string both = "<notations><slur type=\"stop\"/><slur type=\"start\"/></notations>";
    const std::string text = scoreWith(slur("start", "", tie), both, slur("stop"), wedge("crescendo"),
                                       wedge("stop", "<sound dynamics=\"80\"/>"));
    const std::string without = scoreWith("<notations>" + tie + "</notations>", slur("start"), slur("stop"),
                                          "", "<sound dynamics=\"80\"/>");
    Records score(text);
    ASSERT_EQ(score.shapes(), "1 1-2; 1 2-4; 2 1-4; ");
    score.edit([&] { score.removeShapesOf(1); }, true);
    EXPECT_EQ(score.carriers(1), "ss");
    EXPECT_EQ(score.open.written(), text);

    score.edit([&] {
        EXPECT_EQ(score.carriers(1, true), "ss");
        score.removeShapesOf(1);
        EXPECT_EQ(score.carriers(1), ".s");
        // A record that goes by mistake takes nothing with it while its marks show the shape.
        EDATAKEY other{2, 0};
        EXPECT_TRUE(score.records.remove(kSmartShapeTag, &other));
    });
    EXPECT_EQ(score.open.written(), without);
    ASSERT_TRUE(score.session.massEdits.undo());
    EXPECT_EQ(score.open.written(), text);
    EXPECT_EQ(score.carriers(1), "ss");
    ASSERT_TRUE(score.session.massEdits.redo());
    EXPECT_EQ(score.open.written(), without);
    EXPECT_EQ(score.carriers(1), ".s");
    score.edit([&] { score.removeShapesOf(2); });
    EXPECT_EQ(score.open.written(),
              scoreWith("<notations>" + tie + "</notations>", "", "", "", "<sound dynamics=\"80\"/>"));
}

TEST(Shapes, goWithTheEntriesAtTheirEnds) {
    Records score(scoreOf({note("c4:h", slur("start")) + note("d4:h"), note("e4:w", slur("stop"))}));
    const auto removeFirst = [&] {
        EXTGF2005a* const frame = score.session.frames.load({1, 1, 0});
        EXPECT_TRUE(score.session.frames.remove(frame, 0, 1));
        EXPECT_TRUE(score.session.frames.save(frame));
        score.session.frames.free(frame);
    };
    score.edit(removeFirst);
    EXPECT_FALSE(score.load<EntryMarkRecord>(kEntryMarkTag, EENTRYKEY{1, 0}));
    EXPECT_TRUE(score.load<EntryMarkRecord>(kEntryMarkTag, EENTRYKEY{3, 0}));
    ASSERT_TRUE(score.session.massEdits.undo());
    EXPECT_TRUE(score.load<EntryMarkRecord>(kEntryMarkTag, EENTRYKEY{1, 0}));
}

TEST(Shapes, enterTheText) {
    const std::string lyric = "<lyric><text>la</text></lyric>";
    Records score(scoreOf({note("c4:h", slur("start") + lyric) + note("d4:h"),
                           note("e4:h", slur("stop")) + note("f4:h") + chordNote("a4:h", lyric)}));
    score.edit([&] {
        score.make(SHAPE_SLUR, 1, 4, 2);
        score.make(SHAPE_SLUR, 2, 3, 2);
        score.make(SHAPE_CRESCENDO, 2, 4, 2);
    });
    EXPECT_EQ(
        score.open.written(),
        scoreOf(
            {note("c4:h",
                  "<notations><slur type=\"start\"/><slur type=\"start\" "
                  "number=\"2\"/></notations>" +
                      lyric) +
                 wedge("crescendo") + note("d4:h", slur("start", "3")),
             note("e4:h", "<notations><slur type=\"stop\"/><slur type=\"stop\" number=\"3\"/></notations>") +
                 note("f4:h", slur("stop", "2")) + chordNote("a4:h", lyric) + wedge("stop")}));
    EXPECT_EQ(test::open(score.open.written()).document.shapes().asRead().size(), 4U);
}

TEST(Shapes, enterTheTextOfALowerStaff) {
    const auto lower = [](const std::string& before, const std::string& behind) {
        return scoreOfParts({{note("c4:w")},
                             {attributes("", "<staves>2</staves>") + inVoice(note("c5:w"), "1") + backup(4) +
                              before + inVoice(note("c3:w"), "5", 2) + behind}});
    };
    const auto written = [&] {
        Records staves(lower("", ""));
        staves.edit([&] { staves.make(SHAPE_CRESCENDO, 3, 3, 1, 3); });
        return staves.open.written();
    }();
    EXPECT_EQ(written, lower(wedge("crescendo", "<staff>2</staff>"), wedge("stop", "<staff>2</staff>")));
    EXPECT_EQ(Records(written).shapes(), "2 3-3@3-3; ");
}

std::string keyed(int fifths, const std::string& more = "") {
    return "<key><fifths>" + std::to_string(fifths) + "</fifths>" + more + "</key>";
}

std::string change(const std::string& contents) {
    return attributes("", contents);
}

TEST(MeasureSpecifications, bringKeysAndSpacingIntoTheText) {
    // Measures with a width each; an oboe and a clarinet in B flat.
    const auto scoreWith = [](const std::vector<std::string>& widths, const std::vector<std::string>& oboe,
                              const std::vector<std::string>& clarinet) {
        std::string text =
            "<score-partwise><part-list><score-part id=\"A\"><part-name>Oboe</part-name></score-part>"
            "<score-part id=\"B\"><part-name>Clarinet</part-name></score-part></part-list>";
        for (const auto* part : {&oboe, &clarinet}) {
            text += part == &oboe ? "<part id=\"A\">" : "<part id=\"B\">";
            for (std::size_t m = 0; m < part->size(); ++m) {
                text += "<measure number=\"" + std::to_string(m + 1) + "\"" + widths[m] + ">" + (*part)[m] +
                        note("c4:w") + "</measure>";
            }
            text += "</part>";
        }
        return text + "</score-partwise>";
    };
    const auto first = [](const std::string& key, const std::string& more = "") {
        return attributes("4", key + more);
    };
    const std::string transpose = "<transpose><diatonic>-1</diatonic><chromatic>-2</chromatic></transpose>";
    const std::string staves = "<staves>1</staves>";
    const std::string text =
        scoreWith({" width=\"200.5\"", "", " width=\"90\"", ""},
                  {first(keyed(-1), staves), "", change(keyed(2, "<mode>major</mode>")), ""},
                  {first(keyed(1), transpose), "", change(keyed(4)), ""});
    Records score(text);
    const auto spec = [&](std::uint16_t m) {
        return *score.load<EDTMeasureSpec2014>(kMeasureSpecTag, EDATAKEY{m, 0});
    };
    const auto save = [&](std::uint16_t m, const EDTMeasureSpec2014& wanted) {
        EDATAKEY key{m, 0};
        return score.records.save(kMeasureSpecTag, &key, std::as_bytes(std::span(&wanted, 1)));
    };
    EXPECT_EQ(spec(1).width, 2005);
    EXPECT_EQ(spec(1).keySignature, 0x00FF);
    EXPECT_EQ(spec(3).keySignature, 2);
    EXPECT_EQ(std::vector<int>({spec(1).beats, spec(1).beatDuration}), std::vector<int>({4, 1024}));

    score.edit([&] {
        EDTMeasureSpec2014 one = spec(1);
        EDTMeasureSpec2014 four = spec(4);
        std::swap(one.keySignature, four.keySignature);
        std::swap(one.width, four.width);
        EXPECT_TRUE(save(1, one) && save(4, four));
        EXPECT_EQ(score.session.massEdits.keyBefore(2, 1).word(), 1);
        EXPECT_EQ(score.open.document.staffMeasure(2, 1).key.word(), 4);
        EXPECT_EQ(score.open.document.staffMeasure(2, 4).key.word(), 1);
    });
    EXPECT_EQ(score.open.written(),
              scoreWith({"", "", " width=\"90\"", " width=\"200.5\""},
                        {first(keyed(2), staves), change(keyed(-1)), change(keyed(2, "<mode>major</mode>")),
                         change(keyed(-1))},
                        {first(keyed(4), transpose), change(keyed(1)), change(keyed(4)), change(keyed(1))}));
    ASSERT_TRUE(score.session.massEdits.undo());
    EXPECT_EQ(score.open.written(), text);

    score.edit([&] {
        EDTMeasureSpec2014 three = spec(3);
        three.keySignature = 0x01FF;
        three.spaceBefore = 125;
        EXPECT_TRUE(save(3, three));
        three.keySignature = 0x0003;
        EXPECT_FALSE(save(5, three));
        three.keySignature = 0x0520;
        EXPECT_FALSE(save(3, three));
    });
    const std::string print =
        "<print><measure-layout><measure-distance>12.5</measure-distance></measure-layout></print>";
    EXPECT_EQ(
        score.open.written(),
        scoreWith(
            {" width=\"200.5\"", "", " width=\"90\"", ""},
            {first(keyed(-1), staves), "", print + change(keyed(-1, "<mode>minor</mode>")), change(keyed(2))},
            {first(keyed(1), transpose), "", change(keyed(1, "<mode>minor</mode>")), change(keyed(4))}));
}

TEST(MeasureSpecifications, areAsWideAsTheTextSays) {
    for (const auto& [text, width] :
         {std::pair("90.05", 901), {"90.04", 900}, {"0", 0}, {"-1", 0}, {"99999", 32767}}) {
        std::string score = scoreOf({note("c4:w")});
        score.insert(score.find(" number=\"1\""), " width=\"" + std::string(text) + "\"");
        EXPECT_EQ(+Records(score).load<EDTMeasureSpec2014>(kMeasureSpecTag, EDATAKEY{1, 0})->width, width)
            << text;
    }
}

// Sets the second measure's key or the space before it.
template <class Change>
void editSecond(Records& score, const Change& change) {
    EDATAKEY second{2, 0};
    auto spec = *score.load<EDTMeasureSpec2014>(kMeasureSpecTag, second);
    change(spec);
    score.edit([&] {
        EXPECT_TRUE(score.records.save(kMeasureSpecTag, &second, std::as_bytes(std::span(&spec, 1))));
    });
}

TEST(MeasureSpecifications, putSpacingAmongTheLayouts) {
    const std::string layouts = "<page-layout/><system-layout/><staff-layout/>";
    const std::string distance = "<measure-distance>12.5</measure-distance>";
    const std::string layout = "<measure-layout>" + distance + "</measure-layout>";
    const std::pair<std::string, std::string> cases[] = {
        {"<part-name-display/>", layout + "<part-name-display/>"},
        {layouts + "<measure-numbering>none</measure-numbering>",
         layouts + layout + "<measure-numbering>none</measure-numbering>"},
        {"<measure-layout><measure-distance>3</measure-distance></measure-layout>", layout},
        {"<measure-layout></measure-layout>", layout},
    };
    for (const auto& [before, after] : cases) {
        const auto scoreWith = [](const std::string& print) {
            return scoreOf({note("c4:w"), "<print>" + print + "</print>" + note("c4:w")});
        };
        Records score(scoreWith(before));
        editSecond(score, [](EDTMeasureSpec2014& spec) { spec.spaceBefore = 125; });
        EXPECT_EQ(score.open.written(), scoreWith(after));
    }
}

TEST(MeasureSpecifications, giveEachStaffItsKey) {
    const auto keys = [](int first, int second) {
        const auto numbered = [](int number, int fifths) {
            return keyed(fifths).insert(4, " number=\"" + std::to_string(number) + "\"");
        };
        return numbered(1, first) + numbered(2, second);
    };
    const auto scoreWith = [&](const std::string& second, const std::string& third) {
        const std::string both = inVoice(note("c5:w"), "1") + backup(4) + inVoice(note("c3:w"), "5", 2);
        return scoreOf({both, second + both, third + both},
                       attributes("4", keys(0, 1) + "<staves>2</staves>"));
    };
    Records score(scoreWith("", ""));
    editSecond(score, [](EDTMeasureSpec2014& spec) { spec.keySignature = 2; });
    EXPECT_EQ(score.open.written(), scoreWith(change(keys(2, 3)), change(keys(0, 1))));
}

TEST(MeasureSpecifications, refuseKeysBehindAStepBack) {
    Records score(
        scoreOf({note("c4:w"), voice("1", "c4:w") + backup(2) + change(keyed(1)) + voice("2", "e4:h")}));
    editSecond(score, [](EDTMeasureSpec2014& spec) { spec.keySignature = 2; });
    const auto written = score.open.file.write(score.open.document, musicxml::Container::plain);
    ASSERT_FALSE(written.ok());
    EXPECT_NE(written.problem().text().find("the key of this measure cannot be written (measure 2). Put key"),
              std::string::npos)
        << written.problem().text();
}

// The key of the second measure becomes that of two sharps.
TEST(MeasureSpecifications, putKeysWhereTheyBelong) {
    const std::string two = keyed(2);
    const std::string dorian = change(keyed(-1, "<mode>dorian</mode>"));
    const std::string print = "<print new-system=\"yes\"/>";
    const std::string footnote = "<footnote>by hand</footnote>";
    const struct {
        const char* name;
        std::string before, after;
        std::string behind, behindAfter = change(keyed(0));
        int first = 0;
    } cases[] = {
        {"behind the layout", print, print + change(two), ""},
        {"behind what comes first", change(footnote + "<staves>1</staves>"),
         change(footnote + two + "<staves>1</staves>"), ""},
        {"in the place of another, without what that one cancelled",
         change("<key><cancel>1</cancel><fifths>-1</fifths><mode>minor</mode></key>"),
         change(keyed(2, "<mode>major</mode>")), "", change(keyed(-1, "<mode>minor</mode>"))},
        {"behind a grace note", graceNote("C", 5) + change(keyed(-1)), graceNote("C", 5) + change(two), "",
         change(keyed(-1))},
        {"before a key inside the measure", note("c4:h") + change(keyed(4)) + note("r:h"),
         change(two) + note("c4:h") + change(keyed(4)) + note("r:h"), "", ""},
        {"nowhere, where it is the same as before", change(keyed(-1)), "", "", change(keyed(-1)), 2},
        {"a mode that says the same stays behind it", "", change(two), dorian, dorian},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto scoreWith = [&](const std::string& second, const std::string& third) {
            const std::string first = attributes("4", keyed(c.first));
            return scoreOf({note("c4:w"), second + note("c4:w"), third + note("c4:w")}, first);
        };
        Records score(scoreWith(c.before, c.behind));
        editSecond(score, [](EDTMeasureSpec2014& spec) { spec.keySignature = 2; });
        EXPECT_EQ(score.open.written(), scoreWith(c.after, c.behindAfter));
    }
}

TEST(DataRecords, refuseWhatCannotBe) {
    Records score(scoreOf({note("c4:w")}));
    const std::vector<std::byte> bytes(92);
    const auto with = [&](std::size_t size) { return std::span(bytes).first(size); };
    EENTRYKEY strange{99, kAppendNumber};
    EDATAKEY gap{1, 3};
    EDATAKEY beyond{9, kAppendNumber};
    EDATAKEY fresh{kAppendNumber, 0};
    EDETAILKEY center{7, kAppendNumber, 0};
    score.edit([&] {
        EXPECT_FALSE(score.records.create(kEntryMarkTag, &strange, with(10)));
        EXPECT_FALSE(score.records.create(kMeasureMarkTag, &gap, with(12)));
        EXPECT_FALSE(score.records.create(kMeasureMarkTag, &beyond, with(12)));
        EXPECT_FALSE(score.records.create(kSmartShapeTag, &fresh, with(84)));
        EXPECT_FALSE(score.records.create(0x31313131, &fresh, with(12)));
        EXPECT_FALSE(score.records.save(kSmartShapeTag, &fresh, with(92)));
        EXPECT_FALSE(score.records.remove(kSmartShapeTag, &fresh));
        EXPECT_EQ(fresh.cmper, kAppendNumber);
        for (std::uint16_t number = 1; number <= 3; ++number) {
            center.cmper2 = kAppendNumber;
            EXPECT_TRUE(score.records.create(kCenterShapeTag, &center, with(22)));
            EXPECT_EQ(center.cmper2, number);
        }
        EXPECT_TRUE(score.records.create(kSmartShapeTag, &fresh, with(92)));
        EXPECT_EQ(fresh.cmper, 1);
        // Center shapes keep their numbers when one goes.
        center.cmper2 = 2;
        EXPECT_TRUE(score.records.remove(kCenterShapeTag, &center));
        center.cmper2 = 0;
        EXPECT_TRUE(score.records.step(kCenterShapeTag, &center, true) &&
                    score.records.step(kCenterShapeTag, &center, true));
        EXPECT_EQ(center.cmper2, 3);
        EXPECT_FALSE(score.records.step(kCenterShapeTag, &center, true));
        EXPECT_TRUE(score.records.step(kCenterShapeTag, &center, false));
        EXPECT_EQ(center.cmper2, 1);
    });
}

}  // namespace
}  // namespace rovescio::test
