#include "app/dialogs/RecipientSettings_win.h"

#include "app/dialogs/RecipientsPage_win.h"
#include "app/dialogs/SettingsRows_win.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"

namespace {

constexpr char kNoHost[] =
    "You must enter a mail host name to use the simple SMTP option (eg. mail.mervald.example).";
constexpr char kNotStored[] =
    "The e-mail settings could not be stored. The disk might be full, or the settings write-protected.";

constexpr LRadioButton kWays[] = {{IDC_EMAIL_MAPI, 1}, {IDC_EMAIL_SMTP, 0}};
constexpr SettingsRow kEmailRows[] = {
    {LControlRow::Radio(kWays), SettingsKeys::kUseMapi},
    {LControlRow::Text(IDC_EMAIL_HOST), SettingsKeys::kMailHost},
};

class EmailPage final : public LPropertyPage {
public:
    explicit EmailPage(LControlBinding& binding) : LPropertyPage(IDD_EMAIL, binding) {}

private:
    void UpdateControls() override { Enable(IDC_EMAIL_HOST, IsChecked(IDC_EMAIL_SMTP)); }
    bool Validate() override {
        const bool hasHost = LWindowText(Item(IDC_EMAIL_HOST)).find_first_not_of(" \t") != std::string::npos;
        return !IsChecked(IDC_EMAIL_SMTP) || hasHost || Refuse(IDC_EMAIL_HOST, kNoHost);
    }
};

}  // namespace

void ShowRecipientSettings(const AppState& state, BGSend& queue, LModalRunner& runner) {
    SettingsRows email(state.data.settingsFile, kEmailRows);
    RecipientsPage recipientsPage(state, queue);
    EmailPage emailPage(email);
    LPropertySheet sheet("Recipient Send Settings");
    sheet.Add(recipientsPage);
    sheet.Add(emailPage);
    runner.RunModal(LModalRunner::Activity::Stops,
                    [&sheet](HWND owner) -> INT_PTR { return sheet.RunModal(owner); });
    if (!email.IsStored()) runner.Tell(kNotStored);
}
