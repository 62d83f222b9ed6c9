#include "send/SendItem.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "audio/convert/LPRSourceToSink.h"
#include "audio/wave/LMonoFormat.h"
#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "send/SendDelivery.h"
#include "send/SendError.h"
#include "send/SendStage.h"
#include "store/SettingsKeys.h"

// Two conversions, one after the other. The audio is pumped (LPRSourceToSink) from the dictation into a WAV
// file of the recipient's format; for a DCT file this WAV file is temporary, and DctWriter then packs it with
// fields and notes. DctWriter needs the audio's length before its first byte.
// The converted file is opened once more and compared with the number of frames written, because a full disk
// may refuse the last bytes only when the file is closed.
// Files that another program holds are no failure: the result is Stopped with an error text, and BGSend puts
// the entry off. Sending on without them was rejected: without its record a dictation would arrive as a
// nameless dictation 0, without the user file as one of no sender.

namespace {

constexpr double kConversionEnd = 0.4;  // of the item
constexpr uint32_t kStatusRetryMs = 50;

constexpr char kNoCodec[] =
    "Unable open temporary compressed wav file.\n\n"
    "This might mean that you do not have the correct CODEC installed on your computer to compress the file.";
constexpr char kUnwritable[] = "The converted audio could not be written. The disk may be full.";

// Gives the messages of the pump, which serves other purposes too, the words for sending.
class ConversionStage final : public SendStage {
public:
    explicit ConversionStage(ProcessContext& item) : SendStage(item, 0.0, kConversionEnd), m_item(item) {}
    void SetStatus(std::string_view) override { m_item.SetStatus("Process Audio"); }
    void SetError(std::string_view text) override { m_item.SetError(UnableToSend(text)); }

private:
    ProcessContext& m_item;
};

// Guards against a forged queue file: a program that can write into it must not be able to have other files
// of this machine sent, marked or overwritten, nor one user's dictation sent to a recipient of another's
// choice.
bool NamesDictation(const SendQueueEntry& entry, const LPath& dataFolder) {
    const LPath sent = LPath::Join(UserFolderPath(dataFolder, entry.user).View(), "Sent\\");
    const std::string_view path = entry.dictation.View();
    return LEqualNoCase(LFolderOf(path), sent.View()) && NumberOfFileName(entry.dictation) &&
           LEqualNoCase(LSplitPath(path).extension, ".wav");
}

// "rec<digits>.dat" in the user's folder.
bool NamesRecipient(const SendQueueEntry& entry, const LPath& dataFolder) {
    constexpr std::string_view kPrefix = "rec";
    const LPathParts parts = LSplitPath(entry.recipient.View());
    const std::string_view index = parts.name.substr(std::min(kPrefix.size(), parts.name.size()));
    return LEqualNoCase(LFolderOf(entry.recipient.View()), UserFolderPath(dataFolder, entry.user).View()) &&
           LEqualNoCase(parts.name.substr(0, kPrefix.size()), kPrefix) && !index.empty() &&
           std::ranges::all_of(index, LIsDigit) && LEqualNoCase(parts.extension, ".dat");
}

}  // namespace

SendItem::SendItem(const SendQueueEntry& entry, const DataFolder& data, AskQueue isQueued,
                   ProcessContext& context)
    : m_entry(entry),
      m_data(data),
      m_isQueued(std::move(isQueued)),
      m_context(context),
      m_files(DictationFiles::OfPath(NamesDictation(entry, data.folder) ? entry.dictation : LPath())),
      m_record(DictationRecord::Read(m_files.record)),
      m_sender(UserDetails::Read(UserFilePath(data.folder, entry.user))),
      m_label(m_record.name.empty() ? LFileNameOf(m_files.audio.View()) : m_record.name) {}

const std::string& SendItem::TypistName() const {
    return m_isLoaded ? m_recipient.name : m_record.recipient;
}

