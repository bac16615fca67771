// Runs all benchmarks and prints the table of ratios.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <limits>
#include <map>

#include "ratios.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace rovescio::bench {
namespace {

// Prints every run as usual and keeps what the ratios need.
class Collector : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            // Of repeated runs the median counts.
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
            const std::string name =
                run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
            // Programs are measured by the clock, work inside this one by the processor.
            const bool byClock = run.run_name.time_type == "real_time";
            times_[name] = byClock ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
            for (const auto& [counter, value] : run.counters) counters_[name + ":" + counter] = value;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // Prints the table; false when a ratio is over its limit or was not measured.
    [[nodiscard]] bool printRatios() const {
        bool good = true;
        std::printf("\n%-64s %8s %8s\n", "ratio", "measured", "at most");
        for (const Ratio& ratio : ratios()) {
            const double measured = value(ratio.measured, ratio.counter);
            const double yardstick = ratio.yardstick.empty() ? 1 : value(ratio.yardstick, ratio.counter);
            if (measured < 0 || yardstick <= 0) continue;  // filtered out of this run
            const double found = measured / yardstick;
            std::printf("%-64s %8.2f %8.2f %s\n", ratio.what.c_str(), found, ratio.limit,
                        found <= ratio.limit ? "" : "TOO HIGH");
            good = good && found <= ratio.limit;
        }
        return good;
    }

  private:
    [[nodiscard]] double value(const std::string& name, const std::string& counter) const {
        const auto& from = counter.empty() ? times_ : counters_;
        const auto found = from.find(counter.empty() ? name : name + ":" + counter);
        return found == from.end() ? -1 : found->second;
    }

    std::map<std::string, double> times_;
    std::map<std::string, double> counters_;
};

// Memory that a run gives back stays with the process. Otherwise small scores would find it warm and large
// ones not, and their comparison would be one of page faults.
void keepMemory() {
#ifdef __GLIBC__
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_MAX, 0);
#endif
}

}  // namespace
}  // namespace rovescio::bench

int main(int argc, char** argv) {
    rovescio::bench::keepMemory();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    rovescio::bench::Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    return collector.printRatios() ? 0 : 1;
}
