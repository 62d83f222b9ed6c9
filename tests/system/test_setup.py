"""The set-up program and the removal, with the real registry, folders and programs."""

import shutil
import subprocess

import pytest
from corvane import EXE, FOLDERS_KEY, ROOT, SETUP, SETUP_TITLE, TITLE, Corvane, Dialog, wait_for, windows_path

WELCOME, REMOVAL = "Welcome to Corvane", "Removing Corvane"
IDOK, IDCANCEL, IDYES = 1, 2, 6
# Not into a pipe: what Windows starts with the first program would keep it open.
QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
UNINSTALL = r"Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvane"
RUN = r"Software\Microsoft\Windows\CurrentVersion\Run"
OTHER_SIGN = "users/root/Desktop/Corvane.lnk"


@pytest.fixture
def home(drive_c):
    """The folder in which Corvane is installed, with a machine on which it is not."""
    home = drive_c / "Program Files" / "Mervald" / "Corvane"

    def clear():
        for hive in ("HKLM", "HKCU"):
            for key in (r"Software\Mervald", UNINSTALL):
                subprocess.run(["wine", "reg", "delete", rf"{hive}\{key}", "/f"], **QUIET)
        shutil.rmtree(home.parent, ignore_errors=True)

    clear()  # the tests before this one have a data folder
    yield home
    clear()


@pytest.fixture
def run(winctl, home):
    """Starts programs, or takes one that runs; whatever still runs afterwards is ended."""
    taken = []

    def start(exe, *words, title=SETUP_TITLE):
        program = Corvane(winctl, None, exe=exe)
        taken.append(program)
        program.launch(*words, title=title)
        return program

    def installed(after=None):
        """The installed program, which a set-up program has started."""
        program = Corvane(winctl, None, exe=home / "corvane.exe")
        taken.append(program)
        started = lambda: (w := winctl.ask("find", "#32770", TITLE))["hwnd"] and w["pid"] != (after and after.pid)
        wait_for(started, "the installed program", 60)
        program.window = program.take()
        return program

    start.installed = installed
    yield start
    for program in reversed(taken):
        if program.window and not program.process:
            program.winctl.ask("post", program.window, 0x10, 0, 0)
            wait_for(lambda: not program.winctl.ask("window", program.window), "its end")
        program.kill()


def answer(program, title, button):
    Dialog(program, title, button=button).end(button)


def install(run, exe=SETUP, after=None):
    """Answers the question of a set-up program; the program that it starts."""
    answer(run(exe), SETUP_TITLE, IDOK)
    program = run.installed(after)
    answer(program, WELCOME, IDCANCEL)
    return program


def package(name, *options):
    """A package of the same build, made on another road."""
    path = ROOT / "build" / "rig" / name
    subprocess.run([ROOT / "tools" / "make-setup", "--output", path, *options], check=True, capture_output=True)
    return path


def found(drive_c):
    """All files of the machine, and what the registry holds beside the platform's own."""
    files = {str(p.relative_to(drive_c)) for p in drive_c.rglob("*")}
    keys = set()
    for hive in ("HKLM", "HKCU"):
        export, inside = drive_c / "export.reg", ""
        subprocess.run(["wine", "reg", "export", rf"{hive}\Software", r"C:\export.reg", "/y"], **QUIET)
        for line in export.read_bytes().decode("utf-16").splitlines():
            inside = line if line.startswith("[") else inside
            if r"Software\Wine" not in inside:
                keys.add(line if line == inside else f"{inside} {line}")
        export.unlink()
    return files, keys


@pytest.mark.every_windows
def test_it_comes_is_repaired_and_goes_leaving_only_the_recordings(run, home, drive_c, winctl):
    files, keys = found(drive_c)
    program = install(run)
    names = (home / "corvane.lst").read_text().split()
    assert all((home / name).is_file() for name in names) and (home / "corvane.exe").read_bytes() == EXE.read_bytes()
    shortcuts = [f.rsplit("/", 1)[1] for f in found(drive_c)[0] - files if f.endswith(".lnk")]
    assert sorted(shortcuts) == ["Corvane Manual.lnk", "Corvane.lnk", "Corvane.lnk"]
    number = program.new()

    # Over it, while it runs, with a file missing and one that somebody has changed.
    (home / "corvane.htm").unlink()
    (home / "readme.txt").write_text("changed")
    program = install(run, after=program)
    assert (home / "corvane.htm").is_file() and (home / "readme.txt").read_text() != "changed"
    assert [row["number"] for row in program.rows()] == [number]

    # Away, while it runs.
    (home / "mine.doc").write_text("mine")
    manual = next(drive_c.rglob("Corvane Manual.lnk"))
    shutil.copy(manual, drive_c / OTHER_SIGN)
    subprocess.run(["wine", "reg", "add", rf"HKCU\{RUN}", "/v", "Corvane", "/d", "another.exe", "/f"], **QUIET)
    remover = run(home / "corvane.exe", "/uninstall", title=REMOVAL)
    answer(remover, REMOVAL, IDOK)
    assert remover.wait_box(REMOVAL, 60).startswith("Corvane was removed.")
    answer(remover, REMOVAL, IDOK)
    # A program that runs cannot be deleted, and the next start tries but once.
    wait_for(lambda: not winctl.ask("resources", remover.pid)["handles"], "the end of the remover")
    subprocess.run(["wine", "wineboot", "-r"])
    # The log is that of a device's double, which an earlier test has left on this machine.
    allowed = files | {"windows/wininit.bak", "log.txt", OTHER_SIGN}
    elsewhere = lambda: {p for p in drive_c.rglob("*") if home.parent not in (p, *p.parents)}
    stays = lambda: {str(p.relative_to(drive_c)) for p in elsewhere()} - allowed
    wait_for(lambda: not stays(), "the end of the copy", 30)
    left = {str(p.relative_to(home)) for p in home.rglob("*") if p.suffix != ".lck"}
    record = f"00000000/Current/{number:08}.dat"
    assert left == {"00000000", "00000000/Current", record, "00000000/Sent", "00000000/user.dat", "settings.ini", "mine.doc"}
    later_files, later_keys = found(drive_c)
    assert {k for k in later_keys - keys if "=" in k} == {
        rf'[HKEY_LOCAL_MACHINE\{FOLDERS_KEY}] "DataFiles"="C:\\Program Files\\Mervald\\Corvane"',
        rf'[HKEY_CURRENT_USER\{RUN}] "Corvane"="another.exe"',
    }
    assert OTHER_SIGN in later_files
    assert not files - later_files and not {k for k in keys - later_keys if "=" in k}
    (drive_c / OTHER_SIGN).unlink()


