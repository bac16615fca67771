// What a scripted user does in a dialog, step by step.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
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
    bool ifEnabled = false;  // a disabled one is passed over; otherwise it is a fault of the script
};

// Records a text that the dialog shows.
struct Read {
    short item = 0;
};

// Answers questions with yes or no from here on; until then with no.
struct Answer {
    bool yes = false;
};

// Plays on a MIDI instrument: status, note and velocity, which the next listening hears.
struct Strike {
    std::array<std::uint8_t, 3> message = {};
};

// Something done outside the dialog while it is open, such as selecting other music.
struct Meanwhile {
    std::function<void()> action;
};

using Step = std::variant<Set, Press, Read, Answer, Strike, Meanwhile>;
using Script = std::vector<Step>;

// Scripts by dialog number. A dialog opened several times uses its scripts in turn.
using Scripts = std::multimap<short, Script>;

// What a script read out.
struct Reading {
    short dialog = 0;
    short item = 0;
    std::string text;

    friend bool operator==(const Reading&, const Reading&) = default;
};

}  // namespace rovescio::dialogs
