// Lookup of results' paths.
#include "cli/output_path.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace rovescio::cli {

namespace {

namespace fs = std::filesystem;
using engine::Problem;
using engine::Result;

// As many symbolic links as systems follow in a row.
constexpr int kMostLinks = 40;

// The number of a descriptor of this process, when the path is a name of one.
std::optional<int> descriptorNamed(const fs::path& folder, const std::string& name) {
    std::error_code error;
    if (folder != "/dev/fd" && folder != fs::canonical("/proc/self/fd", error)) return std::nullopt;
    int number = 0;
    const auto [end, failed] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (failed != std::errc() || end != name.data() + name.size() || number < 0) return std::nullopt;
    return number;
}

// Follows the links at the end of a path, also one that leads to nothing yet; the error number if that fails.
int follow(OutputPath& output) {
    fs::path path = output.name;
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code error;
        const fs::path folder = fs::canonical(path.has_parent_path() ? path.parent_path() : ".", error);
        if (error) return error.value();
        if (!fs::is_directory(folder, error)) return ENOTDIR;
        output.stream = descriptorNamed(folder, path.filename().string());
        if (output.stream) return 0;
        path = folder / path.filename();
        output.path = path.string();
        if (!fs::is_symlink(path, error)) return 0;
        const fs::path next = fs::read_symlink(path, error);
        if (error) return error.value();
        path = next.is_absolute() ? next : folder / next;
    }
    return ELOOP;
}

// Root may write everywhere; a file without any permission to write is meant to stay all the same.
bool isProtected(const OutputPath& output, const struct stat& status) {
    constexpr mode_t kWritable = S_IWUSR | S_IWGRP | S_IWOTH;
    return (status.st_mode & kWritable) == 0 || access(output.path.c_str(), W_OK) != 0;
}

std::optional<struct stat> statusOf(const OutputPath& output) {
    struct stat status {};
    const int failed = output.stream ? fstat(*output.stream, &status) : stat(output.path.c_str(), &status);
    return failed != 0 ? std::nullopt : std::optional(status);
}

bool sameFile(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

}  // namespace

std::string outputName(const std::string& name) {
    return name == kStandardStream ? "standard output" : name;
}

Problem writeProblem(const std::string& name, int error) {
    Problem problem{.message = std::string("cannot be written: ") + std::strerror(error),
                    .file = outputName(name),
                    .measure = {},
                    .remedy = {}};
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            problem.remedy = "Make room there, or choose another folder";
            break;
        case EFBIG:
            problem.remedy = "Raise the limit on file sizes (ulimit -f)";
            break;
        case ENOENT:
        case ENOTDIR:
            problem.remedy = "Create the folder first";
            break;
        case EACCES:
        case EPERM:
        case EROFS:
            problem.remedy = "Choose a folder in which you may write";
            break;
        case EPIPE:
            problem.remedy = "The program that reads it has ended; check that first";
            break;
        case EBADF:
            problem.remedy = "Open it for writing first, such as with 3> FILE in a shell";
            break;
        case ELOOP:
            problem.remedy = "The link leads back to itself; name the file";
            break;
        case EISDIR:
            problem.remedy = "Name a file, or use --out-dir for a folder";
            break;
        default:
            problem.remedy = "Choose another place";
            break;
    }
    return problem;
}

Result<OutputPath> findOutput(const std::string& name) {
    OutputPath output{.name = name, .stream = {}, .path = {}};
    if (name == kStandardStream) {
        output.stream = STDOUT_FILENO;
    } else if (const int error = follow(output); error != 0) {
        return writeProblem(name, error);
    }
    if (output.stream) {
        const int mode = fcntl(*output.stream, F_GETFL);
        if (mode < 0 || (mode & O_ACCMODE) == O_RDONLY) return writeProblem(name, EBADF);
        output.exists = true;
        return output;
    }
    if (const std::optional<struct stat> status = statusOf(output)) {
        output.exists = true;
        output.isDevice = !S_ISREG(status->st_mode);
        if (S_ISDIR(status->st_mode)) return writeProblem(name, EISDIR);
        if (output.isDevice) return output;
        if (isProtected(output, *status)) {
            Problem problem = writeProblem(name, EACCES);
            problem.message = "cannot be replaced: the file is read-only";
            problem.remedy = "Make it writable first, or name another file";
            return problem;
        }
    }
    const std::string folder = fs::path(output.path).parent_path().string();
    if (access(folder.c_str(), W_OK | X_OK) != 0) return writeProblem(name, errno);
    return output;
}

bool sameOutput(const std::string& left, const std::string& right) {
    const Result<OutputPath> first = findOutput(left);
    const Result<OutputPath> second = findOutput(right);
    if (!first || !second) return left == right;
    const auto firstStatus = statusOf(first.value());
    const auto secondStatus = statusOf(second.value());
    if (firstStatus && secondStatus) return sameFile(*firstStatus, *secondStatus);
    return !firstStatus && !secondStatus && first.value().path == second.value().path;
}

bool isOutputOnto(const std::string& output, const std::string& score) {
    struct stat status {};
    const int failed = score == kStandardStream ? fstat(STDIN_FILENO, &status) : stat(score.c_str(), &status);
    const Result<OutputPath> target = findOutput(output);
    if (failed != 0 || !target || !S_ISREG(status.st_mode)) return false;
    const auto targetStatus = statusOf(target.value());
    return targetStatus && sameFile(*targetStatus, status);
}

}  // namespace rovescio::cli
