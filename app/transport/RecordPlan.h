#pragma once

#include <cstdint>

#include "audio/wave/LWaveFile.h"

enum class RecordMode : int32_t { Overwrite = 0, Insert = 1, Append = 2 };

constexpr RecordMode ToRecordMode(int32_t stored) {
    return stored >= 0 && stored <= 2 ? static_cast<RecordMode>(stored) : RecordMode::Overwrite;
}

// A recording that would begin within the first half second takes the whole file.
constexpr int32_t kFromStartBelowMs = 501;
constexpr int32_t kHangTimeMs = 3000;
constexpr int32_t kMaximumRecordingMs = 14400000;  // four hours on top of the start

// Where a recording begins, in milliseconds of the dictation and in frames of its file.
struct RecordStart {
    int32_t positionMs = 0;
    int32_t frames = 0;
};

// Overwrite starts at the position, append at the end, and so does insert: it replaces nothing. A position
// beyond the end counts as the end, where not one frame is cut; within the file the milliseconds are rounded
// down to a whole frame.
RecordStart PlanRecording(RecordMode mode, int32_t positionMs, const LWaveInfo& existing);
