#pragma once

#include <cstdint>

#include "base/LPath.h"
#include "base/LProcess.h"

// What lies in a data folder, and its deletion when Corvane is removed with everything that was dictated.
// Only files are touched whose names and places this program gives (docs/file-formats.md), in the folders of
// users: 00000000, and those of eight digits with a user's file or lock. What is foreign stays with its
// folder, and so does what only a link leads to.
// Errors: a folder that cannot be listed, or whose drive is away, is not an empty one, and neither is a link
//         in the place of one of our folders: both count as kept.
// Thread: the one that runs the process.

// Whether a folder is a data folder that must not be left behind: it has settings, or a folder of eight
// digits with any file of a dictation, also behind a link. Unknown: it cannot be listed.
enum class Holding { No, Yes, Unknown };
Holding HoldsDictations(const LPath& folder);

// Goes through the folders that are ours and their files, as DataCount and DataRemoval do.
class DataWalk : public LProcess {
public:
    enum class Kind { Data, User, Current, Sent, Import };  // of a folder
    // Failed, with an error text, when a folder could not be listed, is a link, or something was kept.
    ProcessResult Process(ProcessContext& context) final;

protected:
    explicit DataWalk(const LPath& folder) : m_folder(folder) {}
    // False leaves a folder out.
    virtual bool Enter(const LPath& folder, Kind kind) = 0;
    // Each file, those of audio first, those by which a user's folder is known last, when the folders beside
    // it are done.
    virtual void Take(const LPath& file, Kind kind) = 0;
    virtual void Leave(const LPath&) {}

    int32_t m_kept = 0;  // files and folders

private:
    bool Walk(ProcessContext& context, const LPath& folder, Kind kind, double from, double to);

    LPath m_folder, m_unread, m_link;
};

struct DataContents {
    int32_t dictations = 0;  // of all users
    int32_t notSent = 0;     // of those, in Current
    int64_t audioMs = 0;     // the length of all of them
    int32_t users = 0;       // who have dictations
};

// Counts what DataRemoval would delete. After a failure the numbers are too low.
class DataCount final : public DataWalk {
public:
    // lengthMs: the length of a dictation's audio, 0 when there is none (LWaveFile::LengthMs).
    DataCount(const LPath& folder, int32_t (*lengthMs)(const LPath& audio))
        : DataWalk(folder), m_lengthMs(lengthMs) {}
    const DataContents& Contents() const { return m_contents; }

private:
    bool Enter(const LPath& folder, Kind kind) override;
    void Take(const LPath& file, Kind kind) override;

    int32_t (*m_lengthMs)(const LPath& audio);
    DataContents m_contents;
    bool m_isCounted = false;  // the user
};

// Deletes the files of all users and those of the data folder, read-only ones too, then each folder that is
// empty. A dictation whose audio cannot be deleted is kept whole, and so is the folder of a user for whom a
// program runs, as on another machine. What is kept keeps the user's files and the settings. A cancel leaves
// what is not deleted yet.
class DataRemoval final : public DataWalk {
public:
    explicit DataRemoval(const LPath& folder) : DataWalk(folder) {}
    // Files that stay, and folders that were left alone or could not be listed.
    int32_t Kept() const { return m_kept; }

private:
    bool Enter(const LPath& folder, Kind kind) override;
    void Take(const LPath& file, Kind kind) override;
    void Leave(const LPath& folder) override;

    int32_t m_keptBefore = 0;  // this user
};
