"""Figures of the window, for a machine that does nothing else meanwhile (tools/soak)."""

import os
import time

from corvane import RECORDING, STOPPED, wait_for, write_ini, xdotool
from waiting import stays

PRESSES = 20
DRAIN = 0.08  # seconds that the device runs on after Stop
REST_SECONDS = int(os.environ.get("CORVANE_SOAK_SECONDS", 60))


def median(values):
    return sorted(values)[len(values) // 2]


def test_recording_begins_with_its_key(corvane, data):
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}})
    program = corvane()
    wait_for(lambda: program.describe()["foreground"], "the window in front")
    told, missing = [], []
    for _ in range(PRESSES):
        number = program.new()
        key = time.monotonic()
        xdotool("key", "F5")
        program.wait_status(RECORDING)
        told.append(time.monotonic() - key)
        stays(lambda: True, key + 1 - time.monotonic())
        stopped = time.monotonic()
        program.command("CM_STOP")
        program.wait_status(STOPPED)
        missing.append(stopped + DRAIN - key - (data.audio(number).stat().st_size - 46) / 16000)
    ms = lambda values: f"{1000 * median(values):.0f} ms ({1000 * min(values):.0f} to {1000 * max(values):.0f})"
    print(f"\nfrom key to recording: {ms(told)}; sound that is missing at its beginning: {ms(missing)}")
    assert median(missing) < 0.15


def test_at_rest_it_leaves_the_processor_alone(corvane, data):
    for number in range(1, 21):
        data.add_dictation(number)
    program = corvane()
    stays(lambda: True, 5)  # the end of the start
    cpu, since = program.cpu_seconds(), time.monotonic()
    stays(lambda: True, REST_SECONDS)
    load = (program.cpu_seconds() - cpu) / (time.monotonic() - since)
    print(f"\nload at rest: {100 * load:.2f} % of a core")
    assert load < 0.002
