#include "app/window/KeyTable.h"

#include "res/Ids.h"

// A table of our own in place of the platform's accelerator table, which does not know the focus or whether a
// key repeats. Keys mean different things by focus: in the notes Home, End, Insert and Delete edit, and in
// the name editor every key does. F1 is not here: the platform has a message of its own for it, which comes
// from every dialog too.

namespace {

// Virtual-key codes of the platform, named here because portable code cannot include them.
enum : int {
    kReturn = 0x0D,
    kEscape = 0x1B,
    kEnd = 0x23,
    kHome = 0x24,
    kInsert = 0x2D,
    kDelete = 0x2E,
    kF1 = 0x70,
    kF2 = 0x71,
    kF5 = 0x74,
    kF7 = 0x76,
    kF8 = 0x77,
    kF9 = 0x78,
    kF10 = 0x79,
    kF11 = 0x7A,
    kF12 = 0x7B,
};

enum class With { Nothing, Ctrl, Shift };

struct Shortcut {
    int key;
    With with;
    int command;
};
constexpr Shortcut kShortcuts[] = {
    {'N', With::Ctrl, CM_NEWFILE},
    {'S', With::Ctrl, CM_SENDFILE},
    {'R', With::Ctrl, CM_SENDFILE_TO},
    {kF2, With::Nothing, CM_RENAMEFILE},
    {kDelete, With::Ctrl, CM_DELETEFILE},
    {'W', With::Ctrl, CM_VIEWSENT},
    {'O', With::Ctrl, CM_RECOVER},
    {'D', With::Ctrl, IDC_DOCK},
    {kF5, With::Nothing, CM_RECORD},
    {kF5, With::Ctrl, CM_RECORD_OVERWRITE},
    {kInsert, With::Nothing, CM_RECORD_INSERT},
    {kF5, With::Shift, CM_RECORD_END},
    {kF9, With::Nothing, CM_PLAY},
    {kF11, With::Nothing, CM_PLAY_SLOW},
    {kF10, With::Nothing, CM_PLAY_NORMAL},
    {kF12, With::Nothing, CM_PLAY_FAST},
    {kEscape, With::Nothing, CM_STOP},
    {kHome, With::Nothing, CM_GOTOSTART},
    {kEnd, With::Nothing, CM_GOTOEND},
};

// Keys that edit while the focus is in the notes.
bool IsEditing(int key) {
    return key == kHome || key == kEnd || key == kInsert || key == kDelete;
}

struct MediaKey {
    int key;  // the platform's number of an application command
    int command;
};
constexpr MediaKey kMediaKeys[] = {
    {11, CM_FASTFORWARD},  // next track
    {12, CM_REWIND},       // previous track
    {13, CM_STOP},
    {14, CM_PLAY},  // play/pause
};

bool IsWith(const KeyPress& press, With with) {
    return !press.alt && press.ctrl == (with == With::Ctrl) && press.shift == (with == With::Shift);
}

}  // namespace

KeyAction ActionOf(const KeyPress& press) {
    using Kind = KeyAction::Kind;
    // The name editor gets all keys.
    if (press.focus == KeyFocus::NameEditor) return {};
    if (press.focus == KeyFocus::OtherWindow && (press.key < kF1 || press.key > kF12)) return {};
    if ((press.key == kF7 || press.key == kF8) && IsWith(press, With::Nothing))
        return {press.repeats ? Kind::Swallow : Kind::Wind, 0,
                press.key == kF7 ? WindDirection::Back : WindDirection::Forward};
    // The dialog would press its own buttons again with each repeat, and those that are drawn not at all.
    if (press.key == kReturn && press.focus == KeyFocus::Button)
        return {press.repeats ? Kind::Swallow : Kind::PressButton};
    if (press.focus == KeyFocus::Notes && IsEditing(press.key)) return {};
    if (press.key == 'A' && IsWith(press, With::Ctrl)) return {Kind::SelectAll};
    if (press.key == kReturn && press.focus == KeyFocus::List && IsWith(press, With::Nothing))
        return {press.repeats ? Kind::Swallow : Kind::PlayRow};
    for (const Shortcut& shortcut : kShortcuts)
        if (shortcut.key == press.key && IsWith(press, shortcut.with))
            return {press.repeats ? Kind::Swallow : Kind::Command, shortcut.command};
    return {};
}

int MediaCommandOf(int key, bool windsBack, bool windsForward) {
    for (const MediaKey& media : kMediaKeys) {
        if (media.key != key) continue;
        const bool isUnderWay =
            (media.command == CM_REWIND && windsBack) || (media.command == CM_FASTFORWARD && windsForward);
        return isUnderWay ? CM_STOP : media.command;
    }
    return 0;
}

bool CountsOnce(int command) {
    return command == CM_NEWFILE || command == CM_SENDFILE || command == CM_SENDFILE_TO;
}
