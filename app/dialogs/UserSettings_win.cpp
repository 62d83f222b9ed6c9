#include "app/dialogs/UserSettings_win.h"

#include "app/dialogs/PromptTag.h"
#include "app/dialogs/RecordingPage_win.h"
#include "app/dialogs/SettingsRows_win.h"
#include "app/dialogs/SoundLists_win.h"
#include "base/LText.h"
#include "res/Ids.h"
#include "store/SettingsKeys.h"
#include "ui/LPropertySheet.h"

namespace {

constexpr char kNoQuestion[] = "Please enter the question, or do not ask for this field.";
constexpr char kBadTag[] =
    "Please enter a tag of one word: a letter first, then letters, digits, \"-\", \"_\" or \".\".";
constexpr char kSameTag[] = "Please enter a tag that differs from the other field's.";

constexpr int32_t kMostDeleteDays = 3650;
constexpr int32_t kMostWarnMb = 1000000;
constexpr int32_t kMostTagBytes = 32;

using Of = SettingsRow::Of;

// The first two only for a user without a name.
constexpr size_t kNameRows = 2;
constexpr SettingsRow kDetailRows[] = {
    {LControlRow::Text(IDC_DETAILS_NAME), UserKeys::kName, Of::User},
    {LControlRow::Text(IDC_DETAILS_EMAIL), UserKeys::kEmail, Of::User},
    {LControlRow::Text(IDC_DETAILS_COMPANY), UserKeys::kCompany, Of::User},
    {LControlRow::Text(IDC_DETAILS_PHONE), UserKeys::kPhone, Of::User},
    {LControlRow::Text(IDC_DETAILS_CELL), UserKeys::kCell, Of::User},
    {LControlRow::Text(IDC_DETAILS_ADDRESS1), UserKeys::kAddress[0], Of::User},
    {LControlRow::Text(IDC_DETAILS_ADDRESS2), UserKeys::kAddress[1], Of::User},
    {LControlRow::Text(IDC_DETAILS_ADDRESS3), UserKeys::kAddress[2], Of::User},
    {LControlRow::Text(IDC_DETAILS_ADDRESS4), UserKeys::kAddress[3], Of::User},
};
constexpr SettingsRow kRecordingRows[] = {
    {LControlRow::List(IDC_RECORDING_DEVICE), SettingsKeys::kSoundIn},
    {LControlRow::List(IDC_RECORDING_LINE), SettingsKeys::kSoundInChan},
    {LControlRow::Level(IDC_RECORDING_VOLUME), SettingsKeys::kRecordVolume},
    {LControlRow::List(IDC_RECORDING_RATE), UserKeys::kSampleRate, Of::User},
    {LControlRow::Check(IDC_RECORDING_TONE), SettingsKeys::kRecordTone},
    {LControlRow::Level(IDC_RECORDING_START), SettingsKeys::kVoiceActivate},
};
constexpr SettingsRow kPlaybackRows[] = {
    {LControlRow::List(IDC_PLAYBACK_DEVICE), SettingsKeys::kSoundOutDevice},
    {LControlRow::Level(IDC_PLAYBACK_VOLUME), SettingsKeys::kSoundOutVolume},
    {LControlRow::Check(IDC_PLAYBACK_TONE), SettingsKeys::kStoppedTone},
    {LControlRow::Check(IDC_PLAYBACK_TONEREPEAT), SettingsKeys::kStoppedToneRepeat},
};
constexpr SettingsRow kOptionRows[] = {
    {LControlRow::Number(IDC_OPTIONS_DELETEDAYS, 0, kMostDeleteDays), SettingsKeys::kAutoDeleteDays},
    {LControlRow::Number(IDC_OPTIONS_WARNBELOW, 0, kMostWarnMb), SettingsKeys::kWarnBelowMb},
    {LControlRow::Check(IDC_OPTIONS_ASK1), SettingsKeys::kPrompts[0].prompt},
    {LControlRow::Text(IDC_OPTIONS_QUESTION1), SettingsKeys::kPrompts[0].text},
    {LControlRow::Text(IDC_OPTIONS_TAG1, kMostTagBytes), SettingsKeys::kPrompts[0].xmlTag},
    {LControlRow::Check(IDC_OPTIONS_ASK2), SettingsKeys::kPrompts[1].prompt},
    {LControlRow::Text(IDC_OPTIONS_QUESTION2), SettingsKeys::kPrompts[1].text},
    {LControlRow::Text(IDC_OPTIONS_TAG2, kMostTagBytes), SettingsKeys::kPrompts[1].xmlTag},
};

// The user who exists after installation was never added, and so has no name.
bool IsNameless(const LPath& userFile) {
    const UserDetails details = UserDetails::Read(userFile);
    return details.result != LReadResult::Unreadable && details.name.empty();
}

// Name and e-mail address were given when the user was added; they are shown and not edited. Until he has a
// name both can be entered.
class DetailsPage final : public LPropertyPage {
public:
    DetailsPage(const AppState& state, LControlBinding& binding, bool isNameless)
        : LPropertyPage(IDD_DETAILS, binding), m_userFile(state.user.userFile), m_isNameless(isNameless) {}

private:
    void InitPage() override {
        if (m_isNameless) {
            for (const int control : {IDC_DETAILS_NAME, IDC_DETAILS_EMAIL}) MakeEditable(Item(control));
            return;
        }
        LSetWindowText(Item(IDC_DETAILS_NAME), Settings::Read(m_userFile, UserKeys::kName));
        LSetWindowText(Item(IDC_DETAILS_EMAIL), Settings::Read(m_userFile, UserKeys::kEmail));
        // The sheet puts the focus on the first field; nobody begins with what he cannot edit.
        PostMessageA(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(IDC_DETAILS_COMPANY)), TRUE);
    }

