// Host functions on frames and mass edits.
#include "engine/interface/functions.h"
#include "engine/interface/session.h"
#include "engine/interface/strictness.h"

namespace rovescio::engine::functions {

// The only staff list that holds frames is the score's own, whose slots are the staff numbers.
EXTGF2005a* SX_LoadTGF(std::uint16_t staffList, short slot, short measure, short layer, short mode) {
    if (mode != 0) return nullptr;
    const short staff = SX_SlotToInst(slot, staffList);
    if (staff == 0) return nullptr;
    return Session::current().frames.load({staff, measure, layer});
}

short SX_InsertEXENTRY(EXTGF2005a* frame, short index, short count) {
    return Session::current().frames.insert(frame, index, count);
}

short SX_DeleteEXENTRY(EXTGF2005a* frame, short index, short count) {
    return Session::current().frames.remove(frame, index, count);
}

short SX_SaveTGF(EXTGF2005a* frame) {
    return Session::current().frames.save(frame);
}

void SX_FreeTGF(EXTGF2005a* frame) {
    Session::current().frames.free(frame);
}

SXMassEdit SX_StartMassEdit(SXHandle, std::uint32_t) {
    Session& session = Session::current();
    session.consequences.expect({session.fractions, session.selection, session.layerShown});
    return session.massEdits.start();
}

void SX_EndMassEdit(SXMassEdit massEdit, short cancelled) {
    if (Session::current().massEdits.end(massEdit, cancelled != 0)) return;
    ruleBroken(Rule::massEditEndedTwice,
               "SX_EndMassEdit was called with an edit that is not the innermost open one");
}

short SX_MassEditProgress(SXMassEdit massEdit, short, short, short, short) {
    Session& session = Session::current();
    if (!session.massEdits.isOpen(massEdit)) {
        ruleBroken(Rule::progressOutsideMassEdit, "SX_MassEditProgress was called without an open mass edit");
        return 0;
    }
    return session.userInterface().progress(session.progress());
}

}  // namespace rovescio::engine::functions
