// Keys and sizes of data records, and what each tag leads to.
#include "engine/interface/data_records.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "engine/interface/strictness.h"
#include "engine/model/measure_specs.h"

namespace rovescio::engine {

namespace {

// Numbers above are kept for records of which there is but one set.
constexpr std::uint32_t kNumberLimit = 65534;
constexpr std::size_t kMaxSize = std::size_t{1} << 20;

// Sizes of the records that the host itself reads.
constexpr std::pair<std::uint32_t, std::size_t> kSizes[] = {
    {kMeasureSpecTag, sizeof(EDTMeasureSpec2014)}, {kSmartShapeTag, sizeof(EDTOldSmartShape)},
    {kMeasureMarkTag, sizeof(MeasureMarkRecord)},  {kCenterShapeTag, sizeof(CenterShapeRecord)},
    {kEntryMarkTag, sizeof(EntryMarkRecord)},      {kAccidentalModTag, sizeof(EDTAccidentalMods2012)}};

// A tag begins with a letter.
bool isTag(std::uint32_t tag) {
    const std::uint32_t letter = (tag >> 24) | 0x20;
    return letter >= 'a' && letter <= 'z';
}

bool isSize(std::uint32_t tag, std::size_t size) {
    for (const auto& [known, wanted] : kSizes) {
        if (known == tag) return size == wanted;
    }
    return size > 0 && size <= kMaxSize;
}

template <class Record>
Record copyOf(const void* from) {
    Record record{};
    std::memcpy(&record, from, sizeof record);
    return record;
}

RecordKey unpacked(std::uint32_t tag, const void* key) {
    switch (recordKeyForm(tag)) {
        case RecordKeyForm::detail: {
            const auto detail = copyOf<EDETAILKEY>(key);
            return {detail.cmper1, detail.cmper2, detail.inci};
        }
        case RecordKeyForm::entry: {
            const auto entry = copyOf<EENTRYKEY>(key);
            return {entry.entryNumber, 0, entry.inci};
        }
        default:
            return copyOf<EDATAKEY>(key);
    }
}

void pack(std::uint32_t tag, const RecordKey& from, void* key) {
    const auto owner = static_cast<std::uint16_t>(from.owner);
    const EDETAILKEY detail{owner, from.second, from.inci};
    const EENTRYKEY entry{from.owner, from.inci};
    const EDATAKEY other{owner, from.inci};
    switch (recordKeyForm(tag)) {
        case RecordKeyForm::detail:
            std::memcpy(key, &detail, sizeof detail);
            break;
        case RecordKeyForm::entry:
            std::memcpy(key, &entry, sizeof entry);
            break;
        default:
            std::memcpy(key, &other, sizeof other);
            break;
    }
}

RecordStore::Place listOf(std::uint32_t tag, const RecordKey& key) {
    return {tag, key.owner, key.second};
}

RecordStore::Bytes bytesOf(const EDTMeasureSpec2014& spec) {
    const auto bytes = std::as_bytes(std::span(&spec, 1));
    return {bytes.begin(), bytes.end()};
}

}  // namespace

const RecordStore& DataRecords::storeOf(std::uint32_t tag) const {
    return tag == kPlaybackStaffTag ? temporary_ : std::as_const(document_).records();
}

bool DataRecords::isMeasure(const RecordKey& key) const {
    return key.inci == 0 && key.owner >= 1 &&
           key.owner <= static_cast<std::uint32_t>(document_.measureCount());
}

std::optional<RecordStore::Bytes> DataRecords::load(std::uint32_t tag, const void* key) const {
    const RecordKey place = unpacked(tag, key);
    if (tag == kMeasureSpecTag) {
        if (!isMeasure(place)) return std::nullopt;
        return bytesOf(measureSpec(document_, static_cast<short>(place.owner)));
    }
    const RecordStore::Bytes* const found = storeOf(tag).find(tag, place);
    return found ? std::optional(*found) : std::nullopt;
}

// Makes a change that is known to be possible.
template <class Change>
bool DataRecords::apply(const RecordStore::Place& place, const Change& change) {
    if (place.tag == kPlaybackStaffTag) return change(temporary_);
    if (!massEdits_.isOpen()) {
        ruleBroken(Rule::saveOutsideMassEdit,
                   "a data record of " + std::to_string(place.owner) + " was changed outside a mass edit");
        return false;
    }
    massEdits_.keepRecords(place);
    const bool done = change(document_.changingRecords());
    document_.changeOfRecordsDone(place);
    return done;
}

bool DataRecords::saveMeasure(const RecordKey& key, std::span<const std::byte> content) {
    if (!isMeasure(key)) return false;
    const auto measure = static_cast<short>(key.owner);
    // A plug-in may save a measure once for every staff; what changes nothing costs nothing.
    const EDTMeasureSpec2014 now = measureSpec(document_, measure);
    if (massEdits_.isOpen() && std::memcmp(&now, content.data(), sizeof now) == 0) return true;
    const auto state = stateWith(document_, measure, copyOf<EDTMeasureSpec2014>(content.data()));
    if (!state) return false;
    if (!massEdits_.isOpen()) {
        ruleBroken(Rule::saveOutsideMassEdit, "the specification of measure " + std::to_string(measure) +
                                                  " was saved outside a mass edit");
        return false;
    }
    massEdits_.changeMeasure(measure, *state);
    return true;
}

bool DataRecords::save(std::uint32_t tag, const void* key, std::span<const std::byte> content) {
    if (!isTag(tag) || !isSize(tag, content.size())) return false;
    const RecordKey place = unpacked(tag, key);
    if (tag == kMeasureSpecTag) return saveMeasure(place, content);
    return storeOf(tag).find(tag, place) != nullptr &&
           apply(listOf(tag, place), [&](RecordStore& store) { return store.save(tag, place, content); });
}

// Replaces the number that asks for one with a number of the host's.
bool DataRecords::chooseNumber(std::uint32_t tag, RecordKey& key) const {
    const RecordStore& store = storeOf(tag);
    if (recordKeyForm(tag) == RecordKeyForm::detail && key.second == RecordStore::kAppend) {
        const std::uint16_t last = store.lastSecond(tag, key.owner);
        key.second = static_cast<std::uint16_t>(last + 1);
        return last < kNumberLimit - 1;
    }
    if (recordKeyForm(tag) == RecordKeyForm::other && key.owner == RecordStore::kAppend) {
        std::uint32_t last = store.lastOwner(tag, kNumberLimit);
        // The numbers of shapes that were read stay theirs, even when their records are gone.
        if (tag == kSmartShapeTag) {
            last = std::max(last, static_cast<std::uint32_t>(document_.shapes().asRead().size()));
        }
        key.owner = last + 1;
        return last + 1 < kNumberLimit;
    }
    return true;
}

// Whether what a record is attached to is there.
bool DataRecords::ownerExists(std::uint32_t tag, const RecordKey& key) const {
    if (recordKeyForm(tag) == RecordKeyForm::entry) {
        return key.owner >= 1 && key.owner <= document_.lastEntryNumber();
    }
    if (tag == kMeasureMarkTag) {
        return key.owner >= 1 && key.owner <= static_cast<std::uint32_t>(document_.measureCount());
    }
    return true;
}

bool DataRecords::create(std::uint32_t tag, void* key, std::span<const std::byte> content) {
    if (!isTag(tag) || !isSize(tag, content.size()) || tag == kMeasureSpecTag) return false;
    RecordKey place = unpacked(tag, key);
    if (!chooseNumber(tag, place) || !ownerExists(tag, place)) return false;
    if (!storeOf(tag).takes(tag, place)) return false;
    if (!apply(listOf(tag, place), [&](RecordStore& store) { return store.create(tag, place, content); }))
        return false;
    pack(tag, place, key);
    return true;
}

bool DataRecords::remove(std::uint32_t tag, const void* key) {
    if (tag == kMeasureSpecTag) return false;
    const RecordKey place = unpacked(tag, key);
    return storeOf(tag).find(tag, place) != nullptr &&
           apply(listOf(tag, place), [&](RecordStore& store) { return store.remove(tag, place); });
}

std::optional<RecordStore::Bytes> DataRecords::step(std::uint32_t tag, void* key, bool forward) const {
    RecordKey place = unpacked(tag, key);
    if (tag == kMeasureSpecTag) {
        const int measure = static_cast<int>(place.owner) + (forward ? 1 : -1);
        if (measure < 1 || measure > document_.measureCount()) return std::nullopt;
        pack(tag, {static_cast<std::uint32_t>(measure), 0, 0}, key);
        return load(tag, key);
    }
    const RecordStore& store = storeOf(tag);
    const RecordStore::Bytes* const found = forward ? store.next(tag, place) : store.previous(tag, place);
    if (!found) return std::nullopt;
    pack(tag, place, key);
    return *found;
}

}  // namespace rovescio::engine
