#pragma once

#include <cstddef>
#include <cstdint>

// Constants of the DCT dictation container (docs/file-formats.md): one dictation with its sender, notes and
// audio in one file, integers little-endian. Of what we write a plain file is always version 0, an encrypted
// one always version 2; version 1 is read.

constexpr uint16_t kDctVersionPlain = 0;
constexpr uint16_t kDctVersionSized = 1;  // from here on with the fields "channels" and "audio length"
constexpr uint16_t kDctVersionEncrypted = 2;

constexpr uint32_t kDctFlagEmpty = 1;      // read: there is nothing to load. Never written
constexpr uint32_t kDctFlagEncrypted = 2;  // notes and audio are encrypted; means nothing before version 2

constexpr size_t kDctLengthOffset = 2;         // of the file length, u32, itself included
constexpr size_t kDctLongestText = 255;        // bytes of a short string
constexpr size_t kDctShortTexts = 11;          // name, and the sender's ten
constexpr uint32_t kDctLongestNotes = 262144;  // bytes; a reader refuses more
constexpr size_t kDctChunkBytes = 32768;       // of audio, each read and written at once

constexpr uint8_t kDctPriorityLow = 10;
constexpr uint8_t kDctPriorityNormal = 50;
constexpr uint8_t kDctPriorityHigh = 100;

// A byte up to these reads back as low, as normal; any other as high.
constexpr uint8_t kDctHighestLow = 33;
constexpr uint8_t kDctHighestNormal = 75;
