// Typed access to the host's data records: loading, saving, adding, deleting and walking them by tag and key.
//
// Every function is false where the host has no such record, refuses the call or lacks it. `add` has the host
// choose the last number of the key; `next` moves the numbers on to the record after them in the host's order
// and loads it.
#pragma once

#include "kit/record_family.h"

// The names of a family's operations.
#define RECORD_FAMILY(name, ...)                                      \
    inline constexpr auto& sx_load##name = kit::__VA_ARGS__::load;    \
    inline constexpr auto& sx_save##name = kit::__VA_ARGS__::save;    \
    inline constexpr auto& sx_add##name = kit::__VA_ARGS__::add;      \
    inline constexpr auto& sx_delete##name = kit::__VA_ARGS__::erase; \
    inline constexpr auto& sx_next##name = kit::__VA_ARGS__::next;

// Records of any tag, by a number and an incident, by two numbers and an incident, by an entry's number and
// an incident: sx_loadother(tag, number, incident, record, size) and so on.
RECORD_FAMILY(other, RecordCalls<std::uint16_t, std::uint16_t>)
RECORD_FAMILY(detail, RecordCalls<std::uint16_t, std::uint16_t, std::uint16_t>)
RECORD_FAMILY(entrydetail, RecordCalls<std::uint16_t, std::uint32_t>)

// One record to each number: sx_loadmeasurespec(measure, record) and so on
RECORD_FAMILY(measurespec, RecordFamily<kMeasureSpecTag, EDTMeasureSpec2014, short>)
RECORD_FAMILY(staffspec, RecordFamily<kStaffSpecTag, EDTStaffSpec, short>)
RECORD_FAMILY(groupspec, RecordFamily<kGroupSpecTag, EDTGroupSpec, std::uint16_t>)
RECORD_FAMILY(textblock, RecordFamily<kTextBlockTag, EDTTextBlock, std::uint16_t>)
RECORD_FAMILY(textexpression, RecordFamily<kTextExpressionTag, EDTTextExpression, std::uint16_t>)
RECORD_FAMILY(fretinstrument, RecordFamily<kFretInstrumentTag, EDTFretInstrument25_3, std::uint16_t>)

// Several to each number, or to each pair or entry: sx_loadmeasuremark(measure, incident, record)
RECORD_FAMILY(measuremark, RecordFamily<kMeasureMarkTag, MeasureMarkRecord, std::uint16_t, short>)
RECORD_FAMILY(pagetext, RecordFamily<kPageTextTag, EDTPageText, std::uint16_t, short>)
RECORD_FAMILY(measuretext, RecordFamily<kMeasureTextTag, EDTMeasureText, std::uint16_t, short, short>)
RECORD_FAMILY(noteheadmod, RecordFamily<kNoteheadModTag, EDTNoteheadMod, std::uint16_t, std::uint32_t>)
RECORD_FAMILY(entrymark, RecordFamily<kEntryMarkTag, EntryMarkRecord, std::uint16_t, std::uint32_t>)

// One to each pair of numbers, of which the host chooses the second
RECORD_FAMILY(centershape, RecordFamily<kCenterShapeTag, CenterShapeRecord, std::uint16_t, std::uint16_t>)

#undef RECORD_FAMILY

// Records of which the document has one set, preferences ("pf..") among them
bool sx_loadglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size);
bool sx_saveglobal(std::uint32_t tag, std::uint16_t inci, void* record, std::uint32_t size);
bool sx_addglobal(std::uint32_t tag, std::uint16_t& inci, void* record, std::uint32_t size);
bool sx_deleteglobal(std::uint32_t tag, std::uint16_t inci);

// Tag and size of smart-shape records: those of the current layout until the old one is chosen for good.
extern std::uint32_t ot_smartshape;
extern std::uint32_t sizeofsmartshape;
void TurnOnEDTSmartShapeCompatibilityForScorix2000_2003();

// Smart shapes in whichever layout is current, as the host keeps them.
bool sx_loadsmartshape(std::uint16_t number, EDTOldSmartShape* record);
bool sx_savesmartshape(std::uint16_t number, EDTOldSmartShape* record);
bool sx_createsmartshape(std::uint16_t& number, EDTOldSmartShape* record);
bool sx_nextsmartshape(std::uint16_t& number, EDTOldSmartShape* record);
