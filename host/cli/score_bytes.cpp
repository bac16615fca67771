// Reading and safe writing of whole files.
#include "cli/score_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "cli/cancel.h"
#include "musicxml/large_pages.h"

namespace rovescio::cli {

namespace {

using engine::Done;
using engine::Problem;
using engine::Result;

// A file descriptor that is closed with its owner.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int number() const { return number_; }
    // Some file systems report a full disk only here.
    bool close() { return ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

std::string shownName(const std::string& path, const char* streamName) {
    return path == kStandardStream ? streamName : path;
}

Problem readProblem(const std::string& path, int error) {
    Problem problem{.message = std::string("cannot be read: ") + std::strerror(error),
                    .file = shownName(path, "standard input"),
                    .measure = {},
                    .remedy = {}};
    if (error == ENOENT) problem.remedy = "Check the spelling of the path";
    if (error == EACCES) problem.remedy = "Make the file readable for you";
    if (error == EISDIR) problem.remedy = "Name a score file, not a folder";
    return problem;
}

Problem tooLarge(const std::string& path, std::size_t maximum) {
    constexpr std::size_t kMebibyte = std::size_t{1} << 20;
    return {.message = "is larger than the limit of " + std::to_string(maximum / kMebibyte) + " MiB",
            .file = shownName(path, "standard input"),
            .measure = {},
            .remedy = "Raise the limit with --max-size if this really is a score"};
}

Problem writeProblem(const std::string& path, int error) {
    Problem problem{.message = std::string("cannot be written: ") + std::strerror(error),
                    .file = shownName(path, "standard output"),
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
            problem.remedy = "The program that reads it has ended; look there first";
            break;
        default:
            break;
    }
    return problem;
}

// The error number of the first failed write; 0 when all went well.
int writeAll(int descriptor, const ByteSource& source) {
    int error = 0;
    source([&](std::string_view bytes) {
        while (!bytes.empty() && error == 0) {
            const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
            if (written >= 0) {
                bytes.remove_prefix(static_cast<std::size_t>(written));
            } else if (errno != EINTR) {
                error = errno;
            }
        }
        return error == 0;
    });
    return error;
}

std::string folderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// What a path leads to when it is a symbolic link, so that the link stays one.
std::string finalPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

// The permission bits that a new file gets here.
mode_t usualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<mode_t>(0666 & ~mask);
}

int writeStream(int descriptor, const ByteSource& source, bool closeAfter) {
    Descriptor stream(closeAfter ? descriptor : -1);
    const int error = writeAll(descriptor, source);
    if (error != 0 || !closeAfter) return error;
    return stream.close() ? 0 : errno;
}

// Puts a complete file in the place of another, or of none.
int replaceFile(const std::string& path, const ByteSource& source, mode_t mode) {
    std::string temporary = folderOf(path) + "/.rovescio-XXXXXX";
    Descriptor file(mkstemp(temporary.data()));
    if (file.number() < 0) return errno;
    const RemovedOnCancel removed(temporary);
    int error = writeAll(file.number(), source);
    if (error == 0 && fchmod(file.number(), mode) != 0) error = errno;
    // What takes a score's place must be on the disk before it does, so that a power failure leaves one of
    // them.
    const bool replaces = access(path.c_str(), F_OK) == 0;
    if (error == 0 && replaces && fsync(file.number()) != 0) error = errno;
    if (!file.close() && error == 0) error = errno;
    if (error == 0 && rename(temporary.c_str(), path.c_str()) != 0) error = errno;
    if (error != 0) unlink(temporary.c_str());
    return error;
}

}  // namespace

Result<std::string> readScoreBytes(const std::string& path, std::size_t maximum) {
    const bool standard = path == kStandardStream;
    Descriptor file(standard ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) return readProblem(path, errno);
    struct stat status {};
    if (fstat(file.number(), &status) != 0) return readProblem(path, errno);
    if (S_ISDIR(status.st_mode)) return readProblem(path, EISDIR);
    std::string bytes;
    if (S_ISREG(status.st_mode)) {
        if (static_cast<std::uintmax_t>(status.st_size) > maximum) return tooLarge(path, maximum);
        musicxml::reserveInLargePages(bytes, static_cast<std::size_t>(status.st_size) + 1);
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
        if (count == 0) return bytes;
        if (bytes.size() > maximum) return tooLarge(path, maximum);
    }
}

Result<Done> checkTarget(const std::string& path) {
    if (path == kStandardStream) return Done{};
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) {
            Problem problem = writeProblem(path, EISDIR);
            problem.remedy = "Name a file, or use --out-dir for a folder";
            return problem;
        }
        if (!S_ISREG(status.st_mode)) return Done{};
    }
    const std::string folder = folderOf(finalPath(path));
    if (stat(folder.c_str(), &status) != 0) return writeProblem(path, errno);
    if (!S_ISDIR(status.st_mode)) return writeProblem(path, ENOTDIR);
    if (access(folder.c_str(), W_OK | X_OK) != 0) return writeProblem(path, errno);
    return Done{};
}

Result<Done> writeScoreBytes(const std::string& path, const ByteSource& source) {
    int error = 0;
    struct stat status {};
    const bool standard = path == kStandardStream;
    const bool exists = !standard && stat(path.c_str(), &status) == 0;
    if (standard) {
        error = writeStream(STDOUT_FILENO, source, false);
    } else if (exists && !S_ISREG(status.st_mode)) {
        // Devices and pipes are written to, not replaced.
        const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        error = descriptor < 0 ? errno : writeStream(descriptor, source, true);
    } else {
        const mode_t mode = exists ? static_cast<mode_t>(status.st_mode & 07777) : usualMode();
        error = replaceFile(finalPath(path), source, mode);
    }
    if (error != 0) return writeProblem(path, error);
    return Done{};
}

}  // namespace rovescio::cli
