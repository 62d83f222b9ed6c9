#!/usr/bin/python3
"""The main job, from set-up to typist, with the real program on the rig: tools/rig tools/demo.py

The set-up program installs Corvane, which shows its introduction. A new dictation asks for the file number; a
spoken sample is played into the microphone while corvane.exe records; the dictation is played back and wound
back; a correction is spoken and inserted there, and played; it gets a note and is sent to a typist's folder;
it is recovered and mailed, encrypted, to another one. At last an MP3 and the delivered container are loaded
as dictations, and Corvane is removed, without the recordings. The sound that is heard and the files that
arrive are compared with the samples. Leaves its files in out/, prints each step with its figure, and exits 0
only when all steps pass."""

import email
import email.policy
import os
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "system"))

import dct  # noqa: E402
import mail  # noqa: E402
import sound  # noqa: E402
from ftp import ADDRESS  # noqa: E402
from corvane import EXE, SETUP, SETUP_TITLE, Corvane, Data, Dialog, WinCtl, read_ini, wait_active  # noqa: E402
from corvane import wait_for, windows_path, write_ini  # noqa: E402

OUT = ROOT / "out"
DRIVE_C = Path(os.environ["WINEPREFIX"]) / "drive_c"
WELCOME, REMOVAL = "Welcome to Corvane", "Removing Corvane"
WORDS = (
    "Patient Harris, seen on Monday. The blood pressure is one hundred and thirty over eighty. "
    "The cough has gone. Please see him again in two weeks."
)
CORRECTION = "No, correction: one hundred and forty over ninety."
FILE_NUMBER = "4711"
NOTE = "Urgent: letter to the family doctor"
ELEMENT = f"<fileno>{FILE_NUMBER}</fileno>"
API_STATUS, STOPPED, LISTENING, PLAYING, WINDING = 7, 0, 2, 3, 4
LB_SETCURSEL, WM_KEYDOWN, VK_DOWN = 0x186, 0x100, 0x28
PASSWORD = "open sesame"
BUTTON, REWIND_DOWN, REWIND_UP = 1792, 12, 13  # of the dictation microphone


class Steps:
    def __init__(self):
        self.begun = time.monotonic()
        self.failed = 0

    def say(self, text):
        print(f"{time.monotonic() - self.begun:6.1f} s  {text}", flush=True)

    def check(self, holds, text):
        self.say(("ok    " if holds else "FAIL  ") + text)
        self.failed += not holds


def screenshot(corvane, name, window=None):
    """A picture of a window (the main one) with its frame, as it stands on the screen."""
    left, top, right, bottom = corvane.winctl.ask("window", window or corvane.window)["rect"]
    area = f"{right - left + 8}x{bottom - top + 8}+{max(0, left - 4)}+{max(0, top - 4)}"
    subprocess.run(["import", "-window", "root", "-crop", area, "-trim", "+repage", str(OUT / name)], check=True)


def shortcuts():
    return [path for path in DRIVE_C.rglob("*.lnk") if path.name.startswith("Corvane")]


def install(helper, steps):
    """Installs Corvane as its user does; returns its folder once it has shown itself and was closed."""
    begun = time.monotonic()
    setup = Corvane(helper, None, exe=SETUP)
    setup.launch(title=SETUP_TITLE)
    question = Dialog(setup, SETUP_TITLE, button=1)
    asked = time.monotonic() - begun
    place = question.item("IDC_INSTALL_FOLDER")["text"]
    screenshot(setup, "install.png", question.window)
    begun = time.monotonic()
    question.end(1)
    folder = DRIVE_C / place.removeprefix("C:\\").replace("\\", "/")
    installed = Corvane(helper, None, exe=folder / "corvane.exe")
    installed.window = installed.take()
    installed.wait_box(WELCOME)
    steps.check(
        setup.process.wait(20) == 0 and installed.exe.read_bytes() == EXE.read_bytes() and len(shortcuts()) >= 2,
        f"{SETUP.name} asked after {asked:.1f} s; {time.monotonic() - begun:.1f} s later Corvane is in {place}, with "
        f"{len(shortcuts())} shortcuts, and shows its introduction",
    )
    screenshot(installed, "introduction.png", Dialog(installed, WELCOME).window)
    installed.answer_box(WELCOME, 2)
    installed.close()
    return folder


