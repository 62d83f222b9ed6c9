"""Runs playtool.exe, and hears what comes out of the rig's speaker."""

import json
import os
import queue
import signal
import subprocess
import threading
import time
import wave
from dataclasses import dataclass
from pathlib import Path

import numpy as np
import pytest

from corvane import TOOLS, wait_for

HEARD_RATE = 48000
AT_END, DEVICE_LOST = 1, 2  # how a playback ends
NOWHERE = 1 << 60
RIG = Path(os.environ.get("RIG", "."))


@dataclass
class Line:
    at: float  # time.monotonic() of its arrival
    fields: dict


class PlayTool:
    """One playtool.exe: commands with their answers, and the notifications in between."""

    def __init__(self, environment=None, command=("wine",)):
        self.process = subprocess.Popen(
            [*command, str(TOOLS / "playtool.exe")],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            env=environment,
        )
        self.answers = queue.Queue()
        self.lines = []
        threading.Thread(target=self._read, daemon=True).start()

    def _read(self):
        for text in self.process.stdout:
            line = Line(time.monotonic(), json.loads(text))
            self.lines.append(line)
            if "answer" in line.fields:
                self.answers.put(line)

    def ask(self, *words):
        """The answer to a command."""
        self.asked = time.monotonic()
        self.process.stdin.write((" ".join(map(str, words)) + "\n").encode())
        self.process.stdin.flush()
        return self.answers.get(timeout=20).fields

    def do(self, *words):
        answer = self.ask(*words)
        assert answer["ok"], (answer, self.traces())
        return answer

    def events(self, kind, value=None):
        """What was told of a kind: positions and levels as their numbers."""
        found = [x for x in list(self.lines) if x.fields.get("event") == kind]
        return [x.fields[value] for x in found] if value else found

    def traces(self):
        return [x.fields["trace"] for x in list(self.lines) if "trace" in x.fields]

    def wait_stopped(self, seconds=15):
        """Waits for the next end of a playback and forgets it; returns its reason."""
        (stopped,) = wait_for(lambda: self.events("stopped")[-1:], "the end of the playback", seconds)
        self.lines.remove(stopped)
        return stopped.fields["ending"]

    def load(self, path):
        self.lines.clear()
        return self.do("open", windows_file(path))

    def start(self, path):
        answer = self.load(path)
        self.do("start")
        return answer

    def close(self):
        self.process.stdin.close()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            os.kill(self.process.pid, signal.SIGKILL)
            raise


# Sound that is measured to the sample suffers when the machine is busy with other things. A fault of ours fails every
# time.
patient = pytest.mark.flaky(reruns=2)


def windows_file(path):
    return "Z:" + str(path).replace("/", "\\")


class Heard:
    """What the speaker plays while this is open, as 16-bit mono samples."""

    def __init__(self):
        self.parec = subprocess.Popen(
            ["parec", "--device=speaker.monitor", "--format=s16le", "--channels=1", f"--rate={HEARD_RATE}"]
            + ["--latency-msec=20", "--raw"],
            stdout=subprocess.PIPE,
        )
        self.chunks = []
        self.count = 0
        self.begun = None  # when the first sample was heard
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def __enter__(self):
        wait_for(lambda: self.count, "the speaker's monitor")
        return self

    def _read(self):
        while data := os.read(self.parec.stdout.fileno(), 65536):
            self.chunks.append(data)
            self.count += len(data) // 2
            # The chunk that came soonest after its sound tells the time best.
            begun = time.monotonic() - self.count / HEARD_RATE
            self.begun = begun if self.begun is None else min(begun, self.begun)

    def __exit__(self, *_):
        time.sleep(0.15)  # what is on its way
        self.parec.terminate()
        self.parec.wait()
        self.reader.join()
        self.samples = self.so_far()

    def so_far(self):
        data = b"".join(list(self.chunks))
        return np.frombuffer(data[: len(data) // 2 * 2], "<i2").astype(float)

    def sound(self, floor=8):
        """From the first to the last sample above the floor: start index, samples."""
        loud = np.flatnonzero(np.abs(self.samples) > floor)
        assert len(loud), "nothing was heard"
        return loud[0], self.samples[loud[0] : loud[-1] + 1]

    def first_sound_after(self, moment):
        return self.begun + self.sound()[0] / HEARD_RATE - moment


def write_wav(name, samples, rate=HEARD_RATE):
    path = RIG / name
    with wave.open(str(path), "wb") as wav:
        wav.setparams((1, 2, rate, 0, "NONE", ""))
        wav.writeframes(samples.astype("<i2").tobytes())
    return path


class Places:
    """Finds what was heard in the samples that were played, which reach the speaker unchanged."""

    def __init__(self, samples):
        keys = self._keys(samples)
        self.order = np.argsort(keys, kind="stable")
        self.keys = keys[self.order]

    @staticmethod
    def _keys(samples):
        """Four neighbours as one number."""
        data = np.ascontiguousarray(samples.astype("<i2")).view("<u2").astype(np.uint64)
        return data[:-3] | data[1:-2] << np.uint64(16) | data[2:-1] << np.uint64(32) | data[3:] << np.uint64(48)

    def runs(self, heard, least=480):
        """Pieces of at least so many samples: [from, to, place of from]."""
        keys = self._keys(heard)
        found = np.searchsorted(self.keys, keys).clip(0, len(self.keys) - 1)
        shift = np.where(self.keys[found] == keys, self.order[found] - np.arange(len(keys)), NOWHERE)
        ends = np.flatnonzero(np.diff(shift)) + 1
        pieces = zip([0, *ends], [*ends, len(shift)])
        return [[a, b + 3, a + shift[a]] for a, b in pieces if shift[a] != NOWHERE and b - a >= least]
