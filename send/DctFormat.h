#pragma once

#include <cstddef>
#include <cstdint>

// Constants of the DCT dictation container (docs/file-formats.md): one dictation with its sender, notes and
// audio in one file, integers little-endian. A plain file is always version 0, an encrypted one always
// version 2; version 1 is never written.

constexpr uint16_t kDctVersionPlain = 0;
constexpr uint16_t kDctVersionEncrypted = 2;

constexpr uint32_t kDctFlagEncrypted = 2;  // notes and audio are encrypted

constexpr size_t kDctLengthOffset = 2;         // of the file length, u32, itself included
constexpr size_t kDctLongestText = 255;        // bytes of a short string
constexpr uint32_t kDctLongestNotes = 262144;  // bytes; a reader refuses more
constexpr size_t kDctChunkBytes = 32768;       // of audio, each read and written at once

constexpr uint8_t kDctPriorityLow = 10;
constexpr uint8_t kDctPriorityNormal = 50;
constexpr uint8_t kDctPriorityHigh = 100;
