#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/LPath.h"
#include "base/LProcess.h"

// What lies in a data folder, and its deletion when Corvane is removed with everything that was dictated.
// Only files are touched whose names and places this program gives (docs/file-formats.md); what is foreign
// stays with its folder, and so does what only a link leads to.
// Errors: a folder that cannot be listed is not an empty one.
// Thread: the one that runs the process.

// Whether a folder is a data folder that must not be left behind: it has settings, or the folder of a user
// with any file of a dictation, also behind a link. Unknown: it cannot be listed, or its drive is away.
enum class Holding { No, Yes, Unknown };
Holding HoldsDictations(const LPath& folder);

struct DataContents {
    int32_t dictations = 0;  // of all users
    int32_t notSent = 0;     // of those, in Current
    int64_t audioMs = 0;     // the length of all of them
    int32_t users = 0;       // who have dictations
};

// Counts what DataRemoval would delete. Failed, with an error text, when a folder cannot be listed: nobody is
// asked about half of it.
class DataCount final : public LProcess {
public:
    // lengthMs: the length of a dictation's audio, 0 when there is none (LWaveFile::LengthMs).
    DataCount(const LPath& folder, int32_t (*lengthMs)(const LPath& audio))
        : m_folder(folder), m_lengthMs(lengthMs) {}
    ProcessResult Process(ProcessContext& context) override;
    const DataContents& Contents() const { return m_contents; }

private:
    LPath m_folder;
    int32_t (*m_lengthMs)(const LPath& audio);
    DataContents m_contents;
};

// Deletes the files of all users and those of the data folder, read-only ones too, then each folder that is
// empty. A dictation whose audio cannot be deleted is kept whole, and so is the folder of a user for whom a
// program runs, as on another machine. What is kept keeps the user's files and the settings. Failed, with an
// error text, when files of ours stay; a cancel leaves what is not deleted yet.
class DataRemoval final : public LProcess {
public:
    explicit DataRemoval(const LPath& folder) : m_folder(folder) {}
    ProcessResult Process(ProcessContext& context) override;
    // Files of ours that stay, and folders that cannot be listed.
    int32_t Kept() const { return m_kept; }

private:
    bool DeleteFiles(ProcessContext& context, const LPath& folder, std::vector<std::string> files);

    LPath m_folder;
    int32_t m_kept = 0, m_done = 0, m_total = 0;  // files
};
