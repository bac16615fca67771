// Reading of whole files.
#include "cli/score_bytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "cli/descriptor.h"
#include "cli/output_path.h"

namespace rovescio::cli {

namespace {

using engine::Problem;
using engine::Result;

std::string shownName(const std::string& path) {
    return path == kStandardStream ? "standard input" : path;
}

Problem readProblem(const std::string& path, int error) {
    Problem problem{.message = std::string("cannot be read: ") + std::strerror(error),
                    .file = shownName(path),
                    .measure = {},
                    .remedy = {}};
    if (error == ENOENT) problem.remedy = "Check the spelling of the path";
    if (error == EACCES) problem.remedy = "Give yourself permission to read the file";
    if (error == EISDIR) problem.remedy = "Name a score file, not a folder";
    return problem;
}

Problem tooLarge(const std::string& path, std::size_t maximum) {
    constexpr std::size_t kMebibyte = std::size_t{1} << 20;
    return {.message = "is larger than the limit of " + std::to_string(maximum / kMebibyte) + " MiB",
            .file = shownName(path),
            .measure = {},
            .remedy = "Raise the limit with --max-size if this really is a score"};
}

class Mapping {
  public:
    Mapping(Descriptor file, void* address, const struct stat& status)
        : file_(std::move(file)), address_(address), status_(status) {}
    ~Mapping() { munmap(address_, size()); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(status_.st_size); }
    [[nodiscard]] bool isSame() const {
        struct stat now {};
        return fstat(file_.number(), &now) == 0 && now.st_size == status_.st_size &&
               modified(now) == modified(status_);
    }

  private:
    static std::pair<std::int64_t, std::int64_t> modified(const struct stat& status) {
#ifdef __APPLE__
        return {status.st_mtimespec.tv_sec, status.st_mtimespec.tv_nsec};
#else
        return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
#endif
    }

    Descriptor file_;
    void* address_;
    struct stat status_;
};

// Takes the descriptor along where it succeeds.
std::optional<musicxml::Bytes> map(Descriptor& file, const struct stat& status) {
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size == 0) return std::nullopt;
    void* const address = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.number(), 0);
    if (address == MAP_FAILED) return std::nullopt;
    madvise(address, size, MADV_WILLNEED);
    const auto mapping = std::make_shared<const Mapping>(std::move(file), address, status);
    return musicxml::Bytes({static_cast<const char*>(address), size}, mapping,
                           [mapping] { return mapping->isSame(); });
}

}  // namespace

Result<musicxml::Bytes> readScoreBytes(const std::string& path, std::size_t maximum) {
    const bool standard = path == kStandardStream;
    Descriptor file(standard ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) return readProblem(path, errno);
    struct stat status {};
    if (fstat(file.number(), &status) != 0) return readProblem(path, errno);
    if (S_ISDIR(status.st_mode)) return readProblem(path, EISDIR);
    std::string bytes;
    if (S_ISREG(status.st_mode)) {
        if (static_cast<std::uintmax_t>(status.st_size) > maximum) return tooLarge(path, maximum);
        if (auto mapped = map(file, status)) return std::move(*mapped);
        bytes.reserve(static_cast<std::size_t>(status.st_size) + 1);
    }
    constexpr std::size_t kPiece = std::size_t{1} << 18;
    while (true) {
        const std::size_t before = bytes.size();
        // Within the room there is, so that a whole file is never moved to find that it has ended.
        const std::size_t room = bytes.capacity() - before;
        const std::size_t piece = room > 0 ? std::min(room, kPiece) : kPiece;
        bytes.resize(before + piece);
        const ssize_t count = read(file.number(), bytes.data() + before, piece);
        bytes.resize(before + static_cast<std::size_t>(count > 0 ? count : 0));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return readProblem(path, errno);
        if (count == 0) return musicxml::Bytes(std::move(bytes));
        if (bytes.size() > maximum) return tooLarge(path, maximum);
    }
}

}  // namespace rovescio::cli
