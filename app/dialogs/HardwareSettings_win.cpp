#include "app/dialogs/HardwareSettings_win.h"

#include "app/dialogs/HardwarePage_win.h"
#include "app/dialogs/LKeysPage_win.h"
#include "app/dialogs/SettingsRows_win.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"

static constexpr SettingsRow kHardwareRows[] = {
    {LControlRow::List(IDC_HARDWARE_PORT), SettingsKeys::kControlPort},
    {LControlRow::List(IDC_HARDWARE_CONTROL1), SettingsKeys::kControls[0]},
    {LControlRow::List(IDC_HARDWARE_CONTROL2), SettingsKeys::kControls[1]},
    {LControlRow::List(IDC_HARDWARE_CONTROL3), SettingsKeys::kControls[2]},
    {LControlRow::List(IDC_HARDWARE_CONTROL4), SettingsKeys::kControls[3]},
    {LControlRow::List(IDC_HARDWARE_INPUT), SettingsKeys::kSoundIn},
    {LControlRow::List(IDC_HARDWARE_LINE), SettingsKeys::kSoundInChan},
    {LControlRow::List(IDC_HARDWARE_OUTPUT), SettingsKeys::kSoundOutDevice},
};

void ShowHardwareSettings(const LPath& settingsFile, LModalRunner& runner) {
    const int32_t before = Settings::Read(settingsFile, SettingsKeys::kControlPort);
    SettingsRows rows(settingsFile, kHardwareRows);
    HardwarePage hardware(settingsFile, rows);
    LKeysPage keys(settingsFile);
    LPropertySheet sheet("Hardware Settings");
    sheet.Add(hardware);
    sheet.Add(keys);
    runner.RunModal(LModalRunner::Activity::Stops,
                    [&sheet](HWND owner) -> INT_PTR { return sheet.RunModal(owner); });
    // Whoever chooses pedals whose library is missing is told, also when he has been told before.
    if (Settings::Read(settingsFile, SettingsKeys::kControlPort) != before &&
        Settings::Read(settingsFile, SettingsKeys::kNoLibraryTold))
        Settings::Write(settingsFile, SettingsKeys::kNoLibraryTold, false);
    if (!rows.IsStored()) runner.Tell(kSettingsNotStored);
}
