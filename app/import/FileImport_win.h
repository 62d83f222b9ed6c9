#pragma once

#include <optional>
#include <vector>

#include "app/AppState.h"
#include "base/LPath.h"
#include "store/DictationFiles.h"
#include "store/StagedDictation.h"
#include "ui/LModalRunner.h"

// Loads audio files as dictations of the current user. The window answers meanwhile: the work runs under the
// progress dialog, on a thread of its own (LProcessApart).
// Errors: reported to the user, each once, in a box with the name of the file.
// Thread: the window thread.
class FileImport {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Whether a row of the list has this number, perhaps that of a record in another file.
        virtual bool IsNumberListed(int32_t number) const = 0;
        // A dictation was loaded: it gets a row.
        virtual void ListLoaded(const DictationFiles& files) = 0;
        // Sends it to the default recipient, or tells the user why it stays in the list. False when the next
        // one would stay for the same reason.
        virtual bool SendLoaded(const DictationFiles& files) = 0;
    };

    FileImport(const AppState& state, LModalRunner& runner, Owner& owner)
        : m_state(state), m_runner(runner), m_owner(owner) {}

    // Loads one file. A whole one is sent where wanted; send becomes false when the next could not be sent
    // either. (Only a DCT file can say that it holds nothing.)
    LoadedFile Load(const LPath& source, bool& send);

    // Lets the user choose files and loads them in the order given, up to the first that fails. Nothing when
    // he chose none; else the records of those that were loaded.
    std::optional<std::vector<LPath>> LoadChosen(bool send);

private:
    struct Loaded {
        LoadedFile what = LoadedFile::No;
        DictationFiles files;
    };
    // behind: the files that are left out when this one cannot be loaded.
    Loaded LoadOne(const LPath& source, size_t behind);
    void SendWhole(const Loaded& loaded, bool& send);
    void Tell(const LPath& source, std::string_view text);

    const AppState& m_state;
    LModalRunner& m_runner;
    Owner& m_owner;
};
