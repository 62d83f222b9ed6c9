"""Files of other programs are read as they read them, and what we compress is still what was spoken."""

import os
import struct
import subprocess
from pathlib import Path

import numpy as np
import pytest

from corvane import BUILD, wait_for
from sound import Audio, correlation, read_wav, speak

LETTER = (
    "This is a letter about Mister Harris, who came to the clinic on Monday. His blood pressure is one hundred and "
    "thirty over eighty. He has taken his tablets, walks a mile a day and sleeps well. Please see him in two weeks. "
)
GSM, IMA, ALAW, MULAW = 0x31, 0x11, 6, 7
RATES = (8000, 11025, 22050, 44100)


def record(tag, channels, rate):
    """The format record that the machine's codecs make of this."""
    extra = b""
    if tag == GSM:
        align, bits, frames = 65, 0, 320
    elif tag == IMA:
        align, bits = 256 * channels * max(1, rate // 11025), 4
        frames = (align - 4 * channels) // (4 * channels) * 8 + 1
    else:
        align, bits, frames = channels, 8, 1
    if frames > 1:
        extra = struct.pack("<H", frames)
    average = rate * align // frames
    return (struct.pack("<HHIIHHH", tag, channels, rate, average, align, bits, len(extra)) + extra).hex()


class WaveTool:
    def __init__(self):
        self.process = subprocess.Popen(
            ["wine", str(BUILD / "tests/system/wavetool.exe"), "batch"],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
        )

    def __call__(self, *words):
        """Runs one command; returns what it printed, fails unless it succeeded."""
        self.process.stdin.write("\t".join(str(word) for word in words) + "\n")
        self.process.stdin.flush()
        lines = []
        for line in self.process.stdout:
            if line.startswith("= "):
                break
            lines.append(line.strip())
        assert line.strip() == "= 0", f"{words[0]} failed"
        return lines

    def close(self):
        self.process.stdin.close()
        self.process.wait(30)


@pytest.fixture(scope="module")
def wavetool():
    tool = WaveTool()
    yield tool
    tool.close()


@pytest.fixture(scope="module")
def folder():
    path = Path(os.environ["RIG"]) / "codecs"
    path.mkdir()
    return path


@pytest.fixture(scope="module")
def minute(folder):
    """A spoken minute, at every rate, in one channel and in two that differ."""
    spoken = folder / "spoken.wav"
    speak(spoken, LETTER * 6, 60)
    for rate in RATES:
        for channels, remix in ((1, ["remix", "1"]), (2, ["remix", "1v0.6", "1v-0.3"])):
            command = ["sox", "-D", spoken, "-b", "16", folder / f"{rate}-{channels}.wav", "rate", str(rate), *remix]
            subprocess.run([*command, "trim", "0", "60"], check=True)
    return folder


def samples(path):
    """All values of a 16-bit file, frames by channels."""
    audio = path.read_bytes()
    channels = struct.unpack_from("<H", audio, 22)[0]
    return np.frombuffer(audio[audio.index(b"data") + 8 :], "<i2").reshape(-1, channels).astype(float)


def snr(wanted, got):
    noise = ((wanted - got) ** 2).sum()
    return 10 * np.log10((wanted**2).sum() / max(noise, 1e-9))


def make(folder, program, name, *options):
    source, target = folder / "8000-2.wav", folder / f"{program}-{name}.wav"
    if program == "sox":
        subprocess.run(["sox", "-D", source, *options, target], check=True)
    else:
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", source, *options, target], check=True)
    return target


# The least ratio between what the other program decodes and the difference to it, in dB. A codec's own rounding shows
# in IMA ADPCM; everything else is the same to the bit, or to the last bit of 16.
EXACT = 150
FOREIGN = [
    ("sox", "gsm", EXACT, ("-c", "1", "-e", "gsm-full-rate")),
    ("sox", "ima", 35, ("-e", "ima-adpcm")),
    ("sox", "ms", EXACT, ("-e", "ms-adpcm")),
    ("sox", "alaw", EXACT, ("-e", "a-law")),
    ("sox", "mulaw", EXACT, ("-e", "mu-law")),
    ("sox", "8", EXACT, ("-b", "8")),
    ("sox", "24", 80, ("-b", "24")),
    ("ffmpeg", "gsm", EXACT, ("-ac", "1", "-c:a", "libgsm_ms")),
    ("ffmpeg", "ima", 35, ("-c:a", "adpcm_ima_wav")),
    ("ffmpeg", "ms", EXACT, ("-c:a", "adpcm_ms")),
    ("ffmpeg", "alaw", EXACT, ("-c:a", "pcm_alaw")),
    ("ffmpeg", "mulaw", EXACT, ("-c:a", "pcm_mulaw")),
    ("ffmpeg", "24", 80, ("-c:a", "pcm_s24le")),
]


def test_files_of_other_programs_are_read_as_they_read_them(wavetool, minute):
    for program, name, least, options in FOREIGN:
        path = make(minute, program, name, *options)
        ours, theirs = minute / "ours.wav", minute / "theirs.wav"
        wavetool("decode", path, ours)
        subprocess.run(["ffmpeg", "-v", "quiet", "-y", "-i", path, "-c:a", "pcm_s16le", theirs], check=False)
        got, wanted = samples(ours), samples(theirs)
        assert got.shape == wanted.shape, f"{path.name}: {got.shape} instead of {wanted.shape}"
        ratio = snr(wanted, got)
        print(f"{path.name}: {len(got)} frames, {ratio:.1f} dB")
        assert ratio >= least, path.name

        # What a seek finds is what an uninterrupted run has there.
        places = (1, 4999, 100000, 250017, 0, 400000)
        wavetool("seek", path, minute / "sought.wav", *places)
        sought = samples(minute / "sought.wav").reshape(len(places), -1, got.shape[1])
        for place, found in zip(places, sought):
            assert np.array_equal(found, got[place : place + len(found)]), f"{path.name} at {place}"


REFUSED = [
    ("32", ("-c:a", "pcm_s32le")),
    ("6channels", ("-c:a", "pcm_s16le", "-ac", "6")),
    ("float", ("-c:a", "pcm_f32le")),
]


@pytest.mark.parametrize("name, options", REFUSED, ids=[name for name, _ in REFUSED])
def test_what_the_machine_cannot_decode_is_refused(wavetool, minute, name, options):
    path = make(minute, "ffmpeg", name, *options)
    refused = minute / "refused.wav"
    with pytest.raises(AssertionError, match="decode failed"):
        wavetool("decode", path, refused)
    assert not refused.exists()


def test_a_compressed_file_becomes_a_recording_to_continue(wavetool, minute):
    for program, name, _, options in FOREIGN:
        path = make(minute, program, name, *options)
        wavetool("decode", path, minute / "decoded.wav")
        wavetool("rewrite", path)
        if name == "8":
            continue  # stays 8 bits
        assert path.read_bytes()[:24] == (minute / "decoded.wav").read_bytes()[:24], "our head"
        difference = np.abs(samples(path) - samples(minute / "decoded.wav"))
        assert difference.max() <= 1, path.name  # 24 bits: rounded here, cut there


# Least ratio in dB for each rate, and least correlation of loudness.
KINDS = {
    "GSM 6.10": (GSM, (1,), {8000: 9, 11025: 10, 22050: 11, 44100: 12}, 0.97),
    "IMA ADPCM": (IMA, (1, 2), {8000: 17, 11025: 19, 22050: 25, 44100: 32}, 0.99),
    "A-law": (ALAW, (1, 2), {8000: 36, 11025: 36, 22050: 36, 44100: 36}, 0.99),
    "mu-law": (MULAW, (1, 2), {8000: 36, 11025: 36, 22050: 36, 44100: 36}, 0.99),
}


@pytest.mark.parametrize("kind", KINDS)
def test_a_spoken_minute_survives_the_round_trip(wavetool, minute, kind):
    tag, channel_counts, least, least_match = KINDS[kind]
    for rate in RATES:
        for channels in channel_counts:
            source, coded, back = (minute / f for f in (f"{rate}-{channels}.wav", "coded.wav", "back.wav"))
            wavetool("encode", source, coded, record(tag, channels, rate))
            wavetool("decode", coded, back)
            spoken, got = samples(source), samples(back)
            assert len(spoken) <= len(got) <= len(spoken) + 2100, "the last block may be filled with silence"
            assert not got[len(spoken) + 400 :].any()
            ratio = snr(spoken, got[: len(spoken)])
            match = correlation(*(Audio(s[:, 0] / 32768, rate) for s in (spoken, got)), slack=0.02)
            size = coded.stat().st_size / source.stat().st_size
            print(f"{kind}, {rate} Hz, {channels} channels: {ratio:.1f} dB, loudness {match:.4f}, {size:.0%} of the size")
            assert ratio >= least[rate] and match >= least_match, f"{kind} at {rate} Hz, {channels} channels"
            assert read_wav(back).rate == rate


# --- The format chooser -----------------------------------------------------------------------------------

CB_GETCOUNT, CB_SETCURSEL, CBN_SELCHANGE, WM_COMMAND = 0x146, 0x14E, 1, 0x111
FORMATS, ATTRIBUTES, OK, CANCEL = 101, 102, 1, 2
NOT_AVAILABLE = (
    "The requested format is not available because the required CODEC is not installed on this computer."
)


class Chooser:
    """The platform's chooser, shown by wavetool."""

    def __init__(self, winctl, channels, start):
        self.winctl = winctl
        command = ["wine", str(BUILD / "tests/system/wavetool.exe"), "choose", str(channels), start]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

    def window(self, title):
        found = wait_for(lambda: self.winctl.ask("find", "#32770", title)["hwnd"], f"a window {title}")
        return found, self.winctl.ask("window", found)["children"]

    def control(self, number):
        return next(c for c in self.window("Sound Selection")[1] if c["id"] == number)

    def pick(self, number, text):
        """Chooses the entry of a list that begins with the text; returns what the list holds."""
        dialog, combo = self.window("Sound Selection")[0], self.control(number)["hwnd"]
        entries = []
        for i in range(self.winctl.ask("send", combo, CB_GETCOUNT, 0, 0)["result"]):
            self.winctl.ask("send", combo, CB_SETCURSEL, i, 0)
            entries.append(self.winctl.ask("text", combo)["text"].strip())
        chosen = next(i for i, entry in enumerate(entries) if entry.startswith(text))
        self.winctl.ask("send", combo, CB_SETCURSEL, chosen, 0)
        self.winctl.ask("send", dialog, WM_COMMAND, number | CBN_SELCHANGE << 16, combo)
        return entries

    def click(self, number):
        self.winctl.ask("click", self.control(number)["hwnd"])

    def answer(self):
        record = self.process.communicate(timeout=20)[0].strip()
        return bytes.fromhex(record) if self.process.returncode == 0 else None


@pytest.fixture
def chooser(winctl):
    shown = []

    def show(channels, start):
        shown.append(Chooser(winctl, channels, start))
        return shown[-1]

    yield show
    for dialog in shown:
        dialog.process.kill()
        dialog.process.wait()


def test_the_chooser_refuses_what_can_only_be_read(chooser, winctl):
    dialog = chooser(0, record(GSM, 1, 8000))
    assert dialog.control(FORMATS)["text"] == "GSM 6.10", "begins with the present format"
    dialog.pick(FORMATS, "Microsoft ADPCM")
    dialog.click(OK)
    box, children = dialog.window("Format Not Available")
    assert any(child["text"] == NOT_AVAILABLE for child in children)
    winctl.ask("click", next(c["hwnd"] for c in children if c["class"] == "Button"))
    wait_for(lambda: not winctl.ask("find", "#32770", "Format Not Available")["hwnd"], "the box gone")
    dialog.pick(FORMATS, "IMA ADPCM")
    dialog.pick(ATTRIBUTES, "11025 Hz")
    dialog.click(OK)
    assert dialog.answer() == bytes.fromhex(record(IMA, 1, 11025))


def test_the_chooser_can_be_left(chooser):
    dialog = chooser(2, record(IMA, 2, 22050))
    dialog.pick(ATTRIBUTES, "44100")
    dialog.click(CANCEL)
    assert dialog.answer() is None
