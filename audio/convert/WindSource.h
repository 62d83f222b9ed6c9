#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "audio/convert/LFade.h"
#include "audio/stream/LFilterSource.h"

// Runs through a source faster than it was spoken, forwards or backwards, and stays audible: it plays short
// snippets, each forwards, joined by cross-fades. It begins at the wrapped source's position when it is built
// and ends exactly at the source's end, or backwards at its start; the last snippet is the one that lies
// there. The output after a Seek equals that of an uninterrupted run.
// Units:  frames of the output. GetLength() is known from the beginning and does not change: a source that is
//         still being recorded is wound to the length it had when this was built.
// Cost:   a seek and a read of the wrapped source for each tenth of a second.
// Thread: one at a time; ToSourceFrame any.
class WindSource final : public LFilterSource {
public:
    // Speeds are multiples of normal, negative for backwards; their magnitude is held between 1 and 64, and
    // the sign of the initial one gives the direction. The speed changes smoothly from the first to the
    // second within rampMs.
    WindSource(const LSoundSource& source, double initialSpeed, double finalSpeed, int32_t rampMs);

    void Read(int32_t* samples, int32_t frames) override;
    int32_t GetPosition() const override { return m_position; }
    int32_t GetLength() const override { return m_length; }
    void Seek(int32_t frame) override;
    bool IsGrowing() const override { return false; }

    // The wrapped source's frame that is heard at a frame of the output, where listening continues after a
    // stop: forwards the frame itself, backwards the beginning of the snippet. It never turns back, and at
    // GetLength() it is the end or the start. Any thread.
    int32_t ToSourceFrame(int32_t frame) const;

private:
    int32_t Travelled(int64_t frame) const;
    int32_t CountSteps() const;
    int32_t SnippetStart(int32_t snippet) const;
    void ReadSource(int32_t start, int32_t* samples, int32_t frames);
    void MakeSnippet(int32_t snippet);
    size_t Values(int32_t frames) const { return static_cast<size_t>(frames) * GetChannels(); }

    // Speeds in 1/65536, without their sign.
    const bool m_isForward;
    const int32_t m_initialSpeed;
    const int32_t m_speedChange;
    const int32_t m_rampFrames;

    const int32_t m_stepFrames;     // output frames from the beginning of a snippet to that of the next
    const int32_t m_start;          // the wrapped source's position at construction
    const int32_t m_distance;       // from m_start to the end or the start
    const int32_t m_snippetFrames;  // a step and a fade, or all there is if that is less
    const int32_t m_lastSnippet;
    const int32_t m_length;

    LFade m_fade;
    std::vector<int32_t> m_snippet;  // a step to deliver, then the tail
    std::vector<int32_t> m_tail;     // the tail of the snippet before, which fades into the next
    int32_t m_ready = -1;            // the snippet in m_snippet, or -1
    int32_t m_position = 0;
};
