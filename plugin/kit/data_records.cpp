// Records of which there is one set, and smart shapes in their current layout.
#include "kit/data_records.h"

namespace {

using SmartShapes = kit::RecordCalls<std::uint16_t>;

}  // namespace

bool sx_loadglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size) {
    return sx_loadother(tag, kGlobalNumber, inci, record, size);
}

bool sx_saveglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size) {
    return sx_saveother(tag, kGlobalNumber, inci, record, size);
}

bool sx_addglobal(std::uint32_t tag, std::uint16_t& inci, void* record, std::uint32_t size) {
    return sx_addother(tag, kGlobalNumber, inci, record, size);
}

bool sx_deleteglobal(std::uint32_t tag, std::uint16_t inci) {
    return sx_deleteother(tag, kGlobalNumber, inci);
}

std::uint32_t ot_smartshape = kSmartShapeTag;
std::uint32_t sizeofsmartshape = sizeof(EDTOldSmartShape);

void TurnOnEDTSmartShapeCompatibilityForScorix2000_2003() {
    ot_smartshape = kOldSmartShapeTag;
    sizeofsmartshape = kOldSmartShapeSize;
}

bool sx_loadsmartshape(std::uint16_t number, EDTOldSmartShape* record) {
    return SmartShapes::load(ot_smartshape, number, record, sizeofsmartshape);
}

bool sx_savesmartshape(std::uint16_t number, EDTOldSmartShape* record) {
    return SmartShapes::save(ot_smartshape, number, record, sizeofsmartshape);
}

bool sx_createsmartshape(std::uint16_t& number, EDTOldSmartShape* record) {
    return SmartShapes::add(ot_smartshape, number, record, sizeofsmartshape);
}

bool sx_nextsmartshape(std::uint16_t& number, EDTOldSmartShape* record) {
    return SmartShapes::next(ot_smartshape, number, record, sizeofsmartshape);
}