ProcessResult SendItem::Send() {
    if (m_context.CancelRequested()) return ProcessResult::Stopped;
    if (!m_entry.isWhole || m_files.audio.Empty() || !NamesRecipient(m_entry, m_data.folder))
        return RefuseDamaged();
    if (!CanBeRead()) return KeepForLater();
    if (IsDelivered() || IsRecovered()) return ProcessResult::Done;
    LPath file;
    ProcessResult result = Convert(file);
    if (result != ProcessResult::Done) return result;
    result = DeliverDictation({file, m_recipient, m_entry.user, m_data, m_sender, m_record.name, m_isQueued,
                               [this] { MarkAsSent(); }},
                              m_context);
    if (result == ProcessResult::Done) MarkAsSent();
    if (result == ProcessResult::Failed) WriteStatus(RecordKeys::kStatusFailed);
    if (result == ProcessResult::Done && m_notesAreCut)
        m_context.SetError(
            LFormat("The notes are too long for a dictation file. Only their first %lu characters were sent.",
                    static_cast<unsigned long>(kDctLongestNotes)));
    return result;
}

// Whether all files that the item needs can be opened. The notes are opened later, by CreateDCTFile.
bool SendItem::CanBeRead() const {
    if (m_record.result == LReadResult::Unreadable || m_sender.result == LReadResult::Unreadable)
        return false;
    for (const LPath* path : {&m_files.audio, &m_entry.recipient})
        if (LFile file; LFile::OpenToRead(*path, file) == LReadResult::Unreadable) return false;
    return true;
}

// Whether an earlier run delivered the dictation and ended before it could remove the entry.
bool SendItem::IsDelivered() const {
    const std::string& status = m_record.sendStatus;
    return !status.empty() && status != RecordKeys::kStatusSending && status != RecordKeys::kStatusFailed;
}

// Whether the dictation was brought back to Current, by a run that ended before it could remove the entry.
bool SendItem::IsRecovered() const {
    const LPath current = UserPaths(m_data, m_entry.user).currentFolder;
    return LFile::IsAbsent(m_files.record) && LFile::IsAbsent(m_files.audio) &&
           LFile::Exists(m_files.InFolder(current).audio);
}

ProcessResult SendItem::RefuseDamaged() {
    LTrace("SendItem::RefuseDamaged entry is damaged", m_entry.dictation.View());
    if (!m_files.audio.Empty()) {
        WriteStatus(RecordKeys::kStatusFailed);
        return Fail("Its entry in the send queue was damaged. Please send it again.");
    }
    m_context.SetError(
        "A dictation could not be sent because its entry in the send queue was damaged. "
        "Please look through the sent dictations and send it again.");
    return ProcessResult::Failed;
}

// Leaves the entry in the queue, with an error text.
ProcessResult SendItem::KeepForLater() {
    LTrace("SendItem::KeepForLater unable to read file", m_entry.dictation.View());
    Fail("One of its files is open in another program. It stays in the queue and is sent later.");
    return ProcessResult::Stopped;
}

ProcessResult SendItem::Convert(LPath& file) {
    if (!LoadRecipient()) return ProcessResult::Failed;
    const bool sendsWave = m_recipient.SendsWave();
    file = sendsWave ? OutputPath("wav", ".wav") : OutputPath("dct", ".dct");
    const ProcessResult result = sendsWave ? CompressWavFile(file, m_recipient.waveFormat) : MakeDct(file);
    if (result != ProcessResult::Done) LFile::Delete(file);
    return result;
}

bool SendItem::LoadRecipient() {
    m_isLoaded = m_recipient.Load(m_entry.recipient);
    if (m_isLoaded) return true;
    LTrace("SendItem::LoadRecipient unable to load recipient", m_entry.recipient.View());
    Fail("The recipient's settings cannot be read. Please check the recipient and send the dictation again.");
    WriteStatus(RecordKeys::kStatusFailed);
    return false;
}

// The audio of a DCT file has one channel, whatever the recipient's format has.
ProcessResult SendItem::MakeDct(const LPath& output) {
    const LPath audio = m_files.audio.WithExtension(LLeftOver::kAudio);
    ProcessResult result = CompressWavFile(audio, LMonoFormat(m_recipient.waveFormat));
    if (result == ProcessResult::Done) result = CreateDCTFile(output, audio);
    LFile::Delete(audio);
    return result;
}

