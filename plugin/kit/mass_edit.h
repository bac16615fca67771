// Mass edits: the progress record that every transformation takes, and the poll for a cancel.
#pragma once

#include "kit/host_api.h"

// Handed to every transformation; `cancelled` is set once the user has cancelled and ends the whole run.
struct CProgress {
    std::int16_t cancelled = 0;
    SXMassEdit massEdit = nullptr;
};

namespace kit {

// A mass edit from its start to its end, with a progress record of its own. One that an exception leaves is
// ended as cancelled.
class MassEdit {
  public:
    MassEdit();
    ~MassEdit();
    MassEdit(const MassEdit&) = delete;
    MassEdit& operator=(const MassEdit&) = delete;

    // Ends it, as cancelled when the user cancelled.
    void end();

    CProgress progress;

  private:
    bool open_ = true;
};

// True when the user has cancelled, now or before. A record that is already cancelled is not polled again.
bool isCancelled(CProgress& progress);

}  // namespace kit
