#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/LBytes.h"
#include "base/LProcess.h"
#include "base/LStream.h"
#include "send/DctFormat.h"
#include "send/LBlowFish.h"
#include "store/CurrentUser.h"

// The fields of a DCT file ahead of notes and audio.
struct DctHeader {
    uint32_t user = 0;
    uint32_t number = 0;
    uint32_t date = 0;  // seconds since 1970-01-01 00:00 UTC
    std::string name;
    UserDetails sender;
    uint8_t priority = kDctPriorityNormal;
};

// The priority byte for a record's "priority" text; its first letter decides.
uint8_t DctPriority(std::string_view text);

// Writes one DCT file onto an empty stream, plain or encrypted.
// Units:  progress is in fractions of the queue item; it creeps from 0.42 up to 0.5.
// Errors: Failed (traced) when notes or audio cannot be read to their ends, when the stream does not take
//         every byte, and when the file would exceed 4 GB, the range of its length field. Stopped when a
//         cancel is requested while encrypted audio is written; plain audio is written to its end. Until the
//         result is Done the length field is 0, so that no reader accepts an unfinished file.
// Thread: one at a time.
class DctWriter {
public:
    // With an empty pass phrase the file is plain.
    DctWriter(LStream& out, std::string_view passPhrase, ProcessContext& context);

    // notes and audio: nullptr writes a length of 0. Notes beyond kDctLongestNotes are cut (traced): a reader
    // would refuse the whole file, and the typist must at least be able to open the dictation.
    ProcessResult Write(const DctHeader& header, LReadStream* notes, LReadStream* audio);

private:
    void AddFields(const DctHeader& header);
    bool AddNotes(LReadStream* notes);
    ProcessResult CopyAudio(LReadStream& audio, int64_t bytes);
    bool CopyChunk(LReadStream& audio, std::span<uint8_t> chunk, size_t bytes);
    std::span<uint8_t> Encrypted(std::span<uint8_t> region, size_t used) const;
    bool Finish(uint32_t fileBytes);

    LStream& m_out;
    ProcessContext& m_context;
    bool m_isEncrypted;
    // The field "key check": the sum of the pass phrase's bytes modulo 256.
    uint8_t m_keyCheck = 0;
    LBlowFish m_cipher;
    LByteWriter m_head;  // everything before the audio
};
