// The handler of allocations that fail.
#include "cli/memory.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>

#include "cli/cancel.h"
#include "cli/messages.h"

namespace rovescio::cli {

namespace {

constexpr const char* kMessage = "not enough memory for this score";
constexpr const char* kRemedy = "Raise the limit (ulimit -v), end other programs, or split the score";
constexpr std::string_view kLastWords =
    "rovescio: not enough memory for this score. Raise the limit (ulimit -v), end other programs, or split "
    "the score\n";

struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

}  // namespace

void watchMemory() {
    std::set_new_handler([] { endProgram(kLastWords, ExitCode::refused); });
}

bool memoryIsShort() {
    const std::unique_ptr<void, Freed> probe(std::malloc(std::size_t{16} << 20));
    return probe == nullptr;
}

engine::Problem memoryProblem() {
    return problemWith(kMessage, kRemedy);
}

}  // namespace rovescio::cli
