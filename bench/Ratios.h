#pragma once

#include <vector>

// What a bench run has to tell. Every file of benches names its own figures, as objects of static storage:
//
//     const BenchRatio kRatios[] = {{"Blowfish / nettle", kBlowfishBench, kNettleBench}};
//
// After a run each figure whose benches took part is printed as a line: "Blowfish / nettle: 0.55x time", or, where
// a goal is given, "44100 to 8000 / soxr: 0.40x time (at most 0.50x)". Times are the shortest of this run.
struct BenchFigure {
    const char* label;
    const char* ours;
    const char* peers;  // null: the figure is our time in milliseconds
    double atMost;      // the goal, in the figure's unit; 0: none
};

// In the order of their construction; lives in Main.cpp.
std::vector<BenchFigure>& BenchFigures();

// The time of one bench as a multiple of another's.
struct BenchRatio {
    BenchRatio(const char* label, const char* ours, const char* peers, double atMost = 0.0) {
        BenchFigures().push_back({label, ours, peers, atMost});
    }
};

// The time of one iteration.
struct BenchTime {
    BenchTime(const char* label, const char* ours, double atMostMs = 0.0) {
        BenchFigures().push_back({label, ours, nullptr, atMostMs});
    }
};
