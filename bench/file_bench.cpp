// File to file: the whole program on a score of 100,000 notes, against pugixml parsing and writing that file.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ratios.h"
#include "score_maker.h"

extern char** environ;

namespace rovescio::bench {
namespace {

// A folder with the score, removed at the end.
class Workshop {
  public:
    Workshop() {
        std::string pattern = (std::filesystem::temp_directory_path() / "rovescio-bench-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        std::ofstream(in(), std::ios::binary) << makeMusicXml(100'000);
    }
    ~Workshop() { std::filesystem::remove_all(folder_); }
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;
    [[nodiscard]] std::string in() const { return (folder_ / "in.musicxml").string(); }
    [[nodiscard]] std::string out() const { return (folder_ / "out.musicxml").string(); }

  private:
    std::filesystem::path folder_;
};

// Runs a program to its end; its peak memory in MiB, or a negative number when it failed.
double run(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) return -1;
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return -1;
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void fileToFile(benchmark::State& state, const std::vector<std::string>& program,
                const std::vector<std::string>& options) {
    const Workshop workshop;
    std::vector<std::string> command = program;
    command.push_back(workshop.in());
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(workshop.out());
    double peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(workshop.out());
        state.ResumeTiming();
        const double memory = run(command);
        if (memory < 0) {
            state.SkipWithError("the program failed");
            break;
        }
        peak = std::max(peak, memory);
    }
    state.counters["peak_MiB"] = peak;
}

void pugixmlFile(benchmark::State& state) {
    fileToFile(state, {PUGIXML_COPY_PROGRAM}, {});
}

void rovescioFile(benchmark::State& state) {
    fileToFile(state, {ROVESCIO_PROGRAM}, {"--quiet", "--transpose", "up minor third", "-o"});
}

void rovescioRetrograde(benchmark::State& state) {
    fileToFile(state, {ROVESCIO_PROGRAM}, {"--quiet", "--retrograde", "-o"});
}

BENCHMARK(pugixmlFile)->Unit(benchmark::kMillisecond)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(rovescioFile)->Unit(benchmark::kMillisecond)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(rovescioRetrograde)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Repetitions(5)
    ->ReportAggregatesOnly();

const bool registered = [] {
    ratios().push_back({"file to file, 100,000 notes : pugixml parse and write, time", "rovescioFile",
                        "pugixmlFile", "", 1.6});
    ratios().push_back({"file to file, 100,000 notes : pugixml parse and write, memory", "rovescioFile",
                        "pugixmlFile", "peak_MiB", 1.5});
    ratios().push_back({"retrograde file to file, 100,000 notes : pugixml parse and write, time",
                        "rovescioRetrograde", "pugixmlFile", "", 2.5});
    return true;
}();

}  // namespace
}  // namespace rovescio::bench