    // Gives a text the look and the place of a field that is edited.
    void MakeEditable(HWND field) const {
        const HWND example = Item(IDC_DETAILS_COMPANY);
        RECT text = {}, box = {};
        GetWindowRect(field, &text);
        GetWindowRect(example, &box);
        OffsetRect(&box, 0, (text.top + text.bottom - box.top - box.bottom) / 2);
        MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT*>(&box), 2);
        SetWindowLongA(field, GWL_EXSTYLE, GetWindowLongA(example, GWL_EXSTYLE));
        SetWindowPos(field, nullptr, box.left, box.top, box.right - box.left, box.bottom - box.top,
                     SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
        SendMessageA(field, EM_SETREADONLY, FALSE, 0);
    }

    const LPath& m_userFile;
    bool m_isNameless;
};

class PlaybackPage final : public LPropertyPage {
public:
    PlaybackPage(const AppState& state, LControlBinding& binding)
        : LPropertyPage(IDD_PLAYBACK, binding), m_settingsFile(state.data.settingsFile) {}

private:
    void InitPage() override {
        FillOutputDevices(Item(IDC_PLAYBACK_DEVICE),
                          Settings::Read(m_settingsFile, SettingsKeys::kSoundOutDevice));
        AttachArrows(IDC_PLAYBACK_VOLUMEUP);
    }
    void UpdateControls() override { Enable(IDC_PLAYBACK_TONEREPEAT, IsChecked(IDC_PLAYBACK_TONE)); }

    const LPath& m_settingsFile;
};

class OptionsPage final : public LPropertyPage {
public:
    explicit OptionsPage(LControlBinding& binding) : LPropertyPage(IDD_OPTIONS, binding) {}

private:
    struct Field {
        int ask, question, tag;
    };
    static constexpr Field kFields[] = {{IDC_OPTIONS_ASK1, IDC_OPTIONS_QUESTION1, IDC_OPTIONS_TAG1},
                                        {IDC_OPTIONS_ASK2, IDC_OPTIONS_QUESTION2, IDC_OPTIONS_TAG2}};

    void UpdateControls() override {
        for (const Field& field : kFields)
            for (const int control : {field.question, field.tag}) Enable(control, IsChecked(field.ask));
    }

    bool Validate() override {
        for (const Field& field : kFields) {
            if (!IsChecked(field.ask)) continue;
            if (LWindowText(Item(field.question)).find_first_not_of(" \t") == std::string::npos)
                return Refuse(field.question, kNoQuestion);
            if (!IsPlainTag(LWindowText(Item(field.tag)))) return Refuse(field.tag, kBadTag);
        }
        // The second answer would take the place of the first.
        const auto& [first, second] = kFields;
        const bool asksBoth = IsChecked(first.ask) && IsChecked(second.ask);
        return !asksBoth || !LEqualNoCase(LWindowText(Item(first.tag)), LWindowText(Item(second.tag))) ||
               Refuse(second.tag, kSameTag);
    }
};

}  // namespace

void ShowUserSettings(const AppState& state, LModalRunner& runner, Listening& listening,
                      const std::function<bool()>& isBusy) {
    const LPath& machine = state.data.settingsFile;
    const LPath& user = state.user.userFile;
    const bool isNameless = IsNameless(user);
    const auto detailRows = std::span(kDetailRows).subspan(isNameless ? 0 : kNameRows);
    SettingsRows details(machine, detailRows, user), recording(machine, kRecordingRows, user),
        playback(machine, kPlaybackRows), options(machine, kOptionRows);
    DetailsPage detailsPage(state, details, isNameless);
    RecordingPage recordingPage(state, recording, listening, isBusy);
    PlaybackPage playbackPage(state, playback);
    OptionsPage optionsPage(options);
    LPropertySheet sheet("User Settings");
    for (LPropertyPage* page :
         std::initializer_list<LPropertyPage*>{&detailsPage, &recordingPage, &playbackPage, &optionsPage})
        sheet.Add(*page);
    runner.RunModal(LModalRunner::Activity::Stops,
                    [&](HWND owner) -> INT_PTR { return sheet.RunModal(owner) ? IDOK : IDCANCEL; });
    for (const SettingsRows* rows : {&details, &recording, &playback, &options})
        if (!rows->IsStored()) return runner.Tell(kSettingsNotStored);
}
