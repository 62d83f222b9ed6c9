"""Runs the real corvane.exe on the rig and drives it as a user or another program would."""

import json
import os
import re
import signal
import struct
import subprocess
import time
from pathlib import Path

from sound import microphone_streams, play
from waiting import wait_for

ROOT = Path(__file__).resolve().parents[2]
BUILD = Path(os.environ.get("CORVANE_BUILD", ROOT / "build" / "win32"))
EXE = BUILD / "corvane.exe"
TOOLS = BUILD / "tests" / "system"
VERSION = re.search(r"^project\(Corvane VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]
SETUP = BUILD / "corvanesetup.exe"
SETUP_TITLE = f"Installing Corvane v {VERSION}"
TITLE = "Corvane"
DIALOG_CLASS = "#32770"
FOLDERS_KEY = r"Software\Mervald\Corvane\CurrentVersion\Folders"

WM_CLOSE, WM_CHAR, WM_COMMAND, EM_SETSEL, PBM_GETPOS, PSM_SETCURSEL = 0x10, 0x102, 0x111, 0xB1, 0x408, 0x465
API = 32767
STOPPED, RECORDING, WAITING, PLAYING, WINDING = range(5)  # as the interface for other programs tells
# Where the texts of a recipient stand in his record.
RECIPIENT = dict(name=8, to=44, folder=172, host=428, user=556, login=588, ftpfolder=620, key=876)

# The public numbers, as the resource compiler reads them: IDS["CM_NEWFILE"] is 1001.
IDS = {
    name: int(value, 0)
    for name, value in re.findall(r"^#define\s+(\w+)\s+(\w+)", (ROOT / "res" / "Ids.h").read_text(), re.M)
}


def xdotool(*words):
    """What a hand does with mouse and keyboard."""
    subprocess.run(["xdotool", *map(str, words)], check=True)


def wait_active(title=TITLE):
    """Waits until a window of this title is in front, which has the keyboard."""
    ask = ["xdotool", "getactivewindow", "getwindowname"]
    in_front = lambda: title in subprocess.run(ask, capture_output=True, text=True).stdout
    wait_for(in_front, f'the window "{title}" in front')


class WinCtl:
    """The helper inside Windows: one command, one answer."""

    def __init__(self):
        pipes = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE}
        self.process = subprocess.Popen(["wine", str(TOOLS / "winctl.exe")], **pipes)

    def ask(self, *fields):
        """The answer to a command; None when it could not be obeyed."""
        self.process.stdin.write(json.dumps(fields).encode() + b"\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        assert answer, "winctl has ended"
        return json.loads(answer)

    def answer_only_button(self, title, words):
        """Presses the button of a box that a program shows without its window, once it says these words."""

        def box():
            handle = self.ask("find", DIALOG_CLASS, title)["hwnd"]
            children = handle and self.ask("window", handle)["children"]
            return children if children and any(words in c["text"] for c in children) else None

        children = wait_for(box, f'a box "{title}" that says "{words}"', 20)
        self.ask("click", next(c["hwnd"] for c in children if c["class"] == "Button"))

    def close(self):
        self.process.stdin.close()
        self.process.wait(10)


def windows_path(path):
    """A path of this machine as Windows sees it."""
    drive_c = Path(os.environ["WINEPREFIX"]) / "drive_c"
    path = Path(path)
    if path.is_relative_to(drive_c):
        return "C:\\" + str(path.relative_to(drive_c)).replace("/", "\\")
    return "Z:" + str(path).replace("/", "\\")


def read_ini(path):
    """A settings file as {section: {key: value}}, keys in lower case; an unreadable one is empty."""
    sections, current = {}, {}
    try:
        text = Path(path).read_bytes().decode("latin-1")
    except OSError:
        return sections
    for line in text.splitlines():
        if line.startswith("["):
            current = sections.setdefault(line.strip("[] \0").lower(), {})
        elif "=" in line:
            key, value = line.split("=", 1)
            current[key.strip().lower()] = value.strip()
    return sections


def write_ini(path, sections):
    lines = []
    for section, values in sections.items():
        lines += [f"[{section}]", *(f"{key}={value}" for key, value in values.items())]
    Path(path).write_bytes("".join(line + "\r\n" for line in lines).encode("latin-1"))


class Data:
    """A data folder with one user, and a typist's shared folder."""

    def __init__(self, folder, share):
        self.folder, self.share = Path(folder), Path(share)
        self.user = self.folder / "00000000"
        self.current, self.sent = self.user / "Current", self.user / "Sent"
        for path in (self.current, self.sent, self.share):
            path.mkdir(parents=True, exist_ok=True)
        self.settings = self.folder / "settings.ini"
        self.user_file = self.user / "user.dat"
        self.queue = self.folder / "bgsend.dat"
        write_ini(self.settings, {"settings": {"warnbelowmb": 0}})
        self.add_recipient("Typist")

    def add_recipient(self, name, password="", index=0, method=1, **fields):
        """By mail (0), folder (1) or FTP (2), with a record as the program writes it: PCM, mono, 8000 Hz, 8 bits."""
        record = bytearray(1964)
        struct.pack_into("<II", record, 0, 1, 1 if password else 0)
        record[40] = method
        struct.pack_into("<HHIIHH", record, 940, 1, 1, 8000, 8000, 1, 8)
        fields |= {"name": name, "folder": windows_path(self.share), "key": password}
        for field, text in fields.items():
            record[RECIPIENT[field] : RECIPIENT[field] + len(text)] = text.encode("latin-1")
        (self.user / f"rec{index}.dat").write_bytes(record)
        details = {"name": "Dr. Ada Blake", "email": "ada@example.org", "company": "Harbour Clinic"}
        write_ini(self.user_file, {"user": details, "settings": {"sendcount": index + 1, "senddefault": 0}})

    def add_dictation(self, number, wav=None, notes=None, folder=None, **record):
        base = (folder or self.current) / f"{number:08}"
        values = {"name": f"Dictation {number % 1000:03}", "number": number, "date": 1000000000 + number}
        write_ini(base.with_suffix(".dat"), {"file": {**values, **record}})
        if wav is not None:
            base.with_suffix(".wav").write_bytes(wav)
        if notes is not None:
            base.with_suffix(".txt").write_bytes(notes)
        return base

    def record(self, number, folder=None):
        """Section "file" of a dictation's record."""
        return read_ini((folder or self.current) / f"{number:08}.dat").get("file", {})

    def audio(self, number, folder=None):
        return (folder or self.current) / f"{number:08}.wav"

    def size(self, number):
        return self.audio(number).stat().st_size if self.audio(number).exists() else 0

    def status(self, number):
        return self.record(number, self.sent).get("sendstatus")

    def queued(self):
        """How many dictations wait to be sent."""
        return int(read_ini(self.queue).get("bgsend", {}).get("count", 0))

    def delivered(self):
        return sorted(self.share.glob("*.dct"))


def pcm_wav(frames, rate=8000, sizes_known=True, value=1000):
    """A recording in the program's own layout (46 bytes of header), of samples or so many frames of one value; as a
    crash leaves it, on request."""
    data = struct.pack("<h", value) * frames if isinstance(frames, int) else frames.tobytes()
    riff, size = (38 + len(data), len(data)) if sizes_known else (0xFFFFFFFF, 0xFFFFFFFF)
    head = b"RIFF" + struct.pack("<I", riff) + b"WAVEfmt " + struct.pack("<IHHIIHHH", 18, 1, 1, rate, 2 * rate, 2, 16, 0)
    return head + b"data" + struct.pack("<I", size) + data


class Corvane:
    """One running corvane.exe: that of the build, or an installed one or a set-up program elsewhere."""

    def __init__(self, winctl, data, environment=None, exe=EXE):
        self.winctl, self.data, self.exe = winctl, data, exe
        self.environment = {**os.environ, **(environment or {})}
        self.process = None
        self.window = self.pid = 0

    # --- Its life -------------------------------------------------------------------------------------

    def start(self):
        if self.exe == EXE:
            self.winctl.ask("setreg", FOLDERS_KEY, "DataFiles", windows_path(self.data.folder))
        started = time.monotonic()
        self.window = self.launch()
        wait_for(lambda: self.api(0) == 1, "an answering main window")
        self.start_seconds = time.monotonic() - started
        # Whoever is answered while the list is filled sees this, since no message is worked off before it stands.
        wait_for(lambda: not self.winctl.ask("find", DIALOG_CLASS, "Loading Dictations")["hwnd"], "a full list", 60)
        self.fill_seconds = time.monotonic() - started
        return self

    def launch(self, *words, title=TITLE):
        """Starts it and returns its first window."""
        command = ["wine", str(self.exe), *words]
        self.process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL)
        return self.take(title)

    def take(self, title=TITLE):
        """Waits for a window of this title, whoever started its program, which is then the one to be asked."""

        def find():
            code = self.process and self.process.poll()
            assert not code, f"{self.exe.name} ended with {code} while starting"
            found = self.winctl.ask("find", DIALOG_CLASS, title)
            return found if found["hwnd"] else None

        found = wait_for(find, f'the window "{title}"', 20)
        self.pid = found["pid"]
        return found["hwnd"]

    def close(self):
        """Asks the program to close and waits for its end."""
        if not self.process or self.process.poll() is None:
            self.winctl.ask("post", self.window, WM_CLOSE, 0, 0)
        if self.process:
            return self.process.wait(15)
        wait_for(lambda: not self.winctl.ask("resources", self.pid)["handles"], "the end of the program", 15)

    def kill(self):
        """Ends it as a power failure would."""
        if not self.process or self.process.poll() is not None:
            return
        self.process.send_signal(signal.SIGKILL)
        self.process.wait(10)
        # Windows has not forgotten the process before its window is gone.
        wait_for(lambda: not self.window or not self.winctl.ask("window", self.window), "the end of the window")

    def cpu_seconds(self):
        fields = Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    # --- Messages and commands ------------------------------------------------------------------------

    def send(self, message, w=0, l=0):
        answer = self.winctl.ask("send", self.window, message, w, l)
        return answer and answer["result"]

    def post(self, message, w=0, l=0):
        return self.winctl.ask("post", self.window, message, w, l)

    def api(self, command, argument=0):
        """The small command interface for other programs; a text argument goes as a global atom."""
        if isinstance(argument, str):
            return self.winctl.ask("sendatom", self.window, API, command, argument)["result"]
        return self.send(API, command, argument)

    def command(self, name):
        """A menu command by its name in res/Ids.h; posted, since it may open a box."""
        self.post(WM_COMMAND, IDS[name])

    def control(self, name):
        return next(c for c in self.describe()["children"] if c["id"] == IDS[name])

    def tell(self, name, message, w=0, l=0):
        """Sends a message to a control and returns its answer."""
        return self.winctl.ask("send", self.control(name)["hwnd"], message, w, l)["result"]

    # --- What it shows --------------------------------------------------------------------------------

    def describe(self):
        return self.winctl.ask("window", self.window)

    def boxes(self):
        """Its message boxes: visible top-level dialogs with a button."""
        has_button = lambda w: any(c["class"] == "Button" and c["id"] in range(1, 8) for c in w["children"])
        windows = self.winctl.ask("windows", self.pid)["windows"]
        return [w for w in windows if w["class"] == DIALOG_CLASS and w["hwnd"] != self.window and has_button(w)]

    def _box(self, title, seconds=10, button=None):
        ids = lambda box: [None, *(c["id"] for c in box["children"])]
        fits = lambda box: box["text"] == title and button in ids(box)
        return wait_for(lambda: next((b for b in self.boxes() if fits(b)), None), f'a box "{title}"', seconds)

    def wait_box(self, title, seconds=10):
        """Waits for a message box and returns its text."""
        return "\n".join(c["text"] for c in self._box(title, seconds)["children"] if c["class"] == "Static" and c["text"])

    def answer_box(self, title, button, words=""):
        """Presses a button (1 OK, 2 Cancel, 6 Yes, 7 No) of a message box that says these words, until it is gone."""
        text, box = self.wait_box(title), self._box(title)
        assert words in text, text
        self.winctl.ask("click", next(c["hwnd"] for c in box["children"] if c["id"] == button))
        wait_for(lambda: box["hwnd"] not in [b["hwnd"] for b in self.boxes()], "the end of the box")
        return text

    def wait_status(self, status, seconds=10):
        wait_for(lambda: self.api(7) == status, f"status {status}", seconds)

    def rows(self):
        return self.winctl.ask("list", self.control("IDC_LIST")["hwnd"])["rows"]

    def row(self, number):
        return next((r for r in self.rows() if r["number"] == number), None)

    def select(self, *numbers):
        """Selects exactly these dictations."""
        handle = self.control("IDC_LIST")["hwnd"]
        self.winctl.ask("select", handle, -1, 0)
        rows = [r["number"] for r in self.rows()]
        for number in numbers:
            assert self.winctl.ask("select", handle, rows.index(number), 1)

    def notes(self):
        return self.control("IDC_NOTES")["text"]

    def type_notes(self, text):
        """Types into the notes box; a line ends with the Enter key, "\r"."""
        for character in text:
            self.tell("IDC_NOTES", WM_CHAR, ord(character), 1)

    def progress(self):
        return self.tell("IDC_SENDPROGRESS", PBM_GETPOS)

    def point_at(self, name):
        """Moves the mouse to the middle of a control; in the list beside its rows."""
        left, top, right, bottom = self.control(name)["rect"]
        xdotool("mousemove", (left + right) // 2, bottom - 6 if name == "IDC_LIST" else (top + bottom) // 2)

    # --- A user's roads -------------------------------------------------------------------------------

    def new(self):
        """Creates a dictation and returns its number."""
        before = {r["number"] for r in self.rows()}
        self.command("CM_NEWFILE")
        return wait_for(lambda: {r["number"] for r in self.rows()} - before, "a new row").pop()

    def record(self, command="CM_RECORD"):
        """Starts recording and waits until the microphone runs."""
        self.command(command)
        wait_for(lambda: microphone_streams() > 0, "a running microphone")

    def wait_recorded(self, number, enough, seconds=10):
        wait_for(lambda: self.data.size(number) >= enough, f"{enough} bytes of recording on disk", seconds)

    def stop(self):
        self.command("CM_STOP")
        wait_for(lambda: microphone_streams() == 0, "a stopped microphone")
        self.api(0)  # answered once the command is done, and with it the file's head

    def dictate(self, sample, spoken, command="CM_RECORD", number=None):
        """Records a spoken sample and stops once all of it is on disk."""
        self.record(command)
        number = number if number is not None else self.api(8)
        before = self.data.size(number)
        play(sample)
        # The sound is still on its way through the card when the speaker has finished.
        self.wait_recorded(number, before + int((spoken.duration + 0.4) * 16000))
        self.stop()
        assert sizes_known(self.data.audio(number))
        return number

    def send_default(self, number):
        self.select(number)
        self.command("CM_SENDFILE")

    def wait_sent(self, number, seconds=20):
        wait_for(lambda: self.data.status(number) in ("Sent", "Send Failed"), "a sent dictation", seconds)
        return self.data.status(number)


class Dialog:
    """A dialog or sheet of the program, which a command opens or which stands already."""

    def __init__(self, program, title, command=None, button=None):
        """button: of several with this title, the one that has it."""
        if command:
            program.command(command)
        self.program, self.winctl, self.title = program, program.winctl, title
        self.window = program._box(title, 10, button)["hwnd"]

    def item(self, name):
        children = self.winctl.ask("window", self.window)["children"]
        return next(c for c in children if c["id"] == IDS.get(name, name))

    def ask(self, what, name, *fields):
        return self.winctl.ask(what, self.item(name)["hwnd"], *fields)

    def tell(self, name, message, w=0, l=0):
        return self.ask("send", name, message, w, l)["result"]

    def type(self, name, text):
        """In place of what stands there."""
        self.tell(name, EM_SETSEL, 0, -1)
        for character in text:
            self.tell(name, WM_CHAR, ord(character), 1)

    def press(self, name):
        self.ask("click", name)

    def refuse(self, words):
        """Its OK is answered by a box that says so."""
        self.press(1)
        self.program.answer_box("Error", 1, words)

    def end(self, button):
        self.press(button)
        wait_for(lambda: not self.winctl.ask("window", self.window), f'the end of "{self.title}"')

    def show(self, page):
        self.winctl.ask("send", self.window, PSM_SETCURSEL, page, 0)


def sizes_known(path):
    """Whether a recording was ended in order."""
    return Path(path).read_bytes()[4:8] not in (b"", b"\xff\xff\xff\xff")
