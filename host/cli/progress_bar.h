// A line on the terminal that shows how far a long work has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace rovescio::cli {

// The line's text: bar, share done, rate and time left.
std::string progressText(std::int64_t position, std::int64_t total, const std::string& unit,
                         std::chrono::duration<double> elapsed);

class ProgressBar {
  public:
    // Draws only when standard error is a terminal and the user did not ask for silence.
    ProgressBar(std::string unit, bool quiet);
    ~ProgressBar() { clear(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Draws at most ten times a second.
    void update(std::int64_t position, std::int64_t total);
    // Takes the line away, so that other text can be printed.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;
    std::string unit_;
    bool active_;
    bool drawn_ = false;
    Clock::time_point start_ = Clock::now();
    Clock::time_point lastDrawn_{};
};

}  // namespace rovescio::cli
