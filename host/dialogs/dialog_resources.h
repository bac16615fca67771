// The descriptions of a plug-in's dialogs: which items each has and what an item can hold.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "engine/model/problem.h"

namespace rovescio::dialogs {

enum class ItemKind { button, check, popup, number, text };

// The word for a kind, as dialog descriptions spell it.
std::string_view itemKindName(ItemKind kind);

struct Item {
    short number = 0;
    ItemKind kind = ItemKind::button;
    int entries = 0;  // of a pop-up; 0 for all other kinds
};

struct DialogDescription {
    short number = 0;
    std::vector<Item> items;  // in the order in which a person meets them
};

class DialogResources {
  public:
    // Reads the descriptions strictly: a missing or unknown member, a number off its range or an item
    // described twice is a problem that names the dialog and the item.
    static engine::Result<DialogResources> parse(const std::string& json, const std::string& file);

    // The same from the file in a plug-in's bundle.
    static engine::Result<DialogResources> load(const std::string& bundle);

    // Null when there is no such dialog.
    [[nodiscard]] const DialogDescription* find(short number) const;

  private:
    std::map<short, DialogDescription> dialogs_;
};

}  // namespace rovescio::dialogs
