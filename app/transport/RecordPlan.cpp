#include "app/transport/RecordPlan.h"

#include "audio/stream/LSoundTime.h"
#include "base/LArith.h"

RecordStart PlanRecording(RecordMode mode, int32_t positionMs, const LWaveInfo& existing) {
    const int32_t lengthMs = Saturate(existing.LengthMs());
    const int32_t wantedMs = mode == RecordMode::Overwrite ? positionMs : lengthMs;
    if (wantedMs < kFromStartBelowMs) return {};
    if (wantedMs >= lengthMs) return {lengthMs, Saturate(existing.Frames())};
    return {wantedMs, MsToFrames(wantedMs, static_cast<int32_t>(existing.format.SampleRate()))};
}
