"""Keys that give commands while another program has the keyboard, and the sheet in which they are chosen."""

import subprocess
import time

from corvane import DIALOG_CLASS, IDS, Dialog, read_ini, wait_active, wait_for, write_ini, xdotool

F5, F6, F8, CTRL, SHIFT = 0x74, 0x75, 0x77, 2, 4
RECORD, PLAY = 3, 4  # command indexes


def test_a_hot_key_is_chosen_by_keys_and_records_behind_another_program(corvane, data, request):
    one = {"key0": F5, "key0mod": 0, "command0": PLAY, "command1": RECORD}  # the second has no key
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}, "keys": {"keycount": 2, **one}})
    keys = lambda: {name: int(value) for name, value in read_ini(data.settings)["keys"].items()}
    program = corvane()
    wait_active()
    program.record()
    Dialog(program, "Hardware Settings", "CM_SETTINGS_HARDWARE").show(1)
    wait_active("Hardware Settings")
    assert program.api(7) == 0, "stopped"
    # F5, which is a hot key, can be chosen again; Enter cannot, and Escape leaves all as it was.
    for last in ("Escape", "ctrl+shift+F5"):
        xdotool("key", "alt+a")
        wait_active("Hot Key")
        xdotool("key", "Down", "Down", "Down", "alt+k", "Return", last)
        wait_active("Hardware Settings")
    added = {"keycount": 3, **one, "key2": F5, "key2mod": CTRL | SHIFT, "command2": RECORD}
    wait_for(lambda: keys() == added, "the hot key in the settings")
    xdotool("key", "Home", "Delete")
    left = {"keycount": 2, "command0": RECORD, "key1": F5, "key1mod": CTRL | SHIFT, "command1": RECORD}
    wait_for(lambda: keys() == left, "the settings without the first")
    xdotool("key", "End", "alt+e")
    wait_active("Hot Key")
    xdotool("key", "alt+k", "ctrl+F6")
    wait_active("Hardware Settings")
    wait_for(lambda: keys()["key1"] == F6 and keys()["key1mod"] == CTRL, "the edited hot key")
    xdotool("key", "Return")
    wait_active()

    other_program = subprocess.Popen(["wine", "notepad"])
    request.addfinalizer(other_program.kill)
    wait_active("Notepad")
    recording = lambda: program.api(7) == 1
    xdotool("key", "Return", "F5")
    assert program.api(7) == 0, "neither is a hot key"
    xdotool("keydown", "ctrl", "keydown", "F6")
    wait_for(recording, "a recording")
    held = time.monotonic() + 1.3
    wait_for(lambda: time.monotonic() > held, "the time of a hold")
    assert recording(), "while the key is held"
    xdotool("keyup", "F6", "keyup", "ctrl")
    let_go = time.monotonic()
    wait_for(lambda: program.api(7) == 0, "the end of the recording")
    assert time.monotonic() - let_go < 1

    program.command("CM_SETTINGS_HARDWARE")
    wait_for(lambda: program.winctl.ask("find", DIALOG_CLASS, "Hardware Settings")["hwnd"], "the sheet")
    assert program.close() == 0, "with its sheet open"


def test_a_hot_key_that_would_do_nothing_is_refused_or_told(corvane, data, winctl, request):
    """Without a key or a command, another program's, and one that another session has deleted."""
    keys = lambda: read_ini(data.settings).get("keys", {})
    program = corvane()
    wait_active("Corvane")
    assert winctl.ask("takekey", CTRL, F8)
    request.addfinalizer(lambda: winctl.ask("takekey", 0, 0))
    Dialog(program, "Hardware Settings", "CM_SETTINGS_HARDWARE").show(1)
    wait_active("Hardware Settings")
    xdotool("key", "alt+a")
    wait_active("Hot Key")

    def answer(title, words, key):
        assert words in program.wait_box(title)
        wait_active(title)
        xdotool("key", key)

    for key, words in ("Return", "Choose the key"), ("F9", "Choose what the key shall do"):
        xdotool("key", key)
        answer("Error", words, "Return")
        wait_active("Hot Key")
    assert not keys()
    # The refusal has given the keyboard to the list of commands. Shift+Tab goes into the key's box and out of it.
    xdotool("key", "Down", "Down", "Down", "shift+Tab", "shift+Tab", "alt+c", "Down", "alt+k")
    for key in "Return", "y":
        wait_active("Hot Key")
        xdotool("keydown", "ctrl", "keydown", "F8")
        wait_active("Key in Use")
        xdotool("keyup", "F8", "keyup", "ctrl")
        answer("Key in Use", "Ctrl+F8 is used by another program", key)
    added = {"keycount": "1", "key0": str(F8), "key0mod": str(CTRL), "command0": str(PLAY)}
    wait_for(lambda: keys() == added, "the hot key that was agreed to")

    # When two windows close at once the window manager may give the keyboard to nobody: the rest goes by messages.
    windows = winctl.ask("windows", program.pid)["windows"]
    sheet = next(w for w in windows if w["text"] == "Hardware Settings")
    control = lambda name: next(c["hwnd"] for c in sheet["children"] if c["id"] == IDS[name])
    texts = lambda: [row["texts"][:3] for row in winctl.ask("list", control("IDC_KEYS_LIST"))["rows"]]
    wait_for(lambda: texts() == [["Ctrl+F8", "Play", "Used by another program"]], "its row")
    other = {"keycount": "1", "key0": str(F6), "key0mod": "0", "command0": str(RECORD)}
    write_ini(data.settings, {"keys": other})
    winctl.ask("click", control("IDC_KEYS_DELETE"))
    assert "changed or deleted in another window" in program.wait_box("Error")
    program.answer_box("Error", 1)
    assert texts() == [["F6", "Record", ""]] and keys() == other
