// Lines on standard error.
#include "cli/messages.h"

#include <iostream>
#include <utility>

namespace rovescio::cli {

void say(const std::string& text) {
    // One write for the whole line, so that lines of processes that run side by side do not mix.
    std::cerr << ("rovescio: " + text + "\n") << std::flush;
}

void say(const engine::Problem& problem) {
    say(problem.text());
}

engine::Problem problemWith(std::string message, std::string remedy) {
    return {.message = std::move(message), .file = {}, .measure = {}, .remedy = std::move(remedy)};
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace rovescio::cli
