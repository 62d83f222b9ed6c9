#include "hardware/HardwareControl.h"
#include "hardware/PedalChanges.h"
#include "tests/unit/TestKit.h"

namespace {

using Opened = PedalPort::Opened;
using State = PedalReading::State;

// A port as a test sets it; without bits it cannot be read.
struct Plugged {
    Opened opened = Opened::Yes;
    std::optional<uint32_t> bits = 0;
    int timesOpened = 0;
};

class TestPort final : public PedalPort {
public:
    explicit TestPort(Plugged& plugged) : m_plugged(plugged) {}
    Opened Open() override { return ++m_plugged.timesOpened, m_plugged.opened; }
    std::optional<uint32_t> Read() override { return m_plugged.bits; }

private:
    Plugged& m_plugged;
};

}  // namespace

// CTS, DSR, ring and carrier are 0x10, 0x20, 0x40 and 0x80 of the modem status.
TEST(HardwareControl, EachLineOfASerialPortIsAControlAndTheFirstTwoTogetherAreTheThird) {
    // The changes after the line before, control by control.
    static const std::pair<uint32_t, const char*> kCases[] = {
        {0x00, ""},      {0x10, "1+"}, {0x30, "1- 3+"},       {0x20, "2+ 3-"}, {0x0F, "2-"},
        {0xC0, "3+ 4+"}, {0x40, "4-"}, {0xB0, "1+ 2+ 3- 4+"}, {0xF0, "3+"}};
    Plugged plugged;
    HardwareControl control([&](int32_t) { return std::make_unique<TestPort>(plugged); });
    ASSERT_TRUE(control.Open(5));
    PedalChanges pedals;
    for (const auto& [modemStatus, expected] : kCases) {
        plugged.bits = BitsOfModemStatus(modemStatus);
        pedals.Note(control.Scan());
        std::string changes;
        while (const auto change = pedals.Next())
            changes += (changes.empty() ? "" : " ") + std::to_string(change->control + 1) +
                       (change->isPressed ? "+" : "-");
        EXPECT_EQ(changes, expected) << modemStatus;
    }
}

TEST(HardwareControl, APortThatVanishesHasNothingPressedAndWorksAgainWhenItIsBack) {
    static const struct {
        Plugged plugged;  // and how often it was opened, all in all
        bool isRenewed;
        State state;
        bool isQuiet;
        const char* shown;
    } kSteps[] = {
        {{Opened::No, 0, 2}, false, State::CannotOpen, true, "Unable to open port"},
        {{Opened::Yes, 2, 3}, false, State::Open, false, "Button/Pedal 2"},
        {{Opened::Yes, 9, 3}, true, State::Open, false, "Button/Pedal 1, 4"},
        {{Opened::Yes, std::nullopt, 3}, false, State::Open, false, "Nothing pressed"},
        {{Opened::No, 1, 4}, false, State::CannotOpen, true, "Unable to open port"},
        {{Opened::Yes, 0, 5}, false, State::Open, false, "Nothing pressed"},
        {{Opened::NoLibrary, 1, 6}, true, State::NoLibrary, true, "Unable to open port"},
    };
    Plugged plugged{Opened::No, 0, 0};
    HardwareControl control([&](int32_t) { return std::make_unique<TestPort>(plugged); });
    EXPECT_FALSE(control.Open(3));
    for (const auto& step : kSteps) {
        plugged = {step.plugged.opened, step.plugged.bits, plugged.timesOpened};
        if (step.isRenewed) control.Renew();  // has no effect while a pedal is pressed
        const PedalReading reading = control.Poll();
        EXPECT_EQ(reading.state, step.state) << &step - kSteps;
        EXPECT_EQ(reading.isQuiet, step.isQuiet) << &step - kSteps;
        EXPECT_EQ(plugged.timesOpened, step.plugged.timesOpened) << &step - kSteps;
        EXPECT_EQ(PedalTestText(3, reading), step.shown) << &step - kSteps;
    }
}
