#include "app/dialogs/HardwareSettings_win.h"

#include "app/dialogs/LKeysPage_win.h"

void ShowHardwareSettings(const LPath& settingsFile, LModalRunner& runner) {
    LKeysPage keys(settingsFile);
    LPropertySheet sheet("Hardware Settings");
    sheet.Add(keys);
    runner.RunModal(LModalRunner::Activity::Stops,
                    [&sheet](HWND owner) -> INT_PTR { return sheet.RunModal(owner); });
}
