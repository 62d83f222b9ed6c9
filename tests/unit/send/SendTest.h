#pragma once

#include <string>
#include <vector>

#include "base/LProcess.h"
#include "base/LStream.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/SendToSettings.h"
#include "store/SettingsKeys.h"
#include "tests/unit/TempFolder.h"
#include "tests/unit/audio/AudioTest.h"

// Notes what a process reports; asks it to stop once its progress has reached cancelAt.
class NotedContext final : public ProcessContext {
public:
    bool CancelRequested() override {
        return !progress.empty() ? progress.back() >= cancelAt : cancelAt <= 0;
    }
    void SetProgress(double fraction) override { progress.push_back(fraction); }
    void SetStatus(std::string_view) override {}
    void SetError(std::string_view text) override { errors.emplace_back(text); }

    double cancelAt = 2.0;
    std::vector<double> progress;
    std::vector<std::string> errors;
};

// A file that yields fewer bytes than its size promises.
class EndingFile final : public LReadStream {
public:
    EndingFile(const Bytes& bytes, size_t readable)
        : m_size(bytes.size()), m_file(std::span(bytes).first(readable)) {}
    size_t Read(std::span<uint8_t> buffer) override { return m_file.Read(buffer); }
    bool Seek(int64_t position) override { return m_file.Seek(position); }
    int64_t Position() const override { return m_file.Position(); }
    int64_t Size() const override { return static_cast<int64_t>(m_size); }

private:
    size_t m_size;
    LMemoryFile m_file;
};

// A 16-bit mono file at 8000 Hz; a streaming one holds 0xFFFFFFFF for its sizes, as after a crash.
inline Bytes Recording(size_t frames, bool isStreaming = false) {
    Bytes samples(2 * frames);
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(i / 2 * 13 + i % 2 * 3);
    Bytes file = WaveFile(Chunk("fmt ", FormatRecord(1, 1, 8000, 16)) + Chunk("data", samples));
    for (size_t size : {4, 42}) {
        if (isStreaming) std::fill_n(file.begin() + static_cast<ptrdiff_t>(size), 4, uint8_t{0xFF});
    }
    return file;
}

// A data folder with user 0, a share that dictations are sent to, and a queue file.
struct SendWorld {
    SendWorld() { LFile::MakeFolder(UserFolderPath(data, 0)); }

    // The audio path of a new dictation in Sent, with a record and notes.
    LPath AddDictation(int32_t number, const Bytes& audio = Recording(4000)) {
        const DictationFiles files = FilesOf(number);
        Settings::Write(files.record, RecordKeys::kNumber, number);
        Settings::Write(files.record, RecordKeys::kName, "Letter " + std::to_string(number));
        Settings::WriteSeconds(files.record, RecordKeys::kSection, RecordKeys::kDate, 1000000000);
        WriteFileText(files.audio, {reinterpret_cast<const char*>(audio.data()), audio.size()});
        WriteFileText(files.notes, "Hello");
        return files.audio;
    }
    LPath AddRecipient(int32_t index, SendToSettings recipient) {
        recipient.folder = recipient.folder.empty() ? std::string(share.View()) : recipient.folder;
        const LPath path = RecipientPath(data, 0, index);
        EXPECT_TRUE(recipient.Save(path));
        return path;
    }
    static SendToSettings ToShare() {
        SendToSettings recipient;
        recipient.method = static_cast<uint32_t>(SendToSettings::Method::Folder);
        return recipient;
    }
    static SendToSettings ToShareEncrypted() {
        SendToSettings recipient = ToShare();
        recipient.flags = SendToSettings::kEncrypt;
        recipient.encryptionPassword = "pass";
        return recipient;
    }

    DictationFiles FilesOf(int32_t number) const { return DictationFiles::OfNumber(sent, number); }
    std::string Status(int32_t number) const {
        return Settings::Read(FilesOf(number).record, RecordKeys::kSendStatus);
    }
    std::string Delivered(const char* name) const { return ReadFileText(LPath::Join(share.View(), name)); }
    // The names of all files in Sent, in order.
    std::vector<std::string> SentFiles() const {
        std::vector<std::string> names;
        LListFolder(sent, "*", [&names](const LFolderEntry& entry) {
            names.push_back(entry.name);
            return true;
        });
        std::sort(names.begin(), names.end());
        return names;
    }

    TempFolder temp;
    const LPath data = temp.Folder("data");
    const LPath share = temp.Folder("share");
    const LPath sent = temp.Folder("Sent");
    const LPath queue = LPath::Join(data.View(), "bgsend.dat");
};
