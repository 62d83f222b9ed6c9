#pragma once

#include "audio/wave/LAcm.h"
#include "audio/wave/LWaveFile.h"
#include "base/LLeftOver.h"
#include "base/LPath.h"
#include "base/LProcess.h"

// Gives a WAV file the layout that recordings continue on: PCM of at most 16 bits, our 46-byte head, and
// nothing behind the data. PCM samples of up to 16 bits stay as they are, byte for byte; wider ones are
// rounded to 16 bits; every other format is decoded to 16 bits of the same rate and channels. A file that has
// our layout already is left alone.
// The new file is written beside the old one (extension ".tmp"), checked, flushed and swapped in. Until then
// the old one is untouched; every other end removes the temporary file.
// Errors: Failed, with an error text for the user, also for a compressed file that its codec does not decode
//         to the end. Stopped when cancelled.
// Thread: the one that runs the process.
class LRewriteWave final : public LProcess {
public:
    explicit LRewriteWave(const LPath& path, LAcmOpener opener = LAcmOpen)
        : m_path(path), m_temporary(path.WithExtension(LLeftOver::kAudio)), m_opener(opener) {}
    ProcessResult Process(ProcessContext& context) override;

    // Whether this machine can read the audio: PCM of up to 32 bits always, another format when a codec
    // decodes it.
    static bool CanRead(const LWaveInfo& info);

private:
    ProcessResult WriteTemporary(ProcessContext& context);
    LSoundSource OpenOld(const LWaveInfo& info) const;

    LPath m_path;
    LPath m_temporary;
    LAcmOpener m_opener;
    bool m_begun = false;  // there may be a temporary file
};
