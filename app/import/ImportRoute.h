#pragma once

#include <string>
#include <string_view>

// Which audio files can be loaded, and how. The extension decides, without regard to case.

// How the sound of a file comes into a dictation; the first three need a library of another program.
enum class ImportRoute { RealAudio, VoiceIt, Dss, Wave, Mp3, Dct };

struct ImportRow {
    const char* extension;
    ImportRoute route;
    const char* title;  // of the progress dialog
};

// The row of a file; null for one that cannot be loaded.
const ImportRow* FindImportRow(std::string_view path);

// The list of file types for the platform's open dialog: pairs of a title and patterns, each ended by a zero
// byte, and another zero byte at the end.
std::string ImportFilter();
