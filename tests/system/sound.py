"""Spoken samples, and measurements that tell whether what arrived is what was spoken."""

import io
import os
import subprocess
import threading
import time
import wave
from dataclasses import dataclass
from pathlib import Path

import numpy as np
from waiting import wait_for

HEARD_RATE = 48000  # of the rig's speaker
ENVELOPE_STEP = 0.005  # seconds per envelope value
ENVELOPE_WINDOW = 8  # values that one looks at
LEAD_IN = 0.3  # seconds of silence that a sample is played with, since a device takes a moment to run


@dataclass
class Audio:
    """Mono audio: samples from -1 to 1, and what they were stored as."""

    samples: np.ndarray
    rate: int
    bits: int = 16
    channels: int = 1

    @property
    def duration(self):
        return len(self.samples) / self.rate


def read_wav(source):
    """Reads PCM from a path or from the bytes of a WAV file; the sizes in its header must be true."""
    data = source if isinstance(source, bytes) else Path(source).read_bytes()
    assert int.from_bytes(data[4:8], "little") == len(data) - 8, "the RIFF size is not the file's"
    with wave.open(io.BytesIO(data)) as wav:
        width, channels, rate = wav.getsampwidth(), wav.getnchannels(), wav.getframerate()
        raw = wav.readframes(wav.getnframes())
    if width == 1:
        samples = (np.frombuffer(raw, np.uint8).astype(float) - 128) / 128
    else:
        samples = np.frombuffer(raw, "<i2").astype(float) / 32768
    return Audio(samples.reshape(-1, channels)[:, 0], rate, 8 * width, channels)


def speak(path, text, seconds=None):
    """Speaks a text into a 16-bit file, loud as a speaker at a microphone, after LEAD_IN of silence.
    Returns what is spoken, without the silence."""
    raw = Path(path).with_suffix(".raw.wav")
    subprocess.run(["espeak-ng", "-v", "en", "-s", "150", "-w", raw, text], check=True)
    trim = ["silence", "1", "0.02", "2%"]
    effects = ["rate", "-v", "48000", *trim, "reverse", *trim, "reverse"]
    if seconds:
        effects += ["trim", "0", str(seconds)]
    subprocess.run(["sox", "-G", raw, "-b", "16", path, *effects, "gain", "-n", "-2", "pad", str(LEAD_IN)], check=True)
    raw.unlink()
    audio = read_wav(path)
    audio.samples = audio.samples[int(LEAD_IN * audio.rate) :]
    return audio


def envelope(audio):
    """Loudness over time: the root mean square around each step."""
    step = int(audio.rate * ENVELOPE_STEP)
    power = (audio.samples[: len(audio.samples) // step * step].reshape(-1, step) ** 2).mean(axis=1)
    return np.sqrt(np.convolve(power, np.ones(ENVELOPE_WINDOW) / ENVELOPE_WINDOW))


def correlation(spoken, heard, slack=0.6):
    """The best correlation of two loudness curves, one shifted by up to slack seconds either way."""
    a, b = envelope(spoken), envelope(heard)
    best = 0.0
    for shift in range(-int(slack / ENVELOPE_STEP), int(slack / ENVELOPE_STEP) + 1):
        left, right = (a[shift:], b) if shift >= 0 else (a, b[-shift:])
        length = max(len(left), len(right))  # what one lacks is silence, and counts
        pair = [np.pad(x, (0, length - len(x))) for x in (left, right)]
        if min(x.std() for x in pair) > 0:
            best = max(best, float(np.corrcoef(*pair)[0, 1]))
    return best


def assert_is(spoken, heard, seconds=0.3, least=0.9):
    """Fails unless heard has the length and the loudness curve of spoken."""
    assert abs(heard.duration - spoken.duration) <= seconds, (
        f"{heard.duration:.2f} s were heard of {spoken.duration:.2f} s spoken"
    )
    match = correlation(spoken, heard)
    assert match > least, f"what was heard is not what was spoken (correlation {match:.3f})"


def play(path):
    """Speaks a file into the microphone of the rig; returns once it has been heard."""
    subprocess.run(["paplay", "--device=mic", str(path)], check=True, timeout=120)


def microphone_streams():
    """How many programs have the microphone open and running."""
    text = subprocess.run(["pactl", "list", "source-outputs"], capture_output=True, text=True, check=True).stdout
    return text.count("Corked: no")


class Heard:
    """What the speaker plays while this is open, as 16-bit mono samples."""

    def __enter__(self):
        self.chunks, self.count = [], 0
        self.begun = float("inf")  # when the first sample was heard, as time.monotonic() tells
        self.parec = subprocess.Popen(
            ["parec", "--device=speaker.monitor", "--format=s16le", "--channels=1", f"--rate={HEARD_RATE}"]
            + ["--latency-msec=20", "--raw"],
            stdout=subprocess.PIPE,
        )
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()
        wait_for(lambda: self.count, "the speaker's monitor")
        return self

    def _read(self):
        while data := os.read(self.parec.stdout.fileno(), 65536):
            self.chunks.append(data)
            self.count += len(data) // 2
            # The chunk that came soonest after its sound tells the time best.
            self.begun = min(self.begun, time.monotonic() - self.count / HEARD_RATE)

    def __exit__(self, *_):
        time.sleep(0.15)  # what is on its way
        self.parec.terminate()
        self.parec.wait()
        self.reader.join()

    @property
    def samples(self):
        data = b"".join(self.chunks[:])
        return np.frombuffer(data[: len(data) // 2 * 2], "<i2").astype(float)

    def sound(self, floor=8):
        """From the first to the last sample above the floor: start index, samples."""
        samples = self.samples
        loud = np.flatnonzero(np.abs(samples) > floor)
        assert len(loud), "nothing was heard"
        return loud[0], samples[loud[0] : loud[-1] + 1]

    def first_sound_after(self, moment):
        return self.begun + self.sound()[0] / HEARD_RATE - moment
