// Mass edits: the progress record that every transformation takes, and the poll for a cancel.
#pragma once

#include "kit/host_api.h"

// Handed to every transformation; `cancelled` is set once the user has cancelled and ends the whole run.
struct CProgress {
    std::int16_t cancelled = 0;
    SXMassEdit massEdit = nullptr;
};

namespace kit {

// Opens a mass edit with a fresh progress record.
CProgress startMassEdit();

// Ends it, as cancelled when the user cancelled.
void endMassEdit(const CProgress& progress);

// True when the user has cancelled, now or before. A record that is already cancelled is not polled again.
bool isCancelled(CProgress& progress);

}  // namespace kit
