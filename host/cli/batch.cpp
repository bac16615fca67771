// Parallel work on many scores.
#include "cli/batch.h"

#include <poll.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <system_error>
#include <thread>
#include <utility>

#include "cli/cancel.h"
#include "cli/child_process.h"
#include "cli/messages.h"
#include "cli/progress_bar.h"

namespace rovescio::cli {

namespace {

namespace fs = std::filesystem;
using engine::Result;

// What identifies a file, whatever path leads to it.
using FileId = std::pair<dev_t, ino_t>;

std::optional<FileId> fileAt(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileId(status.st_dev, status.st_ino);
}

class Batch {
  public:
    Batch(const Options& options, std::string program, std::vector<BatchItem> items)
        : options_(options),
          program_(std::move(program)),
          items_(std::move(items)),
          bar_("scores", options.quiet) {
        const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
        slots_ = options.jobs > 0 ? options.jobs : processors;
    }

    ExitCode run() {
        const DeferredCancel deferred(DeferredCancel::End::handOver);
        while (!DeferredCancel::requested() && (next_ < items_.size() || !running_.empty())) {
            while (next_ < items_.size() && running_.size() < slots_) startNext();
            waitForMessages();
            bar_.update(static_cast<std::int64_t>(finished_), static_cast<std::int64_t>(items_.size()));
        }
        bar_.clear();
        if (DeferredCancel::requested()) return cancelAll();
        return summarise();
    }

  private:
    struct Running {
        std::size_t item;
        ChildProcess process;
    };

    void startNext() {
        const std::size_t item = next_++;
        std::vector<std::string> arguments = options_.passedOn;
        arguments.insert(arguments.end(),
                         {"--quiet", "--output=" + items_[item].target, "--", items_[item].score});
        Result<ChildProcess> process = ChildProcess::start(program_, arguments);
        if (process) {
            running_.push_back({item, *process});
        } else {
            say(items_[item].score + ": " + process.problem().text());
            count(ExitCode::refused);
        }
    }

    // Waits until a process said something or ended, or a signal came.
    void waitForMessages() {
        std::vector<pollfd> descriptors;
        for (const Running& running : running_) {
            descriptors.push_back({.fd = running.process.messagePipe(), .events = POLLIN, .revents = 0});
        }
        constexpr int kRedrawMilliseconds = 200;
        if (poll(descriptors.data(), descriptors.size(), kRedrawMilliseconds) <= 0) return;
        // From the back, so that a process that has ended can be taken out.
        for (std::size_t i = descriptors.size(); i-- > 0;) {
            if (descriptors[i].revents == 0 || running_[i].process.readMessages()) continue;
            Running ended = std::move(running_[i]);
            running_.erase(running_.begin() + static_cast<std::ptrdiff_t>(i));
            const int status = ended.process.finish();
            report(ended, status);
            count(static_cast<ExitCode>(status));
        }
    }

    // Hands on what a process said, each line once in the whole batch.
    void report(const Running& ended, int status) {
        bar_.clear();
        std::istringstream lines(ended.process.messages());
        bool said = false;
        for (std::string line; std::getline(lines, line);) {
            if (line.empty()) continue;
            said = true;
            constexpr std::string_view kPrefix = "rovescio: ";
            if (line.starts_with(kPrefix)) line.erase(0, kPrefix.size());
            if (!told_.insert(line).second) continue;
            const bool namesScore = line.find(items_[ended.item].score) != std::string::npos;
            say(namesScore ? line : items_[ended.item].score + ": " + line);
        }
        if (status != 0 && !said) {
            say(items_[ended.item].score + ": the process ended with status " + std::to_string(status));
        }
    }

    void count(ExitCode code) {
        ++finished_;
        ++codes_[code];
    }

    ExitCode cancelAll() {
        for (const Running& running : running_) running.process.cancel();
        for (Running& running : running_) {
            while (running.process.readMessages()) {
            }
            count(static_cast<ExitCode>(running.process.finish()));
        }
        say("cancelled; " + std::to_string(codes_[ExitCode::ok]) + " of " + counted(items_.size(), "score") +
            " done");
        return ExitCode::cancelled;
    }

    ExitCode summarise() {
        const std::size_t done = codes_[ExitCode::ok];
        const std::size_t failed = items_.size() - done;
        if (!options_.quiet) {
            const bool transposed = options_.transformation.isTransposition();
            say((transposed ? "transposed " : "wrote ") + std::to_string(done) + " of " +
                counted(items_.size(), "score") + " -> " + options_.outputFolder +
                (failed > 0 ? "; " + std::to_string(failed) + " failed" : ""));
        }
        if (failed == 0) return ExitCode::ok;
        for (const auto& [code, times] : codes_) {
            if (times == items_.size()) return code;
        }
        return ExitCode::refused;
    }

    const Options& options_;
    std::string program_;
    std::vector<BatchItem> items_;
    ProgressBar bar_;
    std::size_t slots_ = 1;
    std::size_t next_ = 0;
    std::size_t finished_ = 0;
    std::vector<Running> running_;
    std::map<ExitCode, std::size_t> codes_;
    std::set<std::string> told_;
};

}  // namespace

Result<std::vector<BatchItem>> planBatch(const std::vector<std::string>& scores, const std::string& folder) {
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        return problemWith(folder + ": there is no such folder", "Create it first");
    }
    std::map<FileId, std::string> scoreAt;
    for (const std::string& score : scores) {
        if (const std::optional<FileId> file = fileAt(score)) scoreAt.emplace(*file, score);
    }
    std::vector<BatchItem> items;
    std::map<std::string, std::string> scoreOf;
    std::map<FileId, std::string> scoreOnto;
    for (const std::string& score : scores) {
        const std::string target = (fs::path(folder) / fs::path(score).filename()).string();
        const auto [sameName, isNewName] = scoreOf.emplace(target, score);
        const std::string* other = isNewName ? nullptr : &sameName->second;
        // A link in the folder can lead to where another result goes, or to a score.
        const std::optional<FileId> file = fileAt(target);
        if (file && isNewName) {
            const auto [sameFile, isNewFile] = scoreOnto.emplace(*file, score);
            if (!isNewFile) other = &sameFile->second;
        }
        if (other != nullptr) {
            std::string message = *other + " and ";
            message.append(score).append(" would both become ").append(target);
            return problemWith(std::move(message),
                               "Put them into different folders, or give one another name");
        }
        if (const auto onto = scoreAt.find(file.value_or(FileId())); file && onto != scoreAt.end()) {
            const bool own = onto->second == score;
            std::string message = onto->second + " would be replaced by ";
            message += own ? "its own result" : "the result of " + score;
            return problemWith(std::move(message), "Choose another --out-dir");
        }
        items.push_back({score, target});
    }
    return items;
}

ExitCode runBatch(const Options& options, const std::string& program) {
    Result<std::vector<BatchItem>> items = planBatch(options.scores, options.outputFolder);
    if (!items) {
        say(items.problem());
        std::error_code error;
        return fs::is_directory(options.outputFolder, error) ? ExitCode::usage : ExitCode::badOutput;
    }
    return Batch(options, program, std::move(*items)).run();
}

}  // namespace rovescio::cli
