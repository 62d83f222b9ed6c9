"""Keys that give commands while another program has the keyboard, and the sheet in which they are chosen."""

import subprocess

from corvane import RECORDING, STOPPED, Dialog, read_ini, wait_active, wait_for, write_ini, xdotool
from waiting import stays

F5, F6, F8, CTRL, SHIFT = 0x74, 0x75, 0x77, 2, 4
RECORD, PLAY = 3, 4  # command indexes


def test_a_hot_key_is_chosen_by_keys_and_records_behind_another_program(corvane, data, winctl, request):
    one = {"key0": F5, "key0mod": 0, "command0": PLAY, "command1": RECORD}  # the second has no key
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}, "keys": {"keycount": 2, **one}})
    keys = lambda: {name: int(value) for name, value in read_ini(data.settings)["keys"].items()}
    program = corvane()
    wait_active()
    program.record()
    Dialog(program, "Hardware Settings", "CM_SETTINGS_HARDWARE").show(1)
    wait_active("Hardware Settings")
    assert program.api(7) == STOPPED
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
    assert winctl.ask("takekey", CTRL, F8)
    xdotool("key", "alt+k", "keydown", "ctrl", "keydown", "F8")
    wait_active("Key in Use")
    xdotool("keyup", "F8", "keyup", "ctrl")
    assert "Ctrl+F8 is used by another program" in program.wait_box("Key in Use")
    xdotool("key", "Return")  # No
    wait_active("Hot Key")
    xdotool("key", "ctrl+F6")
    wait_active("Hardware Settings")
    wait_for(lambda: keys()["key1"] == F6 and keys()["key1mod"] == CTRL, "the edited hot key")
    xdotool("key", "Return")
    wait_active()

    other_program = subprocess.Popen(["wine", "notepad"])
    request.addfinalizer(other_program.kill)
    wait_active("Notepad")
    xdotool("key", "Return", "F5")
    assert program.api(7) == STOPPED, "neither is a hot key"
    xdotool("keydown", "ctrl", "keydown", "F6")
    program.wait_status(RECORDING)
    assert stays(lambda: program.api(7) == RECORDING, 1.3), "while the key is held"
    xdotool("keyup", "F6", "keyup", "ctrl")
    program.wait_status(STOPPED, 1)
