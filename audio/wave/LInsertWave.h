#pragma once

#include "base/LLeftOver.h"
#include "base/LPath.h"
#include "base/LProcess.h"

struct LWaveInfo;

// Inserts the audio of one WAV file into another, at a frame: what lay behind that frame follows the inserted
// part. Both must be PCM of the same format; a file that was cut off counts to its end. Every sample stays as
// it is, byte for byte.
// The merged file, of our own layout, is written beside the target (extension ".tmp"), flushed, checked and
// swapped in. Until then the target is untouched; every other end removes the merged file. The inserted file
// is only read.
// Units:  frames of the target; a frame beyond its end counts as its end.
// Errors: Failed, with an error text for the user. Stopped when cancelled.
// Thread: the one that runs the process.
class LInsertWave final : public LProcess {
public:
    LInsertWave(const LPath& target, int32_t atFrame, const LPath& inserted)
        : m_target(target),
          m_inserted(inserted),
          m_merged(target.WithExtension(LLeftOver::kAudio)),
          m_atFrame(atFrame) {}
    ProcessResult Process(ProcessContext& context) override;

    // Whether the target holds the inserted audio there already, byte for byte.
    bool IsDone() const;

private:
    ProcessResult WriteMerged(ProcessContext& context);

    LPath m_target;
    LPath m_inserted;
    LPath m_merged;
    int32_t m_atFrame;
    bool m_begun = false;  // there may be a merged file
};
