// The text of the progress line.
#include "cli/progress_bar.h"

#include <gtest/gtest.h>

namespace {

using rovescio::cli::progressText;
using std::chrono::seconds;

TEST(ProgressText, ShowsShareRateAndTimeLeft) {
    const struct {
        std::int64_t position;
        std::int64_t total;
        int elapsed;
        const char* text;
    } cases[] = {
        {0, 100, 1, "[..............................] 0%"},
        {50, 100, 10, "[###############...............] 50%  5.0 frames/s  0:10 left"},
        {1000, 100000, 1, "[..............................] 1%  1000 frames/s  1:39 left"},
        {100, 100, 5, "[##############################] 100%  20 frames/s  0:00 left"},
        {120, 100, 5, "[##############################] 100%  24 frames/s  0:00 left"},
        {0, 0, 0, "[..............................] 0%"},
    };
    for (const auto& [position, total, elapsed, text] : cases) {
        EXPECT_EQ(progressText(position, total, "frames", seconds(elapsed)), text);
    }
}

}  // namespace
