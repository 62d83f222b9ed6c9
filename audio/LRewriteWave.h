#pragma once

#include "base/LPath.h"
#include "base/LProcess.h"

// Gives a PCM file the layout that recordings continue on: our 46-byte head and nothing after the data, at
// most 16 bits. Samples of up to 16 bits stay as they are, byte for byte; wider ones are rounded to 16 bits.
// The new file is written beside the old one (extension ".tmp"), checked, flushed and swapped in; until then
// the old one is untouched, and every other end removes the temporary file. A file that has our layout
// already is left alone.
class LRewriteWave final : public LProcess {
public:
    explicit LRewriteWave(const LPath& path) : m_path(path), m_temporary(path.WithExtension(".tmp")) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    ProcessResult WriteTemporary(ProcessContext& context);

    LPath m_path;
    LPath m_temporary;
    bool m_begun = false;  // there may be a temporary file
};
