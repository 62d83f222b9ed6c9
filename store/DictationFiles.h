#pragma once

#include <cstdint>
#include <string_view>

#include "base/LPath.h"

// Size in bytes of a WAV file of ours without a sample (its header); a file up to this size holds no
// recording.
inline constexpr int64_t kEmptyAudioBytes = 46;

// The three files of one dictation, which share one base name in one folder.
struct DictationFiles {
    LPath record;  // ".dat", settings format
    LPath audio;   // ".wav"
    LPath notes;   // ".txt"

    // Paths for a number ("%.8ld") in a folder that ends in a separator.
    static DictationFiles OfNumber(const LPath& folder, int32_t number);
    // Paths from any one of the three.
    static DictationFiles OfPath(const LPath& path);

    // The files of the same base name in another folder.
    DictationFiles InFolder(const LPath& folder) const;

    bool AnyExists() const;
    // Whether the record is absent for good: not for the moment in which another program replaces it, while a
    // move is under way that may bring it back, or because the folder itself is away, as a drive that was
    // disconnected is.
    bool IsGone() const;
};
