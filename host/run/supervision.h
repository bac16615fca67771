// What stands around a run of the plug-in: who sees its progress and can cancel it, and what developers of
// plug-ins want to know.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <utility>
#include <vector>

#include "dialogs/scripted_user_interface.h"
#include "engine/interface/gate.h"

namespace rovescio::run {

// Which call of which host function is to fail; for developers of plug-ins.
using PlannedFault = std::pair<engine::HostFunction, std::uint64_t>;

struct Supervision {
    dialogs::ScriptedUserInterface::ProgressDisplay progress = nullptr;  // false cancels
    dialogs::ScriptedUserInterface::MidiInput midiInput = nullptr;
    std::ostream* trace = nullptr;  // where every call of a host function is printed
    std::vector<PlannedFault> faults = {};
};

}  // namespace rovescio::run
