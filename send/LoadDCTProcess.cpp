#include "send/LoadDCTProcess.h"

#include <algorithm>
#include <array>
#include <string>

#include "audio/wave/LDecodeWave.h"
#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "send/DctFormat.h"
#include "send/SendStage.h"
#include "store/NotesFile.h"
#include "store/SettingsKeys.h"

// The fields before the notes are read at once, as far as the file goes. Every length in the file is a claim,
// which the size of the file bounds, so no file costs more than its own size. The audio goes through a
// temporary file, since the readers of WAV files take whole files, and goes out again through the pump.

namespace {

constexpr double kFieldsBegun = 0.03;
constexpr double kFieldsEnd = 0.06;
constexpr double kCopyStart = 0.1;
constexpr double kCopySpan = 0.3;
constexpr double kDecodeStart = 0.4;
constexpr double kDecodeEnd = 0.95;

// The longest that the fields up to the priority can be.
constexpr size_t kMostFieldBytes = 2 + 5 * 4 + kDctShortTexts * (1 + kDctLongestText) + 1;

constexpr char kNewer[] =
    "Unable to load dct file because file version not supported. Please download the latest version of this "
    "software.";
constexpr char kEncrypted[] =
    "Encrypted files cannot be opened with Corvane. Please use Quennet to open this file.";
constexpr char kMultichannel[] =
    "Multichannel files cannot be opened with Corvane. Please use Quennet to open this file.";
constexpr char kNoCodec[] =
    "Unable to open dct file because audio compression codec is not installed on this computer.";
constexpr char kUnreadable[] =
    "Unable to load dct file because it cannot be read. Please copy it to this computer and try again.";
constexpr char kUnwritable[] = "The dictation could not be stored. The disk may be full.";

std::string Corrupt(const char* what) {
    return LFormat(
        "Unable to load dct file because of file corruption (%s error). Please ask the dictator to send it "
        "again.",
        what);
}

ProcessResult Refuse(ProcessContext& context, std::string_view text,
                     ProcessResult result = ProcessResult::Failed) {
    LTrace("Process(LoadDCTProcess) refused:", text);
    context.SetError(text);
    return result;
}

const char* PriorityText(uint8_t priority) {
    if (priority <= kDctHighestLow) return "Low";
    return priority <= kDctHighestNormal ? "Normal" : "High";
}

// A file in the platform's temporary folder, gone with its object.
struct TemporaryFile {
    ~TemporaryFile() {
        if (!path.Empty()) LFile::Delete(path, kReadWaitMs);
    }
    const LPath path = LFile::MakeTemporary("tmp");
};

// The pump's share of the progress; its status texts are for other purposes.
class DecodeStage final : public SendStage {
public:
    explicit DecodeStage(ProcessContext& whole) : SendStage(whole, kDecodeStart, kDecodeEnd) {}
    void SetStatus(std::string_view) override {}
};

}  // namespace

ProcessResult LoadDCTProcess::Process(ProcessContext& context) {
    const ProcessResult result = Load(context);
    m_file.Close();
    if (result == ProcessResult::Done) return result;
    if (m_hasAudio) LFile::Delete(m_files.audio, kReadWaitMs);
    if (m_hasNotes) LFile::Delete(m_files.notes, kReadWaitMs);
    return result;
}

ProcessResult LoadDCTProcess::Load(ProcessContext& context) {
    context.SetStatus("Loading DCT File\n" + std::string(m_path.View()));
    context.SetProgress(0);
    if (LFile::OpenToRead(m_path, m_file) != LReadResult::Values) {
        LTrace("Process(LoadDCTProcess) unable to open file", m_path.View());
        return ProcessResult::Failed;
    }
    context.SetProgress(kFieldsBegun);
    m_fileBytes = m_file.Size();
    std::vector<uint8_t> fields(static_cast<size_t>(Clamp<int64_t>(m_fileBytes, 0, kMostFieldBytes)));
    if (m_fileBytes < 0 || !m_file.ReadExact(fields)) return Refuse(context, kUnreadable);
    LByteReader in(fields);
    bool isEmpty = false;
    if (const Step end = ReadStart(in, isEmpty, context)) return *end;
    if (isEmpty) return ProcessResult::Done;
    if (const Step end = ReadFields(in, context)) return *end;
    context.SetProgress(kFieldsEnd);
    if (!m_file.Seek(static_cast<int64_t>(fields.size() - in.Remaining())))
        return Refuse(context, kUnreadable);
    if (const Step end = ReadNotes(context)) return *end;
    if (const Step end = ReadChannels(context)) return *end;
    return LoadAudio(context);
}

// From the version to the flags.
LoadDCTProcess::Step LoadDCTProcess::ReadStart(LByteReader& in, bool& isEmpty, ProcessContext& context) {
    m_version = in.U16();
    if (m_version > kDctVersionEncrypted) return Refuse(context, kNewer);
    const uint32_t length = in.U32();
    if (!in.Ok() || length != m_fileBytes) return Refuse(context, Corrupt("length"));
    const uint32_t flags = in.U32();
    if (m_version >= kDctVersionEncrypted && (flags & kDctFlagEncrypted) != 0)
        return Refuse(context, kEncrypted);
    isEmpty = (flags & kDctFlagEmpty) != 0;
    return {};
}

