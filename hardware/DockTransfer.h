#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/LPath.h"
#include "store/StagedDictation.h"

// Transfers the files that a portable recorder has left in a folder: each becomes a new dictation, and is
// deleted when the settings say so and its sound is safe. The time of the newest file is stored before that
// file is loaded, so one that cannot be loaded does not stand in the way of the next transfer of new files.
// Units:  file times in seconds since 1970-01-01 00:00 UTC.
// Errors: in the outcome; what Load has told the user is not told again.
// Thread: one at a time. The looks at the folder run where the host has them run.
class DockTransfer {
public:
    class Host {
    public:
        virtual ~Host() = default;
        // Runs a look at the folder, which can hang for half a minute where a network is gone. False: nobody
        // waits for it any more, and it goes on alone; it owns all that it uses.
        virtual bool RunApart(const std::function<void()>& look) = 0;
        // Before each file; false ends the transfer.
        virtual bool Next(const LPath& file, size_t done, size_t count) = 0;
        // Makes a dictation of a file and sends it if asked to. What is not Whole was told to the user.
        virtual LoadedFile Load(const LPath& file, bool sends) = 0;
    };

    enum class End {
        Done,
        Stopped,       // cancelled
        NotLoaded,     // a file could not be loaded, which the user was told
        NoFolder,      // no folder is set, or it is not there
        OwnFolder,     // it is Corvane's own
        Unreadable,    // it cannot be listed
        BeingWritten,  // somebody still writes the file
        SettingsHeld,  // the settings file cannot be read, or the newest time not be stored there
    };
    struct Outcome {
        End end = End::Done;
        LPath file;  // of BeingWritten
        size_t loaded = 0;
        size_t left = 0;  // loaded, perhaps not to their end, and not deleted although they should be
        // Where only newer files are wanted: those that are older or empty.
        size_t passedOver = 0;
        // Where the transfer ended before its end: what it would still have taken, with the file at which it
        // was cancelled, but not one that ended it.
        size_t notReached = 0;
        bool isRestOld = false;  // some of notReached, for the next transfer of newer files
    };

    // dataFolder: that of the dictations.
    DockTransfer(const LPath& settingsFile, const LPath& dataFolder, Host& host)
        : m_settings(settingsFile), m_dataFolder(dataFolder), m_host(host) {}

    Outcome Run();

private:
    // As read at once; what a file that cannot be read would give are the defaults.
    struct Options {
        LPath folder;
        bool deletes = false;
        bool sends = false;
        bool isNewOnly = false;
        int64_t newest = 0;  // the time of the newest file that was ever transferred
    };
    struct File {
        LPath path;
        int64_t time = 0;  // as listed
    };
    struct Listing {
        End end = End::Done;
        std::vector<File> files;
    };
    // What the file system says of a file at this moment.
    struct Look {
        enum class State { Gone, Held, There };
        State state = State::Gone;
        int64_t size = 0;
        int64_t time = 0;
        bool operator==(const Look&) const = default;
    };

    template <class T>
    std::optional<T> Ask(std::function<T()> ask);
    static Listing List(const LPath& folder);
    static Look LookAt(const File& file);
    std::optional<Options> ReadOptions() const;
    bool StoreNewest(int64_t time);
    static LPath FindHeld(const std::vector<File>& files, int64_t bound);
    End Transfer(const File& file, int64_t bound, Outcome& outcome);
    void CountRest(std::span<const File> rest, int64_t bound, Outcome& outcome) const;
    bool Remove(const File& file, const Look& before);

    LPath m_settings;
    LPath m_dataFolder;
    Host& m_host;
    Options m_options;
};

// What the user is told of an outcome; empty where nothing is to be said.
std::string DockTransferText(const DockTransfer::Outcome& outcome, const LPath& folder);
