// Temporary files. Their names hold the number of the process, which also locks them, so that files left by a
// killed process are distinguished from those of a running one.
#include "cli/staged_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace rovescio::cli {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = ".rovescio-";
constexpr std::string_view kPlaceholder = "XXXXXX";
constexpr std::string_view kKeptSuffix = "-old";

// The permission bits that a new file gets here.
mode_t usualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return static_cast<mode_t>(0666 & ~mask);
}

// A pattern for a temporary name, beside a file.
std::string besides(const std::string& path) {
    return (fs::path(path).parent_path() / kPrefix).string() + std::to_string(getpid()) + "-" +
           std::string(kPlaceholder);
}

// The process that a temporary file's name gives; 0 for other files.
pid_t ownerOf(std::string_view name) {
    if (!name.starts_with(kPrefix)) return 0;
    if (name.ends_with(kKeptSuffix)) name.remove_suffix(kKeptSuffix.size());
    pid_t process = 0;
    const char* end = name.data() + name.size();
    const auto parsed = std::from_chars(name.data() + kPrefix.size(), end, process);
    const bool wellFormed = parsed.ec == std::errc() && process > 0 &&
                            end - parsed.ptr == static_cast<std::ptrdiff_t>(kPlaceholder.size() + 1) &&
                            *parsed.ptr == '-';
    return wellFormed ? process : 0;
}

bool isLeftover(const fs::path& path) {
    const pid_t process = ownerOf(path.filename().string());
    if (process == 0 || kill(process, 0) == 0 || errno != ESRCH) return false;
    // On a shared disk the process may live on another machine, where it holds the lock.
    const Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    struct stat status {};
    return file.number() >= 0 && fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) &&
           (status.st_uid == geteuid() || geteuid() == 0) && flock(file.number(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

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

void removeLeftovers(const std::string& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (isLeftover(entry->path())) unlink(entry->path().c_str());
    }
}

StagedFile::StagedFile(OutputPath target) : target_(std::move(target)) {}

StagedFile::~StagedFile() {
    forgetOld();
    if (!temporary_.empty() && !placed_) unlink(temporary_.c_str());
}

int StagedFile::create() {
    // A signal between the making of the file and its entry among those to remove would leave it behind.
    const HeldSignals held;
    std::string name = besides(target_.path);
    file_ = std::make_unique<Descriptor>(mkostemp(name.data(), O_CLOEXEC));
    if (file_->number() < 0) return errno;
    temporary_ = std::move(name);
    removed_ = std::make_unique<RemovedOnCancel>(temporary_);
    // Without a lock only its process identifies the file.
    flock(file_->number(), LOCK_EX | LOCK_NB);
    return 0;
}

int StagedFile::takeAttributes(int descriptor) const {
    struct stat old {};
    if (!target_.exists || stat(target_.path.c_str(), &old) != 0) {
        return fchmod(descriptor, usualMode()) == 0 ? 0 : errno;
    }
    constexpr mode_t kPermissions = S_IRWXU | S_IRWXG | S_IRWXO;
    mode_t mode = old.st_mode & kPermissions;
    struct stat now {};
    if (fstat(descriptor, &now) != 0) return errno;
    // Only root may give files away; otherwise the file belongs to the user who wrote it.
    if (now.st_uid != old.st_uid) {
        [[maybe_unused]] const int kept = fchown(descriptor, old.st_uid, static_cast<gid_t>(-1));
    }
    if (now.st_gid != old.st_gid && fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0) {
        // The permissions were meant for another group: this one gets what everybody has.
        mode = (mode & ~static_cast<mode_t>(S_IRWXG)) | ((mode & S_IRWXO) << 3);
    }
    return fchmod(descriptor, mode) == 0 ? 0 : errno;
}

int StagedFile::write(const ByteSource& source) {
    if (const int error = create(); error != 0) return error;
    if (const int error = writeAll(file_->number(), source); error != 0) return error;
    if (const int error = takeAttributes(file_->number()); error != 0) return error;
    // What takes a score's place must be on the disk before it does, so that a power failure leaves one of
    // them.
    return target_.exists && fsync(file_->number()) != 0 ? errno : 0;
}

int StagedFile::place(bool mayBeTakenBack) {
    if (mayBeTakenBack && target_.exists) {
        std::string name = temporary_ + std::string(kKeptSuffix);
        if (link(target_.path.c_str(), name.c_str()) == 0) kept_ = std::move(name);
    }
    if (!file_->close()) return errno;
    if (rename(temporary_.c_str(), target_.path.c_str()) != 0) return errno;
    placed_ = true;
    return 0;
}

void StagedFile::forgetOld() {
    if (!kept_.empty()) unlink(kept_.c_str());
    kept_.clear();
}

bool StagedFile::takeBack() {
    if (!target_.exists) return unlink(target_.path.c_str()) == 0;
    if (kept_.empty() || rename(kept_.c_str(), target_.path.c_str()) != 0) return false;
    kept_.clear();
    return true;
}

}  // namespace rovescio::cli
