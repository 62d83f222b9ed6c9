#include "install/InstallDialog_win.h"

#include <algorithm>

#include "base/LFile.h"
#include "base/LProfileText.h"
#include "base/LText.h"
#include "install/InstallFiles.h"
#include "install/MachineFacts_win.h"
#include "install/SetUp_win.h"
#include "res/Ids.h"
#include "ui/LBrowseFolder.h"
#include "ui/LDialog.h"

namespace {

constexpr char kNew[] =
    "Corvane records dictations and sends them to your typist.\n\nChoose Install to put it on this "
    "computer.";
constexpr char kUpdate[] =
    "Corvane is on this computer already. Its program is replaced; your dictations, typists and settings "
    "stay as they are.\n\nA running Corvane is closed before, and a recording ended properly.";
constexpr char kOnlyAdministrator[] =
    "Only an administrator of this computer can install Corvane for everyone. For you alone it works as "
    "well.";
constexpr char kOwnRecordings[] =
    "Your recordings lie in a folder of yours, so Corvane is installed for you.";
constexpr char kLeavesEveryones[] =
    "The Corvane that is installed for everyone can be replaced only by an administrator of this "
    "computer. It stays as it is.";
constexpr char kForeign[] =
    "In this folder there are files of other programs that Corvane would replace.\n\nPlease name a "
    "folder of its own for Corvane.";

std::string Megabytes(uint64_t kb) {
    return kb < 102400 ? LFormat("%.1f MB", static_cast<double>(kb) / 1024)
                       : LFormat("%u MB", static_cast<unsigned>(kb / 1024));
}

class InstallDialog final : public LDialog {
public:
    InstallDialog(InstallPlan& plan, const SetupPackage& package)
        : m_plan(plan), m_package(package), m_neededKb(InstallFiles::NeededKb(package)) {}

private:
    bool InitDialog() override {
        SetWindowTextA(Window(), kSetUpTitle);
        SetWindowTextA(Item(IDC_INSTALL_TEXT), m_plan.IsUpdate() ? kUpdate : kNew);
        SendMessageA(Item(IDC_INSTALL_FOLDER), EM_SETLIMITTEXT, kPathSize - 1, 0);
        for (const int control : {IDC_INSTALL_FOLDER, IDC_INSTALL_BROWSE})
            EnableWindow(Item(control), !m_plan.IsUpdate());
        const bool isEveryone = m_plan.Scope() == InstallScope::Everyone;
        CheckRadioButton(Window(), IDC_INSTALL_EVERYONE, IDC_INSTALL_ME,
                         isEveryone ? IDC_INSTALL_EVERYONE : IDC_INSTALL_ME);
        EnableWindow(Item(IDC_INSTALL_EVERYONE), m_plan.MayChooseScope() || isEveryone);
        EnableWindow(Item(IDC_INSTALL_ME), m_plan.MayChooseScope() || !isEveryone);
        if (m_plan.LeavesEveryonesCopy())
            SetWindowTextA(Item(IDC_INSTALL_WHO), kLeavesEveryones);
        else if (!isEveryone && !m_plan.IsUpdate())
            SetWindowTextA(Item(IDC_INSTALL_WHO),
                           m_plan.IsBoundToUser() ? kOwnRecordings : kOnlyAdministrator);
        for (const int control : {IDC_INSTALL_EVERYONE, IDC_INSTALL_ME, IDC_INSTALL_WHO})
            ShowWindow(Item(control), m_plan.TellsUsersApart() ? SW_SHOW : SW_HIDE);
        ShowFolder();
        LShowAsProgram(Window());
        SetFocus(Item(IDOK));
        return false;
    }

    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        if (message != WM_COMMAND) return LDialog::HandleMessage(message, wParam, lParam, result);
        switch (LOWORD(wParam)) {
            case IDC_INSTALL_FOLDER:
                if (HIWORD(wParam) == EN_CHANGE) ShowSpace();
                return true;
            case IDC_INSTALL_BROWSE:
                Browse();
                return true;
            case IDC_INSTALL_EVERYONE:
                Choose(InstallScope::Everyone);
                return true;
            case IDC_INSTALL_ME:
                Choose(InstallScope::ThisUser);
                return true;
            case IDOK:
                Take();
                return true;
            default:
                return LDialog::HandleMessage(message, wParam, lParam, result);
        }
    }

