"""The list: what is painted is what it holds, and it stands still unless the dictation in work leaves the view."""

import subprocess
import time

from corvane import pcm_wav, wait_for

WM_SETREDRAW, LVM_GETTOPINDEX, LVM_ENSUREVISIBLE = 0x000B, 0x1027, 0x1013
ROWS = 40  # more than fit


def test_the_picture_is_that_of_the_rows_and_stands_still(corvane, data, winctl):
    for number in range(1, ROWS + 1):
        data.add_dictation(number, pcm_wav(800), name=f"Case {number}")
    program = corvane()
    tell = lambda message, w=0: program.tell("IDC_LIST", message, w)
    numbers = lambda: [r["number"] for r in program.rows()]

    def picture():
        left, top, right, bottom = program.control("IDC_LIST")["rect"]
        area = f"{right - left}x{bottom - top}+{left}+{top}"
        take = ["import", "-window", "root", "-crop", area, "rgb:-"]
        return subprocess.run(take, capture_output=True, check=True).stdout

    def check(what, order, top):
        wait_for(lambda: numbers() == order, what)
        time.sleep(0.5)  # long enough for whatever is still to be painted
        shown = picture()
        tell(WM_SETREDRAW, 0)
        tell(WM_SETREDRAW, 1)  # paints all of it anew
        time.sleep(0.5)
        assert shown == picture(), what
        assert tell(LVM_GETTOPINDEX) == top, what

    wait_for(lambda: len(winctl.ask("windows", program.pid)["windows"]) == 1, "the end of the splash screen")
    order = list(range(1, ROWS + 1))
    page = ROWS - tell(LVM_GETTOPINDEX)
    check("a full list", order, ROWS - page)
    program.command("CM_DELETEFILE")
    program.answer_box("Confirm Delete", 6)
    check("the last one deleted", order := order[:-1], len(order) - page)
    program.command("CM_SENDFILE")
    check("the last one sent", order := order[:-1], len(order) - page)
    program.select(order[0])
    program.command("CM_PRIORITY_HIGH")
    check("the view goes with the dictation in work", order := order[1:] + order[:1], len(order) - page)
    program.type_notes("now last")
    wait_for(lambda: program.row(order[-1])["texts"][5] == "now last", "the notes in the row")
    check("the last row changes where it is", order, len(order) - page)
    program.select(order[0])
    tell(LVM_ENSUREVISIBLE, 20)
    top = tell(LVM_GETTOPINDEX)
    program.command("CM_PRIORITY_LOW")
    check("other rows that are looked at stay", order := order[1:] + order[:1], top - 1)


def test_what_another_session_took_away_leaves_the_list_and_nothing_takes_its_name(corvane, data):
    acts = ["CM_PLAY", "CM_RECORD", "CM_REWIND", "CM_PRIORITY_HIGH", "CM_RENAMEFILE", "CM_SENDFILE", "notes"]
    for number in range(1, len(acts) + 2):
        data.add_dictation(number, pcm_wav(16000), notes=b"as they were\0", name=f"Case {number}")
    program = corvane()
    for number, act in enumerate(acts, 1):
        program.select(number)
        assert program.api(8) == number
        for extension in ("dat", "wav", "txt"):
            (data.current / f"{number:08d}.{extension}").unlink()
        program.type_notes("typed for nothing") if act == "notes" else program.command(act)
        text = program.answer_box("Error", 1, f"Case {number}")
        assert ("typed for nothing" in text) == (act == "notes")
        assert not program.row(number) and not list(data.current.glob(f"{number:08d}.*")), act
    assert len(program.rows()) == 1 and program.close() == 0
