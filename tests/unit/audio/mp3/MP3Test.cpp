#include "tests/unit/BorrowedStream.h"
#include "tests/unit/audio/mp3/Mp3Kit.h"

static std::vector<const MP3Kernels*> AllKernels() {
    __builtin_cpu_init();
    std::vector<const MP3Kernels*> all = {&kPlainMP3Kernels};
    if (__builtin_cpu_supports("sse2")) all.push_back(&kSse2MP3Kernels);
    for (const MP3Kernels* kernels : all) kernels->prepare();
    return all;
}

// A file of twelve frames, each by itself, and its frames from one on with a change in each.
static constexpr int32_t kFrameBytes = 626, kSound = 12 * 1152;
static Bytes Blocks() {
    return Mp3File("blocks-44100.mp3");
}
static Bytes Changed(int from, size_t at, int mask, int bits) {
    Bytes file = Blocks();
    for (size_t frame = static_cast<size_t>(from) * kFrameBytes; frame < file.size(); frame += kFrameBytes)
        file[frame + at] = static_cast<uint8_t>((file[frame + at] & mask) | bits);
    return file;
}
static Bytes WithoutFirst(const Bytes& file, ptrdiff_t bytes) {
    return {file.begin() + bytes, file.end()};
}

TEST(MP3, SoundsTheSameInAllVersions) {
    for (const char* name : kMp3Files) {
        const Mp3Sound chosen(Mp3File(name));
        ASSERT_TRUE(chosen.source.IsWhole()) << name;
        for (const MP3Kernels* kernels : AllKernels()) {
            const Mp3Sound sound(Mp3File(name), *kernels);
            ASSERT_EQ(sound.samples.size(), chosen.samples.size()) << name;
            for (size_t i = 0; i < sound.samples.size(); ++i)
                ASSERT_NEAR(sound.samples[i], chosen.samples[i], 2) << name << " " << i;
        }
    }
}

TEST(MP3, EndsWhereItCannotBeDecoded) {
    const std::string ended = "LMP3Source::Read DecodeFrame failed so end";
    const std::string noHeader = "LMP3Source::LMP3Source DecodeInitialHeader FAILED so SetError";
    Bytes picture(500, 0x20);
    picture[100] = 0xFF, picture[101] = 0xFA, picture[102] = 0x90;
    Bytes behind = picture;
    behind[102] = 0x94;
    Bytes tooBig = Blocks();
    tooBig[6 * kFrameBytes + 8] = 0x90, tooBig[6 * kFrameBytes + 9] |= 0x80;
    Bytes tag = Text("TAG") + Bytes(125, 0);
    tag[10] = 0xFF, tag[11] = 0xFA, tag[12] = 0x94, tag[20] = 0xFF;
    const Bytes picturesTag = Hex("49 44 33 03 00 00 00 01 6A 30") + Bytes(30000, 7);  // ID3, 30,000 bytes
    // The length in frames, below 0 for a refusal; whether it is whole; a line of the trace.
    static const std::tuple<const char*, Bytes, int32_t, bool, std::string> kCases[] = {
        {"nothing", {}, -1, false, "MP3Header::ReadHeader failed because unable to read header"},
        {"as it is", Blocks(), kSound, true, "MP3Header::ReadHeader failed because unable to read header"},
        {"10,000 bytes in front", Bytes(10000, 7) + Blocks(), kSound, true, ended},
        {"20,000 bytes in front", Bytes(20000, 7) + Blocks(), -1, false,
         "MP3Header::ReadHeader failed because unable to find header after 16384 bytes"},
        {"what looks like a header in front", picture + Blocks(), kSound, true, ended},
        {"a tag behind", Blocks() + tag, kSound, true, ended},
        {"what looks like a header behind", Blocks() + behind, kSound, true, ended},
        {"sound behind a few bytes", Blocks() + Bytes(100, 7) + Blocks(), 2 * kSound, true, ended},
        {"sound behind a tag with a picture", Blocks() + picturesTag + Blocks(), kSound, false, ended},
        {"a tag with a picture behind", Blocks() + picturesTag, kSound, true, ended},
        {"padding behind", Blocks() + Bytes(40000, 0), kSound, true, ended},
        {"cut off", WithoutFirst(Blocks(), 300), 11 * 1152, true, ended},
        {"no known version", Changed(0, 1, 0xE7, 0x08), -1, false,
         "MP3Header::ReadHeader version 4???? so skip"},
        {"another layer", Changed(0, 1, 0xF9, 0x04), -1, false,
         "MP3Header::ReadHeader not a true layer 3 file"},
        {"free format", Changed(0, 2, 0x0F, 0), -1, false,
         "MP3Header::ReadHeader bitrate is free or forbidden"},
        {"no sampling frequency", Changed(0, 2, 0xF3, 0x0C), -1, false,
         "MP3Header::ReadHeader sampling_frequency index >= 3 so assume invalid header and skip"},
        {"another version behind", Blocks() + Mp3File("intensity-22050.mp3"), kSound, false, ended},
        {"another frequency behind", Blocks() + Mp3File("intensity-32000.mp3"), kSound, false, ended},
        {"mono later", Changed(6, 3, 0x3F, 0xC0), kSound / 2, false, ended},
        {"289 big values", tooBig, kSound / 2, false,
         "LMP3Source::DecodeHuffmanData (si.big_values << 1) > 576"},
    };
    for (const auto& [what, file, frames, isWhole, trace] : kCases) {
        const TraceLog log;
        const Mp3Sound sound(file);
        EXPECT_EQ(sound.source.IsError(), frames < 0) << what;
        EXPECT_EQ(sound.source.GetLength(), std::max(frames, 0)) << what;
        EXPECT_EQ(sound.source.IsWhole(), isWhole) << what;
        EXPECT_TRUE(log.Has(trace)) << what << "\n" << log.All();
        EXPECT_TRUE(log.Has(frames < 0 ? noHeader : ended)) << what;
    }
    for (size_t bytes = 0; bytes < 2 * kFrameBytes; ++bytes) {
        Bytes file = Blocks();
        file.resize(bytes);
        EXPECT_LE(Mp3Sound(file).source.GetLength(), 1152) << bytes;
    }
}

