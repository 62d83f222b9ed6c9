#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench/Ratios.h"

namespace {

// Shows every run as usual and keeps the shortest time of each bench, which other programs on the machine
// disturb least.
class ShortestTimes final : public benchmark::ConsoleReporter {
public:
    ShortestTimes() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            const auto [shortest, isNew] = m_seconds.try_emplace(run.run_name.function_name, seconds);
            if (!isNew) shortest->second = std::min(shortest->second, seconds);
        }
    }

    void PrintRatios() const {
        for (const BenchRatio& ratio : kBenchRatios) {
            const auto ours = m_seconds.find(ratio.ours);
            const auto peers = m_seconds.find(ratio.peers);
            if (ours == m_seconds.end() || peers == m_seconds.end()) continue;
            std::printf("%s: %.2fx time\n", ratio.label, ours->second / peers->second);
        }
    }

private:
    std::map<std::string, double> m_seconds;
};

}  // namespace

int main(int argc, char** argv) {
    // Ours and the peer's take turns, so that a busy moment of the machine meets both.
    std::string takeTurns = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> arguments(argv, argv + argc);
    arguments.insert(arguments.begin() + 1, takeTurns.data());
    int count = argc + 1;
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    ShortestTimes reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    return 0;
}
