// Keys part by part and measure by measure.
#include "musicxml/key_edits.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "musicxml/numbers.h"
#include "musicxml/tag_names.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

using engine::KeySignature;

struct KeyElement {
    Element element;
    int staff = 0;  // within the part, from 1; 0 for all
    bool mode = false;
};

// What stands at the start of a measure.
struct StartText {
    Element attributes;  // the first one
    bool empty = false;  // it holds nothing but keys
    Element before;      // the last child of it that stands before a <key>
    Element print;       // before which nothing of the measure stands
    std::vector<KeyElement> keys;
    std::size_t lateKey = 0;  // offset of a key behind a step back in time
};

std::string contentOf(const KeySignature& key, bool mode) {
    const int low = key.word() & 0xFF;
    const bool minor = (key.word() >> 8) != 0;
    std::string text = "<fifths>" + std::to_string(low > 127 ? low - 256 : low) + "</fifths>";
    if (minor || mode) text += minor ? "<mode>minor</mode>" : "<mode>major</mode>";
    return text;
}

class MeasureStart {
  public:
    MeasureStart(std::string_view text, std::size_t contents) : walk_(text) {
        walk_.restart(contents);
        if (!walk_.next(0)) return;
        contentBegin_ = walk_.element().contentBegin;
        for (const std::size_t level = walk_.enter(); walk_.next(level);) {
            switch (walk_.tagNumber()) {
                case tag("print"):
                    if (!moved_ && !found_.attributes.exists()) found_.print = walk_.whole();
                    break;
                case tag("attributes"):
                    scanAttributes();
                    break;
                case tag("backup"):
                    back_ = true;
                    break;
                case tag("note"):
                case tag("forward"):
                    scanTime();
                    break;
                default:
                    break;
            }
        }
    }
    [[nodiscard]] const StartText& found() const { return found_; }
    [[nodiscard]] std::size_t contentBegin() const { return contentBegin_; }

  private:
    // Grace notes take no time.
    void scanTime() {
        for (const std::size_t level = walk_.enter(); walk_.next(level);) {
            moved_ |= walk_.tagNumber() == tag("duration");
        }
    }

    void scanAttributes() {
        Element attributes = walk_.element();
        const bool first = !moved_ && !found_.attributes.exists();
        bool others = false;
        bool children = false;
        for (const std::size_t level = walk_.enter(); walk_.next(level); children = true) {
            if (walk_.tagNumber() == tag("key")) {
                scanKey();
                continue;
            }
            others = true;
            if (!first) continue;
            const std::uint64_t name = walk_.tagNumber();
            if (name == tag("footnote") || name == tag("level") || name == tag("divisions")) {
                found_.before = walk_.whole();
            }
        }
        if (children) walk_.complete(attributes);
        if (!first) return;
        found_.attributes = attributes;
        found_.empty = !others;
    }

    void scanKey() {
        KeyElement key;
        key.staff = parseInteger(walk_.attribute("number")).value_or(0);
        key.element = walk_.element();
        for (const std::size_t level = walk_.enter(); walk_.next(level);) {
            key.mode |= walk_.tagNumber() == tag("mode");
        }
        walk_.complete(key.element);
        if (!moved_) {
            found_.keys.push_back(key);
        } else if (back_) {
            found_.lateKey = key.element.begin;
        }
    }

    TextWalk walk_;
    StartText found_;
    std::size_t contentBegin_ = 0;
    bool moved_ = false;
    bool back_ = false;
};

class PartKeys {
  public:
    PartKeys(const PartSource& part, const engine::Document& document, Journal& journal, TextEdits& edits)
        : part_(part), document_(document), journal_(journal), edits_(edits) {}

    bool edit() {
        for (const auto& [measure, old] : document_.changedMeasures()) {
            if (!editMeasure(measure)) return false;
            // The key of the measure behind begins from what this one ends with.
            if (measure == document_.measureCount()) continue;
            const auto next = static_cast<short>(measure + 1);
            if (!document_.changedMeasures().contains(next) && !editMeasure(next)) return false;
        }
        return true;
    }

  private:
    [[nodiscard]] const KeySignature& keyAsRead(short staff, short measure) const {
        const auto old = document_.changedMeasures().find(measure);
        return old == document_.changedMeasures().end()
                   ? document_.staffMeasure(staff, measure).key
                   : old->second.keys[static_cast<std::size_t>(staff - 1)];
    }

    [[nodiscard]] bool isAffected(short staff, short measure) const {
        const auto changed = [&](short at) {
            return at >= 1 && !(keyAsRead(staff, at) == document_.staffMeasure(staff, at).key);
        };
        return changed(measure) || changed(static_cast<short>(measure - 1));
    }

