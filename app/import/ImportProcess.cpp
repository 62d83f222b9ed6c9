#include "app/import/ImportProcess.h"

#include "audio/mp3/LMP3Source.h"
#include "audio/stream/LSoundTime.h"
#include "audio/wave/LDecodeWave.h"
#include "audio/wave/LWaveFile.h"
#include "base/LArith.h"
#include "base/LCopyFile.h"
#include "base/LFile.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "send/LoadDCTProcess.h"
#include "send/SendStage.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kDecoding[] = "Process Audio\nUncompress File";

constexpr char kCannotOpen[] =
    "The file cannot be opened.\n\nIt may be in use by another program, or its drive may have gone away. "
    "Please check that and load the file again.";
constexpr char kNotStored[] =
    "The dictation could not be stored.\n\nThe disk may be full or write-protected, or another program may "
    "be "
    "using your user file. Please check that and load the file again.";
constexpr char kNotCopied[] =
    "The file could not be copied.\n\nIts drive may have gone away, another program may be changing it, or "
    "the disk may be full. Please check that and load the file again.";
constexpr char kNoWave[] =
    "The file is no WAV file, or it is damaged.\n\nPlease ask for it again, or for another format.";
constexpr char kNoCodec[] =
    "The file cannot be loaded because its audio compression codec is not installed on this computer.\n\n"
    "Please install the codec, or ask for the file in another format.";
constexpr char kDamaged[] =
    "The file could not be read to its end.\n\nIt may be damaged, or its drive may have gone away. Please "
    "load "
    "it again, or ask for it again.";
constexpr char kBeginning[] =
    "Only the first %s of the file could be loaded.\n\nWhat follows is damaged, or in another format. Please "
    "listen to the end of the dictation, and ask for the file again if something is missing.";
constexpr char kNoMp3[] =
    "The file is no MP3 file that Corvane can read, or it is damaged. Please ask for it again.\n\n";
constexpr char kNoSound[] = "The file holds no sound.\n\nPlease choose another file, or ask for it again.";

ProcessResult Refuse(ProcessContext& context, std::string_view text) {
    LTrace("ImportProcess refused:", text);
    context.SetError(text);
    return ProcessResult::Failed;
}

// Keeps the status and error texts of the pump, which are for other purposes, from the user.
class Silently final : public SendStage {
public:
    explicit Silently(ProcessContext& whole) : SendStage(whole, 0, 1) {}
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view) override {}
};

}  // namespace

ProcessResult ImportProcess::Process(ProcessContext& context) {
    const ProcessResult result = Load(context);
    if (result == ProcessResult::Done) m_dictation->Flush();
    if (result != ProcessResult::Done) m_dictation.reset();
    return result;
}

ProcessResult ImportProcess::Load(ProcessContext& context) {
    // In the order of ImportRoute.
    constexpr Route kRoutes[] = {&ImportProcess::LoadRealAudio, &ImportProcess::LoadVoiceIt,
                                 &ImportProcess::LoadDss,       &ImportProcess::LoadWave,
                                 &ImportProcess::LoadMp3,       &ImportProcess::LoadDct};
    static_assert(std::size(kRoutes) == static_cast<size_t>(ImportRoute::Dct) + 1);
    LFile file;
    // What another program is still writing is not whole, whatever it says.
    if (LFile::OpenToRead(m_source, file) != LReadResult::Values || file.IsBeingWritten())
        return Refuse(context, kCannotOpen);
    const int64_t written = file.WriteTime();
    file.Close();
    // Opening may take half a minute on a drive that has gone away. Nobody may wait any more by then, and the
    // window thread take numbers of its own.
    if (context.CancelRequested()) return ProcessResult::Stopped;
    m_dictation = std::make_unique<StagedDictation>();
    if (!m_dictation->Begin(m_user, SourceName(), written > 0 ? written : LNowSeconds()))
        return Refuse(context, kNotStored);
    return (this->*kRoutes[static_cast<size_t>(m_row.route)])(context);
}

std::string ImportProcess::SourceName() const {
    return std::string(LSplitPath(m_source.View()).name);
}

LDecoded ImportProcess::Decode(const LSoundSource& source, ProcessContext& context) const {
    Silently stage(context);
    return LDecodeWave(source, m_dictation->Files().audio, stage);
}

// damaged: the text for a source that was not read.
ProcessResult ImportProcess::Judge(LDecoded decoded, std::string_view damaged,
                                   ProcessContext& context) const {
    switch (decoded) {
        case LDecoded::Whole:
            return TestSound(context);
        case LDecoded::Stopped:
            return ProcessResult::Stopped;
        case LDecoded::Cut:
        case LDecoded::NotRead:
            return Refuse(context, damaged);
        case LDecoded::NotWritten:
            break;
    }
    return Refuse(context, kNotStored);
}

