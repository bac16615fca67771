// The frame of a score: its parts and measures in either order, put together
// into a document.
#include "musicxml/reading/score_reader.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/measure_layout.h"
#include "musicxml/reading/part_reader.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

namespace {

constexpr std::size_t kMaxNumber = std::numeric_limits<short>::max();

class ScoreReader {
  public:
    ScoreReader(engine::Document& document, Journal& journal) : document_(document), journal_(journal) {}

    bool read(const xml::Element& root);
    ScoreReading take();

  private:
    void readWork(const xml::Element& work);
    void readIdentification(const xml::Element& identification);
    void listParts(const xml::Element& list);
    PartReader* openPart(const xml::Element& element);
    bool readPart(const xml::Element& element);
    bool readTimewiseMeasure(const xml::Element& element);
    bool noteLabel(const xml::Element& measure, std::size_t index);
    bool assemble();
    void assemblePart(PartReader& part, short firstStaff);
    void moveToUnpitched(PartReader& part);
    void gatherLengths();
    void takeLengths(PartReader& part) const;

    engine::Document& document_;
    Journal& journal_;
    ScoreReading reading_;
    std::string movementTitle_;
    // Names and instruments of the part list, by part id.
    std::unordered_map<std::string_view, std::pair<std::string, PartInstruments>> listed_;
    std::unordered_map<std::string_view, std::size_t> partIndex_;
    std::vector<PartReader> parts_;
    std::vector<std::string> labels_;                 // of the measures
    std::vector<std::int16_t> widths_;                // likewise, hundredths of a staff space
    std::vector<std::vector<std::int32_t>> lengths_;  // likewise, those of the parts, each once
    NoteInstruments named_;
};

void ScoreReader::readWork(const xml::Element& work) {
    for (const xml::Element child : work) {
        if (child.name() == tag("work-title")) reading_.summary.title = child.text();
    }
}

void ScoreReader::readIdentification(const xml::Element& identification) {
    for (const xml::Element child : identification) {
        if (child.name() != tag("creator") || child.attribute("type") != "composer") continue;
        if (reading_.summary.composer.empty()) reading_.summary.composer = child.text();
    }
}

void ScoreReader::listParts(const xml::Element& list) {
    for (const xml::Element part : list) {
        if (part.name() != tag("score-part")) continue;
        const std::string_view id = part.attribute("id");
        std::string name;
        PartInstruments instruments;
        for (const xml::Element child : part) {
            if (child.name() == tag("part-name")) name = child.text();
            if (child.name() == tag("score-instrument")) instruments.addInstrument(child);
            if (child.name() == tag("midi-instrument")) instruments.addMidi(child);
        }
        listed_.try_emplace(id, name.empty() ? std::string(id) : name, std::move(instruments));
    }
}

// The reader of a part; null, with a problem reported, for an unknown one.
PartReader* ScoreReader::openPart(const xml::Element& element) {
    const std::string_view id = element.attribute("id");
    const auto known = partIndex_.find(id);
    if (known != partIndex_.end()) return &parts_[known->second];
    const auto listed = listed_.find(id);
    if (listed == listed_.end()) {
        journal_.fail("the part \"" + std::string(id.substr(0, 40)) + "\" is not in the part list",
                      element.offset(), "Add a <score-part> with that id to the <part-list>.");
        return nullptr;
    }
    partIndex_.emplace(id, parts_.size());
    const auto& [name, instruments] = listed->second;
    parts_.emplace_back(name, instruments, journal_, document_, reading_.sources);
    return &parts_.back();
}

// Remembers the label of the measure; the first part that has the measure gives it.
bool ScoreReader::noteLabel(const xml::Element& measure, std::size_t index) {
    const std::string_view label = measure.attribute("number");
    journal_.setMeasure(label);
    if (index < labels_.size()) return true;
    if (labels_.size() >= kMaxNumber) {
        journal_.fail("the score has more than " + std::to_string(kMaxNumber) + " measures", measure.offset(),
                      "Split the score.");
        return false;
    }
    labels_.emplace_back(label);
    widths_.push_back(hundredths(measure.attribute("width")));
    return true;
}

bool ScoreReader::readPart(const xml::Element& element) {
    const std::size_t partsBefore = parts_.size();
    PartReader* const part = openPart(element);
    if (part == nullptr) return false;
    if (parts_.size() == partsBefore) {
        journal_.fail("the part \"" + part->name() + "\" appears twice", element.offset(),
                      "Give every <part> an id of its own.");
        return false;
    }
    std::size_t index = 0;
    for (const xml::Element measure : element) {
        if (measure.name() != tag("measure")) continue;
        if (!noteLabel(measure, index++) || !part->readMeasure(measure)) return false;
    }
    journal_.setMeasure({});
    return true;
}

bool ScoreReader::readTimewiseMeasure(const xml::Element& element) {
    const std::size_t index = labels_.size();
    if (!noteLabel(element, index)) return false;
    for (const xml::Element contents : element) {
        if (contents.name() != tag("part")) continue;
        PartReader* const part = openPart(contents);
        if (part == nullptr) return false;
        while (static_cast<std::size_t>(part->measureCount()) < index) part->skipMeasure();
        if (static_cast<std::size_t>(part->measureCount()) > index) {
            journal_.fail("the part \"" + part->name() + "\" appears twice in one measure", contents.offset(),
                          "Keep one <part> with that id in the measure.");
            return false;
        }
        if (!part->readMeasure(contents)) return false;
    }
    journal_.setMeasure({});
    return true;
}

// On a staff without pitches nothing is relative to a key.
void ScoreReader::moveToUnpitched(PartReader& part) {
    const engine::KeySignature none = engine::KeySignature::nonStandard();
    for (GatheredFrame& frame : part.frames()) {
        StaffReading& staff = part.staves()[static_cast<std::size_t>(frame.staff)];
        if (!staff.isUnpitched()) continue;
        const engine::KeySignature& key = staff.measures[static_cast<std::size_t>(frame.measure - 1)].key;
        for (engine::StoredEntry& entry : frame.entries) {
            for (ENOTE& note : entry.notes()) none.store(key.spell(note), note);
        }
    }
    for (StaffReading& staff : part.staves()) {
        if (!staff.isUnpitched()) continue;
        for (engine::StaffMeasure& measure : staff.measures) measure.key = none;
    }
}

// What the parts have in each measure.
void ScoreReader::gatherLengths() {
    lengths_.resize(labels_.size());
    for (PartReader& part : parts_) {
        for (std::size_t measure = 0; measure < labels_.size(); ++measure) {
            const std::int32_t contents = part.lengths()[measure].contents;
            std::vector<std::int32_t>& known = lengths_[measure];
            if (contents > 0 && std::ranges::find(known, contents) == known.end()) known.push_back(contents);
        }
    }
}

// A measure that is short by its contents is a short measure, such as a pick-up, only when no other part
// fills it; where a part has nothing at all, it is as long as the others are.
void ScoreReader::takeLengths(PartReader& part) const {
    for (std::size_t measure = 0; measure < part.lengths().size(); ++measure) {
        const PartReader::Lengths& own = part.lengths()[measure];
        if (own.contents > 0 && own.contents >= own.signature) continue;
        const std::vector<std::int32_t>& known = lengths_[measure];
        const auto length = own.contents == 0 ? known.begin() : std::ranges::find(known, own.signature);
        if (length == known.end()) continue;
        for (StaffReading& staff : part.staves()) staff.measures[measure].duration = *length;
    }
}

void ScoreReader::assemblePart(PartReader& part, short firstStaff) {
    part.finishLayers();
    moveToUnpitched(part);
    takeLengths(part);
    reading_.sources.parts.push_back({firstStaff,
                                      static_cast<short>(part.staves().size()),
                                      std::move(part.nodes()),
                                      std::move(part.divisions()),
                                      {}});
    for (const PartReader::Lengths& length : part.lengths()) {
        reading_.sources.parts.back().contents.push_back(length.contents);
    }
    part.shapes().finish(firstStaff, part.frames(), document_, reading_.sources, journal_);
    for (const auto& [measure, distance] : part.distances()) {
        engine::MeasureLayout& layout = document_.layout(measure);
        if (layout.spaceBefore == 0) layout.spaceBefore = distance;
    }
    const auto global = [&](int staffInPart) { return static_cast<short>(firstStaff + staffInPart); };
    short number = firstStaff;
    for (const StaffReading& staff : part.staves()) {
        short measure = 0;
        for (const engine::StaffMeasure& contents : staff.measures) {
            document_.staffMeasure(number, ++measure) = contents;
        }
        ++number;
    }
    for (GatheredFrame& frame : part.frames()) {
        const engine::FrameAddress address{global(frame.staff), frame.measure, frame.layer};
        for (const engine::StoredEntry& entry : frame.entries) {
            reading_.sources.entries[entry.entryNumber - 1].address = address;
        }
        document_.setPackedEntries(address, std::move(frame.entries));
    }
    for (engine::KeyChange change : part.keyChanges()) {
        if (part.staves()[static_cast<std::size_t>(change.staff - 1)].isUnpitched()) continue;
        change.staff = global(change.staff - 1);
        document_.addKeyChange(change);
    }
    for (ClefMark clef : part.clefs()) {
        clef.staff = global(clef.staff - 1);
        reading_.sources.clefs.push_back(clef);
    }
    for (HarmonyMark mark : part.harmony()) {
        mark.firstStaff = firstStaff;
        mark.lastStaff = global(static_cast<int>(part.staves().size()) - 1);
        reading_.sources.harmony.push_back(mark);
    }
    part.performance().finish(firstStaff, static_cast<short>(part.staves().size()), reading_.performance,
                              named_);
}

bool ScoreReader::assemble() {
    std::size_t staves = 0;
    for (PartReader& part : parts_) {
        while (static_cast<std::size_t>(part.measureCount()) < labels_.size()) part.skipMeasure();
        staves += part.staves().size();
    }
    if (staves > kMaxNumber || staves * labels_.size() > PartReader::kMaxCells) {
        journal_.fail("the score has too many staves and measures (" + std::to_string(staves) + " by " +
                          std::to_string(labels_.size()) + ")",
                      0, "Split the score.");
        return false;
    }
    for (PartReader& part : parts_) {
        for (const StaffReading& staff : part.staves()) {
            const auto number = static_cast<short>(&staff - part.staves().data() + 1);
            document_.addStaff({part.name(), staff.isUnpitched(), part.performance().fifths(number)});
        }
    }
    for (std::size_t i = 0; i < labels_.size(); ++i) {
        document_.addMeasure({std::move(labels_[i]), {.width = widths_[i]}});
    }
    document_.layOut();
    gatherLengths();
    short firstStaff = 1;
    for (PartReader& part : parts_) {
        assemblePart(part, firstStaff);
        firstStaff = static_cast<short>(firstStaff + static_cast<short>(part.staves().size()));
    }
    nameInstruments(std::move(named_), reading_.sources, reading_.performance);
    std::stable_sort(reading_.sources.clefs.begin(), reading_.sources.clefs.end(),
                     [](const ClefMark& left, const ClefMark& right) {
                         return std::tuple(left.staff, left.measure, left.position) <
                                std::tuple(right.staff, right.measure, right.position);
                     });
    return true;
}

bool ScoreReader::read(const xml::Element& root) {
    const bool partwise = root.name() == tag("score-partwise");
    if (!partwise && root.name() != tag("score-timewise")) {
        journal_.fail("this is XML but not a score: its root element is <" +
                          std::string(root.nameText().substr(0, 40)) + ">",
                      root.offset(), "Give a file whose root is <score-partwise> or <score-timewise>.");
        return false;
    }
    for (const xml::Element child : root) {
        bool fine = true;
        switch (child.name()) {
            case tag("work"):
                readWork(child);
                break;
            case tag("movement-title"):
                movementTitle_ = child.text();
                break;
            case tag("identification"):
                readIdentification(child);
                break;
            case tag("part-list"):
                listParts(child);
                break;
            case tag("part"):
                fine = !partwise || readPart(child);
                break;
            case tag("measure"):
                fine = partwise || readTimewiseMeasure(child);
                break;
            default:
                break;
        }
        if (!fine) return false;
    }
    if (parts_.empty() || labels_.empty()) {
        journal_.fail(parts_.empty() ? "the score has no part" : "the score has no measure", root.offset(),
                      "Give a score with music in it.");
        return false;
    }
    return assemble();
}

ScoreReading ScoreReader::take() {
    if (reading_.summary.title.empty()) reading_.summary.title = std::move(movementTitle_);
    reading_.performance.title = reading_.summary.title;
    reading_.notices = std::move(journal_.notices());
    return std::move(reading_);
}

}  // namespace

engine::Result<ScoreReading> readScore(const xml::Tree& tree, const std::string& file,
                                       engine::Document& document) {
    Journal journal(tree.source(), file);
    ScoreReader reader(document, journal);
    if (!reader.read(tree.rootElement())) return journal.problem();
    return reader.take();
}

}  // namespace rovescio::musicxml
