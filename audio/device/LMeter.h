#pragma once

#include <array>
#include <cstdint>

#include "audio/device/LDBTables.h"

enum class LMeterColour : uint8_t { Dark, Green, Red };

// What a meter of some width shows: stretches of pixels from the left, some of them empty, which cover the
// width exactly.
struct LMeterPicture {
    struct Stretch {
        int32_t from = 0;
        int32_t to = 0;
        LMeterColour colour = LMeterColour::Dark;
    };
    std::array<Stretch, 5> stretches;

    LMeterColour ColourAt(int32_t x) const;

    // Calls repaint(from, to) for each range of pixels in which the two differ.
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

// A level meter of one channel: a bar that rises at once and falls evenly, green and above a marked level red,
// and a mark that stays where the bar was highest before it falls too. Lit in whole segments.
// Units:  levels in dB, as in LDecibel.h; times are millisecond tick counts and may wrap.
// Thread: one at a time.
class LMeter {
public:
    static constexpr int32_t kSegmentPixels = 4;  // the pattern of the brushes
    static constexpr uint32_t kHoldMs = 1500;
    static constexpr uint32_t kStepMs = 50;  // between two pictures of something that falls
    static constexpr uint32_t kNever = UINT32_MAX;

    void SetLevel(int8_t db, uint32_t nowMs);
    // Lets fall what falls by itself.
    void Advance(uint32_t nowMs);
    // How long the picture stays as it is; kNever when only another level can change it.
    uint32_t WaitMs(uint32_t nowMs) const;

    LMeterPicture Draw(int32_t width) const;

private:
    // Stands for a while at the highest value it was given, then falls to the lowest it may have.
    class Falling {
    public:
        constexpr Falling(uint32_t holdMs, uint32_t dbPerSecond)
            : m_holdMs(holdMs), m_dbPerSecond(dbPerSecond) {}
        void Advance(int32_t lowestDb, uint32_t nowMs);
        int32_t Db() const { return m_db; }
        // Until it begins to fall; 0 when it does.
        uint32_t HoldsMs(uint32_t nowMs) const;

    private:
        uint32_t m_holdMs;
        uint32_t m_dbPerSecond;
        uint32_t m_sinceMs = 0;
        int32_t m_fromDb = LDB::LDBTablesClass::kLowestDb;
        int32_t m_db = LDB::LDBTablesClass::kLowestDb;
    };

    int32_t m_levelDb = LDB::LDBTablesClass::kLowestDb;
    Falling m_bar{0, 36};
    Falling m_peak{kHoldMs, 24};
};