ProcessResult SendItem::CompressWavFile(const LPath& output, const LWaveFileFormat& format) {
    int32_t frames = 0;
    {
        const LSoundSource source = LWaveFile::OpenSource(m_files.audio);
        if (source->IsError()) return Fail("Its audio file is missing or cannot be read.");
        const LSoundSink sink = LWaveFile::OpenSink(output, format);
        if (!sink || sink->IsError()) return FailToOpen(output, sink);
        ConversionStage stage(m_context);
        const ProcessResult result = LPRSourceToSink(source, sink).Process(stage);
        if (result == ProcessResult::Stopped) return result;
        if (result == ProcessResult::Failed || sink->IsError() || !source->IsWhole())
            return Fail("Its audio cannot be converted.");
        frames = sink->GetFrames();
    }  // closed here
    // A full disk may show only after closing.
    if (LWaveFile::IsComplete(output, frames)) return ProcessResult::Done;
    LTrace("BGSend::CompressWavFile compressed file is not complete", output.View());
    return Fail(kUnwritable);
}

// Chooses the error text: without a sink no codec writes the format, while a PCM sink needs no codec and can
// fail only because of its file.
ProcessResult SendItem::FailToOpen(const LPath& output, const LSoundSink& sink) {
    LTrace("BGSend::CompressWavFile unable to open compressed file", output.View());
    if (sink && m_recipient.waveFormat.Tag() == kFormatTagPcm) return Fail(kUnwritable);
    m_context.SetError(kNoCodec);
    return ProcessResult::Failed;
}

ProcessResult SendItem::CreateDCTFile(const LPath& output, const LPath& audio) {
    LFile file(output, LFile::Open::CreateNew);
    if (!file.IsOpen()) {
        LTrace("BGSend::CreateDCTFile unable to create DCT file", output.View());
        return Fail("The dictation file could not be created. The disk may be full.");
    }
    LFile notes;
    if (LFile::OpenToRead(m_files.notes, notes) == LReadResult::Unreadable) return KeepForLater();
    LFile sound(audio, LFile::Open::Read);
    if (!sound.IsOpen()) return Fail("Its converted audio cannot be read.");
    DctWriter writer(file, m_recipient.Encrypts() ? m_recipient.encryptionPassword : "", m_context);
    const ProcessResult result = writer.Write(MakeDctHeader(), notes.IsOpen() ? &notes : nullptr, &sound);
    if (result == ProcessResult::Failed)
        return Fail("The dictation file could not be written. The disk may be full.");
    m_notesAreCut = notes.Size() > kDctLongestNotes;
    return result;
}

DctHeader SendItem::MakeDctHeader() const {
    const int64_t date = m_record.date.value_or(LNowSeconds());
    DctHeader header;
    header.user = m_entry.user;
    header.number = static_cast<uint32_t>(Number());
    header.date = static_cast<uint32_t>(Clamp<int64_t>(date, 0, std::numeric_limits<uint32_t>::max()));
    header.name = m_record.name;
    header.sender = m_sender;
    header.priority = DctPriority(m_record.priority);
    return header;
}

// The record's number; without one, that of the file name.
int32_t SendItem::Number() const {
    return m_record.number ? *m_record.number : NumberOfFileName(m_files.audio).value_or(0);
}

// "dct00007-00012.dct", in the dictation's own folder.
LPath SendItem::OutputPath(const char* prefix, std::string_view extension) const {
    const std::string name =
        LFormat("%s%.5ld-%.5ld", prefix, static_cast<long>(static_cast<int32_t>(m_entry.user)),
                static_cast<long>(Number())) +
        std::string(extension);
    return LPath::Join(LFolderOf(m_entry.dictation.View()), name);
}

// A delivery may have told already that the dictation arrived; what could not be written then is tried again.
void SendItem::MarkAsSent() {
    if (!m_isMarked) m_isMarked = WriteStatus(RecordKeys::kStatusSent);
}

// Writes the status, trying for two seconds. Does nothing when the record is absent: the dictation was
// recovered or deleted meanwhile, and must not get a new record here.
bool SendItem::WriteStatus(std::string_view status) {
    const uint32_t begun = LTickMs();
    while (!LFile::IsAbsent(m_files.record)) {
        if (Settings::Write(m_files.record, RecordKeys::kSendStatus, status)) return true;
        if (LTickMs() - begun >= kMoveWaitMs) {
            LTrace("SendItem::WriteStatus unable to write record", m_files.record.View());
            m_context.SetError(LFormat("The record of the dictation could not be marked as \"%.20s\".",
                                       std::string(status).c_str()));
            return false;
        }
        LSleep(kStatusRetryMs);
    }
    return true;
}

ProcessResult SendItem::Fail(std::string_view reason) {
    m_context.SetError(UnableToSend(reason));
    return ProcessResult::Failed;
}
