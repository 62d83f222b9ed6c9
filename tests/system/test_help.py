"""The help, and what another program can do: the sample client and its script, and a hurried one."""

import os
import subprocess
import time

import pytest
from corvane import API, EXE, TOOLS, wait_for, windows_path, xdotool

SAMPLES = TOOLS.parent.parent / "samples"
BURST = int(os.environ.get("CORVANE_BURST", "60"))
CLASSES = r"Software\Classes"


@pytest.fixture
def browser(winctl, drive_c):
    """A browser that writes down what it is asked to open."""
    winctl.ask("setreg", CLASSES + r"\.htm", "", "Browser.Page")
    winctl.ask("setreg", CLASSES + r"\Browser.Page\shell\open\command", "", r'cmd /c echo "%1">>C:\opened.txt')
    opened = drive_c / "opened.txt"
    yield lambda: opened.read_text().split("\n")[:-1] if opened.exists() else []
    opened.unlink(missing_ok=True)


def test_f1_opens_the_manual_wherever_the_focus_is_or_says_where_it_is(corvane, data, winctl, browser):
    data.add_dictation(1)
    program = corvane()
    wait_for(lambda: program.describe()["foreground"], "the window in front")

    def hold(times):
        """A held key asks once."""
        xdotool("keydown", "F1", "sleep", 1.6, "keyup", "F1")
        pages = wait_for(lambda: len(browser()) >= times and browser(), "the manual in the browser")
        assert [windows_path(EXE.with_suffix(".htm")).lower() in p.lower() for p in pages] == [True] * times

    hold(1)
    program.command("CM_ABOUT")
    program.wait_box("About Corvane")
    xdotool("sleep", 1.6)
    hold(2)
    program.answer_box("About Corvane", 1)
    winctl.ask("setreg", CLASSES + r"\.htm", "", "Nobody.Knows")
    program.command("CM_HELP")
    assert str(EXE.with_suffix(".htm")).replace("/", "\\").lower() in program.wait_box("Error").lower()
    program.answer_box("Error", 1)


def test_a_script_makes_a_dictation_with_a_name_and_notes(corvane, data):
    program = corvane()
    script = ["wine", "cmd", "/c", "dictate.bat", "Harris: letter", r"Urgent\nSee chart, " + 300 * "x"]
    assert "1" in subprocess.run(script, cwd=SAMPLES, capture_output=True, text=True, timeout=30).stdout.split()
    assert data.record(1)["name"] == "Harris: letter"
    notes = data.audio(1).with_suffix(".txt")
    text = b"Urgent\r\nSee chart, " + 300 * b"x" + b"\0"
    wait_for(lambda: notes.exists() and notes.read_bytes() == text, "the notes")
    client = lambda *words: subprocess.run(["wine", str(SAMPLES / "corvanecmd.exe"), *words], timeout=30).returncode
    # What it cannot make it says, or the next line of the script would rename another dictation.
    program.command("CM_DELETEFILE")
    program.wait_box("Confirm Delete")
    assert client("new") == 102
    program.answer_box("Confirm Delete", 7)
    program.record()
    assert client("status") in (1, 2)
    program.stop()
    program.close()
    assert client("number") == 100


def test_no_request_of_a_burst_is_lost(corvane, data):
    program = corvane()
    begun = time.monotonic()
    for _ in range(BURST):
        program.post(API, 4)
    wait_for(lambda: program.api(8) == BURST, "all dictations", 60)
    print(f"{BURST} dictations made in {time.monotonic() - begun:.2f} s")
    assert [r["number"] for r in program.rows()] == list(range(1, BURST + 1))
    assert len(list(data.current.glob("*.dat"))) == BURST