    std::string Typed() const { return std::string(LTrimBlanks(LWindowText(Item(IDC_INSTALL_FOLDER)))); }

    void ShowFolder() {
        SetWindowTextA(Item(IDC_INSTALL_FOLDER), m_plan.Folder().c_str());
        ShowSpace();
    }

    void ShowSpace() {
        std::string text = "Needs " + Megabytes(m_neededKb) + ".";
        const std::string typed = Typed();
        // A server is not asked with each letter.
        const bool isKnown = WhyNotInFolder(typed) == nullptr && !typed.starts_with("\\\\");
        const uint64_t free = isKnown ? FreeKbFor(LPath(typed)) : UINT64_MAX;
        if (free != UINT64_MAX) text += " Free on this drive: " + Megabytes(free) + ".";
        LSetWindowText(Item(IDC_INSTALL_SPACE), text);
    }

    // A folder that the user has typed stays; the one that was offered follows.
    void Choose(InstallScope scope) {
        if (!m_plan.MayChooseScope() || scope == m_plan.Scope()) return;
        const std::string typed = Typed();
        const bool isOffered = LEqualNoCase(typed, m_plan.Folder().View());
        m_plan.SetScope(scope);
        if (isOffered) ShowFolder();
    }

    // Whatever is chosen, Corvane has a folder of its own in it.
    void Browse() {
        const LPath chosen = LBrowseFolder(Window(), "In which folder is the folder of Corvane to lie?");
        if (chosen.Empty() || !IsOpen()) return;
        const bool isOurs = LEqualNoCase(LFileNameOf(chosen.View()), "Corvane");
        SetWindowTextA(Item(IDC_INSTALL_FOLDER),
                       (isOurs ? chosen : LPath::Join(chosen.View(), "Corvane")).c_str());
    }

    void Take() {
        if (!m_plan.IsUpdate() && !TakeFolder()) return;
        EndModal(IDOK);
    }

    bool TakeFolder() {
        std::string folder = Typed();
        const char* reason = WhyNotInFolder(folder);
        char whole[kPathSize] = {};
        char* name = nullptr;
        const DWORD length = GetFullPathNameA(folder.c_str(), sizeof whole, whole, &name);
        if (length > 0 && length < sizeof whole) folder = whole;
        if (reason == nullptr) reason = WhyNotInFolder(folder);
        if (reason == nullptr && HoldsForeignFiles(LPath(folder))) reason = kForeign;
        if (reason != nullptr)
            Refuse(reason);
        else
            m_plan.SetFolder(folder);
        return reason == nullptr;
    }

    // Files of the names that are installed, which belong to no Corvane. In a folder of our name they are
    // what an earlier one has left.
    bool HoldsForeignFiles(const LPath& folder) const {
        return !HoldsProgram(folder) && !LEqualNoCase(LFileNameOf(folder.View()), "Corvane") &&
               std::ranges::any_of(m_package.Files(), [&](const PackageFile& file) {
                   return LFile::Exists(LPath::Join(folder.View(), file.name));
               });
    }

    void Refuse(std::string_view reason) {
        LMessageBox(Window(), reason, kSetUpTitle, MB_OK | MB_ICONEXCLAMATION);
        if (IsOpen()) SetFocus(Item(m_plan.IsUpdate() ? IDOK : IDC_INSTALL_FOLDER));
    }

    InstallPlan& m_plan;
    const SetupPackage& m_package;
    uint32_t m_neededKb;
};

}  // namespace

bool AskForInstallation(InstallPlan& plan, const SetupPackage& package) {
    InstallDialog dialog(plan, package);
    return dialog.RunModal(IDD_INSTALL, nullptr) == IDOK;
}
