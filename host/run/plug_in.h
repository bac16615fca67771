// A plug-in bundle with its dialogs, ready to be put to work.
#pragma once

#include <string>

#include "dialogs/dialog_resources.h"
#include "engine/interface/plugin_bundle.h"
#include "engine/model/problem.h"

namespace rovescio::run {

struct PlugIn {
    engine::PluginBundle bundle;
    dialogs::DialogResources dialogs;

    // Loads the bundle, which stays loaded until the process ends. The engine's bundle must be registered.
    static engine::Result<PlugIn> load(const std::string& bundle);
};

}  // namespace rovescio::run
