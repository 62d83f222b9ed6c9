#include "app/dialogs/SoundLists_win.h"

#include "app/transport/MixerLines_win.h"
#include "audio/device/LWaveIn_win.h"
#include "audio/device/LWaveOut_win.h"
#include "ui/LControlTable.h"

static constexpr char kNotConnected[] = "Device %d (not connected)";

void FillOutputDevices(HWND list, int32_t stored) {
    LAddNumberedItems(list, LWaveOut::DeviceNames(), stored, kNotConnected);
}

// "Automatic", the recording mixer as it is, then the lines of the device.
void InputLineList::FillLines(int32_t selected) {
    SendMessageA(m_lines, CB_RESETCONTENT, 0, 0);
    if (m_kind == Lines::AsChosen) LAddListItem(m_lines, "Automatic", kChooseLine);
    LAddListItem(m_lines, LMixer::GetInputChannelName(m_device, LMixer::kRecordMixerChannel).c_str(),
                 LMixer::kRecordMixerChannel);
    LAddNumberedItems(m_lines, MixerLines().LineNames(m_device), selected, "Line %d (not there)");
    LSelectListItem(m_lines, selected);
}

void InputLineList::Fill(HWND devices, HWND lines, int32_t device, int32_t line) {
    m_devices = devices;
    m_lines = lines;
    m_device = device;
    LAddNumberedItems(m_devices, LWaveIn::DeviceNames(), device, kNotConnected);
    LSelectListItem(m_devices, device);
    FillLines(line);
}

void InputLineList::Follow() {
    const int32_t device = LSelectedListItem(m_devices).value_or(m_device);
    if (device == m_device) return;
    m_device = device;
    MixerLines lines;
    const bool isAsChosen = m_kind == Lines::AsChosen;
    FillLines(isAsChosen ? kChooseLine : ResolveDockSoundIn({device, kChooseLine}, lines).line);
}
