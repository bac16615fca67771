// Command line of the validation.
#include "cli/validate_command.h"

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "cli/messages.h"
#include "validate/validate.h"

namespace rovescio::cli {

ExitCode validate(int argc, const char* const* argv, const std::string& engineBundle) {
    CLI::App app("Checks a plug-in bundle against the rules of its host.", "rovescio validate");
    std::string bundle;
    app.add_option("BUNDLE", bundle, "Folder of the bundle")->type_name("")->required();
    app.set_help_flag("-h,--help", "Print this help");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {
        app.exit(asked);
        return ExitCode::ok;
    } catch (const CLI::ParseError& error) {
        say(std::string(error.what()) + ". See rovescio validate --help");
        return ExitCode::usage;
    }
    const auto report = validate::validateBundle(bundle, engineBundle);
    if (!report) {
        say(report.problem());
        return ExitCode::installation;
    }
    std::stringstream text;
    report.value().print(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    if (!show(lines)) return ExitCode::badOutput;
    return report.value().allPassed() ? ExitCode::ok : ExitCode::refused;
}

}  // namespace rovescio::cli
