#include "app/transport/RecordPlan.h"

#include "audio/stream/LSoundTime.h"
#include "base/LArith.h"
#include "store/SettingsKeys.h"

// The range of sampling rates in Hz that is accepted from the settings.
static constexpr int32_t kLowestRate = 1000;
static constexpr int32_t kHighestRate = 192000;

LWaveFileFormat NewRecordingFormat(const LPath& userFile) {
    const int32_t rate = Settings::Read(userFile, UserKeys::kSampleRate);
    const bool isUsable = rate >= kLowestRate && rate <= kHighestRate;
    return LWaveFileFormat::Pcm(16, 1,
                                static_cast<uint32_t>(isUsable ? rate : UserKeys::kSampleRate.defaultValue));
}

RecordStart PlanRecording(RecordMode mode, int32_t positionMs, const LWaveInfo& existing) {
    const int32_t lengthMs = Saturate(existing.LengthMs());
    const int32_t wantedMs = mode == RecordMode::Append ? lengthMs : positionMs;
    const int32_t rate = static_cast<int32_t>(existing.format.SampleRate());
    const bool isLong = lengthMs >= kFromStartBelowMs;
    const bool isBeforeTheEnd = wantedMs < kFromStartBelowMs || lengthMs - wantedMs > kNoInsertWithinMs;
    if (mode == RecordMode::Insert && isLong && isBeforeTheEnd)
        return {wantedMs, MsToFrames(wantedMs, rate), true};
    if (wantedMs < kFromStartBelowMs) return {};
    if (wantedMs >= lengthMs) return {lengthMs, Saturate(existing.Frames())};
    return {wantedMs, MsToFrames(wantedMs, rate)};
}
