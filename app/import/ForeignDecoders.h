#pragma once

#include <string>

#include "audio/stream/LSoundSource.h"
#include "base/LPath.h"

// Audio in formats that only libraries of other programs can read. Each library is loaded when it is needed
// and released with the source, or when the call returns. A call may never return, so these are made on a
// thread that nobody waits for (LProcessApart).
// Errors: a source with its error bit set, or false, and a text for the user.
// Thread: any; one object for each file.
class ForeignDecoders {
public:
    virtual ~ForeignDecoders() = default;
    virtual LSoundSource OpenRealAudio(const LPath& file, std::string& error) = 0;
    virtual LSoundSource OpenDss(const LPath& file, std::string& error) = 0;
    // Writes the sound of the file into a new WAV file, which is to be examined: what the library answers is
    // not known.
    virtual bool ConvertVoiceIt(const LPath& file, const LPath& wave, std::string& error) = 0;
};
