#include "audio/wave/LAcm.h"
#include "audio/wave/LWaveFile.h"
#include "send/SendItem.h"
#include "tests/unit/send/SendTest.h"

// A recipient who wants compressed WAV files gets them, in every format that this machine makes.
TEST(SendCodec, SendsEveryFormatThatTheMachineMakes) {
    static const struct {
        const char *what, *record;
        size_t bytes;  // of 20000 frames
    } kCases[] = {
        {"GSM 6.10", "3100 0100 401F0000 59060000 4100 0000 0200 4001", 48 + 63 * 65},
        {"IMA ADPCM", "1100 0100 401F0000 D70F0000 0001 0400 0200 F901", 48 + 40 * 256},
        {"A-law", "0600 0100 401F0000 401F0000 0100 0800 0000", 46 + 20000},
        {"mu-law", "0700 0100 401F0000 401F0000 0100 0800 0000", 46 + 20000},
    };
    for (const auto& c : kCases) {
        SendWorld world;
        NotingContext context;
        SendToSettings recipient = world.ToShare();
        recipient.flags = SendToSettings::kSendWave;
        recipient.waveFormat = LWaveFileFormat(Hex(c.record));
        EXPECT_TRUE(TestSupportedRecord(recipient.waveFormat)) << c.what;
        const SendQueueEntry entry{world.AddDictation(5, Recording(20000, false)),
                                   world.AddRecipient(0, recipient), 0, true};
        EXPECT_EQ(SendItem(entry, DataFolder::FromText(world.data.View()), context).Send(),
                  ProcessResult::Done);
        EXPECT_EQ(world.Delivered("wav00000-00005.wav").size(), c.bytes) << c.what;
        EXPECT_EQ(world.Status(5), "Sent") << c.what;
        EXPECT_TRUE(context.errors.empty()) << c.what << ": " << context.errors[0];
    }
    EXPECT_FALSE(TestSupportedRecord(LWaveFileFormat(Hex("7777 0100 401F0000 401F0000 0100 0800 0000"))));
}
