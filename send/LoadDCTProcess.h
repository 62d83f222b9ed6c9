#pragma once

#include <cstdint>
#include <optional>

#include "base/LBytes.h"
#include "base/LFile.h"
#include "base/LPath.h"
#include "base/LProcess.h"
#include "store/DictationFiles.h"

// Loads a DCT file that is not encrypted into a new dictation: date, texts and priority into its record,
// which may exist, the notes, and the audio as a 16-bit PCM file, decoded by a codec where need be.
// The file is foreign input (docs/hostile-input.md).
// Errors: Failed with an error text for the user; without one only when the DCT file cannot be opened.
//         Stopped when cancelled, and with an error text for a length of the notes that cannot be. Whatever
//         is not Done leaves neither notes nor audio; the record keeps what was written, and the caller takes
//         the dictation back with DeleteDictationFiles (store/DictationStore.h). A file that says it holds
//         nothing is Done, and nothing is written.
// Thread: the one that runs the process.
class LoadDCTProcess final : public LProcess {
public:
    // files: those of the new dictation. Existing notes or audio are left alone; the result is then Failed.
    LoadDCTProcess(const LPath& dct, const DictationFiles& files) : m_path(dct), m_files(files) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    // The outcome of one step; none: go on.
    using Step = std::optional<ProcessResult>;

    ProcessResult Load(ProcessContext& context);
    ProcessResult LoadAudio(ProcessContext& context);
    Step ReadStart(LByteReader& in, bool& isEmpty, ProcessContext& context);
    Step ReadFields(LByteReader& in, ProcessContext& context);
    Step ReadNotes(ProcessContext& context);
    Step ReadChannels(ProcessContext& context);
    Step CopyAudio(const LPath& target, ProcessContext& context);
    ProcessResult Decode(const LPath& copy, ProcessContext& context);

    LPath m_path;
    DictationFiles m_files;
    LFile m_file;
    int64_t m_fileBytes = 0;
    uint16_t m_version = 0;
    int64_t m_audioBytes = 0;  // as the file says
    bool m_hasNotes = false;   // written by us
    bool m_hasAudio = false;
};
