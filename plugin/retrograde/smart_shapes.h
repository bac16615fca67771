// Smart shapes as one unit: the shape's record, its marks in measures and on entries, its center shapes.
//
// A shape leaves a mark in every measure that it crosses, has a center shape for every measure strictly
// between its first and last, and, when it is attached to entries, a mark on each of its two end entries.
// Every function is true when the host's call succeeded; functions of several steps go on after a step that
// failed. Numbers passed by reference are chosen by the host.
#pragma once

#include "kit/data_records.h"

// The record itself.
struct EDTSmartShapeNative : EDTOldSmartShape {
    EDTSmartShapeNative() : EDTOldSmartShape{} {}

    // Old hosts keep the halves of three 32-bit fields the other way round: exchanges them for such a host.
    void SwapWords();
};

struct EDTSmartShape : EDTSmartShapeNative {
    // The shape's record alone. Loading takes the record as it is and turns the old layout on when the
    // current size has grown meanwhile. The next shape comes with the halves of its entry numbers exchanged,
    // whatever the host.
    bool Load(std::uint16_t shapeNumber);
    bool SaveShapeOnly(std::uint16_t shapeNumber);
    bool CreateShapeOnly(std::uint16_t& shapeNumber);
    bool EraseShapeOnly(std::uint16_t shapeNumber);
    bool Next(std::uint16_t& shapeNumber);

    // The record and all that hangs on it; true when the record's own call succeeded.
    bool FullSave(std::uint16_t shapeNumber);
    bool FullCreate(std::uint16_t& shapeNumber);
    bool FullErase(std::uint16_t shapeNumber);

    void CreateCenterShapesAndMarkers(std::uint16_t shapeNumber) const;
    void EraseCenterShapesAndMarkers(std::uint16_t shapeNumber) const;
};

struct EDTCenterShape : CenterShapeRecord {
    EDTCenterShape() : CenterShapeRecord{} {}

    bool Load(std::uint16_t shapeNumber, std::uint16_t centerNumber) {
        return sx_loadcentershape(shapeNumber, centerNumber, this);
    }
    bool Save(std::uint16_t shapeNumber, std::uint16_t centerNumber) {
        return sx_savecentershape(shapeNumber, centerNumber, this);
    }
    bool CreateShapeOnly(std::uint16_t shapeNumber, std::uint16_t& centerNumber) {
        return sx_addcentershape(shapeNumber, centerNumber, this);
    }
    bool EraseShapeOnly(std::uint16_t shapeNumber, std::uint16_t centerNumber) {
        return sx_deletecentershape(shapeNumber, centerNumber);
    }

    // With its mark in the measure; true when both were made.
    bool FullCreate(short measure, std::uint16_t shapeNumber, std::uint16_t& centerNumber);
};

struct EDTSmartShapeMeasMark : MeasureMarkRecord {
    explicit EDTSmartShapeMeasMark(std::uint16_t shape = 0, std::uint16_t center = 0) : MeasureMarkRecord{} {
        shapeNumber = shape;
        centerNumber = center;
    }

    bool Load(short measure, std::uint16_t inci) { return sx_loadmeasuremark(measure, inci, this); }
    bool Save(short measure, std::uint16_t inci) { return sx_savemeasuremark(measure, inci, this); }
    bool Create(short measure, std::uint16_t& inci) { return sx_addmeasuremark(measure, inci, this); }
    bool EraseMarkOnly(short measure, std::uint16_t inci) { return sx_deletemeasuremark(measure, inci); }
    bool Next(short& measure, std::uint16_t& inci) { return sx_nextmeasuremark(measure, inci, this); }

    // Remove every mark of the shape from the measure, with or without the center shapes that they name.
    // Always true.
    static bool FindAndEraseWithCenterShapes(short measure, std::uint16_t shapeNumber);
    static bool FindAndEraseMarkOnly(short measure, std::uint16_t shapeNumber);
};

struct EDTSmartShapeEntMark : EntryMarkRecord {
    explicit EDTSmartShapeEntMark(std::uint16_t shape = 0) : EntryMarkRecord{} { shapeNumber = shape; }

    bool Load(std::uint32_t entryNumber, std::uint16_t inci) {
        return sx_loadentrymark(entryNumber, inci, this);
    }
    bool Save(std::uint32_t entryNumber, std::uint16_t inci) {
        return sx_saveentrymark(entryNumber, inci, this);
    }
    bool Create(std::uint32_t entryNumber, std::uint16_t& inci) {
        return sx_addentrymark(entryNumber, inci, this);
    }
    bool Erase(std::uint32_t entryNumber, std::uint16_t inci) {
        return sx_deleteentrymark(entryNumber, inci);
    }
    bool Next(std::uint32_t& entryNumber, std::uint16_t& inci) {
        return sx_nextentrymark(entryNumber, inci, this);
    }

    // Removes every mark of the shape from the entry. Always true.
    static bool FindAndErase(std::uint32_t entryNumber, std::uint16_t shapeNumber);
};

// Drawing on one shape of the document.
class TSmartShape {
  public:
    enum Point { kFirstPoint, kLastPoint };

    explicit TSmartShape(std::uint16_t shapeNumber);

    // False when there is no such shape.
    bool exists() const { return exists_; }

    // Puts the last point on the height of the first.
    void Straighten();

    // Height of a point above its usual place, hundredths of a staff space.
    short GetVertical(Point point) const;
    void SetVertical(Point point, short height);

    // The number of the text along the shape, 0 for none, and the kind of shape.
    std::uint16_t GetText() const { return record_.text; }
    void SetText(std::uint16_t textBlock) { record_.text = textBlock; }
    std::uint16_t GetKind() const { return record_.kind; }
    void SetKind(std::uint16_t kind) { record_.kind = kind; }

    bool Save();

  private:
    std::uint16_t number_;
    EDTOldSmartShape record_{};
    bool exists_;
};
