#include "app/window/DeviceCommands.h"

#include <utility>

#include "base/LTrace.h"
#include "res/Ids.h"

// One table row for each command index: its command, and the meaning of its release. Recording and playing
// follow the hold rule (HoldRule): a tap starts and the next tap stops, a hold lasts until the release.
// Winding lasts while the index is held. All others ignore the release.
// A press can outlast its own release, because opening a device or decoding a dictation runs messages.
// m_pressing on the stack of PressHeld notes such a release; it is judged when the command has started.
// Without this a pedal that is released during a slow start would go on recording.

namespace {

enum class Release { Nothing, HoldRule, Wind };

constexpr int kNone = 0, kOpen = -1, kMinimize = -2;  // beside the numbers of commands

}  // namespace

struct DeviceCommands::Index {
    int index;
    int command;
    Release release;
    int before = kNone;  // a command that is given first
    WindDirection direction = WindDirection::Back;
};

// In the order of the indexes.
const DeviceCommands::Index DeviceCommands::kIndexes[] = {
    {CI_NONE, kNone, Release::Nothing},
    {CI_OPEN, kOpen, Release::Nothing},
    {CI_MINIMIZE, kMinimize, Release::Nothing},
    {CI_RECORD, CM_RECORD, Release::HoldRule},
    {CI_PLAY, CM_PLAY, Release::HoldRule},
    {CI_GOTOSTART, CM_GOTOSTART, Release::Nothing},
    {CI_GOTOEND, CM_GOTOEND, Release::Nothing},
    {CI_REWIND, CM_REWIND, Release::Wind, kNone, WindDirection::Back},
    {CI_FASTFORWARD, CM_FASTFORWARD, Release::Wind, kNone, WindDirection::Forward},
    {CI_NEW, CM_NEWFILE, Release::Nothing},
    {CI_SEND, CM_SENDFILE, Release::Nothing},
    {CI_SENDHIGH, CM_SENDFILE, Release::Nothing, CM_PRIORITY_HIGH},
    {CI_RECORD_OVERWRITE, CM_RECORD_OVERWRITE, Release::HoldRule},
    {CI_RECORD_INSERT, CM_RECORD_INSERT, Release::HoldRule},
    {CI_RECORD_END, CM_RECORD_END, Release::HoldRule},
};

const DeviceCommands::Index* DeviceCommands::Find(int index) {
    for (const Index& entry : kIndexes)
        if (entry.index == index) return &entry;
    LTrace("MainDialog::CommandPress invalid command");
    return nullptr;
}

bool DeviceCommands::CommandPress(int index) {
    const Index* entry = Find(index);
    if (entry == nullptr) return false;
    return entry->release == Release::HoldRule ? PressHeld(*entry) : Press(*entry);
}

bool DeviceCommands::Press(const Index& entry) {
    if (entry.release == Release::Wind) return m_target.HoldWinding(entry.direction, true);
    if (entry.before != kNone && !m_target.Give(entry.before)) return false;
    switch (entry.command) {
        case kNone:
            return false;
        case kOpen:
            m_target.OpenWindow();
            return true;
        case kMinimize:
            m_target.MinimizeWindow();
            return true;
        default:
            return m_target.Give(entry.command);
    }
}

// Presses an index under the hold rule. The time of the press counts from the start of the recording, so a
// slow device does not turn a tap into a hold. A release that came during the start is judged by the times of
// the hand alone.
bool DeviceCommands::PressHeld(const Index& entry) {
    if (m_pressing != nullptr && m_pressing->index == entry.index) {
        m_pressing->releasedMs.reset();  // pressed again: the earlier release no longer counts
        return false;
    }
    Pressing pressing{entry.index, m_clock(), std::nullopt};
    Pressing* const outer = std::exchange(m_pressing, &pressing);
    const bool accepted = Press(entry);
    m_pressing = outer;
    if (!accepted && !pressing.releasedMs && m_target.IsProcessRunning()) m_refused = entry.index;
    if (!accepted) return false;
    m_hold.Press(pressing.releasedMs ? pressing.sinceMs : m_clock());
    if (pressing.releasedMs && m_hold.ReleaseStops(*pressing.releasedMs, pressing.holdLimitMs))
        m_target.Give(CM_STOP);
    return true;
}

void DeviceCommands::PressAgain() {
    if (const std::optional<int> held = std::exchange(m_refused, std::nullopt)) CommandPress(*held);
}

void DeviceCommands::CommandRelease(int index, uint32_t holdLimitMs) {
    if (m_refused == index) {
        m_refused.reset();
        return;
    }
    const Index* entry = Find(index);
    if (entry == nullptr) return;
    if (entry->release == Release::Wind) m_target.HoldWinding(entry->direction, false);
    if (entry->release != Release::HoldRule) return;
    if (m_pressing != nullptr && m_pressing->index == index) {
        m_pressing->releasedMs = m_clock();
        m_pressing->holdLimitMs = holdLimitMs;
    } else if (m_hold.ReleaseStops(m_clock(), holdLimitMs)) {
        m_target.Give(CM_STOP);
    }
}

// ---- Dictation microphone --------------------------------------------------------------------------------

namespace {

// Stop has no effect while the record button of the microphone is held; the play buttons have none while
// recording.
enum class MicAction {
    Stop,
    PressUnlessRecording,
    ReleaseWhilePlaying,
    RecordPress,
    RecordRelease,
    Press,
    Release
};

struct MicCode {
    int code;
    MicAction action;
    int index;
};

// The button codes that the microphone's control device sends.
constexpr MicCode kMicCodes[] = {
    {2, MicAction::Stop, CI_NONE},
    {4, MicAction::PressUnlessRecording, CI_PLAY},
    {5, MicAction::ReleaseWhilePlaying, CI_PLAY},
    {6, MicAction::RecordPress, CI_RECORD},
    {7, MicAction::RecordRelease, CI_RECORD},
    {10, MicAction::Press, CI_SEND},
    {12, MicAction::Press, CI_REWIND},
    {13, MicAction::Release, CI_REWIND},
    {14, MicAction::Press, CI_FASTFORWARD},
    {15, MicAction::Release, CI_FASTFORWARD},
    {20, MicAction::PressUnlessRecording, CI_PLAY},
    {21, MicAction::ReleaseWhilePlaying, CI_PLAY},
};

const MicCode* FindMicCode(int code) {
    for (const MicCode& entry : kMicCodes)
        if (entry.code == code) return &entry;
    return nullptr;
}

}  // namespace

void DeviceCommands::MicButton(int code) {
    const MicCode* button = FindMicCode(code);
    if (button == nullptr) return;
    switch (button->action) {
        case MicAction::Stop:
            if (!m_micRecordHeld) m_target.Give(CM_STOP);
            break;
        case MicAction::PressUnlessRecording:
            if (!m_target.IsRecording()) CommandPress(button->index);
            break;
        case MicAction::ReleaseWhilePlaying:
            if (m_target.IsPlaying()) CommandRelease(button->index, kHoldLimitMs);
            break;
        case MicAction::RecordPress:
            m_micRecordHeld = true;
            CommandPress(button->index);
            break;
        case MicAction::RecordRelease:
            m_micRecordHeld = false;
            CommandRelease(button->index, kHoldLimitMs);
            break;
        case MicAction::Press:
            CommandPress(button->index);
            break;
        case MicAction::Release:
            CommandRelease(button->index, kHoldLimitMs);
            break;
    }
}
