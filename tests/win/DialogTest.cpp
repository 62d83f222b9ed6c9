#include "res/Ids.h"
#include "tests/win/Hand.h"
#include "ui/LModalRunner.h"
#include "ui/LTextEditDlg.h"

TEST(TextEntry, StartsWithItsTextSelectedAndAnswersWithAtMost259Bytes) {
    const std::string longest(259, 'x');
    LSetInstance(GetModuleHandleA(nullptr));
    static const auto type = [](HWND window) {
        for (int i = 0; i < 260; ++i) SendDlgItemMessageA(window, IDC_TEXTEDIT_TEXT, WM_CHAR, 'x', 0);
        return true;
    };
    {
        const Hand hand({{"Title", type}, Hand::Press("Title", IDOK)});
        EXPECT_EQ(LTextEditDlg::Ask(nullptr, "Title", "Enter case no.", "before"), longest);
    }
    const Hand hand({{"Title", type}, Hand::Press("Title", IDCANCEL)});
    EXPECT_EQ(LTextEditDlg::Ask(nullptr, "Title", "Enter case no.", "before"), std::nullopt);
}

TEST(ModalRunner, AnUnaskedBoxIsDeafToAKeyThatWasMeantForSomethingElse) {
    LModalRunner runner;
    runner.Attach(
        GetDesktopWindow(), WM_NULL, [] {}, [] {});
    const auto escape = [](HWND) { return PostMessageA(GetFocus(), WM_KEYDOWN, VK_ESCAPE, 1) != 0; };
    const Hand hand({{"Error", escape}, Hand::Press("Error", IDOK)});
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
