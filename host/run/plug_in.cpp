// Loading of plug-in bundles.
#include "run/plug_in.h"

#include <utility>

namespace rovescio::run {

engine::Result<PlugIn> PlugIn::load(const std::string& bundle) {
    engine::Result<engine::PluginBundle> code = engine::PluginBundle::load(bundle);
    if (!code) return code.problem();
    engine::Result<dialogs::DialogResources> dialogs = dialogs::DialogResources::load(bundle);
    if (!dialogs) return dialogs.problem();
    return PlugIn{std::move(*code), std::move(*dialogs)};
}

}  // namespace rovescio::run