def remove(helper, data, steps):
    """Removes it, as the platform's list of programs does."""
    recordings = lambda: {path: path.read_bytes() for path in data.user.rglob("*") if path.is_file()}
    before = recordings()
    remover = Corvane(helper, None, exe=data.folder / "corvane.exe")
    remover.launch("/uninstall", title=REMOVAL)
    question = Dialog(remover, REMOVAL, button=1)
    screenshot(remover, "remove.png", question.window)
    question.end(1)
    outcome = Dialog(remover, REMOVAL, button=1)
    screenshot(remover, "removed.png", outcome.window)
    outcome.end(1)
    left = sorted(path.name for path in data.folder.iterdir() if path.is_file())
    steps.check(
        recordings() == before and not remover.exe.exists() and not shortcuts(),
        f"removed; {len(before)} files of recordings, notes and settings are as they were, and {', '.join(left)}",
    )


def answer_field(corvane, steps):
    """A new dictation, and the answer to the field that it asks for."""
    number = corvane.new()
    question = corvane.wait_box("Dictation 001")
    subprocess.run(["xdotool", "type", FILE_NUMBER], check=True)
    screenshot(corvane, "field.png")
    corvane.answer_box("Dictation 001", 1)
    notes = corvane.data.audio(number).with_suffix(".txt")
    wait_for(lambda: notes.exists() and notes.read_bytes().startswith(ELEMENT.encode()), "the field in the notes", 5)
    steps.say(f'asked "{question}"; the answer stands in the notes: {ELEMENT}')
    return number


def record(corvane, steps, spoken, number):
    corvane.record()
    speaker = subprocess.Popen(["paplay", "--device=mic", str(OUT / "spoken.wav")])
    path = corvane.data.audio(number)
    wait_for(lambda: path.exists() and path.stat().st_size > 16000 * spoken.duration / 2, "half of the recording", 30)
    screenshot(corvane, "recording.png")
    cpu, since = corvane.cpu_seconds(), time.monotonic()
    assert speaker.wait(60) == 0
    load = (corvane.cpu_seconds() - cpu) / (time.monotonic() - since)
    # The sound is still on its way through the card when the speaker has finished.
    wait_for(lambda: path.stat().st_size >= 16000 * (spoken.duration + 0.4), "all of the recording", 30)
    corvane.stop()
    steps.say(f"recorded dictation {number}; the program used {100 * load:.1f} % of a core meanwhile")
    return number


def measure(steps, what, spoken, heard):
    match = sound.correlation(spoken, heard)
    steps.check(
        abs(heard.duration - spoken.duration) <= 0.3 and match > 0.9,
        f"{what}: {heard.duration:.2f} s of {spoken.duration:.2f} s spoken, {heard.rate} Hz, {heard.bits} bits, "
        f"envelope correlation {match:.3f}",
    )


def play_back(corvane, steps, spoken):
    corvane.command("CM_GOTOSTART")
    with sound.Heard() as heard:
        corvane.command("CM_PLAY")
        wait_for(lambda: corvane.api(API_STATUS) == PLAYING, "a playing dictation")
        wait_for(lambda: heard.count > sound.HEARD_RATE * spoken.duration / 2, "half of it", 30)
        screenshot(corvane, "playing.png")
        wait_for(lambda: corvane.api(API_STATUS) == STOPPED, "the end of the dictation", 60)
    audio = sound.Audio(heard.sound()[1] / 32768, sound.HEARD_RATE)
    measure(steps, "played back", spoken, audio)


