#pragma once

#include <cstdint>
#include <string_view>

#include "base/LPath.h"

// The bytes of a WAV file without a sample; what is no longer holds no recording.
inline constexpr int64_t kEmptyAudioBytes = 46;

// The three files of one dictation, which share one base name in one folder.
struct DictationFiles {
    LPath record;  // ".dat", settings format
    LPath audio;   // ".wav"
    LPath notes;   // ".txt"

    // From the number: "%.8ld" in a folder that ends in a separator.
    static DictationFiles OfNumber(const LPath& folder, int32_t number);
    // From any one of the three paths.
    static DictationFiles OfPath(const LPath& path);

    // The files of the same base name in another folder.
    DictationFiles InFolder(const LPath& folder) const;

    bool AnyExists() const;
};
