#include "app/dialogs/RecipientEditor_win.h"

#include <algorithm>

#include "app/dialogs/AddressDialog_win.h"
#include "audio/wave/LAcm.h"
#include "base/LText.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"
#include "ui/LBrowseFolder.h"
#include "ui/LChooseFormat.h"
#include "ui/LControlTable.h"
#include "ui/LDialog.h"

namespace {

constexpr char kConfirmWave[] =
    "Are you sure you want to user the WAV file format?\r\n"
    "WAV files do not contain the sender information, notes and cannot be encrypted or automatically "
    "downloaded by Quennet.";

// The fields of the record hold one byte less than their size.
struct TextField {
    int control;
    int32_t mostBytes;
    std::string SendToSettings::*text;
    const char* wanted;  // told when it is empty and the way of delivery needs it; nullptr: may be empty
    std::optional<SendToSettings::Method> method;
};
using Method = SendToSettings::Method;
constexpr TextField kTexts[] = {
    {IDC_RECIPIENT_NAME, 31, &SendToSettings::name, "Please enter the name of the recipient.", std::nullopt},
    {IDC_RECIPIENT_ADDRESS, 127, &SendToSettings::emailAddress,
     "Please enter the e-mail address of the recipient.", Method::Email},
    {IDC_RECIPIENT_FOLDER, 255, &SendToSettings::folder,
     "Please choose the folder into which the dictations are copied.", Method::Folder},
    {IDC_RECIPIENT_HOST, 127, &SendToSettings::ftpHost, "Please enter the name of the FTP server.",
     Method::Ftp},
    {IDC_RECIPIENT_USER, 31, &SendToSettings::ftpUser, nullptr, Method::Ftp},
    {IDC_RECIPIENT_PASSWORD, 31, &SendToSettings::ftpPassword, nullptr, Method::Ftp},
    {IDC_RECIPIENT_FTPFOLDER, 255, &SendToSettings::ftpFolder, nullptr, Method::Ftp},
    {IDC_RECIPIENT_KEY, 63, &SendToSettings::encryptionPassword, nullptr, std::nullopt},
};
struct Radio {
    int control;
    Method method;
};
constexpr Radio kMethods[] = {{IDC_RECIPIENT_BYEMAIL, Method::Email},
                              {IDC_RECIPIENT_BYFOLDER, Method::Folder},
                              {IDC_RECIPIENT_BYFTP, Method::Ftp}};
// Buttons and labels that belong to a way of delivery, beside its texts.
constexpr Radio kExtras[] = {{IDC_RECIPIENT_ADDRESSES, Method::Email},
                             {IDC_RECIPIENT_BROWSE, Method::Folder}};

class RecipientEditor final : public LDialog {
public:
    RecipientEditor(const AppState& state, std::optional<int32_t> index, const SendToSettings& recipient,
                    const RecipientStore& store)
        : m_state(state),
          m_index(index),
          m_recipient(recipient),
          m_store(store),
          m_isWave(recipient.SendsWave()) {}

private:
    bool InitDialog() override;
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvCommand(int control);
    void ShowFormat();
    void UpdateControls();
    void CmAddresses();
    void CmBrowse();
    void CmWave();
    void CmFormat();
    void CmMakeDefault();
    bool CmOk();
    bool Refuse(int control, std::string_view text);
    bool IsChecked(int control) const { return IsDlgButtonChecked(Window(), control) == BST_CHECKED; }
    bool IsBy(Method method) const;
    bool IsDefault() const {
        return m_index ? DefaultRecipientIndex(m_state.user.userFile) == m_index : m_wantsDefault;
    }
    void Take();

    const AppState& m_state;
    std::optional<int32_t> m_index;
    SendToSettings m_recipient;
    const RecipientStore& m_store;
    bool m_isWave;  // WAV files are chosen, and were confirmed
    bool m_wantsDefault = false;
};

bool RecipientEditor::InitDialog() {
    for (const TextField& field : kTexts) {
        SendMessageA(Item(field.control), EM_LIMITTEXT, static_cast<WPARAM>(field.mostBytes), 0);
        LSetWindowText(Item(field.control), m_recipient.*field.text);
    }
    for (const Radio& radio : kMethods)
        CheckDlgButton(Window(), radio.control, static_cast<uint32_t>(radio.method) == m_recipient.method);
    CheckDlgButton(Window(), m_recipient.SendsWave() ? IDC_RECIPIENT_WAVE : IDC_RECIPIENT_DCT, BST_CHECKED);
    CheckDlgButton(Window(), IDC_RECIPIENT_ENCRYPT, m_recipient.Encrypts() ? BST_CHECKED : BST_UNCHECKED);
    ShowFormat();
    UpdateControls();
    SendMessageA(Item(IDC_RECIPIENT_NAME), EM_SETSEL, 0, -1);
    return true;
}

bool RecipientEditor::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    const bool isOurs = message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && EvCommand(LOWORD(wParam));
    return isOurs || LDialog::HandleMessage(message, wParam, lParam, result);
}

bool RecipientEditor::EvCommand(int control) {
    switch (control) {
        case IDC_RECIPIENT_ADDRESSES:
            return CmAddresses(), true;
        case IDC_RECIPIENT_BROWSE:
            return CmBrowse(), true;
        case IDC_RECIPIENT_WAVE:
            return CmWave(), true;
        case IDC_RECIPIENT_FORMAT:
            return CmFormat(), true;
        case IDC_RECIPIENT_MAKEDEFAULT:
            return CmMakeDefault(), true;
        case IDOK:
            if (CmOk()) EndModal(IDOK);
            return true;
        case IDC_RECIPIENT_DCT:
            m_isWave = false;
            return UpdateControls(), true;
        case IDC_RECIPIENT_BYEMAIL:
        case IDC_RECIPIENT_BYFOLDER:
        case IDC_RECIPIENT_BYFTP:
        case IDC_RECIPIENT_ENCRYPT:
            return UpdateControls(), true;
        default:
            return false;
    }
}

