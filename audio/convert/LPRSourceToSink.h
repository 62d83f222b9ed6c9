#pragma once

#include "audio/stream/LSoundSink.h"
#include "audio/stream/LSoundSource.h"
#include "base/LProcess.h"

// Pumps a whole source into a sink. It first matches the source to the sink's channels, sample rate and
// range. Without a sink the source is read to its end all the same (mono, 44100 Hz).
// The process drops both handles when it ends, which flushes and closes the sink. A caller that needs the
// sink's frame count afterwards keeps a handle of its own.
// Errors: Failed, with an error text for the user, when either end has its error bit set, when the source
//         cannot be matched to the sink, and when the sink cannot take more (disk full).
// Thread: the one that runs the process; source and sink belong to it meanwhile.
class LPRSourceToSink final : public LProcess {
public:
    LPRSourceToSink(const LSoundSource& source, const LSoundSink& sink) : m_source(source), m_sink(sink) {}
    ProcessResult Process(ProcessContext& context) override;

private:
    bool Prepare(ProcessContext& context);
    bool Match(ProcessContext& context);
    ProcessResult Pump(ProcessContext& context);
    bool Write(ProcessContext& context, const int32_t* samples, int32_t frames);

    LSoundSource m_source;
    LSoundSink m_sink;
};
