// Bounded reading that neither waits on pipes nor trusts the size that a file had a moment ago.
#include "file_bytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace rovescio::platform {

namespace {

class Descriptor {
  public:
    // Without O_NONBLOCK, opening a named pipe would wait for a writer for ever.
    explicit Descriptor(const std::filesystem::path& path)
        : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }

    [[nodiscard]] int number() const { return number_; }

    [[nodiscard]] bool isOrdinaryFile() const {
        struct stat status {};
        return number_ >= 0 && ::fstat(number_, &status) == 0 && S_ISREG(status.st_mode) &&
               static_cast<std::size_t>(status.st_size) <= kLargestFile;
    }

  private:
    int number_;
};

}  // namespace

std::optional<std::string> readFile(const std::filesystem::path& path) {
    const Descriptor file(path);
    if (!file.isOrdinaryFile()) {
        return std::nullopt;
    }
    constexpr std::size_t kChunk = 65536;
    std::string bytes;
    while (bytes.size() <= kLargestFile) {
        const std::size_t before = bytes.size();
        bytes.resize(before + kChunk);
        const ssize_t count = ::read(file.number(), bytes.data() + before, kChunk);
        bytes.resize(before + static_cast<std::size_t>(count > 0 ? count : 0));
        if (count == 0) {
            return bytes;
        }
        if (count < 0 && errno != EINTR) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace rovescio::platform
