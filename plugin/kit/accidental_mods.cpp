// The accidental modifications of notes: records attached to the note's entry, found by the note's id.
#include "kit/accidental_mods.h"

namespace {

// A search ends here, so that a host which answers every load does not hold it forever.
constexpr std::uint16_t kSearchLimit = 1000;

// The record as it goes to the host: made out to the note, where there is one in particular.
EDTAccidentalMods2012 madeOutTo(std::uint16_t noteId, EDTAccidentalMods2012 record) {
    if (noteId != kAnyNote) record.noteId = noteId;
    return record;
}

}  // namespace

bool sx_loadaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId, EDTAccidentalMods2012* record,
                          std::uint16_t& incident) {
    for (std::uint16_t inci = 0; inci < kSearchLimit; ++inci) {
        if (!sx_loadentrydetail(kAccidentalModTag, entryNumber, inci, record, sizeof *record)) return false;
        if (noteId != kAnyNote && record->noteId != noteId) continue;
        incident = inci;
        return true;
    }
    return false;
}

bool sx_saveaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId,
                          const EDTAccidentalMods2012* record, std::uint16_t& incident) {
    EDTAccidentalMods2012 old{};
    EDTAccidentalMods2012 sent = madeOutTo(noteId, *record);
    return sx_loadaccidentalmod(entryNumber, noteId, &old, incident) &&
           sx_saveentrydetail(kAccidentalModTag, entryNumber, incident, &sent, sizeof sent);
}

bool sx_deleteaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId) {
    EDTAccidentalMods2012 old{};
    std::uint16_t incident = 0;
    return sx_loadaccidentalmod(entryNumber, noteId, &old, incident) &&
           sx_deleteentrydetail(kAccidentalModTag, entryNumber, incident);
}

bool sx_addaccidentalmod(std::uint32_t entryNumber, std::uint16_t noteId, const EDTAccidentalMods2012* record,
                         std::uint16_t& incident) {
    EDTAccidentalMods2012 sent = madeOutTo(noteId, *record);
    return sx_addentrydetail(kAccidentalModTag, entryNumber, incident, &sent, sizeof sent);
}
