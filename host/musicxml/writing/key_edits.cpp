// Keys part by part and measure by measure.
#include "musicxml/writing/key_edits.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/attributes_reader.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

using engine::KeySignature;

struct KeyElement {
    xml::Node node = 0;
    int staff = 0;  // within the part, from 1; 0 for all
};

// What a measure has at its start.
struct StartText {
    xml::Node attributes = 0;  // the first one
    bool empty = false;        // it holds nothing but keys
    xml::Node before = 0;      // the last child of it that stands before a <key>
    xml::Node print = 0;       // before which nothing of the measure stands
    std::vector<KeyElement> keys;
    xml::Node lateKey = 0;  // a key after a step back in time
};

std::string keyText(const KeySignature& key, int staff) {
    const int low = key.word() & 0xFF;
    const std::string number = staff == 0 ? "" : " number=\"" + std::to_string(staff) + "\"";
    const std::string mode = (key.word() >> 8) != 0 ? "<mode>minor</mode>" : "";
    return "<key" + number + "><fifths>" + std::to_string(low > 127 ? low - 256 : low) + "</fifths>" + mode +
           "</key>";
}

class MeasureStart {
  public:
    MeasureStart(const xml::Edits& edits, xml::Node measure) : edits_(edits) {
        std::vector<xml::Node> children;
        edits.children(measure, children);
        for (const xml::Node child : children) {
            switch (edits.name(child)) {
                case tag("print"):
                    if (!moved_ && found_.attributes == 0) found_.print = child;
                    break;
                case tag("attributes"):
                    scanAttributes(child);
                    break;
                case tag("backup"):
                    back_ = true;
                    break;
                case tag("note"):
                case tag("forward"):
                    // Grace notes take no time.
                    moved_ |= edits.child(child, tag("duration")) != 0;
                    break;
                default:
                    break;
            }
        }
    }
    [[nodiscard]] const StartText& found() const { return found_; }

  private:
    void scanAttributes(xml::Node attributes) {
        const bool first = !moved_ && found_.attributes == 0;
        bool others = false;
        std::vector<xml::Node> children;
        edits_.children(attributes, children);
        for (const xml::Node child : children) {
            const xml::Name name = edits_.name(child);
            if (name == tag("key")) {
                scanKey(child);
                continue;
            }
            others = true;
            const bool comesFirst =
                name == tag("footnote") || name == tag("level") || name == tag("divisions");
            if (first && comesFirst) found_.before = child;
        }
        if (!first) return;
        found_.attributes = attributes;
        found_.empty = !others;
    }

    void scanKey(xml::Node key) {
        if (!moved_) {
            found_.keys.push_back({key, parseInteger(edits_.attribute(key, "number")).value_or(0)});
        } else if (back_) {
            found_.lateKey = key;
        }
    }

    const xml::Edits& edits_;
    StartText found_;
    bool moved_ = false;
    bool back_ = false;
};

class PartKeys {
  public:
    PartKeys(const PartSource& part, const engine::Document& document, Journal& journal, xml::Edits& edits)
        : part_(part), document_(document), journal_(journal), edits_(edits) {}

