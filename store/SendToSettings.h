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

// A typist: the way of delivery and the file format. One binary record file for each, "rec%d.dat" in the
// user's folder, 1964 bytes (docs/file-formats.md).
// Thread: one at a time; the send thread loads its own.
struct SendToSettings {
    enum class Method : uint32_t { Email = 0, Folder = 1, Ftp = 2 };
    static constexpr uint32_t kEncrypt = 1;   // encrypt the dictation file (DCT only)
    static constexpr uint32_t kSendWave = 2;  // send a WAV file instead of a DCT file

    uint32_t flags = 0;
    std::string name = "Untitled";
    uint32_t method = 0;  // as in the file; other values than Method's are "undefined method"
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

    // False (traced) when the file cannot be opened, is too short or is of a newer version; the values then
    // stay as they were.
    bool Load(const LPath& path);
    bool Load(LReadStream& stream);
    // Creates or replaces the file; a failure leaves the old one.
    bool Save(const LPath& path) const;
    // Ends a Save that was cut off, given the path of what it left: a complete file becomes the recipient's
    // where he has none, everything else goes.
    static void RecoverUnfinished(const LPath& unfinished);
    // The 1964 bytes of the file; texts that are too long for their fields are cut.
    std::vector<uint8_t> ToBytes() const;
};

LPath RecipientPath(const LPath& dataFolder, uint32_t user, int32_t index);

// "<name> DEFAULT (<address>)", the word only for the default recipient.
std::string DescribeRecipient(const SendToSettings& recipient, bool isDefault);

// The same of a user's recipient by its index, what the list of recipients and a sent dictation say of one; a
// record that cannot be loaded is told by its number.
std::string DescribeRecipient(const DataFolder& data, const CurrentUser& user, int32_t index);

// How many recipients the user has.
int32_t RecipientCount(const LPath& userFile);
// The index of the user's default recipient; nothing when he has no recipients or the default is past their
// end, and then nothing can be sent.
std::optional<int32_t> DefaultRecipientIndex(const LPath& userFile);
