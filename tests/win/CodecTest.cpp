#include <windows.h>

#include <cmath>

#include "audio/wave/LAcm.h"
#include "audio/wave/LRewriteWave.h"
#include "audio/wave/LWaveFile.h"
#include "send/LoadDCTProcess.h"
#include "send/SendItem.h"
#include "tests/unit/audio/SoundKit.h"
#include "tests/unit/send/SendTest.h"
#include "tests/win/Hand.h"
#include "ui/LChooseFormat.h"

// The machine's own codecs, through the product's sources and sinks.

namespace {

LPath Data(const char* name) {
    return LPath::Join(CORVANE_DATA "/codecs", name);
}

Samples ReadAll(const LPath& path) {
    const LSoundSource source = LWaveFile::OpenSource(path);
    return ReadFrames(*source, source->GetLength());
}

// What was spoken is this much louder than its difference to what is heard, in dB.
double SignalToNoise(const Samples& spoken, uint8_t channels, const Samples& heard) {
    double signal = 0, noise = 1;
    for (size_t i = 0; i < heard.size(); ++i) {
        const size_t frame = i / channels;
        const double wanted = frame < spoken.size() / 2 ? spoken[frame * 2 + i % channels] : 0;
        signal += wanted * wanted;
        noise += (wanted - heard[i]) * (wanted - heard[i]);
    }
    return 10 * std::log10(signal / noise);
}

// What was spoken as a delivery to a share in that format.
struct SentInFormat {
    SentInFormat(const char* record, uint32_t flags) {
        SendToSettings recipient = world.ToShare();
        recipient.flags = flags;
        recipient.waveFormat = LWaveFileFormat(Hex(record));
        const SendQueueEntry entry{world.AddDictation(5, Text(ReadFileText(Data("spoken.wav")))),
                                   world.AddRecipient(0, recipient), 0, true};
        EXPECT_EQ(SendItem(entry, DataFolder::FromText(world.data.View()), nullptr, context).Send(),
                  ProcessResult::Done);
        EXPECT_EQ(world.Status(5), "Sent");
        EXPECT_TRUE(context.errors.empty());
    }

    SendWorld world;
    NotingContext context;
};

}  // namespace

TEST(Codec, ReadsFilesOfOtherProgramsAtAnyPlaceAndMakesRecordingsOfThem) {
    static const std::tuple<const char*, uint8_t, double> kCases[] = {
        {"sox-gsm.wav", 1, 8},   {"ffmpeg-gsm.wav", 1, 8},   {"sox-ima.wav", 2, 15},
        {"sox-ms.wav", 2, 15},   {"ffmpeg-ima.wav", 2, 15},  {"ffmpeg-ms.wav", 2, 15},
        {"sox-8.wav", 2, 30},    {"ffmpeg-alaw.wav", 2, 30}, {"sox-mulaw.wav", 2, 30},
        {"ffmpeg-24.wav", 1, 90}};
    const Samples spoken = ReadAll(Data("spoken.wav"));
    for (const auto& [name, channels, least] : kCases) {
        SCOPED_TRACE(name);
        const LSoundSource source = LWaveFile::OpenSource(Data(name));
        ASSERT_EQ(source->GetChannels(), channels);
        Samples heard = ReadFrames(*source, 10000);  // the length is an estimate until all has been read
        heard.resize(static_cast<size_t>(source->GetLength()) * channels);
        EXPECT_NEAR(heard.size() / channels, 8070, 70) << "a second, and the silence of the last block";
        EXPECT_GT(SignalToNoise(spoken, channels, heard), least);
        for (const int32_t place : {1, 4999, 640, 7000}) {
            source->Seek(place);
            const Samples sought = ReadFrames(*source, 900);
            EXPECT_TRUE(std::equal(sought.begin(), sought.end(), heard.data() + place * channels)) << place;
        }
        const ScratchFile file(Text(ReadFileText(Data(name))));
        NotingContext context;
        EXPECT_EQ(LRewriteWave(file.path).Process(context), ProcessResult::Done);
        const Samples rewritten = ReadAll(file.path);
        ASSERT_EQ(rewritten.size(), heard.size());
        for (size_t i = 0; i < heard.size(); ++i) ASSERT_NEAR(rewritten[i], heard[i], 16) << i;
    }
}

