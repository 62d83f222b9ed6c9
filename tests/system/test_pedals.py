"""Pedals and a dictation microphone, through the libraries and drivers of their vendors, and their settings."""

import shutil
import time

from corvane import BUILD, PLAYING, RECORDING, STOPPED
from corvane import Dialog, read_ini, wait_active, wait_for, windows_path, write_ini, xdotool
from waiting import stays

MCI_KEY = r"Software\Microsoft\Windows NT\CurrentVersion\MCI"
WM_DEVICECHANGE, WM_APP = 0x219, 0x8000
SETTINGS = {"warnbelowmb": 0, "voiceactivate": "--dB"}


def install(name, drive_c, as_name):
    target = drive_c / "windows" / "system32" / as_name
    target.unlink(missing_ok=True)  # a copy that is loaded still keeps its file
    shutil.copy(BUILD / "tests" / "win" / "hardware" / name, target)


def test_a_pedal_records_while_it_is_held_however_late_its_library_answers(corvane, data, drive_c):
    write_ini(data.settings, {"settings": SETTINGS, "control": {"port": 3, "control1": 3, "control2": 4}})
    path = data.folder / "pedals.txt"
    press = lambda bits, late_ms=0: path.write_text(f"{bits} {late_ms}")
    press(0)
    program = corvane(environment={"CORVANE_TEST_PEDALS": windows_path(path)})
    program.answer_box("Error", 1, "must be downloaded from the vendor's web site.")
    install("HidProbeWithoutData.dll", drive_c, "HidProbe.dll")
    sheet = Dialog(program, "Hardware Settings", "CM_SETTINGS_HARDWARE")
    shows = lambda text: wait_for(lambda: sheet.item("IDC_HARDWARE_TEST")["text"] == text, text)
    shows("Unable to open port")
    sheet.press("IDC_HARDWARE_MIXER")
    program.answer_box("Error", 1, "sndvol32.exe, is missing")
    install("HidProbe.dll", drive_c, "HidProbe.dll")
    for bits, text in (1, "Button/Pedal 1"), (3, "Button/Pedal 3"), (0, "Nothing pressed"), (8, "Button/Pedal 4"):
        press(bits)
        shows(text)
    wait_active("Hardware Settings")
    xdotool("key", "alt+4", "r", "alt+r")
    assert program.api(7) == STOPPED
    sheet.end(1)
    written = read_ini(data.settings)["control"]
    assert [written.get(key) for key in ("port", "control1", "control3", "control4")] == ["3", "3", None, "3"]
    program.wait_status(RECORDING)  # control 4 is pressed still
    assert stays(lambda: program.api(7) == RECORDING, 0.7)
    press(0)
    program.wait_status(STOPPED)
    press(1)
    program.wait_status(RECORDING)
    press(0)
    assert stays(lambda: program.api(7) == RECORDING, 0.7), "goes on after a tap"
    press(2, 2000)
    slowest, deadline = 0.0, time.monotonic() + 20
    while program.api(7) != PLAYING and time.monotonic() < deadline:
        asked = time.monotonic()
        program.api(0)
        slowest = max(slowest, time.monotonic() - asked)
    assert program.api(7) == PLAYING and slowest < 1, f"an answer of the window took {slowest:.2f} s"
    press(0, 4000)
    program.wait_status(STOPPED)
    closed = time.monotonic()
    assert program.close() == 0 and time.monotonic() - closed < 3


def test_a_dictation_microphone_works_until_it_is_unplugged_and_again_when_it_is_back(corvane, data, drive_c, winctl):
    write_ini(data.settings, {"settings": SETTINGS})
    install("DictCtrl.dll", drive_c, "DictCtrl.dll")
    winctl.ask("setreg", MCI_KEY, "DictCtrl", r"C:\windows\system32\DictCtrl.dll")
    plugged, unplugged = data.folder / "microphone", data.folder / "unplugged"
    plugged.mkdir()
    program = corvane(environment={"CORVANE_TEST_MICROPHONE": windows_path(plugged)})
    driver = lambda: winctl.ask("find", "DictCtrlDouble", "Microphone")["hwnd"]

    def press(codes, state):
        for code in codes:
            winctl.ask("post", wait_for(driver, "the driver"), WM_APP, code, 0)
        program.wait_status(state)
        stays(lambda: True, 0.7)  # no tap

    # Record is held, and Stop has no effect meanwhile.
    for codes, state in ([6], RECORDING), ([2, 7], STOPPED), ([20, 21], PLAYING), ([2], STOPPED), ([6], RECORDING):
        press(codes, state)
    plugged.rename(unplugged)
    program.post(WM_DEVICECHANGE, 7)
    program.wait_status(STOPPED)  # Record counts as let go
    unplugged.rename(plugged)
    program.post(WM_DEVICECHANGE, 7)
    press([8], RECORDING)
    assert program.close() == 0
    told = (plugged / "log.txt").read_text().split("\n")
    shown = [f"display {state}" for state in (0, 1, 0, 2, 0, 1)]
    assert told[:8] == ["open 0", "activate 1792", *shown] and told[-3:] == ["deactivate 0", "close 0", ""]