// The length is told by a frame of information, which is not heard, or by the bit rate; where that changes it
// is a guess, by which nothing ends.
TEST(MP3, TellsItsLengthAndEndsWithTheSound) {
    const Bytes stereo = Mp3File("stereo-44100-128.mp3");
    constexpr int32_t kStereo = 78 * 1152, kFirstFrame = 418;
    Bytes checked = stereo;
    checked[21] &= 0xFE;  // a check sum follows the header
    Bytes wrong = stereo;
    wrong[64] = wrong[65] = wrong[66] = 0, wrong[67] = 1;  // the number of frames
    static const std::tuple<const char*, Bytes, int32_t, bool> kCases[] = {
        {"frame of information", stereo, kStereo, true},
        {"the same with a check sum", checked, kStereo, true},
        {"a frame of wrong information", wrong, kStereo, false},
        {"none", WithoutFirst(stereo, kFirstFrame), kStereo, true},
        {"a constant bit rate and a tag", Blocks() + Text("TAG") + Bytes(125, 0), kSound, true},
        {"bit rates that fall", Blocks() + stereo, kSound + kStereo + 1152, false},
        {"bit rates that rise", WithoutFirst(stereo, kFirstFrame) + Blocks(), kStereo + kSound, false},
    };
    for (const auto& [what, file, frames, isExact] : kCases) {
        Mp3Sound sound(file);
        EXPECT_EQ(sound.source.GetLength(), frames) << what;
        EXPECT_EQ(sound.told == frames, isExact) << what << " " << sound.told;
        for (const int32_t place : {0, 5000, 1151, -100, frames - 10, frames + 5}) {
            Samples again(600);
            sound.source.Seek(place);
            sound.source.Read(again.data(), 300);
            for (int32_t i = 0; i < 600; ++i) {
                const int32_t at = 2 * place + i;
                const bool isThere = at >= 0 && at < 2 * frames;
                ASSERT_EQ(again[static_cast<size_t>(i)], isThere ? sound.samples[static_cast<size_t>(at)] : 0)
                    << what << " " << place;
            }
        }
    }
}

TEST(MP3, AFileThatBreaksOffIsNotWhole) {
    const Bytes stereo = Mp3File("stereo-44100-128.mp3");
    EXPECT_FALSE(Mp3Sound(Bytes(stereo.begin(), stereo.begin() + 20000)).source.IsWhole()) << "a download";
    LMemoryFile file(stereo);
    auto stream = std::make_unique<BorrowedStream>(file);
    stream->readable = 20000;  // then its drive goes away
    LMP3Source source(std::move(stream));
    Samples block(size_t{2} * 1152);
    while (source.GetPosition() < source.GetLength()) source.Read(block.data(), 1152);
    EXPECT_TRUE(source.IsError());
    EXPECT_FALSE(source.IsWhole());
}

TEST(MP3, IsSilentWhereTheStartIsMissing) {
    const Bytes file = Mp3File("stereo-48000-320.mp3");
    const Samples all = Mp3Sound(file).samples, rest = Mp3Sound(WithoutFirst(file, 2 * 960)).samples;
    constexpr size_t kFrame = 2 * 1152;
    ASSERT_EQ(rest.size(), all.size() - kFrame);
    EXPECT_TRUE(std::all_of(rest.begin(), rest.begin() + kFrame, [](int32_t v) { return v == 0; }));
    for (size_t i = 4 * kFrame; i < rest.size(); ++i) ASSERT_NEAR(rest[i], all[i + kFrame], 1) << i;
}
