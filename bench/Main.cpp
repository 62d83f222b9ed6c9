#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench/Ratios.h"

namespace {

// Prints every run as usual and keeps the shortest time of each bench: other programs on the machine can only
// lengthen a run, so the shortest is the least disturbed.
class ShortestTimes final : public benchmark::ConsoleReporter {
public:
    ShortestTimes() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            m_failed = m_failed || run.error_occurred;
            if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            const auto [shortest, isNew] = m_seconds.try_emplace(run.run_name.function_name, seconds);
            if (!isNew) shortest->second = std::min(shortest->second, seconds);
        }
    }

    bool Failed() const { return m_failed; }

    void PrintFigures() const {
        for (const BenchFigure& figure : BenchFigures()) {
            const auto ours = m_seconds.find(figure.ours);
            const auto peers = figure.peers != nullptr ? m_seconds.find(figure.peers) : ours;
            if (ours == m_seconds.end() || peers == m_seconds.end()) continue;
            if (figure.peers != nullptr)
                Print(figure, ours->second / peers->second, "x");
            else
                Print(figure, ours->second * 1000.0, " ms");
        }
    }

private:
    static void Print(const BenchFigure& figure, double value, const char* unit) {
        std::printf("%s: %.2f%s time", figure.label, value, unit);
        if (figure.atMost > 0.0) std::printf(" (at most %.2f%s)", figure.atMost, unit);
        std::printf("\n");
    }

    std::map<std::string, double> m_seconds;
    bool m_failed = false;
};

}  // namespace

std::vector<BenchFigure>& BenchFigures() {
    static std::vector<BenchFigure> figures;
    return figures;
}

int main(int argc, char** argv) {
    // Many short runs, of which the shortest counts. Our benches and the peers' take turns, so that a busy
    // moment of the machine meets both. Options of the command line come later and win.
    std::string defaults[] = {"--benchmark_repetitions=20", "--benchmark_min_time=0.02",
                              "--benchmark_enable_random_interleaving=true"};
    std::vector<char*> arguments(argv, argv + argc);
    for (std::string& text : defaults) arguments.insert(arguments.begin() + 1, text.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    ShortestTimes reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintFigures();
    return reporter.Failed() ? 1 : 0;
}
