#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/LPath.h"
#include "base/LStream.h"
#include "base/LWaveFileFormat.h"
#include "store/CurrentUser.h"

// A recipient (typist): way of delivery and file format. One binary file for each, "rec%d.dat" in the user's
// folder, 1964 bytes (docs/file-formats.md).
// Errors: Load and Save return false (traced).
// Thread: one at a time; the send thread loads its own.
struct SendToSettings {
    enum class Method : uint32_t { Email = 0, Folder = 1, Ftp = 2 };
    static constexpr uint32_t kEncrypt = 1;   // encrypt the dictation file (DCT only)
    static constexpr uint32_t kSendWave = 2;  // send a WAV file instead of a DCT file

    uint32_t flags = 0;
    std::string name = "Untitled";
    uint32_t method = 0;  // a Method; any other value is kept and shown as "undefined method"
    std::string emailAddress;
    std::string folder;
    std::string ftpHost;
    std::string ftpUser;
    std::string ftpPassword;
    std::string ftpFolder;
    std::string encryptionPassword;
    LWaveFileFormat waveFormat;

    bool Encrypts() const { return (flags & kEncrypt) != 0; }
    bool SendsWave() const { return (flags & kSendWave) != 0; }

    // False when the file cannot be opened, is too short or is of a newer version; the values are then
    // unchanged.
    bool Load(const LPath& path);
    bool Load(LReadStream& stream);
    // Creates or replaces the file; on failure the old one stays.
    bool Save(const LPath& path) const;
    // Finishes a Save that was cut off, given the path of its unfinished file: a complete one becomes the
    // recipient's file where he has none; otherwise it is deleted.
    static void RecoverUnfinished(const LPath& unfinished);
    // The 1964 bytes of the file; texts that are too long for their fields are cut.
    std::vector<uint8_t> ToBytes() const;
};

inline constexpr int32_t kMostRecipients = 1000;  // of a user

LPath RecipientPath(const LPath& dataFolder, uint32_t user, int32_t index);

// "<name> DEFAULT (<address>)"; "DEFAULT" only for the default recipient.
std::string DescribeRecipient(const SendToSettings& recipient, bool isDefault);

// The same for a user's recipient by index, as the list of recipients and the record of a sent dictation show
// it; "Recipient 2" when the file cannot be loaded.
std::string DescribeRecipient(const DataFolder& data, const CurrentUser& user, int32_t index);

// Writes the record of a user's recipient; on failure the old one stays.
bool SaveRecipient(const DataFolder& data, const CurrentUser& user, int32_t index,
                   const SendToSettings& recipient);

// A recipient as he was shown to the user. Another session may delete recipients, and his number then means
// somebody else; so whoever acts on a choice compares first.
struct ShownRecipient {
    int32_t index = -1;
    std::vector<uint8_t> record;  // empty: it could not be read

    static ShownRecipient Read(const DataFolder& data, const CurrentUser& user, int32_t index);
    bool operator==(const ShownRecipient&) const = default;
};

// Both from one read of the user's file; nothing while it cannot be read, and then nothing may be numbered.
struct RecipientNumbers {
    int32_t count = 0;
    std::optional<int32_t> defaultIndex;

    static std::optional<RecipientNumbers> Read(const LPath& userFile);
};

// Number of the user's recipients, at most kMostRecipients, and 0 while it cannot be read: the user file may
// be damaged.
int32_t RecipientCount(const LPath& userFile);
// Adds a recipient behind the others; returns his index, or nothing when he could not be stored or the user
// has as many as there can be.
std::optional<int32_t> AddRecipient(const DataFolder& data, const CurrentUser& user,
                                    const SendToSettings& recipient);
// Index of the user's default recipient; nothing, so that nothing can be sent, when he has no recipients or
// the index is beyond their number.
std::optional<int32_t> DefaultRecipientIndex(const LPath& userFile);
// A user records at the sample rate of his default recipient's format: stores it when the index is that of
// the default.
void StoreRateOfDefault(const LPath& userFile, int32_t index, const SendToSettings& recipient);
