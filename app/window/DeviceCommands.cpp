#include "app/window/DeviceCommands.h"

#include <algorithm>
#include <utility>

#include "base/LTrace.h"
#include "hardware/DictCtrl.h"
#include "res/Ids.h"

// One table row for each command index: its command, and the meaning of its release. Recording and playing
// follow the hold rule. Winding lasts while any control holds the index. All others ignore the release.
// A press can outlast its own release, because opening a device or decoding a dictation runs messages. Such
// a release is noted and judged when the command has started. Without this a pedal that is released during a
// slow start would go on recording.

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

bool DeviceCommands::CommandPress(InputControl control, int index) {
    const Index* entry = Find(index);
    if (entry == nullptr) return false;
    if (entry->release == Release::HoldRule) return PressHeld(control, *entry);
    return entry->release == Release::Wind ? PressWinding(control, *entry) : Carry(*entry);
}

bool DeviceCommands::Carry(const Index& entry) {
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

// The time of the press counts from the start of the recording, so a slow device does not turn a tap into a
// hold. A release that came during the start is judged by the times of the hand alone.
bool DeviceCommands::PressHeld(InputControl control, const Index& entry) {
    Held& held = Of(control);
    if (held.press == Press::Starting) {
        held.releasedMs.reset();  // pressed again: the earlier release no longer counts
        return false;
    }
    held = {Press::Starting, entry.index, m_clock(), std::nullopt, 0};
    const bool accepted = Carry(entry);
    const std::optional<uint32_t> releasedMs = held.releasedMs;
    const bool runs = m_target.IsRecording() || m_target.IsPlaying();
    held.press = releasedMs                             ? Press::Up
                 : accepted                             ? Press::Began
                 : m_target.IsProcessRunning() && !runs ? Press::Waits
                                                        : Press::Joined;
    if (held.press == Press::Waits) m_target.TellWaiting();
    if (!accepted) return false;
    m_beginner = control;
    if (!releasedMs)
        held.sinceMs = m_clock();
    else if (*releasedMs - held.sinceMs > held.holdLimitMs)
        m_target.Give(CM_STOP);
    return true;
}

bool DeviceCommands::PressWinding(InputControl control, const Index& entry) {
    Of(control) = {Press::Winds, entry.index, 0, std::nullopt, 0};  // its release may come meanwhile
    const bool accepted = m_target.HoldWinding(entry.direction, true);
    if (!accepted) Of(control).press = Press::Up;
    return accepted;
}

void DeviceCommands::PressAgain() {
    for (size_t control = 0; control < m_held.size(); ++control)
        if (m_held[control].press == Press::Waits)
            CommandPress(static_cast<InputControl>(control), m_held[control].index);
}

void DeviceCommands::CommandRelease(InputControl control, int index, uint32_t holdLimitMs) {
    const Index* entry = Find(index);
    if (entry == nullptr) return;
    if (entry->release == Release::HoldRule) ReleaseHeld(control, holdLimitMs);
    if (entry->release == Release::Wind) ReleaseWinding(control, *entry);
}

bool DeviceCommands::IsBeginnerHeld() {
    const auto starts = [](const Held& held) { return held.press == Press::Starting; };
    return std::ranges::any_of(m_held, starts) || (m_beginner && Of(*m_beginner).press == Press::Began);
}

void DeviceCommands::ReleaseHeld(InputControl control, uint32_t holdLimitMs) {
    Held& held = Of(control);
    if (held.press == Press::Starting) {
        held.releasedMs = m_clock();
        held.holdLimitMs = holdLimitMs;
        return;
    }
    const Press before = std::exchange(held.press, Press::Up);
    const bool ends = before == Press::Began ? m_beginner == control && m_clock() - held.sinceMs > holdLimitMs
                                             : before == Press::Joined && !IsBeginnerHeld();
    if (ends) m_target.Give(CM_STOP);
}

void DeviceCommands::ReleaseWinding(InputControl control, const Index& entry) {
    Of(control).press = Press::Up;
    const auto winds = [&](const Held& held) {
        return held.press == Press::Winds && held.index == entry.index;
    };
    if (std::ranges::none_of(m_held, winds)) m_target.HoldWinding(entry.direction, false);
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
    DictCtrl::Button code;
    MicAction action;
    InputControl control;
    int index;
};

using enum DictCtrl::Button;
using enum InputControl;
constexpr MicCode kMicCodes[] = {
    {MCICTRL_CMD_STOP_PRESSED, MicAction::Stop, MicRecord, CI_NONE},
    {MCICTRL_CMD_PLAY_PRESSED, MicAction::PressUnlessRecording, MicPlay, CI_PLAY},
    {MCICTRL_CMD_PLAY_RELEASED, MicAction::ReleaseWhilePlaying, MicPlay, CI_PLAY},
    {MCICTRL_CMD_RECORD_PRESSED, MicAction::RecordPress, MicRecord, CI_RECORD},
    {MCICTRL_CMD_RECORD_RELEASED, MicAction::RecordRelease, MicRecord, CI_RECORD},
    {MCICTRL_CMD_INSERT_PRESSED, MicAction::Press, MicInsert, CI_RECORD_INSERT},
    {MCICTRL_CMD_INSERT_RELEASED, MicAction::Release, MicInsert, CI_RECORD_INSERT},
    {MCICTRL_CMD_LETTEREND_PRESSED, MicAction::Press, MicSend, CI_SEND},
    {MCICTRL_CMD_FRWD_PRESSED, MicAction::Press, MicRewind, CI_REWIND},
    {MCICTRL_CMD_FRWD_RELEASED, MicAction::Release, MicRewind, CI_REWIND},
    {MCICTRL_CMD_FFWD_PRESSED, MicAction::Press, MicForward, CI_FASTFORWARD},
    {MCICTRL_CMD_FFWD_RELEASED, MicAction::Release, MicForward, CI_FASTFORWARD},
    {MCICTRL_CMD_PLAYSTOP_TOGGLE_PRESSED, MicAction::PressUnlessRecording, MicPlay, CI_PLAY},
    {MCICTRL_CMD_PLAYSTOP_TOGGLE_RELEASED, MicAction::ReleaseWhilePlaying, MicPlay, CI_PLAY},
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
            if (!m_target.IsRecording()) CommandPress(button->control, button->index);
            break;
        case MicAction::ReleaseWhilePlaying:
            if (m_target.IsPlaying() || Of(button->control).press == Press::Starting)
                CommandRelease(button->control, button->index, kHoldLimitMs);
            else
                Of(button->control).press = Press::Up;
            break;
        case MicAction::RecordPress:
            m_micRecordHeld = true;
            CommandPress(button->control, button->index);
            break;
        case MicAction::RecordRelease:
            m_micRecordHeld = false;
            CommandRelease(button->control, button->index, kHoldLimitMs);
            break;
        case MicAction::Press:
            CommandPress(button->control, button->index);
            break;
        case MicAction::Release:
            CommandRelease(button->control, button->index, kHoldLimitMs);
            break;
    }
}

bool DeviceCommands::IsMicHeld() const {
    constexpr InputControl kButtons[] = {MicRecord, MicPlay, MicInsert, MicRewind, MicForward};
    return m_micRecordHeld || std::ranges::any_of(kButtons, [this](InputControl control) {
               return m_held[static_cast<size_t>(control)].press != Press::Up;
           });
}

void DeviceCommands::ReleaseMic() {
    m_micRecordHeld = false;
    for (const InputControl control : {MicRecord, MicPlay, MicInsert, MicRewind, MicForward})
        if (Of(control).press != Press::Up) CommandRelease(control, Of(control).index, kHoldLimitMs);
}
