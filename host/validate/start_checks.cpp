// Checks of the entry points by which a host starts and stops a plug-in.
#include <algorithm>
#include <cstring>
#include <functional>
#include <span>

#include "validate/checks.h"
#include "validate/plugin_image.h"
#include "validate/stage.h"

namespace rovescio::validate {

namespace {

// A host of a later version than the kit, so that neither can be taken for the other.
constexpr std::uint32_t kHostVersion = 0x1B000001;
constexpr unsigned char kPattern = 0xEE;

using Ask = Verdict (*)(const PluginImage&, Naming);

// Asks the started plug-in under both names of the entry point. The stage is there for plug-ins that call
// their host, as with an alert on a text that is missing.
Verdict askStarted(const std::string& bundle, Ask ask) {
    return onStage(bundle, {}, [&](const Stage& stage) {
        const PluginImage image(bundle);
        if (image.main() == 0) return failed("main returned 0");
        for (const Naming naming : {Naming::full, Naming::alias}) {
            Verdict verdict = ask(image, naming);
            if (verdict.outcome != Outcome::passed) return verdict;
        }
        if (!stage.user.alerts().empty()) return failed("an alert: " + stage.user.alerts().front());
        return passed();
    });
}

template <Ask ask>
Verdict started(const std::string& bundle) {
    return askStarted(bundle, ask);
}

Verdict findsHost(const PluginImage&, Naming) {
    return passed();
}

Verdict agreesOnVersion(const PluginImage& image, Naming naming) {
    *image.variable<std::uint32_t>("QorVersion") = 0;
    const std::uint32_t version = image.version(naming, kHostVersion);
    if (version != kKitVersion) {
        return failed("it answers version word " + std::to_string(version) + " instead of " +
                      std::to_string(kKitVersion));
    }
    return *image.variable<std::uint32_t>("QorVersion") == kHostVersion
               ? passed()
               : failed("QorVersion does not hold the host's version");
}

Verdict initialises(const PluginImage& image, Naming naming) {
    std::uint32_t output = kHostVersion;
    if (image.init(naming, output) == 0) return failed("it refuses to start");
    return output == 0 ? passed() : failed("its output is " + std::to_string(output) + ", not 0");
}

ExtensionDescriptor patternedDescriptor() {
    ExtensionDescriptor descriptor;
    std::memset(&descriptor, kPattern, sizeof descriptor);
    return descriptor;
}

Verdict describesCommand(const PluginImage& image, Naming naming) {
    ExtensionDescriptor descriptor = patternedDescriptor();
    if (image.enumerate(naming, 0, descriptor) == 0) return failed("there is no command 0");
    const std::pair<const char*, std::span<const char16_t>> texts[] = {
        {"menu text", descriptor.menuText},
        {"command name", descriptor.commandName},
        {"help text", descriptor.helpText}};
    for (const auto& [name, text] : texts) {
        if (text[0] == 0) return failed(std::string("the ") + name + " is empty");
        if (std::ranges::find(text, u'\0') == text.end()) {
            return failed(std::string("the ") + name + " has no terminator");
        }
    }
    return descriptor.reserved == 0 ? passed() : failed("the reserved word is not 0");
}

Verdict refusesOtherCommands(const PluginImage& image, Naming naming) {
    const ExtensionDescriptor blank = patternedDescriptor();
    ExtensionDescriptor descriptor = blank;
    if (image.enumerate(naming, 1, descriptor) != 0) return failed("there is a command 1");
    return std::memcmp(&descriptor, &blank, sizeof blank) == 0
               ? passed()
               : failed("the descriptor was written to for a command that does not exist");
}

Verdict enablesMenu(const PluginImage& image, Naming naming) {
    return image.menuStatus(naming) != 0 ? passed() : failed("the command is not enabled");
}

// A host may stop a plug-in and start it again without unloading it.
Verdict stopsAndStartsAgain(const std::string& bundle) {
    return onStage(bundle, {}, [&](Stage& stage) {
        const PluginImage image(bundle);
        for (const Naming naming : {Naming::full, Naming::alias}) {
            if (const auto start = stage.engagement.start(); !start) return failed(start.problem().message);
            image.terminate(naming);
        }
        const auto start = stage.engagement.start();
        return start ? passed() : failed(start.problem().message);
    });
}

}  // namespace

std::vector<Check> startChecks() {
    return {
        checkApart("main finds the host", started<findsHost>),
        checkApart("version", started<agreesOnVersion>),
        checkApart("init", started<initialises>),
        checkApart("command 0 is described", started<describesCommand>),
        checkApart("command 1 is refused", started<refusesOtherCommands>),
        checkApart("menu status", started<enablesMenu>),
    };
}

std::vector<Check> stopChecks() {
    return {checkApart("stops and starts again", stopsAndStartsAgain)};
}

}  // namespace rovescio::validate