def correct(corvane, steps, number):
    """Winds back from four seconds, inserts a correction there and listens to it; returns the dictation's sound."""
    path = corvane.data.audio(number)
    before = path.read_bytes()[46:]
    corvane.command("CM_GOTOSTART")
    corvane.command("CM_PLAY")
    place = lambda: corvane.control("IDC_POSITION")["text"]
    wait_for(lambda: place().startswith("00:06"), "six seconds", 20)
    corvane.send(BUTTON, REWIND_DOWN)
    wait_for(lambda: corvane.api(API_STATUS) == WINDING and place() < "00:05", "a place before", 20)
    corvane.send(BUTTON, REWIND_UP)
    corvane.command("CM_STOP")
    spoken = sound.speak(OUT / "correction-spoken.wav", CORRECTION)
    at = place()
    corvane.record("CM_RECORD_INSERT")
    assert subprocess.run(["paplay", "--device=mic", OUT / "correction-spoken.wav"]).returncode == 0
    screenshot(corvane, "inserting.png")
    wait_for(lambda: corvane.api(API_STATUS) == LISTENING, "the pause after the correction")
    corvane.stop()
    wait_for(lambda: len(path.read_bytes()) > len(before) + 46, "the insertion", 20)
    after = path.read_bytes()[46:]
    extra = len(after) - len(before)
    begin = next(i for i in range(0, len(before), 2) if before[i : i + 2] != after[i : i + 2])
    whole = after[begin + extra :] == before[begin:]
    steps.check(whole, f"wound back to {at[:5]}; {extra / 16000:.2f} s inserted at {begin / 16000:.2f} s, nothing else changed")
    shutil.copy(path, OUT / "corrected.wav")
    corrected = sound.read_wav(path)
    inserted = sound.Audio(corrected.samples[begin // 2 : (begin + extra) // 2], corrected.rate)
    measure(steps, "inserted", spoken, inserted)
    with sound.Heard() as heard:
        corvane.command("CM_GOTOSTART")
        corvane.command("CM_PLAY")
        wait_for(lambda: corvane.api(API_STATUS) == PLAYING, "a playing dictation")
        wait_for(lambda: corvane.api(API_STATUS) == STOPPED, "the end of the dictation", 60)
    measure(steps, "played back", corrected, sound.Audio(heard.sound()[1] / 32768, sound.HEARD_RATE))
    return corrected


def add_note(corvane, steps, number):
    corvane.type_notes(NOTE)
    path = corvane.data.audio(number).with_suffix(".txt")
    text = f"{ELEMENT}\r\n{NOTE}"
    wait_for(lambda: path.exists() and path.read_bytes() == text.encode() + b"\0", "the saved note", 5)
    steps.check(corvane.row(number)["texts"][5] == text.replace("\r\n", "  "), f'note saved and listed: "{NOTE}"')


def send(corvane, steps, number):
    begun = time.monotonic()
    corvane.send_default(number)
    status = corvane.wait_sent(number, 30)
    steps.check(
        status == "Sent" and corvane.row(number) is None,
        f'dictation {number} is marked "{status}" after {time.monotonic() - begun:.1f} s and has left the list',
    )


def receive(data, steps, spoken, number):
    delivered = data.delivered()
    steps.check(len(delivered) == 1, f"in the typist's folder: {', '.join(p.name for p in delivered) or 'nothing'}")
    if not delivered:
        return
    shutil.copy(delivered[0], OUT / delivered[0].name)
    container = dct.read(delivered[0])
    steps.check(
        container.number == number and container.notes.rstrip(b"\0") == f"{ELEMENT}\r\n{NOTE}".encode(),
        f'the container: version {container.version}, dictation {container.number} "{container.texts["name"]}" '
        f'from {container.texts["sendername"]}, priority {container.priority}, note of {len(container.notes)} bytes',
    )
    (OUT / "delivered.wav").write_bytes(container.audio)
    measure(steps, "delivered", spoken, sound.read_wav(container.audio))


def mail_it(corvane, data, steps, spoken, number):
    """Brings the dictation back and sends it by mail, encrypted, to a second typist."""
    dialog = Dialog(corvane, "Recover Sent Dictations", "CM_RECOVER")
    dialog.ask("post", "IDC_RECOVER_LIST", WM_KEYDOWN, VK_DOWN, 0)
    wait_for(lambda: dialog.item(1)["enabled"], "a selected row", 10)
    screenshot(corvane, "recover.png")
    dialog.press(1)
    wait_for(lambda: data.audio(number).exists(), "the recovered dictation", 10)
    dialog.press(2)
    wait_for(lambda: corvane.row(number), "its row", 10)
    with mail.server(ADDRESS) as letters:
        corvane.select(number)
        choice = Dialog(corvane, "Send Dictation To", "CM_SENDFILE_TO")
        screenshot(corvane, "typists.png")
        choice.tell("IDC_CHOOSE_LIST", LB_SETCURSEL, 1)
        choice.end(1)
        status = corvane.wait_sent(number, 30)
    steps.check(status == "Sent" and len(letters) == 1, f'recovered, sent again by mail, and marked "{status}"')
    ((_, envelope),) = letters
    letter = email.message_from_bytes(envelope.original_content, policy=email.policy.default)
    text, file = letter.iter_parts()
    (OUT / file.get_filename()).write_bytes(file.get_content())
    container = dct.read(OUT / file.get_filename(), PASSWORD)
    steps.check(
        container.version == 2 and container.notes.rstrip(b"\0") == f"{ELEMENT}\r\n{NOTE}".encode(),
        f'the mail: from {letter["From"]} to {letter["To"]}, "{letter["Subject"]}", with {file.get_filename()}, '
        f"encrypted, which opens with the password",
    )
    measure(steps, "mailed", spoken, sound.read_wav(container.audio))


def load_files(corvane, data, steps, corrected):
    """Loads an MP3 and the container that the first typist got, as a colleague's, through the platform's dialog."""
    folder = DRIVE_C / "from elsewhere"
    folder.mkdir()
    convert = ["ffmpeg", "-loglevel", "error", "-i", str(OUT / "spoken.wav"), "-b:a", "64k"]
    subprocess.run([*convert, str(folder / "spoken.mp3")], check=True)
    shutil.copy(data.delivered()[0], folder / "colleague.dct")
    settings = read_ini(data.settings)
    settings["settings"]["loadfolder"] = windows_path(folder)
    write_ini(data.settings, settings)
    corvane.command("CM_LOADFILE")
    wait_active("Load File(s)")
    subprocess.run(["xdotool", "type", '"spoken.mp3" "colleague.dct"'], check=True)
    subprocess.run(["xdotool", "key", "Return"], check=True)
    wait_for(lambda: len(corvane.rows()) == 2, "two loaded dictations", 30)
    screenshot(corvane, "loaded.png")
    first, second = (row["number"] for row in corvane.rows())
    measure(steps, "loaded from an MP3", sound.read_wav(OUT / "spoken.wav"), sound.read_wav(data.audio(first)))
    measure(steps, "loaded from a colleague's DCT", corrected, sound.read_wav(data.audio(second)))
    record, notes = data.record(second), data.audio(second).with_suffix(".txt").read_bytes()
    steps.check(
        record["sendername"] == "Dr. Ada Blake" and notes == f"{ELEMENT}\r\n{NOTE}\0".encode(),
        f'with its notes: "{record["name"]}" from {record["sendername"]}, priority {record["priority"]}',
    )


def main():
    OUT.mkdir(exist_ok=True)
    for file in filter(Path.is_file, OUT.iterdir()):
        file.unlink()
    steps = Steps()
    spoken = sound.speak(OUT / "spoken.wav", WORDS)
    steps.say(f'a voice is to speak {spoken.duration:.2f} s: "{WORDS}"')
    helper = WinCtl()
    data = Data(install(helper, steps), DRIVE_C / "typist")
    by_mail = {"usemapi": "false", "mailhost": ADDRESS}
    write_ini(data.settings, {"settings": {"warnbelowmb": 0}, "prompt1": {"prompt": "true"}, "email": by_mail})
    data.add_recipient("Typist")
    mail.add_recipient(data, "typist@example.org", PASSWORD, 1)
    corvane = Corvane(helper, data, exe=data.folder / "corvane.exe")
    try:
        corvane.start()
        steps.say(f"corvane.exe runs on {os.environ['RIG_WINDOWS']}, its window up after {corvane.start_seconds:.1f} s")
        number = answer_field(corvane, steps)
        record(corvane, steps, spoken, number)
        shutil.copy(data.audio(number), OUT / "recording.wav")
        measure(steps, "recorded", spoken, sound.read_wav(data.audio(number)))
        play_back(corvane, steps, spoken)
        corrected = correct(corvane, steps, number)
        add_note(corvane, steps, number)
        send(corvane, steps, number)
        receive(data, steps, corrected, number)
        mail_it(corvane, data, steps, corrected, number)
        screenshot(corvane, "sent.png")
        load_files(corvane, data, steps, corrected)
        steps.check(corvane.close() == 0, "corvane.exe closed when asked to")
        remove(helper, data, steps)
    finally:
        corvane.kill()
        helper.close()
    steps.say(f"{'everything holds' if not steps.failed else f'{steps.failed} steps FAILED'}; see out/")
    return 1 if steps.failed else 0


if __name__ == "__main__":
    sys.exit(main())
