#pragma once

#include <cstdint>

#include "audio/wave/LWaveFile.h"

// The format of a new dictation: 16 bits, mono, at the user's rate. The default rate where the stored one is
// none that a sound card knows.
LWaveFileFormat NewRecordingFormat(const LPath& userFile);

// The stored values of the setting "recordmode".
enum class RecordMode : int32_t { Overwrite = 0, Insert = 1, Append = 2 };

constexpr RecordMode ToRecordMode(int32_t stored) {
    return stored >= 0 && stored <= 2 ? static_cast<RecordMode>(stored) : RecordMode::Overwrite;
}

// A recording from a position below this, within the first half second, replaces the whole file, on purpose.
constexpr int32_t kFromStartBelowMs = 501;
// Hang time of voice activation: after three seconds without voice nothing is written until the next word.
constexpr int32_t kHangTimeMs = 3000;
// A recording that has heard no voice for this long since its start says so.
constexpr uint32_t kNoVoiceMs = 5000;
// The longest recording, counted from its start: four hours.
constexpr int32_t kMaximumRecordingMs = 14400000;

// So near to the end, an insertion would only push a word or a breath behind what is said now.
constexpr int32_t kNoInsertWithinMs = 1000;

// Start of a recording, in milliseconds of the dictation and in frames of its file. An insertion is recorded
// into a file of its own and merged there afterwards.
struct RecordStart {
    int32_t positionMs = 0;
    int32_t frames = 0;
    bool isInsert = false;
};

// Place in the dictation as the user sees it. Another program may have changed the file since it was
// measured.
struct ShownPlace {
    int32_t positionMs = 0;
    int32_t lengthMs = 0;
};

// Overwriting from the end of the shown length appends: more sound may lie behind it, recorded in another
// session, that the user has never seen.
constexpr RecordMode ModeAt(RecordMode mode, ShownPlace shown) {
    return shown.positionMs >= shown.lengthMs ? RecordMode::Append : mode;
}

// Whether a recording leaves all that is there in its place. Appending to half a second replaces it.
constexpr bool OnlyAppends(RecordMode mode, ShownPlace shown) {
    return ModeAt(mode, shown) == RecordMode::Append && shown.lengthMs >= kFromStartBelowMs;
}

// Overwrite starts at the position, append at the end. Insert inserts at the position, also within the first
// half second; but it records over what follows within the last second, and over all of a dictation of half a
// second. A position at or beyond the end gives the exact end, where no frame is cut; within the file the
// milliseconds are rounded down to a whole frame.
RecordStart PlanRecording(RecordMode mode, int32_t positionMs, const LWaveInfo& existing);
