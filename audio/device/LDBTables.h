#pragma once

#include <array>
#include <cstdint>

#include "audio/stream/LDecibel.h"

namespace LDB {

// The scale of a meter: the place of a level, in thousandths of the meter's length. The scale is linear
// between five points and ends at full scale. Its upper three quarters show 36 dB of the range of speech, so
// that they move visibly.
// Units:  levels in dB, as in LDecibel.h.
class LDBTablesClass {
public:
    static constexpr int32_t kScale = 1000;
    static constexpr int8_t kLowestDb = -48;  // the left end, also for all levels below
    static constexpr int8_t kRedAboveDb = 6;  // 6 dB below full scale: louder sound is close to clipping

    constexpr LDBTablesClass() {
        for (int32_t db = INT8_MIN; db <= INT8_MAX; ++db) m_positions[Index(db)] = Interpolate(db);
    }
    // 0 to kScale.
    constexpr int32_t Position(int8_t db) const { return m_positions[Index(db)]; }

private:
    struct Point {
        int32_t db;
        int32_t position;
    };
    static constexpr Point kPoints[] = {
        {kLowestDb, 0}, {-24, 250}, {-12, 500}, {0, 750}, {kFullScaleDb, kScale}};

    static constexpr size_t Index(int32_t db) { return static_cast<size_t>(db - INT8_MIN); }
    static constexpr int16_t Interpolate(int32_t db) {
        if (db <= kPoints[0].db) return 0;
        for (size_t i = 1; i < std::size(kPoints); ++i) {
            const Point& a = kPoints[i - 1];
            const Point& b = kPoints[i];
            if (db <= b.db)
                return static_cast<int16_t>(a.position +
                                            (db - a.db) * (b.position - a.position) / (b.db - a.db));
        }
        return kScale;
    }

    std::array<int16_t, 256> m_positions{};
};

inline constexpr LDBTablesClass kTables;

}  // namespace LDB
