#include "store/SendToSettings.h"

#include "base/LArith.h"
#include "base/LBytes.h"
#include "base/LFile.h"
#include "base/LLeftOver.h"
#include "base/LProfile.h"
#include "base/LText.h"
#include "base/LTrace.h"
#include "store/SettingsKeys.h"

// A fixed binary layout of 1964 bytes: texts in zero-padded fields, then the wave format structure. Read with
// LByteReader, which fails once and stays failed, so the check for a file that is too short stands at the
// end; nothing is taken over from a file that fails.

namespace {

constexpr uint32_t kVersion = 1;  // written; version 0 has neither flags nor encryption password
constexpr size_t kFileBytes = 1964;
// The size of version 0, without flags and pass phrase.
constexpr size_t kOldFileBytes = 1896;
// Sizes of the text fields, with their padding.
constexpr size_t kNameBytes = 32;
constexpr size_t kAddressBytes = 128;
constexpr size_t kFolderBytes = 256;
constexpr size_t kLogOnBytes = 32;
constexpr size_t kPassPhraseBytes = 64;

static_assert(12 + kNameBytes + 2 * kAddressBytes + 2 * kFolderBytes + 2 * kLogOnBytes + kPassPhraseBytes +
                  LWaveFileFormat::kSize ==
              kFileBytes);
static_assert(kOldFileBytes == kFileBytes - 4 - kPassPhraseBytes);

SendToSettings ReadFields(LByteReader& in, uint32_t version) {
    const auto text = [&in](size_t size) { return std::string(in.FixedText(size)); };
    SendToSettings read;
    read.flags = version == 0 ? 0 : in.U32() & (SendToSettings::kEncrypt | SendToSettings::kSendWave);
    read.name = text(kNameBytes);
    read.method = in.U32();
    read.emailAddress = text(kAddressBytes);
    read.folder = text(kFolderBytes);
    read.ftpHost = text(kAddressBytes);
    read.ftpUser = text(kLogOnBytes);
    read.ftpPassword = text(kLogOnBytes);
    read.ftpFolder = text(kFolderBytes);
    if (version != 0) read.encryptionPassword = text(kPassPhraseBytes);
    read.waveFormat = LWaveFileFormat(in.Bytes(LWaveFileFormat::kSize));
    return read;
}

}  // namespace

bool SendToSettings::Load(const LPath& path) {
    LFile file(path, LFile::Open::Read);
    if (!file.IsOpen()) {
        LTrace("SendToSettings::Load unable to open file", path.View());
        return false;
    }
    return Load(file);
}

bool SendToSettings::Load(LReadStream& stream) {
    uint8_t bytes[kFileBytes];
    const size_t count = stream.Read(bytes);
    LByteReader in({bytes, count});
    const uint32_t version = in.U32();
    if (in.Ok() && version > kVersion) {
        LTrace("SendToSettings::Load Attempting to load an unsupported version file");
        return false;
    }
    SendToSettings read = ReadFields(in, version);
    if (!in.Ok()) {
        LTrace("SendToSettings::Load file too short");
        return false;
    }
    *this = std::move(read);
    return true;
}

std::vector<uint8_t> SendToSettings::ToBytes() const {
    LByteWriter out;
    out.U32(kVersion);
    out.U32(flags);
    out.FixedText(name, kNameBytes);
    out.U32(method);
    out.FixedText(emailAddress, kAddressBytes);
    out.FixedText(folder, kFolderBytes);
    out.FixedText(ftpHost, kAddressBytes);
    out.FixedText(ftpUser, kLogOnBytes);
    out.FixedText(ftpPassword, kLogOnBytes);
    out.FixedText(ftpFolder, kFolderBytes);
    out.FixedText(encryptionPassword, kPassPhraseBytes);
    out.Bytes(waveFormat.Bytes());
    return {out.View().begin(), out.View().end()};
}

bool SendToSettings::Save(const LPath& path) const {
    if (LFile::WriteWhole(path, path.WithExtension(LLeftOver::kRecipient), ToBytes())) return true;
    LTrace("SendToSettings::Save unable to write file", path.View());
    return false;
}

