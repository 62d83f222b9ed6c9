#include "app/transport/RecordPlan.h"

#include "base/LArith.h"

int32_t PositionToFrames(int32_t positionMs, const LWaveFileFormat& format) {
    const int64_t byteRate = format.AverageBytesPerSecond();
    const int64_t blockAlign = format.BlockAlign();
    if (positionMs <= 0 || blockAlign == 0) return 0;
    const int64_t offset = positionMs / 1000 * byteRate + positionMs % 1000 * byteRate / 1000;
    return Saturate(offset / blockAlign);
}

RecordStart PlanRecording(RecordMode mode, int32_t positionMs, const LWaveInfo& existing) {
    const int32_t lengthMs = Saturate(existing.LengthMs());
    const int32_t wantedMs = mode == RecordMode::Overwrite ? positionMs : lengthMs;
    if (wantedMs < kFromStartBelowMs) return {};
    if (wantedMs >= lengthMs) return {lengthMs, Saturate(existing.Frames())};
    return {wantedMs, PositionToFrames(wantedMs, existing.format)};
}
