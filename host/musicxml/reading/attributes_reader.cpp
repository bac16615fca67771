// Reading of key, clef and time elements.
#include "musicxml/reading/attributes_reader.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/note_reading.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

constexpr int kMaxFifths = 49;  // seven sevenfold sharps
constexpr int kMaxBeatType = 4096;
constexpr int kMaxBeats = 100'000;
constexpr int kMaxKeyAlter = 9;
constexpr std::int64_t kMaxMeasure = std::int64_t{1} << 30;
constexpr int kMaxClefLine = 9;
constexpr int kMaxOctaveChange = 5;

// A mode has the minor third or not; that decides which of the two words of a
// signature it gets.
bool isMinor(std::string_view mode) {
    return mode == "minor" || mode == "dorian" || mode == "phrygian" || mode == "aeolian" ||
           mode == "locrian";
}

// Sum of beats such as "3+2"; 0 when it is none.
int readBeats(std::string_view text) {
    int sum = 0;
    while (true) {
        const std::size_t plus = text.find('+');
        const std::optional<int> beats = parseInteger(text.substr(0, plus));
        if (!beats || *beats < 1 || *beats > kMaxBeats) return 0;
        sum += *beats;
        if (plus == std::string_view::npos) return sum <= kMaxBeats ? sum : 0;
        text.remove_prefix(plus + 1);
    }
}

}  // namespace

Clef readClef(const xml::Element& element) {
    std::string_view sign;
    std::optional<int> written;
    int octaves = 0;
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("sign"):
                sign = child.text();
                break;
            case tag("line"):
                written = parseInteger(child.text());
                break;
            case tag("clef-octave-change"):
                octaves = parseInteger(child.text()).value_or(0);
                break;
            default:
                break;
        }
    }
    Clef clef;
    int reference = 0;
    int line = 3;
    if (sign == "G") {
        reference = 4;
        line = 2;
    } else if (sign == "F") {
        reference = -4;
        line = 4;
    } else if (sign != "C") {
        clef.pitched = sign != "percussion";
        clef.hasStemRule = !clef.pitched;
        return clef;
    }
    if (written && *written >= -kMaxClefLine && *written <= kMaxClefLine) line = *written;
    if (octaves < -kMaxOctaveChange || octaves > kMaxOctaveChange) octaves = 0;
    clef.middleStep = reference + 2 * (3 - line) + 7 * octaves;
    return clef;
}

bool readKey(const xml::Element& element, engine::KeySignature& key, Journal& journal) {
    std::optional<int> fifths;
    bool minor = false;
    std::array<std::int8_t, 7> alters{};  // letters that a free key does not name stay natural
    std::array<std::int8_t, 7> cents{};
    int letter = -1;
    bool isFree = true;
    for (const xml::Element child : element) {
        const std::size_t offset = child.offset();
        switch (child.name()) {
            case tag("fifths"): {
                const std::string_view text = child.text();
                isFree = false;
                fifths = parseInteger(text);
                if (fifths && *fifths >= -kMaxFifths && *fifths <= kMaxFifths) break;
                journal.fail("the key signature \"" + std::string(text.substr(0, 40)) +
                                 "\" is not a number of sharps or flats",
                             offset, "Correct the key signature; flats are negative.");
                return false;
            }
            case tag("mode"):
                minor = isMinor(child.text());
                break;
            case tag("key-step"):
                letter = letterOf(child.text());
                break;
            case tag("key-alter"): {
                const Decimal alter = parseDecimal(child.text()).value_or(Decimal{});
                if (letter < 0 || alter.value > kMaxKeyAlter * alter.scale ||
                    alter.value < -kMaxKeyAlter * alter.scale) {
                    break;
                }
                alters[static_cast<std::size_t>(letter)] = static_cast<std::int8_t>(
                    engine::floorDiv(static_cast<int>(alter.value), static_cast<int>(alter.scale)));
                cents[static_cast<std::size_t>(letter)] = static_cast<std::int8_t>(hundredthsOf(alter));
                break;
            }
            default:
                break;
        }
    }
    key = isFree ? engine::KeySignature::nonStandard(alters, cents)
                 : engine::KeySignature::standard(fifths.value_or(0), minor);
    return true;
}

TimeSignature readTime(const xml::Element& element, Journal& journal) {
    const std::size_t offset = element.offset();
    TimeSignature time;
    std::int64_t length = 0;
    int beats = 0;
    bool counted = true;
    for (const xml::Element child : element) {
        switch (child.name()) {
            case tag("beats"):
                beats = readBeats(child.text());
                break;
            case tag("beat-type"): {
                const int type = parseInteger(child.text()).value_or(0);
                if (beats == 0 || type < 1 || type > kMaxBeatType) {
                    counted = false;
                    break;
                }
                if (length == 0) time.beat = 4 * engine::kQuarter / type;
                length += std::int64_t{beats} * 4 * engine::kQuarter / type;
                break;
            }
            default:
                break;
        }
    }
    if (!counted || length > kMaxMeasure) {
        journal.notice("time",
                       "the time signature cannot be interpreted; its measures are "
                       "taken to be as long as their contents",
                       offset);
        return {};
    }
    time.length = static_cast<std::int32_t>(length);
    return time;
}

}  // namespace rovescio::musicxml
