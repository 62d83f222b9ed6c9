#include "audio/device/LMeter.h"

#include <algorithm>

#include "base/LArith.h"

using LDB::kTables;
using LDB::LDBTablesClass;

// A fall of this length passes the whole scale; the limit keeps the product below within 32 bits.
static constexpr uint32_t kLongestFallMs = 60000;

// The end of the last segment that a level lights, in pixels. Any level above the lowest lights at least one.
static int32_t LitPixels(int32_t db, int32_t width) {
    const int32_t pixels = ScaleInt(width, kTables.Position(static_cast<int8_t>(db)), LDBTablesClass::kScale);
    const int32_t least = db > LDBTablesClass::kLowestDb ? 1 : 0;
    return std::min(RoundUp(std::max(pixels, least), LMeter::kSegmentPixels), width);
}

LMeterColour LMeterPicture::ColourAt(int32_t x) const {
    for (const Stretch& stretch : stretches) {
        if (x >= stretch.from && x < stretch.to) return stretch.colour;
    }
    return LMeterColour::Dark;
}

uint32_t LMeter::Falling::HoldsMs(uint32_t nowMs) const {
    const uint32_t elapsedMs = nowMs - m_sinceMs;
    return elapsedMs < m_holdMs ? m_holdMs - elapsedMs : 0;
}

void LMeter::Falling::Advance(int32_t lowestDb, uint32_t nowMs) {
    if (HoldsMs(nowMs) == 0) {
        const uint32_t fallMs = std::min(nowMs - m_sinceMs - m_holdMs, kLongestFallMs);
        m_db = m_fromDb - static_cast<int32_t>(fallMs * m_dbPerSecond / 1000);
    }
    if (m_db > lowestDb) return;
    m_db = m_fromDb = lowestDb;
    m_sinceMs = nowMs;
}

void LMeter::Advance(uint32_t nowMs) {
    m_bar.Advance(m_levelDb, nowMs);
    m_peak.Advance(m_bar.Db(), nowMs);
}

void LMeter::SetLevel(int8_t db, uint32_t nowMs) {
    Advance(nowMs);  // a fall to the new level begins now
    m_levelDb = Clamp<int32_t>(db, LDBTablesClass::kLowestDb, kFullScaleDb);
    Advance(nowMs);
}

uint32_t LMeter::WaitMs(uint32_t nowMs) const {
    if (m_bar.Db() > m_levelDb) return kStepMs;
    if (m_peak.Db() > m_bar.Db()) return std::max(m_peak.HoldsMs(nowMs), kStepMs);
    return kNever;
}

LMeterPicture LMeter::Draw(int32_t width) const {
    const int32_t red = LitPixels(LDBTablesClass::kRedAboveDb, width);
    const int32_t lit = LitPixels(m_bar.Db(), width);
    const int32_t peak = std::max(LitPixels(m_peak.Db(), width), lit);
    const int32_t mark = std::max(lit, (peak - 1) / kSegmentPixels * kSegmentPixels);
    const LMeterColour markColour = mark < red ? LMeterColour::Green : LMeterColour::Red;
    return {{{{0, std::min(lit, red), LMeterColour::Green},
              {std::min(lit, red), lit, LMeterColour::Red},
              {lit, mark, LMeterColour::Dark},
              {mark, peak, markColour},
              {peak, width, LMeterColour::Dark}}}};
}
