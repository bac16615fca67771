// Smart shapes as one unit: the shape's record, its marks in measures and on entries, its center shapes.
#include "retrograde/smart_shapes.h"

#include <bit>

#include "kit/engine_bundle.h"

namespace {

// The newest host that keeps the halves of 32-bit fields the other way round.
constexpr std::uint32_t kLastSwappingHost = 0x0AFFFFFF;

// The division cuts toward zero, so for most negative numbers this is one more than a rotation would give.
std::int32_t exchangeHalves(std::int32_t number) {
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(number) << 16) +
                                     static_cast<std::uint32_t>(number / 65536));
}

void exchangeEntryHalves(EDTOldSmartShape& shape) {
    shape.firstEntry = exchangeHalves(shape.firstEntry);
    shape.lastEntry = exchangeHalves(shape.lastEntry);
}

EDTSmartShapeNative forHost(EDTSmartShapeNative shape) {
    shape.SwapWords();
    return shape;
}

// Walks the marks of one owner and erases those that belong to the shape. The marks after an erased one move
// up, so the walk stays; one that the host did not erase is passed over. Each step is one mark, so that the
// walk ends whatever the host answers.
template <class Mark, class Owner, class Erase>
void findAndErase(Owner owner, std::uint16_t shapeNumber, Erase erase) {
    Mark mark;
    std::uint16_t inci = 0;
    for (int step = 0; step < kAppendNumber && mark.Load(owner, inci); ++step) {
        if (mark.shapeNumber != shapeNumber || !erase(mark, inci)) ++inci;
    }
}

}  // namespace

void EDTSmartShapeNative::SwapWords() {
    if (QorVersion > kLastSwappingHost) return;
    exchangeEntryHalves(*this);
    const std::uint32_t old = flags;
    flags = std::rotl(old, 16);
}

bool EDTSmartShape::Load(std::uint16_t shapeNumber) {
    const std::uint32_t sizeBefore = sizeofsmartshape;
    const bool loaded = sx_loadsmartshape(shapeNumber, this);
    if (loaded) SwapWords();
    if (sizeofsmartshape > sizeBefore) TurnOnEDTSmartShapeCompatibilityForScorix2000_2003();
    return loaded;
}

bool EDTSmartShape::SaveShapeOnly(std::uint16_t shapeNumber) {
    EDTSmartShapeNative sent = forHost(*this);
    return sx_savesmartshape(shapeNumber, &sent);
}

bool EDTSmartShape::CreateShapeOnly(std::uint16_t& shapeNumber) {
    EDTSmartShapeNative sent = forHost(*this);
    return sx_createsmartshape(shapeNumber, &sent);
}

bool EDTSmartShape::EraseShapeOnly(std::uint16_t shapeNumber) {
    return sx_deleteother(ot_smartshape, shapeNumber, 0);
}

bool EDTSmartShape::Next(std::uint16_t& shapeNumber) {
    if (!sx_nextsmartshape(shapeNumber, this)) return false;
    exchangeEntryHalves(*this);
    return true;
}

bool EDTSmartShape::FullSave(std::uint16_t shapeNumber) {
    const bool saved = SaveShapeOnly(shapeNumber);
    CreateCenterShapesAndMarkers(shapeNumber);
    return saved;
}

bool EDTSmartShape::FullCreate(std::uint16_t& shapeNumber) {
    const bool created = CreateShapeOnly(shapeNumber);
    CreateCenterShapesAndMarkers(shapeNumber);
    return created;
}

bool EDTSmartShape::FullErase(std::uint16_t shapeNumber) {
    const bool erased = EraseShapeOnly(shapeNumber);
    EraseCenterShapesAndMarkers(shapeNumber);
    return erased;
}

void EDTSmartShape::CreateCenterShapesAndMarkers(std::uint16_t shapeNumber) const {
    std::uint16_t inci = 0;
    for (int m = firstMeasure; m <= lastMeasure; ++m) {
        const auto measure = static_cast<short>(m);
        if (m == firstMeasure || m == lastMeasure) {
            EDTSmartShapeMeasMark(shapeNumber).Create(measure, inci);
        } else {
            std::uint16_t centerNumber = 0;
            EDTCenterShape().FullCreate(measure, shapeNumber, centerNumber);
        }
    }
    if ((flags & SHAPE_ON_ENTRIES) == 0) return;
    EDTSmartShapeEntMark mark(shapeNumber);
    mark.Create(static_cast<std::uint32_t>(firstEntry), inci);
    mark.Create(static_cast<std::uint32_t>(lastEntry), inci);
}

void EDTSmartShape::EraseCenterShapesAndMarkers(std::uint16_t shapeNumber) const {
    for (int m = firstMeasure; m <= lastMeasure; ++m) {
        EDTSmartShapeMeasMark::FindAndEraseWithCenterShapes(static_cast<short>(m), shapeNumber);
    }
    if ((flags & SHAPE_ON_ENTRIES) == 0) return;
    EDTSmartShapeEntMark::FindAndErase(static_cast<std::uint32_t>(firstEntry), shapeNumber);
    EDTSmartShapeEntMark::FindAndErase(static_cast<std::uint32_t>(lastEntry), shapeNumber);
}

bool EDTCenterShape::FullCreate(short measure, std::uint16_t shapeNumber, std::uint16_t& centerNumber) {
    const bool created = CreateShapeOnly(shapeNumber, centerNumber);
    std::uint16_t inci = 0;
    const bool marked = EDTSmartShapeMeasMark(shapeNumber, centerNumber).Create(measure, inci);
    return created && marked;
}

bool EDTSmartShapeMeasMark::FindAndEraseWithCenterShapes(short measure, std::uint16_t shapeNumber) {
    findAndErase<EDTSmartShapeMeasMark>(measure, shapeNumber,
                                        [&](EDTSmartShapeMeasMark& mark, std::uint16_t inci) {
                                            if (mark.centerNumber != 0) {
                                                sx_deletecentershape(shapeNumber, mark.centerNumber);
                                            }
                                            return mark.EraseMarkOnly(measure, inci);
                                        });
    return true;
}

bool EDTSmartShapeMeasMark::FindAndEraseMarkOnly(short measure, std::uint16_t shapeNumber) {
    findAndErase<EDTSmartShapeMeasMark>(
        measure, shapeNumber,
        [&](EDTSmartShapeMeasMark& mark, std::uint16_t inci) { return mark.EraseMarkOnly(measure, inci); });
    return true;
}

bool EDTSmartShapeEntMark::FindAndErase(std::uint32_t entryNumber, std::uint16_t shapeNumber) {
    findAndErase<EDTSmartShapeEntMark>(
        entryNumber, shapeNumber,
        [&](EDTSmartShapeEntMark& mark, std::uint16_t inci) { return mark.Erase(entryNumber, inci); });
    return true;
}

TSmartShape::TSmartShape(std::uint16_t shapeNumber)
    : number_(shapeNumber), exists_(sx_loadsmartshape(shapeNumber, &record_)) {}

void TSmartShape::Straighten() {
    record_.lastVertical = record_.firstVertical;
}

short TSmartShape::GetVertical(Point point) const {
    return point == kFirstPoint ? record_.firstVertical : record_.lastVertical;
}

void TSmartShape::SetVertical(Point point, short height) {
    (point == kFirstPoint ? record_.firstVertical : record_.lastVertical) = height;
}

bool TSmartShape::Save() {
    return sx_savesmartshape(number_, &record_);
}
