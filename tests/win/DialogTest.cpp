#include <gtest/gtest.h>

#include <functional>

#include "app/dialogs/SettingsRows_win.h"
#include "base/LProfile.h"
#include "res/Ids.h"
#include "tests/unit/TempFolder.h"
#include "tests/win/SheetPage.h"
#include "ui/LModalRunner.h"
#include "ui/LPropertySheet.h"
#include "ui/LTextEditDlg.h"

// Real dialogs, worked as a hand would: at each tick of a timer one step in the window that it waits for.

namespace {

constexpr UINT kTickMs = 30;
constexpr UINT kApply = 0x3021;  // the platform's own number of a sheet's Apply button

struct Step {
    const char* title;  // of the visible window that the step waits for
    std::function<void(HWND)> act;
};

class Hand {
public:
    explicit Hand(std::vector<Step> steps) : m_timer(SetTimer(nullptr, 0, kTickMs, Tick)) {
        LSetInstance(GetModuleHandleA(nullptr));
        s_steps = std::move(steps);
    }
    ~Hand() {
        KillTimer(nullptr, m_timer);
        EXPECT_TRUE(s_steps.empty()) << "nobody showed: " << s_steps.front().title;
    }
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        const HWND window = s_steps.empty() ? nullptr : FindWindowA("#32770", s_steps.front().title);
        if (window == nullptr || !IsWindowVisible(window)) return;
        const Step step = s_steps.front();
        s_steps.erase(s_steps.begin());
        step.act(window);
    }
    static inline std::vector<Step> s_steps;
    UINT_PTR m_timer;
};

Step Press(const char* title, int button) {
    return {title,
            [button](HWND window) { PostMessageA(window, WM_COMMAND, static_cast<WPARAM>(button), 0); }};
}

HWND Page(HWND sheet) {
    return FindWindowExA(sheet, nullptr, "#32770", "Page");
}

Step SetTexts(std::vector<std::pair<int, const char*>> texts) {
    return {"Sheet", [texts](HWND sheet) {
                for (const auto& [control, text] : texts) SetDlgItemTextA(Page(sheet), control, text);
            }};
}

constexpr LRadioButton kMailWays[] = {{IDC_SHEET_FIRST, 1}, {IDC_SHEET_SECOND, 0}};
constexpr SettingsRow kRows[] = {
    {LControlRow::Text(IDC_SHEET_TEXT), Settings::TextKey{"s", "text", "Enter name"}},
    {LControlRow::Check(IDC_SHEET_CHECK), Settings::BoolKey{"s", "check", false}},
    {LControlRow::Radio(kMailWays), Settings::BoolKey{"s", "radio", true}},
    {LControlRow::Level(IDC_SHEET_LEVEL), Settings::LevelKey{"s", "level", -15}},
    {LControlRow::Number(IDC_SHEET_NUMBER, 0, 999), Settings::IntKey{"s", "number", 30}},
    {LControlRow::List(IDC_SHEET_LIST), Settings::IntKey{"s", "list", 77}},  // no item stands for it
};

class TestPage final : public LPropertyPage {
public:
    explicit TestPage(LControlBinding& binding) : LPropertyPage(IDD_SHEETPAGE, binding) {}

private:
    void InitPage() override {
        LAddListItem(Item(IDC_SHEET_LIST), "Record", 3);
        LAddListItem(Item(IDC_SHEET_LIST), "Play", 4);
    }
    void UpdateControls() override { Enable(IDC_SHEET_TEXT, IsChecked(IDC_SHEET_CHECK)); }
    bool Validate() override {
        const bool isAnswered = !IsChecked(IDC_SHEET_CHECK) || !LWindowText(Item(IDC_SHEET_TEXT)).empty();
        return isAnswered || Refuse(IDC_SHEET_TEXT, "Enter a question.");
    }
};

// What the file holds after the sheet: the values in the order of the table, "-" for a key that is not there.
std::string ValuesAfter(bool isAccepted, std::vector<Step> steps) {
    TempFolder folder;
    const LPath file = folder.File("settings.ini");
    SettingsRows rows(file, kRows);
    TestPage page(rows);
    LPropertySheet sheet("Sheet");
    sheet.Add(page);
    const Hand hand(std::move(steps));
    EXPECT_EQ(sheet.RunModal(nullptr), isAccepted);
    std::string values;
    for (const char* key : {"text", "check", "radio", "level", "number", "list"})
        values += LProfile::Read(file, "s", key, "-") + " ";
    return values;
}

