#include "app/window/Pedals_win.h"

#include <utility>

#include "res/Ids.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kNoLibrary[] =
    "The add-on \"HidProbe.dll\" is missing.\n\nTo use the pedals that are chosen under Hardware "
    "Settings..., it must be downloaded from the vendor's web site.";

InputControl ControlOf(int control) {
    return static_cast<InputControl>(static_cast<int>(InputControl::Pedal1) + control);
}

}  // namespace

void Pedals::Start(HWND window) {
    Stop();
    const int32_t port = Settings::Read(m_state.data.settingsFile, SettingsKeys::kControlPort);
    if (port < 1) return;
    m_window = window;
    m_told = PedalReading::State::Opening;
    m_reader.Open(port);
    SetTimer(m_window, TIMER_HARDWARE, PedalReader::kFirstPollMs, nullptr);
}

void Pedals::Stop() {
    const HWND window = std::exchange(m_window, nullptr);
    if (window == nullptr) return;
    KillTimer(window, TIMER_HARDWARE);
    m_reader.Close();
    m_changes.Note(0);
    GiveCommands();
}

// The timer runs again before the commands are given: a press may open a box, and the pedals record and stop
// all the same.
void Pedals::EvTimer() {
    if (m_window == nullptr) return;
    const PedalReading reading = m_reader.Poll();
    SetTimer(m_window, TIMER_HARDWARE, PedalReader::NextPollMs(reading), nullptr);
    TellMissingLibrary(reading.state);
    m_changes.Note(reading.bits);
    GiveCommands();
}

// A control is released with the command that it was pressed with, also where the settings were changed
// meanwhile.
void Pedals::GiveCommands() {
    while (const std::optional<PedalChanges::Change> change = m_changes.Next()) {
        const auto number = static_cast<size_t>(change->control);
        if (change->isPressed) {
            m_pressed[number] = Settings::Read(m_state.data.settingsFile, SettingsKeys::kControls[number]);
            m_devices.CommandPress(ControlOf(change->control), m_pressed[number]);
        } else {
            m_devices.CommandRelease(ControlOf(change->control), m_pressed[number], kHoldLimitMs);
        }
    }
}

void Pedals::Renew() {
    if (m_window == nullptr) return;
    m_reader.Renew();
    SetTimer(m_window, TIMER_HARDWARE, PedalReader::kPollMs, nullptr);
}

// Once, until the library was there or other pedals were chosen; not at each start.
void Pedals::TellMissingLibrary(PedalReading::State state) {
    using State = PedalReading::State;
    if (std::exchange(m_told, state) == state) return;
    const LPath& settings = m_state.data.settingsFile;
    const bool wasTold = Settings::Read(settings, SettingsKeys::kNoLibraryTold);
    if (state == State::Open && wasTold) Settings::Write(settings, SettingsKeys::kNoLibraryTold, false);
    if (state != State::NoLibrary || wasTold) return;
    Settings::Write(settings, SettingsKeys::kNoLibraryTold, true);
    m_runner.TellAtRest(kNoLibrary);
}
