#include "send/DctWriter.h"

#include <algorithm>
#include <limits>

#include "base/LArith.h"
#include "base/LTrace.h"

// The head (all fields and the notes) is small and built in memory; the audio follows in chunks of 32 KB, so
// that an hour of it needs no memory of its size. The length field is written as 0 and filled in last: a file
// that was cut off by the end of the program stays recognisable.
// Encryption treats notes and audio as two regions, each padded with zeros to whole cipher blocks; the stated
// lengths are those before padding. Plain files have neither the padding nor the fields "channels" and "audio
// length": their audio extends to the end of the file.

static constexpr double kProgressStart = 0.4;
static constexpr double kProgressSpan = 0.1;
// Progress of the audio: the share of the span that remains after the first chunk, squared after each further
// one. The bar comes close to its end after six chunks and never reaches it.
static constexpr double kProgressFirstGap = 0.8;

static bool Refuse(std::string_view trace) {
    LTrace(trace);
    return false;
}

// Bytes rounded up to whole cipher blocks.
static size_t PaddedSize(size_t bytes) {
    return RoundUp(bytes, LBlowFish::kBlockBytes);
}

static void AddShortText(LByteWriter& out, std::string_view text) {
    text = text.substr(0, kDctLongestText);
    out.U8(static_cast<uint8_t>(text.size()));
    out.Text(text);
}

uint8_t DctPriority(std::string_view text) {
    switch (text.empty() ? '\0' : text[0]) {
        case 'H':
            return kDctPriorityHigh;
        case 'L':
            return kDctPriorityLow;
        default:
            return kDctPriorityNormal;
    }
}

DctWriter::DctWriter(LStream& out, std::string_view passPhrase, ProcessContext& context)
    : m_out(out), m_context(context), m_isEncrypted(!passPhrase.empty()) {
    if (!m_isEncrypted) return;
    m_cipher.SetKey(passPhrase);
    for (char c : passPhrase) m_keyCheck = static_cast<uint8_t>(m_keyCheck + static_cast<uint8_t>(c));
}

ProcessResult DctWriter::Write(const DctHeader& header, LReadStream* notes, LReadStream* audio) {
    const int64_t audioBytes = audio ? audio->Size() : 0;
    if (audioBytes < 0) {
        LTrace("DctWriter::Write size of the audio unknown");
        return ProcessResult::Failed;
    }
    AddFields(header);
    if (!AddNotes(notes)) return ProcessResult::Failed;
    if (m_isEncrypted) {
        m_head.U8(1);  // channels
        m_head.U32(static_cast<uint32_t>(audioBytes));
    }
    const int64_t paddedBytes =
        m_isEncrypted ? RoundUp<int64_t>(audioBytes, LBlowFish::kBlockBytes) : audioBytes;
    const int64_t fileBytes = static_cast<int64_t>(m_head.View().size()) + paddedBytes;
    if (fileBytes > std::numeric_limits<uint32_t>::max()) {
        LTrace("DctWriter::Write more than 4 GB");
        return ProcessResult::Failed;
    }
    if (!m_out.WriteAll(m_head.View())) {
        LTrace("DctWriter::Write unable to write fields");
        return ProcessResult::Failed;
    }
    if (audio) {
        if (const auto result = CopyAudio(*audio, audioBytes); result != ProcessResult::Done) return result;
    }
    return Finish(static_cast<uint32_t>(fileBytes)) ? ProcessResult::Done : ProcessResult::Failed;
}

void DctWriter::AddFields(const DctHeader& header) {
    m_head.U16(m_isEncrypted ? kDctVersionEncrypted : kDctVersionPlain);
    m_head.U32(0);  // file length, filled in at the end
    m_head.U32(m_isEncrypted ? kDctFlagEncrypted : 0);
    m_head.U32(header.user);
    m_head.U32(header.number);
    if (m_isEncrypted) m_head.U8(m_keyCheck);
    m_head.U32(header.date);
    AddShortText(m_head, header.name);
    const UserDetails& sender = header.sender;
    for (const std::string* text :
         {&sender.name, &sender.email, &sender.company, &sender.phone, &sender.cell, &sender.fax})
        AddShortText(m_head, *text);
    for (const std::string& line : sender.address) AddShortText(m_head, line);
    m_head.U8(header.priority);
}

bool DctWriter::AddNotes(LReadStream* notes) {
    const int64_t present = notes ? notes->Size() : 0;
    if (present < 0) return Refuse("DctWriter::AddNotes size of the notes unknown");
    const size_t length = static_cast<size_t>(std::min<int64_t>(present, kDctLongestNotes));
    if (present > kDctLongestNotes) LTrace("DctWriter::AddNotes notes too long, cut");
    std::vector<uint8_t> text(PaddedSize(length));
    if (length > 0 && !notes->ReadExact(std::span(text).first(length)))
        return Refuse("DctWriter::AddNotes unable to read notes");
    m_head.U32(static_cast<uint32_t>(length));
    m_head.Bytes(Encrypted(text, length));
    return true;
}

// Copies the audio chunk by chunk. The last chunk is shorter than 32 KB and may be empty.
ProcessResult DctWriter::CopyAudio(LReadStream& audio, int64_t bytes) {
    std::vector<uint8_t> chunk(kDctChunkBytes);
    double gap = kProgressFirstGap;
    for (; bytes >= static_cast<int64_t>(kDctChunkBytes); bytes -= kDctChunkBytes) {
        if (m_isEncrypted && m_context.CancelRequested()) return ProcessResult::Stopped;
        if (!CopyChunk(audio, chunk, kDctChunkBytes)) return ProcessResult::Failed;
        m_context.SetProgress((1 - gap) * kProgressSpan + kProgressStart);
        gap *= gap;
    }
    return CopyChunk(audio, chunk, static_cast<size_t>(bytes)) ? ProcessResult::Done : ProcessResult::Failed;
}

bool DctWriter::CopyChunk(LReadStream& audio, std::span<uint8_t> chunk, size_t bytes) {
    if (!audio.ReadExact(chunk.first(bytes))) return Refuse("DctWriter::CopyChunk unable to read audio");
    if (!m_out.WriteAll(Encrypted(chunk, bytes))) return Refuse("DctWriter::CopyChunk unable to write audio");
    return true;
}

// Encrypts a region in place where the file is encrypted, and returns the bytes to be written: the used ones
// in a plain file, these and the zeros up to a whole block in an encrypted one.
std::span<uint8_t> DctWriter::Encrypted(std::span<uint8_t> region, size_t used) const {
    if (!m_isEncrypted) return region.first(used);
    const std::span<uint8_t> padded = region.first(PaddedSize(used));
    std::fill(padded.begin() + static_cast<ptrdiff_t>(used), padded.end(), uint8_t{0});
    m_cipher.EncryptBuffer(padded);
    return padded;
}

bool DctWriter::Finish(uint32_t fileBytes) {
    LByteWriter length;
    length.U32(fileBytes);
    if (m_out.Position() == fileBytes && m_out.Seek(kDctLengthOffset) && m_out.WriteAll(length.View()))
        return true;
    return Refuse("DctWriter::Finish unable to write length");
}