    bool edit() {
        for (const auto& [measure, old] : document_.changedMeasures()) {
            if (!editMeasure(measure)) return false;
            // The key of the next measure begins from what this one ends with.
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
        const xml::Node contents = part_.measures[static_cast<std::size_t>(measure - 1)];
        std::vector<short> staves;
        for (short i = 0; i < part_.staffCount; ++i) {
            const auto staff = static_cast<short>(part_.firstStaff + i);
            if (isAffected(staff, measure)) staves.push_back(staff);
        }
        if (staves.empty()) return true;
        journal_.setMeasure(document_.measure(measure).label);
        // A measure that the part lacks cannot show a key; those after it do.
        if (contents == 0) return true;
        const MeasureStart start(edits_, contents);
        if (start.found().lateKey != 0) {
            journal_.fail("the key of this measure cannot be written", edits_.place(start.found().lateKey),
                          "Put key signatures at the start of the measure, before its notes.");
            return false;
        }
        write(measure, contents, staves, start.found());
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

    void write(short measure, xml::Node contents, const std::vector<short>& staves, const StartText& start) {
        const bool needed = std::any_of(staves.begin(), staves.end(),
                                        [&](short staff) { return changesKey(staff, measure); });
        const std::vector<KeyElement>& keys = start.keys;
        const bool writable = std::all_of(keys.begin(), keys.end(), [&](const KeyElement& key) {
            return common(measure, key.staff).has_value();
        });
        if (needed && !keys.empty() && writable) {
            for (const KeyElement& key : keys) replaceKey(key, *common(measure, key.staff));
            return;
        }
        const bool emptied = start.empty && !keys.empty() && !needed;
        if (emptied) {
            edits_.remove(start.attributes);
        } else {
            for (const KeyElement& key : keys) edits_.remove(key.node);
        }
        if (needed) insert(measure, contents, start);
    }

    // A key off the standard scales was not changed, and stands as it is.
    void replaceKey(const KeyElement& key, const KeySignature& wanted) {
        if (!wanted.isStandard() || says(key.node, wanted)) return;
        const xml::Node mode = edits_.child(key.node, tag("mode"));
        const bool minor = (wanted.word() >> 8) != 0;
        const xml::Node fifths = edits_.child(key.node, tag("fifths"));
        if (fifths == 0) {
            edits_.insertAfter(key.node, edits_.make(keyText(wanted, key.staff)));
            edits_.remove(key.node);
            return;
        }
        const xml::Node made = edits_.make(keyText(wanted, 0));
        if (const xml::Node cancel = edits_.child(key.node, tag("cancel")); cancel != 0)
            edits_.remove(cancel);
        edits_.setText(fifths, edits_.text(edits_.child(made, tag("fifths"))));
        if (mode != 0) {
            edits_.setText(mode, minor ? "minor" : "major");
        } else if (minor) {
            edits_.insertAfter(fifths, edits_.make("<mode>minor</mode>"));
        }
    }

    // Whether a key element is read as this key; modes other than major and minor are kept so.
    [[nodiscard]] bool says(xml::Node element, const KeySignature& key) const {
        if (element >= edits_.tree().size()) return false;
        KeySignature read;
        Journal journal({}, {});
        return readKey({edits_.tree(), element}, read, journal) && read == key;
    }

    void insert(short measure, xml::Node contents, const StartText& start) {
        std::vector<xml::Node> keys;
        if (const auto shared = common(measure, 0)) {
            keys.push_back(edits_.make(keyText(*shared, 0)));
        } else {
            for (const short i : engine::numbers(1, part_.staffCount)) {
                const auto key = common(measure, i);
                if (key && key->isStandard()) keys.push_back(edits_.make(keyText(*key, i)));
            }
        }
        xml::Node attributes = start.attributes;
        if (attributes == 0) {
            attributes = edits_.make("<attributes></attributes>");
            if (start.print != 0) {
                edits_.insertAfter(start.print, attributes);
            } else {
                edits_.insertFirst(contents, attributes);
            }
        }
        // The last one is put in first, right after what comes before keys.
        for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
            if (start.before != 0) {
                edits_.insertAfter(start.before, *key);
            } else {
                edits_.insertFirst(attributes, *key);
            }
        }
    }

    const PartSource& part_;
    const engine::Document& document_;
    Journal& journal_;
    xml::Edits& edits_;
};

}  // namespace

bool editKeys(const SourceMap& sources, const engine::Document& document, Journal& journal,
              xml::Edits& edits) {
    for (const PartSource& part : sources.parts) {
        if (!PartKeys(part, document, journal, edits).edit()) return false;
    }
    return true;
}

}  // namespace rovescio::musicxml
