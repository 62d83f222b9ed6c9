"""Starting: the second instance, and files that are not as they should be."""

import os
import re
import shutil
import subprocess

import pytest
from corvane import DIALOG_CLASS, EXE, ROOT, TITLE, TOOLS, pcm_wav, wait_for


def test_a_second_start_brings_the_first_forward_and_ends(corvane, winctl):
    program = corvane()
    program.api(2)
    wait_for(lambda: program.describe()["minimized"], "a minimized window")
    second = subprocess.run(["wine", str(EXE), "/install"], timeout=15)
    assert second.returncode == 0
    window = wait_for(lambda: (w := program.describe()) and not w["minimized"] and w, "a restored window")
    assert window["visible"] and program.api(0) == 1
    assert winctl.ask("find", DIALOG_CLASS, TITLE)["hwnd"] == program.window


def test_a_set_up_loads_no_library_that_lies_among_its_downloads(tmp_path):
    package = tmp_path / "corvanesetup.exe"
    subprocess.run([ROOT / "tools/make-setup", "--program", EXE, "--output", package], check=True)
    # What Corvane asks for, and Windows on its account; others Windows loads before a program's first line.
    ours = "comdlg32 compstui hidprobe mapi32 msacm32 setupapi shcore shell32 shfolder shlwapi wininet winmm winspool.drv"
    theirs = "apphelp clbcatq combase linkinfo mpr msimg32 ntshrui ole32 propsys rpcrt4 userenv ws2_32 wsock32"
    for name in f"{ours} {theirs}".split():
        shutil.copy(TOOLS.parent / "win/decoders/decoders.dll", tmp_path / (name if "." in name else f"{name}.dll"))
    log = tmp_path / "log"
    with log.open("wb") as out:
        process = subprocess.Popen(["wine", package], env={**os.environ, "WINEDEBUG": "+loaddll"}, stderr=out)
    try:
        shown = ["xdotool", "search", "--onlyvisible", "--name", TITLE]
        wait_for(lambda: process.poll() is not None or subprocess.run(shown).returncode == 0, "a window, or the end", 20)
    finally:
        process.kill()
    loaded = re.findall(rb'Loaded L"([^"]*)"', log.read_bytes())
    beside = [path for path in loaded if tmp_path.name.encode() in path]
    assert len(beside) == 1 and beside[0].endswith(b"corvanesetup.exe"), beside


def test_without_the_libraries_for_sound_it_starts_and_tells_of_no_device(corvane, data):
    data.add_dictation(1, pcm_wav(800))
    program = corvane(environment={"WINEDLLOVERRIDES": os.environ["WINEDLLOVERRIDES"] + ";winmm,msacm32=d"})
    program.select(1)
    for command in ("CM_PLAY", "CM_RECORD"):
        program.command(command)
        assert "you do not have a sound card installed" in program.wait_box("Sound Device Error")


RUBBISH = bytes(range(256)) * 40
HUGE = b"[settings]\r\n" + b"x" * (10 * 1024 * 1024)


@pytest.mark.parametrize("bad", [b"", RUBBISH, HUGE], ids=["empty", "rubbish", "huge"])
def test_files_of_rubbish_harm_nobody(corvane, data, bad):
    data.add_dictation(7, pcm_wav(16000), b"good\0")
    data.add_dictation(8)
    for path in (data.settings, data.queue, data.user_file, data.user / "rec0.dat"):
        path.write_bytes(bad)
    for suffix in (".dat", ".wav"):
        (data.current / f"00000008{suffix}").write_bytes(bad)
    program = corvane()
    good = program.row(7)["texts"]
    assert (good[0], good[3], good[5]) == ("Dictation 007", "00:02", "good")
    assert len(program.rows()) == 2
    number = program.new()
    assert number not in (7, 8) and data.record(number)["number"] == str(number)
    assert program.close() == 0
    # Audio of no bytes may go; any other stays as it is.
    assert not bad or (data.current / "00000008.wav").read_bytes() == bad


def test_without_any_file_the_program_starts_empty_and_works(corvane, data):
    shutil.rmtree(data.folder)
    data.folder.mkdir()
    program = corvane()
    assert program.rows() == []
    program.command("CM_SENDFILE")
    program.command("CM_NEWFILE")
    assert program.api(0) == 1
    assert program.close() == 0
