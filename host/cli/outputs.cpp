// Files are written beside their places first, then streams, which cannot be taken back; finally all files
// are put into place while signals wait.
#include "cli/outputs.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <span>
#include <utility>

namespace rovescio::cli {

namespace {

using engine::Done;
using engine::Problem;
using engine::Result;
using StagedFiles = std::vector<std::unique_ptr<StagedFile>>;

int writeStream(const OutputPath& target, const ByteSource& source) {
    if (target.stream) return writeAll(*target.stream, source);
    Descriptor device(open(target.path.c_str(), O_WRONLY | O_CLOEXEC));
    if (device.number() < 0) return errno;
    if (const int error = writeAll(device.number(), source); error != 0) return error;
    return device.close() ? 0 : errno;
}

// Takes back the files that were placed before one that could not be.
Problem takeBack(std::span<const std::unique_ptr<StagedFile>> placed, Problem problem) {
    for (const std::unique_ptr<StagedFile>& file : placed) {
        if (!file->takeBack()) problem.message += "; " + file->target().name + " has already been written";
    }
    return problem;
}

Result<Done> place(const StagedFiles& files) {
    const CommitPoint commit;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const int error = files[i]->place(files.size() > 1);
        if (error == 0) continue;
        return takeBack(std::span(files).first(i), writeProblem(files[i]->target().name, error));
    }
    for (const std::unique_ptr<StagedFile>& file : files) file->forgetOld();
    CommitPoint::allWritten();
    return Done{};
}

}  // namespace

Result<Done> writeOutputs(const std::vector<Output>& outputs, const LastCheck& check) {
    if (outputs.empty()) return Done{};
    StagedFiles files;
    std::vector<std::pair<OutputPath, const ByteSource*>> streams;
    std::set<std::string> folders;
    for (const auto& [name, source] : outputs) {
        Result<OutputPath> target = findOutput(name);
        if (!target) return target.problem();
        if (target->stream || target->isDevice) {
            streams.emplace_back(std::move(*target), &source);
            continue;
        }
        const std::string folder = std::filesystem::path(target->path).parent_path().string();
        if (folders.insert(folder).second) removeLeftovers(folder);
        files.push_back(std::make_unique<StagedFile>(std::move(*target)));
        if (const int error = files.back()->write(source); error != 0) return writeProblem(name, error);
    }
    if (check) {
        if (std::optional<Problem> fault = check()) return std::move(*fault);
    }
    for (const auto& [target, source] : streams) {
        streamBegins();
        if (const int error = writeStream(target, *source); error != 0) {
            return writeProblem(target.name, error);
        }
    }
    if (files.empty()) {
        CommitPoint::allWritten();
        return Done{};
    }
    return place(files);
}

}  // namespace rovescio::cli