// As a WAV file of so many bytes; where that is 0 as a DCT file, which carries one channel of every format
// and is heard by a colleague who loads it.
TEST(Codec, WhatIsSentIsStillWhatWasSpoken) {
    static const std::tuple<const char*, const char*, size_t, double> kCases[] = {
        {"GSM 6.10", "3100 0100 401F0000 59060000 4100 0000 0200 4001", 48 + 25 * 65, 8},
        {"IMA ADPCM", "1100 0100 401F0000 D70F0000 0001 0400 0200 F901", 48 + 16 * 256, 15},
        {"A-law", "0600 0100 401F0000 401F0000 0100 0800 0000", 46 + 8000, 30},
        {"mu-law", "0700 0100 401F0000 401F0000 0100 0800 0000", 46 + 8000, 30},
        {"IMA ADPCM, stereo", "1100 0200 401F0000 AE1F0000 0002 0400 0200 F901", 0, 15},
        {"blocks too small to halve", "1100 0200 401F0000 401F0000 0800 0400 0200 0100", 0, 15},
        {"mu-law, stereo", "0700 0200 401F0000 803E0000 0200 0800 0000", 0, 30},
        {"PCM, stereo", "0100 0200 401F0000 007D0000 0400 1000 0000", 0, 90}};
    for (const auto& [what, record, bytes, least] : kCases) {
        SCOPED_TRACE(what);
        SentInFormat sent(record, bytes > 0 ? SendToSettings::kSendWave : 0);
        const DictationFiles loaded = DictationFiles::OfNumber(sent.world.share, 6);
        if (bytes > 0) {
            WriteFileText(loaded.audio, sent.world.Delivered("wav00000-00005.wav"));
            EXPECT_EQ(ReadFileText(loaded.audio).size(), bytes);
        } else {
            LoadDCTProcess load(LPath::Join(sent.world.share.View(), "dct00000-00005.dct"), loaded);
            ASSERT_EQ(load.Process(sent.context), ProcessResult::Done);
            EXPECT_EQ(DictationRecord::Read(loaded.record).name, "Letter 5");
        }
        EXPECT_EQ(LWaveFile::OpenSource(loaded.audio)->GetChannels(), 1);
        EXPECT_GT(SignalToNoise(ReadAll(Data("spoken.wav")), 1, ReadAll(loaded.audio)), least);
    }
    EXPECT_FALSE(TestSupportedRecord(LWaveFileFormat(Hex("7777 0100 401F0000 401F0000 0100 0800 0000"))));
}

// --- The format chooser --------------------------------------------------------------------------------

static Hand::Step Pick(int list, const char* text) {
    return {"Sound Selection", [=](HWND dialog) {
                const HWND combo = GetDlgItem(dialog, list);
                if (SendMessageA(combo, CB_SELECTSTRING, 0, reinterpret_cast<LPARAM>(text)) < 0) return false;
                SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(list, CBN_SELCHANGE),
                             reinterpret_cast<LPARAM>(combo));
                return true;
            }};
}

static bool Choose(LWaveFileFormat& format, std::vector<Hand::Step> steps) {
    const Hand hand(std::move(steps));
    return LChooseFormat(nullptr, format, 0, TestSupportedRecord);
}

TEST(ChooseFormat, RefusesWhatCanOnlyBeReadAndCanBeLeft) {
    constexpr int kFormats = 101, kAttributes = 102;
    LWaveFileFormat format(Hex("3100 0100 401F0000 59060000 4100 0000 0200 4001"));
    const Hand::Step ok = Hand::Press("Sound Selection", IDOK);
    EXPECT_TRUE(
        Choose(format, {Pick(kFormats, "Microsoft ADPCM"), ok, Hand::Press("Format Not Available", IDOK),
                        Pick(kFormats, "IMA ADPCM"), Pick(kAttributes, "11025 Hz"), ok}));
    EXPECT_EQ(Bytes(format.Record().begin(), format.Record().end()),
              Hex("1100 0100 112B0000 D4150000 0001 0400 0200 F901"));
    EXPECT_FALSE(Choose(format, {Hand::Press("Sound Selection", IDCANCEL)}));
}
