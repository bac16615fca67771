// Copying of the bundle, and the process that loads the copy.
#include "validate/separate_load.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "validate/child_run.h"
#include "validate/plugin_image.h"

namespace rovescio::validate {

namespace {

namespace fs = std::filesystem;

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path(error_) / "rovescio-validate-XXXXXX").string();
        if (!error_ && mkdtemp(name.data()) == nullptr) error_.assign(errno, std::generic_category());
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        if (!error_) fs::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::error_code& error() const { return error_; }
    [[nodiscard]] const fs::path& path() const { return path_; }

  private:
    std::error_code error_;
    fs::path path_;
};

// The path of the bundle's code; empty when it has none.
std::string codeOf(const std::string& bundle) {
    const PluginImage image(bundle);
    CFURLRef url = image.bundle() ? CFBundleCopyExecutableURL(image.bundle()) : nullptr;
    if (!url) return {};
    std::array<UInt8, PATH_MAX> bytes{};
    const bool known = CFURLGetFileSystemRepresentation(url, true, bytes.data(), bytes.size());
    CFRelease(url);
    return known ? reinterpret_cast<const char*>(bytes.data()) : "";
}

// Becomes the helper. The alarm outlasts this process's own end, so that code that never returns is not left
// over.
[[noreturn]] void beLoader(const Subject& subject, const std::string& code, int output) {
    dup2(output, STDOUT_FILENO);
    unsetenv("LD_LIBRARY_PATH");
    alarm(static_cast<unsigned>(1 + std::chrono::ceil<std::chrono::seconds>(subject.timeLimit).count()));
    execl(subject.loader.c_str(), subject.loader.c_str(), code.c_str(), nullptr);
    _exit(2);
}

std::string allFrom(int input) {
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t count = 0; (count = read(input, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    while (text.ends_with('\n')) text.pop_back();
    return text;
}

// Runs in a process of its own, which the time limit ends.
Verdict load(const Subject& subject, const std::string& bundle) {
    const std::string code = codeOf(bundle);
    if (code.empty()) return failed("there is no executable");
    std::array<int, 2> ends{};
    const pid_t loader = pipe2(ends.data(), O_CLOEXEC) == 0 ? fork() : -1;
    if (loader < 0)
        return failed(std::string("not run, no other process can be started: ") + std::strerror(errno));
    if (loader == 0) beLoader(subject, code, ends[1]);
    close(ends[1]);
    const std::string said = allFrom(ends[0]);
    int status = 0;
    waitpid(loader, &status, 0);
    if (WIFSIGNALED(status)) return failed(strsignal(WTERMSIG(status)));
    return WEXITSTATUS(status) == 0 ? passed() : failed(said);
}

}  // namespace

Verdict loadsInAnotherFolder(const Subject& subject) {
    const TemporaryFolder folder;
    std::error_code error = folder.error();
    const fs::path bundle = error ? fs::path() : fs::canonical(subject.bundle, error);
    const std::string copy = folder.path() / bundle.filename();
    // Links inside a bundle are part of it; those that lead out of it lead nowhere from another folder.
    constexpr auto kHow = fs::copy_options::recursive | fs::copy_options::copy_symlinks;
    if (!error) fs::copy(bundle, copy, kHow, error);
    if (error) return failed("no copy can be made: " + error.message());
    return runApart([&] { return load(subject, copy); }, subject.timeLimit);
}

}  // namespace rovescio::validate
