#pragma once

#include "app/transport/MixerLines_win.h"
#include "audio/device/LMixer_win.h"
#include "audio/device/LWaveIn_win.h"
#include "ui/LControlTable.h"

// The items of the lists from which an input is chosen. A stored device or line that is not there has an item
// too, so that it is shown.
// Thread: the window thread.
inline void AddInputDevices(HWND list, int32_t stored) {
    LAddNumberedItems(list, LWaveIn::DeviceNames(), stored, "Device %d (not connected)");
}

// First the recording mixer as it is (-1), then the lines of the device.
inline void AddInputLines(HWND list, int32_t device, int32_t stored) {
    LAddListItem(list, LMixer::GetInputChannelName(device, LMixer::kRecordMixerChannel).c_str(),
                 LMixer::kRecordMixerChannel);
    LAddNumberedItems(list, MixerLines().LineNames(device), stored, "Line %d (not there)");
}
