#include "app/dialogs/RecordingPage_win.h"

#include <algorithm>
#include <utility>

#include "app/transport/MixerLines_win.h"
#include "audio/device/LDBDisplay_win.h"
#include "audio/device/LMixer_win.h"
#include "base/LText.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"

// A timer starts and stops the meter: it sees when the page is hidden, when another input was chosen, and
// when the transport has finished with the sound card. Starting at each change was rejected, since a volume
// that is typed changes with each key.

namespace {

constexpr UINT_PTR kTimer = 1;
constexpr UINT kTickMs = 250;
constexpr int32_t kRates[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000};
constexpr char kCannotListen[] = "This input cannot be opened.";
constexpr char kBusy[] = "Not measured while Corvane records or plays.";

}  // namespace

RecordingPage::RecordingPage(const AppState& state, LControlBinding& binding, Listening& listening,
                             std::function<bool()> isBusy)
    : LPropertyPage(IDD_RECORDING, binding),
      m_state(state),
      m_listening(listening),
      m_isBusy(std::move(isBusy)) {}

void RecordingPage::InitPage() {
    const LPath& settings = m_state.data.settingsFile;
    m_lines.Fill(Item(IDC_RECORDING_DEVICE), Item(IDC_RECORDING_LINE),
                 Settings::Read(settings, SettingsKeys::kSoundIn),
                 Settings::Read(settings, SettingsKeys::kSoundInChan));
    FillRates(Settings::Read(m_state.user.userFile, UserKeys::kSampleRate));
    AttachArrows(IDC_RECORDING_VOLUMEUP);
    AttachArrows(IDC_RECORDING_STARTUP);
    SetTimer(Window(), kTimer, kTickMs, nullptr);
}

// A stored rate that is none of the usual ones stays.
void RecordingPage::FillRates(int32_t stored) {
    std::vector<int32_t> rates(std::begin(kRates), std::end(kRates));
    if (std::ranges::find(rates, stored) == rates.end()) rates.push_back(stored);
    for (const int32_t rate : rates)
        LAddListItem(Item(IDC_RECORDING_RATE), LFormat("%d Hz", static_cast<int>(rate)).c_str(), rate);
}

void RecordingPage::UpdateControls() {
    m_lines.Follow();
}

// The mixer is left as the stored settings have it; who records has set it himself.
void RecordingPage::DestroyDialog() {
    KillTimer(Window(), kTimer);
    m_listening.Stop();
    if (m_isBusy()) return;
    MixerLines lines;
    const LPath& settings = m_state.data.settingsFile;
    const SoundInput input = GetSoundIn(settings, lines);
    LMixer::SetInputChannel(input.device, input.line, Settings::Read(settings, SettingsKeys::kRecordVolume));
}

bool RecordingPage::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message == WM_TIMER && wParam == kTimer) {
        EvTimer();
        result = 0;
        return true;
    }
    if (message == WM_SHOWWINDOW && wParam == FALSE) m_listening.Stop();
    return LPropertyPage::HandleMessage(message, wParam, lParam, result);
}

int8_t RecordingPage::ShownLevel(int control, int8_t otherwise) const {
    return LParseLevel(LWindowText(Item(control))).value_or(otherwise);
}

RecordingPage::Choice RecordingPage::Shown() const {
    return {{LSelectedListItem(Item(IDC_RECORDING_DEVICE)).value_or(m_lines.Device()),
             LSelectedListItem(Item(IDC_RECORDING_LINE)).value_or(kChooseLine)},
            ShownLevel(IDC_RECORDING_VOLUME, m_choice.volumeDb)};
}

void RecordingPage::EvTimer() {
    if (!IsWindowVisible(Window())) return m_listening.Stop();
    if (m_isBusy()) {
        m_listening.Stop();
        return LSetWindowText(Item(IDC_RECORDING_HEARD), kBusy);
    }
    if (const Choice shown = Shown(); shown != m_choice) {
        m_choice = shown;
        m_hasFailed = false;
        m_listening.Stop();
    }
    if (m_listening.IsRunning() || m_hasFailed) return;
    m_hasFailed =
        !m_listening.Start(m_choice.input, m_choice.volumeDb, [this](int8_t levelDb) { ShowLevel(levelDb); });
    EnableWindow(Item(IDC_RECORDING_METER), !m_hasFailed);
    LSetWindowText(Item(IDC_RECORDING_HEARD), m_hasFailed ? kCannotListen : "");
}

void RecordingPage::ShowLevel(int8_t levelDb) {
    LDBDisplaySetLevel(Item(IDC_RECORDING_METER), levelDb);
    if (!m_listening.IsRunning()) return EnableWindow(Item(IDC_RECORDING_METER), FALSE), void();
    const bool starts = levelDb >= ShownLevel(IDC_RECORDING_START, kSilenceDb);
    LSetWindowText(Item(IDC_RECORDING_HEARD), LFormatLevel(levelDb) + (starts ? ", a recording would start"
                                                                              : ", a recording would wait"));
}
