// What a scripted hand does in a dialog, step by step.
#pragma once

#include <functional>
#include <map>
#include <variant>
#include <vector>

namespace rovescio::dialogs {

// Sets a control as a person would and tells the dialog about it.
struct Set {
    short item = 0;
    int value = 0;
};

// Presses a button.
struct Press {
    short item = 0;
};

// Something done outside the dialog while it is open, such as selecting other music.
struct Meanwhile {
    std::function<void()> action;
};

using Step = std::variant<Set, Press, Meanwhile>;
using Script = std::vector<Step>;

// Scripts by dialog number. A dialog opened several times uses its scripts in turn.
using Scripts = std::multimap<short, Script>;

}  // namespace rovescio::dialogs
