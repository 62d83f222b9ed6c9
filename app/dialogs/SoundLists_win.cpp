#include "app/dialogs/SoundLists_win.h"

#include "app/transport/MixerLines_win.h"
#include "audio/device/LWaveIn_win.h"
#include "audio/device/LWaveOut_win.h"
#include "ui/LControlTable.h"

static constexpr char kNotConnected[] = "Device %d (not connected)";

static void FillInputDevices(HWND list, int32_t stored) {
    LAddNumberedItems(list, LWaveIn::DeviceNames(), stored, kNotConnected);
}

void FillOutputDevices(HWND list, int32_t stored) {
    LAddNumberedItems(list, LWaveOut::DeviceNames(), stored, kNotConnected);
}

static void FillInputLines(HWND list, int32_t device, int32_t stored) {
    SendMessageA(list, CB_RESETCONTENT, 0, 0);
    LAddListItem(list, "Automatic", kChooseLine);
    LAddListItem(list, LMixer::GetInputChannelName(device, LMixer::kRecordMixerChannel).c_str(),
                 LMixer::kRecordMixerChannel);
    LAddNumberedItems(list, MixerLines().LineNames(device), stored, "Line %d (not there)");
}

void InputLineList::Fill(HWND devices, HWND lines, int32_t device, int32_t line) {
    m_devices = devices;
    m_lines = lines;
    m_device = device;
    FillInputDevices(m_devices, device);
    FillInputLines(m_lines, device, line);
}

void InputLineList::Follow() {
    const int32_t device = LSelectedListItem(m_devices).value_or(m_device);
    if (device == m_device) return;
    m_device = device;
    FillInputLines(m_lines, device, kChooseLine);
    LSelectListItem(m_lines, kChooseLine);
}
