#pragma once

#include <array>
#include <cstdint>

#include "audio/device/LDBTables.h"

enum class LMeterColour : uint8_t { Dark, Green, Red };

// The picture of a meter of some width: stretches of pixels from the left, some of them empty, which cover
// the width exactly.
struct LMeterPicture {
    struct Stretch {
        int32_t from = 0;
        int32_t to = 0;
        LMeterColour colour = LMeterColour::Dark;
    };
    std::array<Stretch, 5> stretches;

    LMeterColour ColourAt(int32_t x) const;

    // Calls repaint(from, to) for each range of pixels in which the two pictures differ.
    template <class Repaint>
    static void ForEachChange(const LMeterPicture& before, const LMeterPicture& after, Repaint&& repaint) {
        for (const Stretch& a : before.stretches) {
            for (const Stretch& b : after.stretches) {
                const int32_t from = a.from > b.from ? a.from : b.from;
                const int32_t to = a.to < b.to ? a.to : b.to;
                if (from < to && a.colour != b.colour) repaint(from, to);
            }
        }
    }
};

// A level meter of one channel: a bar that rises at once and falls at a constant speed, green and above a
// marked level red, and a mark at the bar's recent maximum that falls after a hold time. Both are lit in
// whole segments. The class computes the picture; the window (LDBDisplay) paints it.
// Units:  levels in dB, as in LDecibel.h; times are millisecond tick counts and may wrap.
// Thread: one at a time.
class LMeter {
public:
    static constexpr int32_t kSegmentPixels = 4;  // the period of the brushes' pattern
    static constexpr uint32_t kHoldMs = 1500;
    static constexpr uint32_t kStepMs = 50;  // between two pictures of a bar or mark that falls
    static constexpr uint32_t kNever = UINT32_MAX;

    void SetLevel(int8_t db, uint32_t nowMs);
    // Moves bar and mark to where they have fallen by now.
    void Advance(uint32_t nowMs);
    // For how long the picture stays as it is; kNever when only another level can change it.
    uint32_t WaitMs(uint32_t nowMs) const;

    LMeterPicture Draw(int32_t width) const;

private:
    // A value that stands at its highest input for a hold time, then falls at a constant speed to a lower
    // limit.
    class Falling {
    public:
        constexpr Falling(uint32_t holdMs, uint32_t dbPerSecond)
            : m_holdMs(holdMs), m_dbPerSecond(dbPerSecond) {}
        void Advance(int32_t lowestDb, uint32_t nowMs);
        int32_t Db() const { return m_db; }
        // The rest of the hold time; 0 once it is falling.
        uint32_t HoldsMs(uint32_t nowMs) const;

    private:
        uint32_t m_holdMs;
        uint32_t m_dbPerSecond;
        uint32_t m_sinceMs = 0;
        int32_t m_fromDb = LDB::LDBTablesClass::kLowestDb;
        int32_t m_db = LDB::LDBTablesClass::kLowestDb;
    };

    int32_t m_levelDb = LDB::LDBTablesClass::kLowestDb;
    Falling m_bar{0, 36};  // 36 dB/s: from full scale to -24 dB in a second
    Falling m_peak{kHoldMs, 24};
};
