// Slurs, hairpins and other lines of a document, and the records that stand for them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "contract/data_records.h"
#include "engine/model/record_store.h"

namespace rovescio::engine {

// A shape between two entries.
struct Shape {
    std::uint16_t kind = SHAPE_SLUR;
    std::uint8_t placement = 0;  // 0 left to the program that shows the score, 1 above, 2 below
    std::uint8_t lineType = 0;   // 0 left likewise, 1 solid, 2 dashed, 3 dotted, 4 wavy
    short firstStaff = 0;
    short lastStaff = 0;
    short firstMeasure = 0;
    short lastMeasure = 0;
    std::uint32_t firstEntry = 0;
    std::uint32_t lastEntry = 0;
    std::int32_t firstPosition = 0;  // duration units from the start of the measure
    std::int32_t lastPosition = 0;

    friend bool operator==(const Shape&, const Shape&) = default;
};

// The shape records of a score that was read: shape n - 1 has the number n. Numbers after these are given to
// shapes that are made later.
class SmartShapes {
  public:
    static constexpr std::size_t kMaxShapes = 65000;

    // False when there are too many shapes to number.
    bool add(const Shape& shape);
    [[nodiscard]] const std::vector<Shape>& asRead() const { return asRead_; }

    // Writes all records of the shapes that were read into an empty store.
    void makeRecords(RecordStore& store) const;

    // What the record of a shape says; none when there is no record, or its ends are not entries.
    static std::optional<Shape> recorded(const RecordStore& store, std::uint16_t number);
    // Whether the marks show a shape: both its end entries and its first and last measure have one.
    static bool isShown(const RecordStore& store, std::uint16_t number, const Shape& shape);

  private:
    std::vector<Shape> asRead_;
};

}  // namespace rovescio::engine
