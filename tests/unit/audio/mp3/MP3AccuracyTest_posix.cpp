#include <mpg123.h>

#include "tests/unit/audio/mp3/Mp3Kit.h"

static std::vector<float> DecodeElsewhere(const Bytes& file) {
    mpg123_handle* decoder = mpg123_new("generic", nullptr);
    mpg123_param(decoder, MPG123_ADD_FLAGS, MPG123_FORCE_FLOAT | MPG123_QUIET, 0);
    mpg123_param(decoder, MPG123_REMOVE_FLAGS, MPG123_GAPLESS, 0);
    mpg123_open_feed(decoder);
    mpg123_feed(decoder, file.data(), file.size());
    std::vector<float> all, block(8192);
    for (int result = MPG123_OK; result == MPG123_OK || result == MPG123_NEW_FORMAT;) {
        size_t bytes = 0;
        result =
            mpg123_read(decoder, reinterpret_cast<unsigned char*>(block.data()), 4 * block.size(), &bytes);
        all.insert(all.end(), block.begin(), block.begin() + static_cast<int64_t>(bytes / 4));
    }
    mpg123_delete(decoder);
    return all;
}

// Within a sixteenth of a 16-bit step, and the rounding of ours.
TEST(MP3, SoundsAsInAnotherDecoder) {
    for (const char* name : kMp3Files) {
        const Bytes file = Mp3File(name);
        const Samples ours = Mp3Sound(file).samples;
        const std::vector<float> others = DecodeElsewhere(file);
        ASSERT_EQ(ours.size(), others.size()) << name;
        for (size_t i = 0; i < ours.size(); ++i)
            ASSERT_NEAR(ours[i], others[i] * 0x80000, 1.5) << name << " " << i;
    }
}
