#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "app/import/ForeignDecoders.h"
#include "app/import/ImportRoute.h"
#include "audio/wave/LDecodeWave.h"
#include "base/LPath.h"
#include "base/LProcess.h"
#include "store/CurrentUser.h"
#include "store/StagedDictation.h"

// Makes a dictation of an audio file: takes a number, writes the record with name and date of the file, and
// brings the sound in by the file's route. Done: the dictation is whole and holds sound; it is still staged,
// and the caller publishes it. (A DCT file that says it holds nothing is Done too.) An MP3 file that is
// damaged in the middle, or goes on in another format, is Done with what stands before, and with a text for
// the user. Everything else leaves nothing but a used number.
// The file is foreign input (docs/hostile-input.md). The process owns all that it uses, so it may be left
// behind (LProcessApart).
// Errors: Failed with a text for the user. Stopped when cancelled; with a text where the notes of a DCT file
//         cannot be.
// Thread: the one that runs the process.
class ImportProcess final : public LProcess {
public:
    ImportProcess(const CurrentUser& user, const LPath& source, const ImportRow& row,
                  std::unique_ptr<ForeignDecoders> decoders)
        : m_user(user), m_source(source), m_row(row), m_decoders(std::move(decoders)) {}
    ProcessResult Process(ProcessContext& context) override;

    StagedDictation& Dictation() { return *m_dictation; }
    // Whether the file was read to its end.
    bool IsWhole() const { return m_isWhole; }

private:
    using Route = ProcessResult (ImportProcess::*)(ProcessContext& context);

    ProcessResult Load(ProcessContext& context);
    ProcessResult LoadRealAudio(ProcessContext& context);
    ProcessResult DecodeRealAudio(const std::string& before, ProcessContext& context);
    ProcessResult LoadVoiceIt(ProcessContext& context);
    ProcessResult LoadDss(ProcessContext& context);
    ProcessResult LoadWave(ProcessContext& context);
    ProcessResult LoadMp3(ProcessContext& context);
    ProcessResult LoadDct(ProcessContext& context);
    LDecoded Decode(const LSoundSource& source, ProcessContext& context) const;
    ProcessResult Judge(LDecoded decoded, std::string_view damaged, ProcessContext& context) const;
    bool KeepBeginning(ProcessContext& context);
    ProcessResult TestSound(ProcessContext& context) const;
    std::string SourceName() const;

    CurrentUser m_user;
    LPath m_source;
    ImportRow m_row;
    std::unique_ptr<ForeignDecoders> m_decoders;
    std::unique_ptr<StagedDictation> m_dictation;
    bool m_isWhole = true;
};
