#pragma once

#include "send/DctWriter.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/SendToSettings.h"
#include "store/SettingsKeys.h"
#include "tests/unit/audio/AudioTest.h"

// A 16-bit mono file at 8000 Hz; a streaming one holds 0xFFFFFFFF for its sizes, as after a crash.
inline Bytes Recording(size_t frames, bool isStreaming = false) {
    Bytes samples(2 * frames);
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(i / 2 * 13 + i % 2 * 3);
    Bytes file = Wave16(samples);
    if (isStreaming) {
        for (size_t i : {4, 5, 6, 7, 42, 43, 44, 45}) file[i] = 0xFF;
    }
    return file;
}

// What the DCT files of these tests say.
inline DctHeader SampleHeader() {
    DctHeader header;
    header.user = 7;
    header.number = 12;
    header.date = 1000000000;
    header.name = "Dictation 012";
    header.sender.name = "Ann";
    header.sender.email = "a@b.c";
    header.sender.address[3] = "UK";
    header.priority = DctPriority("High");
    return header;
}

// On a disk with room for so many bytes.
inline Bytes WriteDct(std::string_view passPhrase, const Bytes& notes, const Bytes& audio,
                      size_t room = SIZE_MAX) {
    LMemoryFile out, notesFile(notes), audioFile(audio);
    out.SetCapacity(room);
    NotingContext context;
    EXPECT_EQ(DctWriter(out, passPhrase, context).Write(SampleHeader(), &notesFile, &audioFile),
              room == SIZE_MAX ? ProcessResult::Done : ProcessResult::Failed);
    return FileBytes(out);
}

// A data folder with user 0, a share that dictations are sent to, and a queue file.
struct SendWorld {
    SendWorld() {
        LFile::MakeFolder(UserFolderPath(data, 0));
        LFile::MakeFolder(sent);
    }

    // The audio path of a new dictation in Sent, with a record and notes.
    LPath AddDictation(int32_t number, const Bytes& audio = Recording(4000)) {
        const DictationFiles files = FilesOf(number);
        Settings::Write(files.record, RecordKeys::kNumber, number);
        Settings::Write(files.record, RecordKeys::kName, "Letter " + std::to_string(number));
        Settings::WriteNumber(files.record, RecordKeys::kSection, RecordKeys::kDate, 1000000000);
        WriteFileText(files.audio, std::string(audio.begin(), audio.end()));
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
    std::vector<std::string> SentFiles() const { return TempFolder::Names(sent); }

    TempFolder temp;
    const LPath data = temp.Folder("data");
    const LPath share = temp.Folder("share");
    const LPath sent = LPath::Join(UserFolderPath(data, 0).View(), "Sent\\");
    const LPath queue = LPath::Join(data.View(), "bgsend.dat");
};