def test_a_newer_version_finishes_the_recording_of_the_older(run, home, speech):
    older = home.parents[2] / "older.exe"
    older.write_bytes(EXE.read_bytes() + b"older")
    program = install(run, package("olderSetup.exe", "--program", older))
    assert (home / "corvane.exe").read_bytes().endswith(b"older")
    sample, spoken = speech
    program.record()
    number = program.api(8)
    audio = home / "00000000" / "Current" / f"{number:08}.wav"
    subprocess.run(["paplay", "--device=mic", sample], check=True)
    wait_for(lambda: audio.exists() and audio.stat().st_size >= spoken.duration * 16000, "the recording on disk")
    # Asks nothing, may have any name, and starts again what it has closed.
    update = Corvane(program.winctl, None, exe=package("mail attachment.exe", "--update"))
    process = subprocess.Popen(["wine", str(update.exe)])
    newer = run.installed(program)
    assert process.wait(20) == 0
    assert (home / "corvane.exe").read_bytes() == EXE.read_bytes()
    assert audio.read_bytes()[4:8] != b"\xff\xff\xff\xff" and newer.row(number)["texts"][3] >= "00:06"


def test_a_copy_that_stays_open_is_waited_for_and_nothing_is_changed(run, home, winctl):
    install(run).close()
    before = {p.name: p.read_bytes() for p in home.iterdir() if p.is_file()}
    assert winctl.ask("hold", windows_path(home / "corvane.exe"))
    set_up = run(SETUP)
    answer(set_up, SETUP_TITLE, IDOK)
    assert "still running" in set_up.wait_box("Corvane Is Running", 60)
    answer(set_up, "Corvane Is Running", IDCANCEL)
    winctl.ask("release")
    assert set_up.wait_box(SETUP_TITLE) == "Corvane was not installed. Nothing was changed."
    answer(set_up, SETUP_TITLE, IDOK)
    assert set_up.process.wait(10) == 0
    assert {p.name: p.read_bytes() for p in home.iterdir() if p.is_file()} == before


def test_without_rights_it_is_for_this_user_alone(run, home, drive_c, winctl):
    winctl.ask("lockreg", r"Software\Mervald")
    set_up = run(SETUP)
    question = Dialog(set_up, SETUP_TITLE)
    folder = question.item("IDC_INSTALL_FOLDER")["text"]
    assert not question.item("IDC_INSTALL_EVERYONE")["enabled"] and r"\users\root" in folder
    question.end(IDOK)
    own = drive_c / folder[3:].replace("\\", "/")
    program = run.installed()
    answer(program, WELCOME, IDCANCEL)
    program.new()
    assert (own / "settings.ini").exists() and (own / "00000000" / "Current" / "00000001.dat").exists()
    remover = run(own / "corvane.exe", "/uninstall", title=REMOVAL)
    question = Dialog(remover, REMOVAL)
    question.press("IDC_REMOVE_DATA")
    question.press(IDOK)
    assert "1 dictation with" in remover.wait_box("Delete Recordings")
    answer(remover, "Delete Recordings", IDYES)
    assert remover.wait_box(REMOVAL, 60) == "Corvane was removed."
    answer(remover, REMOVAL, IDOK)
    assert not own.exists()


def test_a_damaged_package_installs_nothing(home, drive_c, winctl):
    whole = SETUP.read_bytes()
    flipped = bytearray(whole)
    flipped[-5000] ^= 8  # in one of the last files
    for content in (EXE.read_bytes(), whole[:-1], flipped):
        path = drive_c / "CorvaneSetup.exe"
        path.write_bytes(content)
        process = subprocess.Popen(["wine", str(path)])
        winctl.answer_only_button("Install Error", "Installation file corrupt.\n\nA checksum error")
        assert process.wait(10) == 0
    assert not home.exists()
