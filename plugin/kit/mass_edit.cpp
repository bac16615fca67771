// Mass edits and host edits with the counting that the kit puts around them.
#include "kit/mass_edit.h"

#include "kit/bound.h"

std::int32_t MassEditDepth = 0;
std::int32_t ScorixEditDepth = 0;

SXMassEdit SX_StartMassEdit(SXHandle reserved, std::uint32_t total) {
    ++MassEditDepth;
    return kit::bound::SX_StartMassEdit(reserved, total);
}

void SX_EndMassEdit(SXMassEdit massEdit, short cancelled) {
    --MassEditDepth;
    kit::bound::SX_EndMassEdit(massEdit, cancelled);
}

short SX_StartScorixEdit(const char* undoText) {
    ++ScorixEditDepth;
    return kit::bound::SX_StartScorixEdit(undoText);
}

short SX_StartScorixEdit_UTF16(const char16_t* undoText) {
    ++ScorixEditDepth;
    return kit::bound::SX_StartScorixEdit_UTF16(undoText);
}

short SX_EndScorixEdit() {
    if (ScorixEditDepth <= 0) return 1;
    --ScorixEditDepth;
    return kit::bound::SX_EndScorixEdit();
}

short SX_CancelScorixEdit() {
    if (ScorixEditDepth <= 0) return 1;
    --ScorixEditDepth;
    return kit::bound::SX_CancelScorixEdit();
}

void SX_EndAllScorixEdit() {
    while (ScorixEditDepth > 0) SX_EndScorixEdit();
}

namespace kit {

MassEdit::MassEdit() : progress{0, SX_StartMassEdit(nullptr, 100)} {}

MassEdit::~MassEdit() {
    if (open_) SX_EndMassEdit(progress.massEdit, 1);
}

void MassEdit::end() {
    open_ = false;
    SX_EndMassEdit(progress.massEdit, progress.cancelled);
}

bool isCancelled(CProgress& progress) {
    if (!progress.cancelled && !SX_MassEditProgress(progress.massEdit, 0, 0, 0, -1)) progress.cancelled = 1;
    return progress.cancelled != 0;
}

}  // namespace kit
