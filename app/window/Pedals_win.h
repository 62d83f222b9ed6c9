#pragma once

#include <array>

#include "app/AppState.h"
#include "app/window/DeviceCommands.h"
#include "hardware/PedalChanges.h"
#include "hardware/PedalReader_win.h"
#include "ui/LModalRunner.h"

// The pedals of the main window: asks for their state by timer and gives the commands that the user has
// assigned to their controls. Does nothing while no port is chosen.
// Thread: the window thread. A command may run messages, and among them the next tick of the timer.
class Pedals {
public:
    Pedals(const AppState& state, DeviceCommands& devices, LModalRunner& runner)
        : m_state(state), m_devices(devices), m_runner(runner) {}

    // Opens the stored port.
    void Start(HWND window);
    // Releases what is pressed, and closes the port.
    void Stop();
    void EvTimer();  // TIMER_HARDWARE, which has been stopped
    // Devices were plugged in or out.
    void Renew();

private:
    void GiveCommands();
    void TellMissingLibrary(PedalReading::State state);

    const AppState& m_state;
    DeviceCommands& m_devices;
    LModalRunner& m_runner;
    HWND m_window = nullptr;  // null while stopped
    PedalReader m_reader;
    PedalChanges m_changes;
    PedalReading::State m_told = PedalReading::State::Opening;
    std::array<int32_t, kPedalControls> m_pressed{};  // the command that each control was pressed with
};
