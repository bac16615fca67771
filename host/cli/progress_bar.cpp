// Drawing of the progress line.
#include "cli/progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <utility>

namespace rovescio::cli {

std::string progressText(std::int64_t position, std::int64_t total, const std::string& unit,
                         std::chrono::duration<double> elapsed) {
    constexpr int kCells = 30;
    const double share =
        total <= 0 ? 0.0 : std::clamp(static_cast<double>(position) / static_cast<double>(total), 0.0, 1.0);
    const int filled = static_cast<int>(share * kCells);
    std::string text = "[" + std::string(static_cast<std::size_t>(filled), '#') +
                       std::string(static_cast<std::size_t>(kCells - filled), '.') + "] " +
                       std::to_string(static_cast<int>(share * 100)) + "%";
    if (position <= 0 || elapsed.count() <= 0) return text;
    const double rate = static_cast<double>(position) / elapsed.count();
    const auto secondsLeft =
        static_cast<long>(std::ceil(static_cast<double>(std::max<std::int64_t>(total - position, 0)) / rate));
    char tail[80];
    std::snprintf(tail, sizeof tail, "  %.*f %s/s  %ld:%02ld left", rate < 10 ? 1 : 0, rate, unit.c_str(),
                  secondsLeft / 60, secondsLeft % 60);
    return text + tail;
}

ProgressBar::ProgressBar(std::string unit, bool quiet)
    : unit_(std::move(unit)), active_(!quiet && isatty(STDERR_FILENO) != 0) {}

void ProgressBar::update(std::int64_t position, std::int64_t total) {
    if (!active_) return;
    const Clock::time_point now = Clock::now();
    if (now - lastDrawn_ < std::chrono::milliseconds(100)) return;
    lastDrawn_ = now;
    drawn_ = true;
    std::cerr << ("\r" + progressText(position, total, unit_, now - start_) + "\x1b[K") << std::flush;
}

void ProgressBar::clear() {
    if (!drawn_) return;
    std::cerr << "\r\x1b[K" << std::flush;
    drawn_ = false;
    lastDrawn_ = {};
}

}  // namespace rovescio::cli
