#pragma once

// Pairs of benches of which the first is measured by the second. After a run each pair that took part is
// printed as a line, "plain DCT / sox: 0.80x time": the quotient of their shortest times in this run.
struct BenchRatio {
    const char* label;
    const char* ours;
    const char* peers;
};

inline constexpr char kPlainDctBench[] = "HourToPlainDct";
inline constexpr char kEncryptedDctBench[] = "HourToEncryptedDct";
inline constexpr char kSoxBench[] = "HourWithSox";
inline constexpr char kBlowfishBench[] = "Blowfish";
inline constexpr char kNettleBench[] = "BlowfishOfNettle";

inline constexpr BenchRatio kBenchRatios[] = {
    {"plain DCT / sox", kPlainDctBench, kSoxBench},
    {"encrypted DCT / sox", kEncryptedDctBench, kSoxBench},
    {"Blowfish / nettle", kBlowfishBench, kNettleBench},
};