bool RecipientEditor::IsBy(Method method) const {
    return std::ranges::any_of(
        kMethods, [&](const Radio& radio) { return radio.method == method && IsChecked(radio.control); });
}

void RecipientEditor::UpdateControls() {
    const auto enable = [&](int control, bool isEnabled) { EnableWindow(Item(control), isEnabled); };
    for (const TextField& field : kTexts)
        if (field.method) enable(field.control, IsBy(*field.method));
    for (const Radio& extra : kExtras) enable(extra.control, IsBy(extra.method));
    const bool isDct = !IsChecked(IDC_RECIPIENT_WAVE);
    enable(IDC_RECIPIENT_ENCRYPT, isDct);
    enable(IDC_RECIPIENT_KEY, isDct && IsChecked(IDC_RECIPIENT_ENCRYPT));
    enable(IDC_RECIPIENT_MAKEDEFAULT, !IsDefault());
}

void RecipientEditor::ShowFormat() {
    LSetWindowText(Item(IDC_RECIPIENT_FORMATTEXT), LDescribeFormat(m_recipient.waveFormat));
}

void RecipientEditor::CmAddresses() {
    if (const auto address = AskForAddress(Window(), m_state))
        LSetWindowText(Item(IDC_RECIPIENT_ADDRESS), *address);
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDC_RECIPIENT_ADDRESS)), TRUE);
}

void RecipientEditor::CmBrowse() {
    const LPath folder = LBrowseFolder(Window(), "Locate transmit folder...");
    if (!folder.Empty()) LSetWindowText(Item(IDC_RECIPIENT_FOLDER), folder.View());
}

void RecipientEditor::CmWave() {
    m_isWave = m_isWave || LMessageBox(Window(), kConfirmWave, "Confirm File Format",
                                       MB_YESNO | MB_ICONQUESTION) == IDYES;
    const int chosen = m_isWave ? IDC_RECIPIENT_WAVE : IDC_RECIPIENT_DCT;
    CheckRadioButton(Window(), IDC_RECIPIENT_DCT, IDC_RECIPIENT_WAVE, chosen);
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(chosen)), TRUE);
    UpdateControls();
}

// One channel: dictations have one, and a DCT file must.
void RecipientEditor::CmFormat() {
    const auto isSupported = [](const LWaveFileFormat& format) {
        return format.Tag() == kFormatTagPcm || TestSupportedRecord(format);
    };
    if (LChooseFormat(Window(), m_recipient.waveFormat, 1, isSupported)) ShowFormat();
}

void RecipientEditor::CmMakeDefault() {
    if (!m_index) m_wantsDefault = true;
    if (const std::string problem = m_index ? m_store.makeDefault() : std::string(); !problem.empty())
        LMessageBox(Window(), problem, "Error", MB_OK | MB_ICONEXCLAMATION);
    // A button that is disabled must not keep the keyboard.
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDOK)), TRUE);
    UpdateControls();
}

bool RecipientEditor::CmOk() {
    for (const TextField& field : kTexts) {
        const bool isWanted = field.wanted != nullptr && (!field.method || IsBy(*field.method));
        const std::string text = LWindowText(Item(field.control));
        if (isWanted && text.find_first_not_of(" \t") == std::string::npos)
            return Refuse(field.control, field.wanted);
    }
    const bool encrypts = !IsChecked(IDC_RECIPIENT_WAVE) && IsChecked(IDC_RECIPIENT_ENCRYPT);
    if (encrypts && LWindowText(Item(IDC_RECIPIENT_KEY)).empty())
        return Refuse(
            IDC_RECIPIENT_KEY,
            "Please enter the password with which the dictations are encrypted. Without one they would "
            "be sent unencrypted.");
    Take();
    const std::string problem = m_store.store(m_recipient, m_wantsDefault);
    return problem.empty() || Refuse(IDC_RECIPIENT_NAME, problem);
}

void RecipientEditor::Take() {
    for (const TextField& field : kTexts) m_recipient.*field.text = LWindowText(Item(field.control));
    for (const Radio& radio : kMethods)
        if (IsChecked(radio.control)) m_recipient.method = static_cast<uint32_t>(radio.method);
    const auto set = [&](uint32_t flag, int control) {
        m_recipient.flags = IsChecked(control) ? m_recipient.flags | flag : m_recipient.flags & ~flag;
    };
    set(SendToSettings::kSendWave, IDC_RECIPIENT_WAVE);
    set(SendToSettings::kEncrypt, IDC_RECIPIENT_ENCRYPT);
}

bool RecipientEditor::Refuse(int control, std::string_view text) {
    LMessageBox(Window(), text, "Error", MB_OK | MB_ICONEXCLAMATION);
    SendMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(control)), TRUE);
    return false;
}

}  // namespace

bool EditRecipient(HWND owner, const AppState& state, std::optional<int32_t> index,
                   const SendToSettings& recipient, const RecipientStore& store) {
    RecipientEditor editor(state, index, recipient, store);
    return editor.RunModal(IDD_RECIPIENT, owner) == IDOK;
}
