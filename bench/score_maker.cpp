// Making of scores for measuring.
#include "score_maker.h"

#include <array>
#include <cstdio>
#include <vector>

namespace rovescio::bench {

using engine::Document;
using engine::KeySignature;

namespace {

constexpr int kPerMeasure = 8;
constexpr short kLongestStaff = 32000;

// A wandering line within two octaves, now and then off the scale.
engine::SpelledPitch pitchAt(std::int64_t index) {
    return {static_cast<int>(index * 5 % 15) - 4, index % 11 == 0 ? 1 : 0};
}

}  // namespace

Document makeDocument(std::int64_t notes, int perMeasure) {
    Document document;
    const std::int64_t measures = (notes + perMeasure - 1) / perMeasure;
    const std::int64_t staves = (measures + kLongestStaff - 1) / kLongestStaff;
    const std::int64_t length = (measures + staves - 1) / staves;
    for (std::int64_t i = 0; i < staves; ++i) document.addStaff({"staff", false});
    for (std::int64_t i = 0; i < length; ++i) document.addMeasure({std::to_string(i + 1)});
    document.layOut();
    std::int64_t index = 0;
    for (short staff = 1; staff <= document.staffCount(); ++staff) {
        for (short measure = 1; measure <= document.measureCount(); ++measure) {
            auto& context = document.staffMeasure(staff, measure);
            context.key = KeySignature::standard(measure % 15 - 7, measure % 2 == 0);
            std::vector<EXENTRY> entries(static_cast<std::size_t>(perMeasure));
            const std::int32_t duration = 4 * engine::kQuarter / perMeasure;
            for (int i = 0; i < perMeasure; ++i, ++index) {
                EXENTRY& entry = entries[static_cast<std::size_t>(i)];
                entry.entryNumber = document.nextEntryNumber();
                entry.entryFlags = ENTRY_VALID | ENTRY_NOTE;
                entry.duration = duration;
                entry.elapsed = i * duration;
                entry.noteCount = 1;
                context.key.store(pitchAt(index), entry.notes[0]);
                entry.notes[0].noteId = 1;
            }
            document.setEntries({staff, measure, 0}, entries);
        }
    }
    return document;
}

std::string makeMusicXml(std::int64_t notes) {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<score-partwise version=\"4.0\">\n  <part-list>\n"
        "    <score-part id=\"P1\">\n      <part-name>Piano</part-name>\n    </score-part>\n  </part-list>\n"
        "  <part id=\"P1\">\n";
    text.reserve(static_cast<std::size_t>(notes) * 380);
    static constexpr const char* kLetters = "CDEFGAB";
    const auto put = [&](const char* format, auto... values) {
        std::array<char, 640> line;
        const int length = std::snprintf(line.data(), line.size(), format, values...);
        text.append(line.data(), static_cast<std::size_t>(length));
    };
    std::int64_t index = 0;
    for (int measure = 1; index < notes; ++measure) {
        put("    <measure number=\"%d\" width=\"%d.%02d\">\n", measure, 180 + measure % 40, measure % 100);
        if (measure % 16 == 1) {
            put("      <attributes>\n        <divisions>2</divisions>\n        <key>\n          "
                "<fifths>%d</fifths>\n"
                "        </key>\n        <time>\n          <beats>4</beats>\n          "
                "<beat-type>4</beat-type>\n"
                "        </time>\n        <staves>2</staves>\n        <clef number=\"1\">\n          "
                "<sign>G</sign>\n"
                "          <line>2</line>\n        </clef>\n        <clef number=\"2\">\n          "
                "<sign>F</sign>\n"
                "          <line>4</line>\n        </clef>\n      </attributes>\n",
                measure / 16 % 13 - 6);
        }
        for (int staff = 1; staff <= 2; ++staff) {
            for (int i = 0; i < kPerMeasure; ++i, ++index) {
                const auto pitch = pitchAt(index);
                put("      <note default-x=\"%d.%02d\" default-y=\"-%d.00\">\n        <pitch>\n          "
                    "<step>%c</step>\n",
                    40 + i * 22, i * 7, 10 + i * 5, kLetters[engine::floorMod(pitch.step, 7)]);
                if (pitch.alter) put("          <alter>%d</alter>\n", pitch.alter);
                put("          <octave>%d</octave>\n        </pitch>\n        <duration>1</duration>\n"
                    "        <voice>%d</voice>\n        <type>eighth</type>\n",
                    (staff == 1 ? 5 : 3) + engine::floorDiv(pitch.step, 7), staff == 1 ? 1 : 5);
                if (pitch.alter) text += "        <accidental>sharp</accidental>\n";
                put("        <stem>%s</stem>\n        <staff>%d</staff>\n        <beam "
                    "number=\"1\">%s</beam>\n"
                    "      </note>\n",
                    staff == 1 ? "down" : "up", staff,
                    i % 4 == 0   ? "begin"
                    : i % 4 == 3 ? "end"
                                 : "continue");
            }
            if (staff == 1) text += "      <backup>\n        <duration>8</duration>\n      </backup>\n";
        }
        text += "    </measure>\n";
    }
    return text + "  </part>\n</score-partwise>\n";
}

}  // namespace rovescio::bench
