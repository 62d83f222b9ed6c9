"""What is on disk of what was spoken, with voice activation and at the stop."""

import subprocess

import numpy as np
import pytest
from corvane import pcm_wav, write_ini
from sound import read_wav

# A machine that is busy with other things stretches the tones. A fault of ours fails every time.
pytestmark = [pytest.mark.alone, pytest.mark.recording, pytest.mark.flaky(reruns=2)]

RATE = 8000
BYTES = 2 * RATE  # in a second
BLOCK, ONSET, REST = 0.1, 0.05, 0.45  # seconds: what is written at once, before a word, and of a pause
PAUSE = 3  # seconds of silence that voice activation waits for


def tone(seconds):
    return (12000 * np.sin(2 * np.pi * 440 * np.arange(int(seconds * RATE)) / RATE)).astype("<i2")


def loud_runs(samples, pause=0.2):
    """Where it was loud, with no silence as long as the pause: [from, to] in seconds."""
    loud = np.flatnonzero(np.abs(samples) > 0.05)
    ends = np.flatnonzero(np.diff(loud) > pause * RATE)
    return [(loud[a] / RATE, loud[b] / RATE) for a, b in zip([0, *ends + 1], [*ends, -1])]


def test_words_are_kept_to_the_last_and_long_pauses_are_not(corvane, data, request, tmp_path):
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "-20dB"}})
    program = corvane()
    number = program.new()
    program.record()
    before = PAUSE - 1  # seconds of silence, less than a pause
    spoken = np.concatenate([tone(0.7), tone(PAUSE + 1) * 0, tone(0.7), tone(before) * 0, tone(8)])
    (tmp_path / "spoken.wav").write_bytes(pcm_wav(spoken))
    request.addfinalizer(subprocess.Popen(["paplay", "--device=mic", tmp_path / "spoken.wav"]).kill)
    program.wait_recorded(number, BYTES * (0.7 + REST + ONSET + BLOCK + 0.7 + before + 2), 20)
    at_stop = data.size(number)
    program.stop()
    audio = read_wav(data.audio(number))
    runs = loud_runs(audio.samples)
    print(f"{runs} of {audio.duration} s")
    first, second, third = runs
    assert [end - begin for begin, end in (first, second)] == pytest.approx([0.7, 0.7], abs=0.03)
    pause = second[0] - first[1]
    assert first[0] <= BLOCK + ONSET and REST <= pause <= REST + ONSET + 2 * BLOCK
    assert third[0] - second[1] == pytest.approx(before, abs=0.05)
    assert third[1] > audio.duration - 0.01, "loud to its very end"
    assert audio.duration > at_stop / BYTES + 0.05, "with the block that was being filled"
