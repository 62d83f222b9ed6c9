#pragma once

#include <string>
#include <vector>

#include "ui/LControlTable.h"
#include "ui/LDialog.h"

// A page of a property sheet: a dialog resource, whose caption is the page's title, and a table of its
// controls. The values are read when the page is first shown and written when the sheet is accepted. A page
// that was never shown, or whose sheet is cancelled, writes nothing.
// Errors: invalid values are told to the user and keep the page open.
// Thread: the window thread.
class LPropertyPage : public LDialog {
public:
    // The binding must outlive the page.
    LPropertyPage(int resource, LControlBinding& binding) : m_resource(resource), m_table(binding) {}

    int Resource() const { return m_resource; }
    // Whether its values were accepted, by OK or Apply, since the page was shown.
    bool IsAccepted() const { return m_isAccepted; }
    static INT_PTR CALLBACK PageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    // Called before the values are shown: the place to fill lists.
    virtual void InitPage() {}
    // Called after the values are shown and after each change by the user: enables and disables controls.
    virtual void UpdateControls() {}
    // Called before the page is left or accepted; return false, after Refuse, to keep it open.
    virtual bool Validate() { return true; }
    // Called after the values were written.
    virtual void Accepted() {}

    // Tells the user the reason and moves the focus to the control; always false.
    bool Refuse(int control, std::string_view text);
    // Makes the arrows beside a level work as its Up and Down keys; called by InitPage.
    void AttachArrows(int upDown) const;
    bool IsChecked(int control) const { return IsDlgButtonChecked(Window(), control) == BST_CHECKED; }
    void Enable(int control, bool isEnabled) const { EnableWindow(Item(control), isEnabled); }

    // An override passes on the messages that it does not handle.
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;

private:
    bool InitDialog() final;
    bool IsValid();

    int m_resource;
    LControlTable m_table;
    bool m_isLoading = false;
    bool m_isAccepted = false;
};

// A modal sheet of pages with OK, Cancel and Apply. Thread: the window thread.
class LPropertySheet {
public:
    explicit LPropertySheet(std::string_view title) : m_title(title) {}

    // The pages must outlive the sheet.
    void Add(LPropertyPage& page) { m_pages.push_back(&page); }
    // True when a page was accepted, by OK or Apply, even if the sheet was cancelled afterwards. A sheet that
    // cannot be shown is traced.
    bool RunModal(HWND owner);

private:
    std::string m_title;
    std::vector<LPropertyPage*> m_pages;
};
