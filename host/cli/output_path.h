// Where the path of a result leads: to a file that may be replaced, a device, or a stream that is already
// open.
#pragma once

#include <optional>
#include <string>

#include "engine/model/problem.h"

namespace rovescio::cli {

// The name that stands for standard input or standard output.
inline constexpr const char* kStandardStream = "-";

struct OutputPath {
    std::string name;           // as the user wrote it
    std::optional<int> stream;  // the descriptor, for "-", /dev/stdout and the like
    std::string path;           // without symbolic links at its end; meaningless for a stream
    bool isDevice = false;      // a device or pipe, which is written to and not replaced
    bool exists = false;
};

// Finds the place and makes sure, as far as is possible before the work starts, that it can be written.
engine::Result<OutputPath> findOutput(const std::string& name);

// Whether two results would go to the same place, by whatever names.
bool sameOutput(const std::string& left, const std::string& right);
// Whether a result would replace a score that is read.
bool isOutputOnto(const std::string& output, const std::string& score);

// Why a result cannot be written, by the number of the error.
engine::Problem writeProblem(const std::string& name, int error);

// The name of standard output in messages.
std::string outputName(const std::string& name);

}  // namespace rovescio::cli