// From the user number to the priority, and stores them. The two numbers are the sender's and mean nothing
// here; a text ends at its first control byte in the record.
LoadDCTProcess::Step LoadDCTProcess::ReadFields(LByteReader& in, ProcessContext& context) {
    in.U32();
    in.U32();
    std::vector<LProfile::Value> values = {{RecordKeys::kDate, std::to_string(in.U32())}};
    for (const char* key : RecordKeys::kLoadedTexts) {
        const auto text = in.Bytes(in.U8());
        values.push_back({key, std::string(text.begin(), text.end())});
    }
    values.push_back({RecordKeys::kPriority.key, PriorityText(in.U8())});
    if (!in.Ok()) return Refuse(context, Corrupt("length"));
    if (!LProfile::WriteValues(m_files.record, RecordKeys::kSection, values))
        return Refuse(context, kUnwritable);
    return {};
}

LoadDCTProcess::Step LoadDCTProcess::ReadNotes(ProcessContext& context) {
    std::array<uint8_t, 4> field{};
    const bool isThere = m_file.ReadExact(field);
    const uint32_t length = LByteReader(field).U32();
    if (!isThere || length > kDctLongestNotes || length > m_fileBytes - m_file.Position())
        return Refuse(context, Corrupt("notes"), ProcessResult::Stopped);
    std::string notes(length, '\0');
    if (!m_file.ReadExact({reinterpret_cast<uint8_t*>(notes.data()), notes.size()}))
        return Refuse(context, kUnreadable);
    m_hasNotes = !LFile::Exists(m_files.notes) && NotesFile::Write(m_files.notes, LBeforeZero(notes));
    return m_hasNotes ? Step() : Refuse(context, kUnwritable);
}

// The number of channels and the length of the audio, where the version has them.
LoadDCTProcess::Step LoadDCTProcess::ReadChannels(ProcessContext& context) {
    m_audioBytes = m_fileBytes - m_file.Position();
    if (m_version < kDctVersionSized) return {};
    std::array<uint8_t, 5> fields{};
    const bool areThere = m_file.ReadExact(fields);
    LByteReader in(fields);
    const uint8_t channels = in.U8();
    if (channels == 0) return Refuse(context, Corrupt("channels"));
    if (channels > 1) return Refuse(context, kMultichannel);
    if (!areThere) return Refuse(context, Corrupt("length"));
    m_audioBytes = in.U32();
    return {};
}

ProcessResult LoadDCTProcess::LoadAudio(ProcessContext& context) {
    const TemporaryFile temporary;
    if (const Step end = CopyAudio(temporary.path, context)) return *end;
    return Decode(temporary.path, context);
}

// Copies the audio into the temporary file. A length beyond the end of the file means up to its end.
LoadDCTProcess::Step LoadDCTProcess::CopyAudio(const LPath& target, ProcessContext& context) {
    LFile copy(target, LFile::Open::CreateNew);
    if (target.Empty() || !copy.IsOpen()) return Refuse(context, kUnwritable);
    const int64_t present = std::min(m_audioBytes, m_fileBytes - m_file.Position());
    std::vector<uint8_t> chunk(kDctChunkBytes);
    for (int64_t copied = 0; copied < present || copied == 0;) {
        if (context.CancelRequested()) return ProcessResult::Stopped;
        // A division of whole numbers: the bar stands while the audio is copied, which is quick.
        const int64_t step = (m_audioBytes + copied) / std::max<int64_t>(m_audioBytes, 1);
        context.SetProgress(kCopyStart + kCopySpan * static_cast<double>(step));
        const auto bytes =
            std::span(chunk).first(static_cast<size_t>(std::min<int64_t>(present - copied, kDctChunkBytes)));
        if (bytes.empty()) break;
        if (!m_file.ReadExact(bytes)) return Refuse(context, kUnreadable);
        if (!copy.WriteAll(bytes)) return Refuse(context, kUnwritable);
        copied += static_cast<int64_t>(bytes.size());
    }
    return {};
}

ProcessResult LoadDCTProcess::Decode(const LPath& copy, ProcessContext& context) {
    if (context.CancelRequested()) return ProcessResult::Stopped;
    const LSoundSource source = LWaveFile::OpenSource(copy);
    if (source->IsError()) {
        LTrace("Process(LoadDCTProcess) OpenSource ERROR");
        LWaveInfo info;
        return LWaveFile::ReadInfo(copy, info) ? Refuse(context, kNoCodec)
                                               : Refuse(context, Corrupt("audio"));
    }
    m_hasAudio = !LFile::Exists(m_files.audio);
    if (!m_hasAudio) return Refuse(context, kUnwritable);
    DecodeStage stage(context);
    switch (LDecodeWave(source, m_files.audio, stage)) {
        case LDecoded::Whole:
            return ProcessResult::Done;
        case LDecoded::Stopped:
            return ProcessResult::Stopped;
        case LDecoded::Cut:
        case LDecoded::NotRead:
            return Refuse(context, Corrupt("audio"));
        case LDecoded::NotWritten:
            LTrace("Process(LoadDCTProcess) OpenSink ERROR");
            return Refuse(context, kUnwritable);
    }
    return ProcessResult::Failed;
}
