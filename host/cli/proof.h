// The proofreading of a result, beside the writing of it.
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "cli/exit_code.h"
#include "engine/model/problem.h"
#include "musicxml/score_file.h"

namespace rovescio::cli {

// A thread reads what is written, piece after piece; where none can be had, the writer does.
class Proof {
  public:
    // Of nothing when there is no file. All three must outlive it.
    Proof(const musicxml::ScoreFile& score, const engine::Document& document,
          const std::optional<musicxml::WrittenFile>& written);
    ~Proof();
    Proof(const Proof&) = delete;
    Proof& operator=(const Proof&) = delete;

    // Writes the file to a sink, and for the first time to the reader.
    bool writeTo(const musicxml::ByteSink& sink);
    // Waits for the end of the reading; reads first what was not written to anything.
    const std::optional<engine::Problem>& fault();
    // How the program ends after a fault.
    [[nodiscard]] ExitCode code() const { return code_; }

  private:
    void begin();
    void hand(std::string_view piece);
    void end();
    void readHanded();

    const musicxml::ScoreFile& score_;
    const musicxml::WrittenFile* written_;
    std::unique_ptr<musicxml::Proofreader> reader_;
    std::optional<std::string> found_;
    std::optional<engine::Problem> fault_;
    ExitCode code_ = ExitCode::ruleBroken;
    bool begun_ = false;

    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::string> handed_;
    bool ended_ = false;
};

}  // namespace rovescio::cli
