// Typed access to the host's data records: loading, saving, adding, deleting and walking them by tag and key.
//
// Every function is false where the host has no such record, refuses the call or lacks it. Sizes are bytes.
// `add` has the host choose the number passed by reference; `next` moves those numbers on to the record after
// them in the host's order and loads it.
#pragma once

#include <cstdint>

#include "contract/data_records.h"
#include "kit/host_api.h"

// Records of a number and an incident
bool sx_loadother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t inci, void* record,
                  std::uint32_t size);
bool sx_saveother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t inci, void* record,
                  std::uint32_t size);
bool sx_addother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t& inci, void* record,
                 std::uint32_t size);
bool sx_deleteother(std::uint32_t tag, std::uint16_t cmper, std::uint16_t inci);
bool sx_nextother(std::uint32_t tag, std::uint16_t& cmper, std::uint16_t& inci, void* record,
                  std::uint32_t size);

// Records of which the document has one set, preferences ("pf..") among them
bool sx_loadglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size);
bool sx_saveglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size);
bool sx_addglobal(std::uint32_t tag, std::uint16_t& inci, void* record, std::uint32_t size);
bool sx_deleteglobal(std::uint32_t tag, std::uint16_t inci);

// Records of two numbers and an incident
bool sx_loaddetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t inci,
                   void* record, std::uint32_t size);
bool sx_savedetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t inci,
                   void* record, std::uint32_t size);
bool sx_adddetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t& inci,
                  void* record, std::uint32_t size);
bool sx_deletedetail(std::uint32_t tag, std::uint16_t cmper1, std::uint16_t cmper2, std::uint16_t inci);
bool sx_nextdetail(std::uint32_t tag, std::uint16_t& cmper1, std::uint16_t& cmper2, std::uint16_t& inci,
                   void* record, std::uint32_t size);

// Records attached to an entry
bool sx_loadentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t inci, void* record,
                        std::uint32_t size);
bool sx_saveentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t inci, void* record,
                        std::uint32_t size);
bool sx_addentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t& inci, void* record,
                       std::uint32_t size);
bool sx_deleteentrydetail(std::uint32_t tag, std::uint32_t entryNumber, std::uint16_t inci);
bool sx_nextentrydetail(std::uint32_t tag, std::uint32_t& entryNumber, std::uint16_t& inci, void* record,
                        std::uint32_t size);

// The families: sx_loadmeasurespec, sx_savemeasurespec, sx_addmeasurespec and so on for every name in the
// list.
#define NUMBERED_FAMILY(name, Record, tag, Number)     \
    bool sx_load##name(Number number, Record* record); \
    bool sx_save##name(Number number, Record* record); \
    bool sx_add##name(Number& number, Record* record); \
    bool sx_delete##name(Number number);               \
    bool sx_next##name(Number& number, Record* record);
#define OTHER_FAMILY(name, Record, tag, Number)                            \
    bool sx_load##name(Number number, std::uint16_t inci, Record* record); \
    bool sx_save##name(Number number, std::uint16_t inci, Record* record); \
    bool sx_add##name(Number number, std::uint16_t& inci, Record* record); \
    bool sx_delete##name(Number number, std::uint16_t inci);               \
    bool sx_next##name(Number& number, std::uint16_t& inci, Record* record);
#define PAIR_FAMILY(name, Record, tag, First, Second)               \
    bool sx_load##name(First first, Second second, Record* record); \
    bool sx_save##name(First first, Second second, Record* record); \
    bool sx_add##name(First first, Second& second, Record* record); \
    bool sx_delete##name(First first, Second second);               \
    bool sx_next##name(First& first, Second& second, Record* record);
#define DETAIL_FAMILY(name, Record, tag, First, Second)                                 \
    bool sx_load##name(First first, Second second, std::uint16_t inci, Record* record); \
    bool sx_save##name(First first, Second second, std::uint16_t inci, Record* record); \
    bool sx_add##name(First first, Second second, std::uint16_t& inci, Record* record); \
    bool sx_delete##name(First first, Second second, std::uint16_t inci);               \
    bool sx_next##name(First& first, Second& second, std::uint16_t& inci, Record* record);
#define ENTRY_FAMILY(name, Record, tag)                                                \
    bool sx_load##name(std::uint32_t entryNumber, std::uint16_t inci, Record* record); \
    bool sx_save##name(std::uint32_t entryNumber, std::uint16_t inci, Record* record); \
    bool sx_add##name(std::uint32_t entryNumber, std::uint16_t& inci, Record* record); \
    bool sx_delete##name(std::uint32_t entryNumber, std::uint16_t inci);               \
    bool sx_next##name(std::uint32_t& entryNumber, std::uint16_t& inci, Record* record);
#include "kit/record_families.def"

// Tag and size of smart-shape records: those of the current layout until the old one is chosen for good.
extern std::uint32_t ot_smartshape;
extern std::uint32_t sizeofsmartshape;
void TurnOnEDTSmartShapeCompatibilityForScorix2000_2003();

// Smart shapes in whichever layout is current, as the host keeps them.
bool sx_loadsmartshape(std::uint16_t number, EDTOldSmartShape* record);
bool sx_savesmartshape(std::uint16_t number, EDTOldSmartShape* record);
bool sx_createsmartshape(std::uint16_t& number, EDTOldSmartShape* record);
bool sx_nextsmartshape(std::uint16_t& number, EDTOldSmartShape* record);