    // Whether a measure begins with another key than the one before it ends with.
    [[nodiscard]] bool changesKey(short staff, short measure) const {
        if (measure == 1) return true;
        return !(document_.keyAt(staff, static_cast<short>(measure - 1),
                                 std::numeric_limits<std::int32_t>::max()) ==
                 document_.staffMeasure(staff, measure).key);
    }

    bool editMeasure(short measure) {
        const std::uint32_t contents = part_.measures[static_cast<std::size_t>(measure - 1)];
        std::vector<short> staves;
        for (short i = 0; i < part_.staffCount; ++i) {
            const auto staff = static_cast<short>(part_.firstStaff + i);
            if (isAffected(staff, measure)) staves.push_back(staff);
        }
        if (staves.empty()) return true;
        journal_.setMeasure(document_.measure(measure).label);
        const MeasureStart start(edits_.text(), contents);
        if (contents == 0 || start.contentBegin() == 0 || start.found().lateKey != 0) {
            journal_.fail("the key of this measure cannot be written", start.found().lateKey,
                          "Put key signatures at the start of the measure, before its notes.");
            return false;
        }
        write(measure, staves, start);
        return true;
    }

    // The one key of the staves that stand in the element, if they agree; unpitched staves have none.
    [[nodiscard]] std::optional<KeySignature> common(short measure, int staffInPart) const {
        std::optional<KeySignature> key;
        for (const short i : engine::numbers(1, part_.staffCount)) {
            if (staffInPart != 0 && i != staffInPart) continue;
            const auto staff = static_cast<short>(part_.firstStaff + i - 1);
            const KeySignature& own = document_.staffMeasure(staff, measure).key;
            if (document_.staff(staff).unpitched) continue;
            if (key && !(*key == own)) return std::nullopt;
            key = own;
        }
        return key;
    }

    void write(short measure, const std::vector<short>& staves, const MeasureStart& start) {
        const bool needed = std::any_of(staves.begin(), staves.end(),
                                        [&](short staff) { return changesKey(staff, measure); });
        const std::vector<KeyElement>& keys = start.found().keys;
        const bool writable = std::all_of(keys.begin(), keys.end(), [&](const KeyElement& key) {
            return common(measure, key.staff).has_value();
        });
        if (needed && !keys.empty() && writable) {
            for (const KeyElement& key : keys) replaceKey(key, *common(measure, key.staff));
            return;
        }
        const bool emptied = start.found().empty && !keys.empty() && !needed;
        if (emptied) {
            edits_.remove(start.found().attributes);
        } else {
            for (const KeyElement& key : keys) edits_.remove(key.element);
        }
        if (needed) insert(measure, start);
    }

    void replaceKey(const KeyElement& key, const KeySignature& wanted) {
        // A key off the standard scales was not changed, and stands as it is.
        if (!wanted.isStandard()) return;
        const std::string text = contentOf(wanted, key.mode);
        if (text != edits_.text().substr(key.element.contentBegin,
                                         key.element.contentEnd - key.element.contentBegin)) {
            edits_.replaceContent(key.element, text);
        }
    }

    void insert(short measure, const MeasureStart& start) {
        std::string text;
        if (const auto shared = common(measure, 0)) {
            text = "<key>" + contentOf(*shared, false) + "</key>";
        } else {
            for (const short i : engine::numbers(1, part_.staffCount)) {
                const auto key = common(measure, i);
                if (!key || !key->isStandard()) continue;
                text += "<key number=\"" + std::to_string(i) + "\">" + contentOf(*key, false) + "</key>";
            }
        }
        const StartText& found = start.found();
        if (found.before.exists()) {
            edits_.insertAfter(found.before, text);
        } else if (found.attributes.exists() && found.attributes.contentEnd > found.attributes.contentBegin) {
            edits_.replace(found.attributes.contentBegin, found.attributes.contentBegin, text);
        } else if (found.print.exists()) {
            edits_.insertAfter(found.print, "<attributes>" + text + "</attributes>");
        } else {
            edits_.replace(start.contentBegin(), start.contentBegin(),
                           "<attributes>" + text + "</attributes>");
        }
    }

    const PartSource& part_;
    const engine::Document& document_;
    Journal& journal_;
    TextEdits& edits_;
};

}  // namespace

bool editKeys(const SourceMap& sources, const engine::Document& document, Journal& journal,
              TextEdits& edits) {
    for (const PartSource& part : sources.parts) {
        if (!PartKeys(part, document, journal, edits).edit()) return false;
    }
    return true;
}

}  // namespace rovescio::musicxml
