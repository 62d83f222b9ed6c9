"""The window under mouse and keyboard, as on a first day."""

from corvane import PLAYING, RECORDING, STOPPED, WAITING, WINDING, pcm_wav, read_ini, wait_for, xdotool
from waiting import stays

WM_SYSCOMMAND, WM_APPCOMMAND, SC_MAXIMIZE, SC_RESTORE = 0x112, 0x319, 0xF030, 0xF120
NEXT_TRACK, MEDIA_STOP = 11, 13
WS_EX_TOPMOST = 8


def ready(corvane, data, rows):
    for number in range(1, rows + 1):
        data.add_dictation(number, pcm_wav(20 * 8000), name=f"Case {number}")
    program = corvane()
    wait_for(lambda: len(program.winctl.ask("windows", program.pid)["windows"]) == 1, "the end of the splash screen")
    wait_for(lambda: program.describe()["foreground"], "the window in front")
    return program


def test_the_buttons_are_held_and_clicked(corvane, data):
    program = ready(corvane, data, 2)
    status = lambda: program.api(7)
    runs = lambda: status() in (RECORDING, WAITING)
    program.select(1)
    program.point_at("IDC_LIST")
    xdotool("click", 1)
    assert stays(lambda: program.api(8) == 1, 0.3), "a click beside the rows changes nothing"
    line = lambda: program.control("IDC_LOGGEDON")["text"]
    program.command("CM_GOTOSTART")
    usual = line()
    for mode, replaces in (("CM_RECORD_OVERWRITE", True), ("CM_RECORD_INSERT", False)):
        program.record(mode)
        program.wait_status(WAITING)
        wait_for(lambda: (line() == "Listening: will replace 00:00 to 00:20") == replaces, mode)
        program.stop()
        wait_for(lambda: "Nothing was recorded" in line(), "that no voice was heard")
        program.command("CM_GOTOSTART")
        wait_for(lambda: line() == usual, "the end of the notice")
    program.point_at("IDC_RECORD")
    for started in (True, False):
        xdotool("click", 1)
        wait_for(lambda: runs() == started, f"a click on Record: {started}")
        assert stays(lambda: runs() == started, 0.7)
    xdotool("mousedown", 1)
    wait_for(runs, "a recording while the button is held")
    assert stays(runs, 0.8)
    xdotool("mouseup", 1)
    wait_for(lambda: status() == STOPPED, "its end with the release")
    program.command("CM_GOTOSTART")
    program.post(WM_APPCOMMAND, 0, NEXT_TRACK << 16)
    wait_for(lambda: status() == WINDING, "winding by a media key")
    for _ in range(5):  # a held key repeats
        program.post(WM_APPCOMMAND, 0, NEXT_TRACK << 16)
        assert stays(lambda: status() == WINDING, 0.1)
    assert stays(lambda: status() == WINDING, 1.2)
    program.post(WM_APPCOMMAND, 0, NEXT_TRACK << 16)
    wait_for(lambda: status() == STOPPED, "its end by the same key")


def test_views_boxes_and_the_focus(corvane, data):
    program = ready(corvane, data, 3)
    view = lambda: read_ini(data.settings)["settings"].get("viewmode")
    normal = program.describe()["rect"]
    program.select(3)
    program.command("CM_VIEW_COMPACT")
    wait_for(lambda: view() == "0" and program.describe()["rect"] != normal, "the compact view")
    compact = program.describe()["rect"]

    def plays_with_enter(why):
        xdotool("key", "Return")
        wait_for(lambda: program.api(7) == PLAYING, why)
        program.post(WM_APPCOMMAND, 0, MEDIA_STOP << 16)
        wait_for(lambda: program.api(7) == STOPPED, "stopped by a media key")

    plays_with_enter("Enter presses Play, which has the focus")
    program.post(WM_SYSCOMMAND, SC_MAXIMIZE)
    wait_for(lambda: view() == "2" and program.describe()["maximized"], "the maximized view, by the title bar")
    plays_with_enter("Enter plays: the list has the focus")
    xdotool("key", "ctrl+a")
    wait_for(lambda: all(r["selected"] for r in program.rows()), "all rows")
    program.post(WM_SYSCOMMAND, SC_RESTORE)
    wait_for(lambda: view() == "0" and program.describe()["rect"] == compact, "the view before")
    wait_for(lambda: [r["selected"] for r in program.rows()].count(True) == 1, "one row, which is shown")
    program.point_at("IDC_GOTOSTART")
    xdotool("click", 1, "type", "Henryneedsit")
    assert stays(lambda: len(program.rows()) == 3 and program.api(7) == STOPPED, 0.5), "letters are no commands"
    program.select(2)
    program.command("CM_PLAY")
    wait_for(lambda: program.api(7) == PLAYING, "a dictation that plays")
    program.select(3)  # ends it, and disables the button that has the focus
    program.command("CM_VIEW_NORMAL")
    wait_for(lambda: view() == "1" and program.describe()["rect"] == normal, "the normal view")
    for floats in (True, False):
        program.command("CM_VIEW_FLOAT")
        wait_for(lambda: (program.describe()["exstyle"] & WS_EX_TOPMOST != 0) == floats, f"floats: {floats}")
    plays_with_enter("Enter plays: the list has the focus again")
    program.command("CM_VIEW_COMPACT")
    assert program.close() == 0
    assert corvane().describe()["rect"] == compact
