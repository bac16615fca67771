// The pairs of measurements whose ratio is asked for.
#pragma once

#include <string>
#include <vector>

namespace rovescio::bench {

// A ratio of two measurements of one run: benchmark names, the counter compared ("" for the time per
// iteration) and the highest ratio that is good.
struct Ratio {
    std::string what;
    std::string measured;
    std::string yardstick;
    std::string counter;
    double limit;
};

inline std::vector<Ratio>& ratios() {
    static std::vector<Ratio> all;
    return all;
}

}  // namespace rovescio::bench