void SendToSettings::RecoverUnfinished(const LPath& unfinished) {
    const LPath path = unfinished.WithExtension(".dat");
    const bool isWanted = !LFile::Exists(path) && SendToSettings().Load(unfinished);
    isWanted ? LFile::Move(unfinished, path) : LFile::Delete(unfinished);
}

LPath RecipientPath(const LPath& dataFolder, uint32_t user, int32_t index) {
    return LPath::Format("%s%.8lu\\rec%d.dat", dataFolder.c_str(), static_cast<unsigned long>(user),
                         int{index});
}

std::string DescribeRecipient(const SendToSettings& recipient, bool isDefault) {
    const std::string* const addresses[] = {&recipient.emailAddress, &recipient.folder, &recipient.ftpHost};
    std::string text = recipient.name + (isDefault ? " DEFAULT (" : " (");
    text += recipient.method < std::size(addresses) ? *addresses[recipient.method]
                                                    : std::string("undefined method");
    return text + ")";
}

std::string DescribeRecipient(const DataFolder& data, const CurrentUser& user, int32_t index) {
    SendToSettings recipient;
    if (!recipient.Load(RecipientPath(data.folder, user.number, index)))
        return LFormat("Recipient %d", static_cast<int>(index) + 1);
    return DescribeRecipient(recipient, DefaultRecipientIndex(user.userFile) == index);
}

bool SaveRecipient(const DataFolder& data, const CurrentUser& user, int32_t index,
                   const SendToSettings& recipient) {
    return recipient.Save(RecipientPath(data.folder, user.number, index));
}

ShownRecipient ShownRecipient::Read(const DataFolder& data, const CurrentUser& user, int32_t index) {
    SendToSettings recipient;
    LFile file;
    const LPath path = RecipientPath(data.folder, user.number, index);
    const bool isRead = LFile::OpenToRead(path, file) == LReadResult::Values && recipient.Load(file);
    return {index, isRead ? recipient.ToBytes() : std::vector<uint8_t>()};
}

std::optional<RecipientNumbers> RecipientNumbers::Read(const LPath& userFile) {
    const LProfileSection section(userFile, UserKeys::kSendCount.section, kReadWaitMs);
    if (section.Result() == LReadResult::Unreadable) return std::nullopt;
    const auto number = [&](const Settings::IntKey& key) {
        const std::string text = section.Read(key.key, {});
        return text.empty() ? key.defaultValue : LParseInt(text);
    };
    RecipientNumbers numbers;
    numbers.count = Clamp<int32_t>(number(UserKeys::kSendCount), 0, kMostRecipients);
    const int32_t index = number(UserKeys::kSendDefault);
    if (index >= 0 && index < numbers.count) numbers.defaultIndex = index;
    return numbers;
}

int32_t RecipientCount(const LPath& userFile) {
    return RecipientNumbers::Read(userFile).value_or(RecipientNumbers()).count;
}

std::optional<int32_t> AddRecipient(const DataFolder& data, const CurrentUser& user,
                                    const SendToSettings& recipient) {
    const auto numbers = RecipientNumbers::Read(user.userFile);
    if (!numbers) return std::nullopt;
    const int32_t index = numbers->count;
    if (index >= kMostRecipients || !SaveRecipient(data, user, index, recipient)) return std::nullopt;
    Settings::Write(user.userFile, UserKeys::kSendCount, index + 1);
    if (RecipientCount(user.userFile) != index + 1) return std::nullopt;
    return index;
}

std::optional<int32_t> DefaultRecipientIndex(const LPath& userFile) {
    return RecipientNumbers::Read(userFile).value_or(RecipientNumbers()).defaultIndex;
}

void StoreRateOfDefault(const LPath& userFile, int32_t index, const SendToSettings& recipient) {
    const auto rate = static_cast<int32_t>(recipient.waveFormat.SampleRate());
    if (DefaultRecipientIndex(userFile) == index) Settings::Write(userFile, UserKeys::kSampleRate, rate);
}
