#include "app/dialogs/HardwarePage_win.h"

#include "base/LLibrary_win.h"
#include "hardware/CommandTable.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"
#include "ui/LShell.h"

namespace {

constexpr UINT_PTR kTimer = 1;
constexpr char kMixer[] = "sndvol32.exe";
constexpr char kNoMixer[] =
    "The program for the recording volume, sndvol32.exe, is missing on this computer or could not be "
    "started.\n\nThe recording volume can be set in Corvane itself, under User Settings..., page Recording.";
constexpr char kPress[] = "Press a pedal or button to see its number. No command is given meanwhile.";
constexpr char kCannotOpen[] =
    "Nothing is connected there, or another program uses this port. Corvane goes on trying.";
constexpr char kNoLibrary[] =
    "To use these pedals, the add-on \"HidProbe.dll\" must be downloaded from the vendor's web site.";

constexpr int kControlLists[] = {IDC_HARDWARE_CONTROL1, IDC_HARDWARE_CONTROL2, IDC_HARDWARE_CONTROL3,
                                 IDC_HARDWARE_CONTROL4};

const char* HintOf(PedalReading::State state) {
    if (state == PedalReading::State::NoLibrary) return kNoLibrary;
    return state == PedalReading::State::CannotOpen ? kCannotOpen : kPress;
}

}  // namespace

HardwarePage::HardwarePage(const LPath& settingsFile, LControlBinding& binding)
    : LPropertyPage(IDD_HARDWARE, binding), m_settingsFile(settingsFile) {}

void HardwarePage::InitPage() {
    for (int32_t port = 0; const char* name : kPortNames) LAddListItem(Item(IDC_HARDWARE_PORT), name, port++);
    for (const int list : kControlLists) FillCommands(list);
    m_lines.Fill(Item(IDC_HARDWARE_INPUT), Item(IDC_HARDWARE_LINE),
                 Settings::Read(m_settingsFile, SettingsKeys::kSoundIn),
                 Settings::Read(m_settingsFile, SettingsKeys::kSoundInChan));
    FillOutputDevices(Item(IDC_HARDWARE_OUTPUT),
                      Settings::Read(m_settingsFile, SettingsKeys::kSoundOutDevice));
}

void HardwarePage::FillCommands(int list) {
    for (const CommandName* entry = kCommandNames; entry->name != nullptr; ++entry)
        LAddListItem(Item(list), entry->name, entry->command);
}

void HardwarePage::UpdateControls() {
    m_lines.Follow();
    ReadChosenPort();
}

void HardwarePage::DestroyDialog() {
    KillTimer(Window(), kTimer);
    m_reader.Close();
}

bool HardwarePage::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message == WM_TIMER && wParam == kTimer) {
        ShowTest();
        result = 0;
        return true;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDC_HARDWARE_MIXER && HIWORD(wParam) == BN_CLICKED) {
        StartMixer();
        result = 0;
        return true;
    }
    return LPropertyPage::HandleMessage(message, wParam, lParam, result);
}

void HardwarePage::ReadChosenPort() {
    const int32_t port = LSelectedListItem(Item(IDC_HARDWARE_PORT)).value_or(kNoPort);
    if (port != m_port) m_reader.Open(port);
    m_port = port;
    ShowTest();
}

// Also while another page is seen: the port stays open.
void HardwarePage::ShowTest() {
    const PedalReading reading = m_reader.Poll();
    SetTimer(Window(), kTimer, PedalReader::NextPollMs(reading), nullptr);
    LSetWindowText(Item(IDC_HARDWARE_TEST), PedalTestText(m_port, reading));
    LSetWindowText(Item(IDC_HARDWARE_HINT), m_port == kNoPort ? "" : HintOf(reading.state));
}

void HardwarePage::StartMixer() {
    const LPath program = LPlatformProgram(kMixer);
    if (program.Empty() || !LStartProgram(program, "/rec")) Refuse(IDC_HARDWARE_MIXER, kNoMixer);
}