// Whether the new audio can be opened and is not empty.
ProcessResult ImportProcess::TestSound(ProcessContext& context) const {
    LWaveInfo info;
    if (!LWaveFile::ReadInfo(m_dictation->Files().audio, info)) return Refuse(context, kNoWave);
    return info.Frames() > 0 ? ProcessResult::Done : Refuse(context, kNoSound);
}

ProcessResult ImportProcess::LoadRealAudio(ProcessContext& context) {
    return DecodeRealAudio("", context);
}

// before: what is said before the reason of a failure.
ProcessResult ImportProcess::DecodeRealAudio(const std::string& before, ProcessContext& context) {
    context.SetStatus("Decoding Real Audio");
    std::string error = kDamaged;
    const LSoundSource source = m_decoders->OpenRealAudio(m_source, error);
    return Judge(Decode(source, context), before + error, context);
}

ProcessResult ImportProcess::LoadDss(ProcessContext& context) {
    context.SetStatus("Decoding DSS File");
    std::string error = kDamaged;
    const LSoundSource source = m_decoders->OpenDss(m_source, error);
    return Judge(Decode(source, context), error, context);
}

ProcessResult ImportProcess::LoadVoiceIt(ProcessContext& context) {
    context.SetStatus("Decoding VoiceIt File");
    std::string error;
    const LPath& audio = m_dictation->Files().audio;
    if (!m_decoders->ConvertVoiceIt(m_source, audio, error)) return Refuse(context, error);
    if (context.CancelRequested()) return ProcessResult::Stopped;
    // A file of no PCM, or with less than its head says, is none that was finished.
    LFile file(audio, LFile::Open::Read);
    LWaveInfo info;
    if (!LIsWholeWave(file) || !LWaveFile::ReadInfo(file, info) || !info.IsPcm())
        return Refuse(context, kDamaged);
    return TestSound(context);
}

ProcessResult ImportProcess::LoadWave(ProcessContext& context) {
    if (LWaveFile::TestPCM(m_source)) {
        context.SetTitle("Copy File");
        LProcessCopyFile copy(m_source, m_dictation->Files().audio, LProcessCopyFile::Into::OwnFolder);
        const ProcessResult result = copy.Process(context);
        if (result == ProcessResult::Failed) return Refuse(context, kNotCopied);
        return result == ProcessResult::Done ? TestSound(context) : result;
    }
    context.SetStatus(kDecoding);
    const LSoundSource source = LWaveFile::OpenSource(m_source);
    LWaveInfo info;
    if (source->IsError()) return Refuse(context, LWaveFile::ReadInfo(m_source, info) ? kNoCodec : kNoWave);
    return Judge(Decode(source, context), kDamaged, context);
}

// Whether there is sound before the place where a file cannot be read on; the user is told how much.
bool ImportProcess::KeepBeginning(ProcessContext& context) {
    LWaveInfo info;
    LSoundTime length;
    if (!LWaveFile::ReadInfo(m_dictation->Files().audio, info) || info.Frames() == 0 ||
        !length.SetSamples(Saturate(info.Frames()), static_cast<int32_t>(info.format.SampleRate())))
        return false;
    m_isWhole = false;
    context.SetError(LFormat(kBeginning, length.Print(LSoundTime::Form::Seconds).c_str()));
    return true;
}

// What our decoder cannot read another one may. A stream of frames that breaks off is worth having up to
// there: so are recordings that were joined from several.
ProcessResult ImportProcess::LoadMp3(ProcessContext& context) {
    context.SetStatus(kDecoding);
    const LDecoded decoded = Decode(LSoundSource::Make<LMP3Source>(m_source), context);
    if (decoded == LDecoded::Cut && KeepBeginning(context)) return ProcessResult::Done;
    if (decoded != LDecoded::NotRead && decoded != LDecoded::Cut) return Judge(decoded, kDamaged, context);
    // Its drive may have gone away, which another decoder would only say in other words.
    if (!LFile(m_source, LFile::Open::Read).IsOpen()) return Refuse(context, kCannotOpen);
    context.SetTitle("Uncompress Using Real Audio Player");
    return DecodeRealAudio(kNoMp3, context);
}

ProcessResult ImportProcess::LoadDct(ProcessContext& context) {
    const DictationFiles& files = m_dictation->Files();
    const ProcessResult result = LoadDCTProcess(m_source, files).Process(context);
    // A row without a name could not be told from others.
    if (result == ProcessResult::Done && LTrimBlanks(DictationRecord::Read(files.record).name).empty())
        StoreName(files.record, SourceName());
    return result;
}
