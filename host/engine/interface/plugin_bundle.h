// A loaded plug-in bundle and its entry points.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <memory>
#include <string>

#include "contract/records.h"
#include "engine/model/problem.h"

namespace rovescio::engine {

// Makes the engine bundle known to the platform under its identifier, so that plug-ins find their host
// functions there. Fails when the bundle is not at the path or lacks a function that plug-ins call.
Result<Done> registerEngineBundle(const std::string& path);

class PluginBundle {
  public:
    // Loads a bundle and checks that it has every entry point. The bundle stays loaded until the process
    // ends.
    static Result<PluginBundle> load(const std::string& path);

    // Starts the plug-in as a host does: main, version, init. Fails when the plug-in refuses.
    Result<Done> start() const;
    // The menu text of a command (UTF-8); empty when the plug-in has no such command.
    [[nodiscard]] std::string commandName(short index) const;
    // Runs a command to its end.
    void invoke(short index, SXWindow parent) const;
    void stop() const;

    // Text of a string resource, UTF-8; empty when the bundle has none.
    [[nodiscard]] std::string string(std::uint32_t stringId) const;
    // Text of the dialogs' table by key, such as "20130.4.2"; the key itself when it is missing.
    [[nodiscard]] std::string dialogText(const std::string& key) const;

  private:
    struct EntryPoints;
    std::string path_;
    CFBundleRef bundle_ = nullptr;
    std::shared_ptr<const EntryPoints> entryPoints_;
};

}  // namespace rovescio::engine
