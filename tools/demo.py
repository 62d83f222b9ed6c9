#!/usr/bin/python3
"""The main job, from microphone to typist, with the real program on the rig: tools/rig tools/demo.py

A spoken sample is played into the microphone while corvane.exe records; the dictation is played back, gets a
note and is sent to a typist's folder; the sound that is heard and the file that arrives are compared with
the sample. Leaves its files in out/, prints each step with its figure, and exits 0 only when all steps
pass."""

import os
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "system"))

import dct  # noqa: E402
import sound  # noqa: E402
from corvane import Corvane, Data, WinCtl, wait_for  # noqa: E402

OUT = ROOT / "out"
WORDS = (
    "Patient Harris, seen on Monday. The blood pressure is one hundred and thirty over eighty. "
    "The cough has gone. Please see him again in two weeks."
)
NOTE = "Urgent: letter to the family doctor"
API_STATUS, STOPPED, PLAYING = 7, 0, 3


class Steps:
    def __init__(self):
        self.begun = time.monotonic()
        self.failed = 0

    def say(self, text):
        print(f"{time.monotonic() - self.begun:6.1f} s  {text}", flush=True)

    def check(self, holds, text):
        self.say(("ok    " if holds else "FAIL  ") + text)
        self.failed += not holds


def screenshot(corvane, name):
    """A picture of the main window with its frame, as it stands on the screen."""
    left, top, right, bottom = corvane.describe()["rect"]
    area = f"{right - left + 8}x{bottom - top + 8}+{max(0, left - 4)}+{max(0, top - 4)}"
    subprocess.run(["import", "-window", "root", "-crop", area, "-trim", "+repage", str(OUT / name)], check=True)


def record(corvane, steps, spoken):
    number = corvane.new()
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


def add_note(corvane, steps, number):
    corvane.type_notes(NOTE)
    path = corvane.data.audio(number).with_suffix(".txt")
    wait_for(lambda: path.exists() and path.read_bytes() == NOTE.encode() + b"\0", "the saved note", 5)
    steps.check(corvane.row(number)["texts"][5] == NOTE, f'note saved and listed: "{NOTE}"')


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
        container.number == number and container.notes.rstrip(b"\0") == NOTE.encode(),
        f'the container: version {container.version}, dictation {container.number} "{container.texts["name"]}" '
        f'from {container.texts["sendername"]}, priority {container.priority}, note of {len(container.notes)} bytes',
    )
    (OUT / "delivered.wav").write_bytes(container.audio)
    measure(steps, "delivered", spoken, sound.read_wav(container.audio))


def main():
    shutil.rmtree(OUT, ignore_errors=True)
    OUT.mkdir()
    steps = Steps()
    spoken = sound.speak(OUT / "spoken.wav", WORDS)
    steps.say(f'a voice is to speak {spoken.duration:.2f} s: "{WORDS}"')
    drive_c = Path(os.environ["WINEPREFIX"]) / "drive_c"
    data = Data(drive_c / "dictations", drive_c / "typist")
    helper = WinCtl()
    corvane = Corvane(helper, data)
    try:
        corvane.start()
        steps.say(f"corvane.exe runs on {os.environ['RIG_WINDOWS']}, its window up after {corvane.start_seconds:.1f} s")
        number = record(corvane, steps, spoken)
        shutil.copy(data.audio(number), OUT / "recording.wav")
        measure(steps, "recorded", spoken, sound.read_wav(data.audio(number)))
        play_back(corvane, steps, spoken)
        add_note(corvane, steps, number)
        send(corvane, steps, number)
        receive(data, steps, spoken, number)
        screenshot(corvane, "sent.png")
        steps.check(corvane.close() == 0, "corvane.exe closed when asked to")
    finally:
        corvane.kill()
        helper.close()
    steps.say(f"{'everything holds' if not steps.failed else f'{steps.failed} steps FAILED'}; see out/")
    return 1 if steps.failed else 0


if __name__ == "__main__":
    sys.exit(main())
