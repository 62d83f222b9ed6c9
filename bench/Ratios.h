#pragma once

#include <vector>

// The figures that a bench run prints. Every file of benches declares its own, as objects of static storage:
//
//     const BenchRatio kRatios[] = {{"Blowfish / nettle", kBlowfishBench, kNettleBench}};
//
// After the run each figure whose benches took part is printed as a line: "Blowfish / nettle: 0.55x time",
// or, with a goal, "44100 to 8000 / soxr: 0.40x time (at most 0.50x)". Figures are made of the shortest times
// of the run.
struct BenchFigure {
    const char* label;
    const char* ours;
    const char* peers;  // null: the figure is our time in milliseconds
    double atMost;      // the goal, in the figure's unit; 0: none
};

// All figures, in the order of their construction. Defined in Main.cpp.
std::vector<BenchFigure>& BenchFigures();

// Declares a figure: the time of one bench as a multiple of another's.
struct BenchRatio {
    BenchRatio(const char* label, const char* ours, const char* peers, double atMost = 0.0) {
        BenchFigures().push_back({label, ours, peers, atMost});
    }
};

// Declares a figure: the time of one iteration, in milliseconds.
struct BenchTime {
    BenchTime(const char* label, const char* ours, double atMostMs = 0.0) {
        BenchFigures().push_back({label, ours, nullptr, atMostMs});
    }
};
