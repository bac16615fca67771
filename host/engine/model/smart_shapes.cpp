// Shape records, their marks and center shapes.
#include "engine/model/smart_shapes.h"

#include <algorithm>
#include <cstring>

namespace rovescio::engine {

namespace {

template <class Record>
void append(RecordStore& store, std::uint32_t tag, RecordKey key, const Record& record) {
    store.create(tag, key, std::as_bytes(std::span(&record, 1)));
}

void makeMarks(RecordStore& store, std::uint16_t number, const Shape& shape) {
    std::uint16_t center = 0;
    for (int measure = shape.firstMeasure; measure <= shape.lastMeasure; ++measure) {
        const bool inside = measure != shape.firstMeasure && measure != shape.lastMeasure;
        if (inside) append(store, kCenterShapeTag, {number, ++center, 0}, CenterShapeRecord{});
        append(store, kMeasureMarkTag, {static_cast<std::uint32_t>(measure), 0, RecordStore::kAppend},
               MeasureMarkRecord{number, inside ? center : std::uint16_t{0}, {}});
    }
    for (const std::uint32_t entry : {shape.firstEntry, shape.lastEntry}) {
        append(store, kEntryMarkTag, {entry, 0, RecordStore::kAppend}, EntryMarkRecord{number, {}});
    }
}

// Whether a record of a list begins with the shape's number.
bool isMarked(const RecordStore& store, std::uint32_t tag, std::uint32_t owner, std::uint16_t number) {
    const RecordStore::Incidents* const marks = store.list({tag, owner, 0});
    return marks && std::any_of(marks->begin(), marks->end(), [&](const RecordStore::Bytes& mark) {
               return mark.size() >= sizeof number && std::memcmp(mark.data(), &number, sizeof number) == 0;
           });
}

}  // namespace

bool SmartShapes::add(const Shape& shape) {
    if (asRead_.size() >= kMaxShapes) return false;
    asRead_.push_back(shape);
    return true;
}

void SmartShapes::makeRecords(RecordStore& store) const {
    std::uint16_t number = 0;
    for (const Shape& shape : asRead_) {
        EDTOldSmartShape record{};
        record.kind = shape.kind;
        record.flags = SHAPE_ON_ENTRIES;
        record.firstStaff = shape.firstStaff;
        record.lastStaff = shape.lastStaff;
        record.firstMeasure = shape.firstMeasure;
        record.lastMeasure = shape.lastMeasure;
        record.firstEntry = static_cast<std::int32_t>(shape.firstEntry);
        record.lastEntry = static_cast<std::int32_t>(shape.lastEntry);
        record.firstPosition = shape.firstPosition;
        record.lastPosition = shape.lastPosition;
        record.hostPrivate68[0] = shape.placement;
        record.hostPrivate68[1] = shape.lineType;
        append(store, kSmartShapeTag, {++number, 0, 0}, record);
        makeMarks(store, number, shape);
    }
}

std::optional<Shape> SmartShapes::recorded(const RecordStore& store, std::uint16_t number) {
    const RecordStore::Bytes* const bytes = store.find(kSmartShapeTag, {number, 0, 0});
    EDTOldSmartShape record{};
    if (!bytes || bytes->size() != sizeof record) return std::nullopt;
    std::memcpy(&record, bytes->data(), sizeof record);
    if ((record.flags & SHAPE_ON_ENTRIES) == 0) return std::nullopt;
    return Shape{.kind = record.kind,
                 .placement = static_cast<std::uint8_t>(record.hostPrivate68[0]),
                 .lineType = static_cast<std::uint8_t>(record.hostPrivate68[1]),
                 .firstStaff = record.firstStaff,
                 .lastStaff = record.lastStaff,
                 .firstMeasure = record.firstMeasure,
                 .lastMeasure = record.lastMeasure,
                 .firstEntry = static_cast<std::uint32_t>(record.firstEntry),
                 .lastEntry = static_cast<std::uint32_t>(record.lastEntry),
                 .firstPosition = record.firstPosition,
                 .lastPosition = record.lastPosition};
}

bool SmartShapes::isShown(const RecordStore& store, std::uint16_t number, const Shape& shape) {
    return isMarked(store, kEntryMarkTag, shape.firstEntry, number) &&
           isMarked(store, kEntryMarkTag, shape.lastEntry, number) &&
           isMarked(store, kMeasureMarkTag, static_cast<std::uint32_t>(shape.firstMeasure), number) &&
           isMarked(store, kMeasureMarkTag, static_cast<std::uint32_t>(shape.lastMeasure), number);
}

}  // namespace rovescio::engine