const Step kClicks = {"Sheet", [](HWND sheet) {
                          const HWND page = Page(sheet);
                          EXPECT_FALSE(IsWindowEnabled(GetDlgItem(page, IDC_SHEET_TEXT)));
                          for (int control : {IDC_SHEET_CHECK, IDC_SHEET_SECOND})
                              SendDlgItemMessageA(page, control, BM_CLICK, 0, 0);
                          EXPECT_TRUE(IsWindowEnabled(GetDlgItem(page, IDC_SHEET_TEXT)));
                          SendDlgItemMessageA(page, IDC_SHEET_LIST, CB_SETCURSEL, 1, 0);
                      }};
const Step kTexts =
    SetTexts({{IDC_SHEET_TEXT, "Case no."}, {IDC_SHEET_LEVEL, "-20"}, {IDC_SHEET_NUMBER, "1000"}});

}  // namespace

TEST(PropertySheet, WritesWhatWasChangedOnceItIsAccepted) {
    EXPECT_EQ(ValuesAfter(false, {kClicks, kTexts, Press("Sheet", IDCANCEL)}), "- - - - - - ");
    EXPECT_EQ(ValuesAfter(true, {SetTexts({{IDC_SHEET_LEVEL, "--"}}), Press("Sheet", IDOK)}),
              "- - - --dB - - ");
    EXPECT_EQ(
        ValuesAfter(true, {kClicks, kTexts, Press("Sheet", IDOK), Press("Error", IDOK),
                           SetTexts({{IDC_SHEET_NUMBER, "7"}, {IDC_SHEET_TEXT, ""}}), Press("Sheet", IDOK),
                           Press("Error", IDOK), SetTexts({{IDC_SHEET_TEXT, "File"}}), Press("Sheet", kApply),
                           SetTexts({{IDC_SHEET_NUMBER, "8"}}), Press("Sheet", IDCANCEL)}),
        "File true false -20dB 7 4 ");
}

TEST(TextEntry, StartsWithItsTextSelectedAndAnswersWithAtMost259Bytes) {
    const std::string longest(259, 'x');
    static const auto type = [](HWND window) {
        for (int i = 0; i < 260; ++i) SendDlgItemMessageA(window, IDC_TEXTEDIT_TEXT, WM_CHAR, 'x', 0);
    };
    {
        const Hand hand({{"Title", type}, Press("Title", IDOK)});
        EXPECT_EQ(LTextEditDlg::Ask(nullptr, "Title", "Enter case no.", "before"), longest);
    }
    const Hand hand({{"Title", type}, Press("Title", IDCANCEL)});
    EXPECT_EQ(LTextEditDlg::Ask(nullptr, "Title", "Enter case no.", "before"), std::nullopt);
}

TEST(ModalRunner, AnUnaskedBoxIsDeafToAKeyThatWasMeantForSomethingElse) {
    LModalRunner runner;
    runner.Attach(
        GetDesktopWindow(), WM_NULL, [] {}, [] {});
    const auto escape = [](HWND) { PostMessageA(GetFocus(), WM_KEYDOWN, VK_ESCAPE, 1); };
    const Hand hand({{"Error", escape}, Press("Error", IDOK)});
    EXPECT_EQ(runner.UnaskedBox("The dictation was not sent.", "Error", MB_OKCANCEL), IDOK);
    EXPECT_FALSE(runner.IsHandAtRest());
}

namespace {

class QuitDialog final : public LModelessDialog {
public:
    ~QuitDialog() override { EXPECT_TRUE(m_isDestroyed); }

private:
    bool InitDialog() override {
        EXPECT_EQ(RunModal(IDD_ABOUT, nullptr), -1) << "it is open already";
        PostQuitMessage(0);
        return true;
    }
    void DestroyDialog() override { m_isDestroyed = true; }
    bool m_isDestroyed = false;
};

}  // namespace

TEST(Dialog, AQuitMessageEndsItWithoutAnAnswer) {
    LSetInstance(GetModuleHandleA(nullptr));
    PostQuitMessage(0);
    EXPECT_EQ(LDialog().RunModal(IDD_ABOUT, nullptr), -1);
    QuitDialog().RunMessageLoop(IDD_ABOUT);
}
