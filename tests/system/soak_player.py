"""Playback on a machine that is busy with other things (tools/soak).

Behind the player's seven seconds of buffers stand the threads of Wine and of the sound server. On Windows the program
runs in the high priority class and its sound at time-critical priority; this Wine ignores both, so the process gets a
priority from outside (where we may give one), and the sound server 300 ms to spare instead of the rig's 40.
"""

import os
import subprocess

import numpy as np
from sound import HEARD_RATE, Heard
from test_playback import PLAYING, STOPPED, play  # noqa: F401

SECONDS = int(os.environ.get("CORVANE_SOAK_SECONDS", 600))


def test_nothing_drops_out_while_every_core_is_busy(play):  # noqa: F811
    samples = (np.random.default_rng(2).standard_normal(SECONDS * HEARD_RATE) * 3000).clip(-20000, 20000).astype("<i2")
    samples[[0, -1]] = 5000
    program = play(samples, environment={"PULSE_LATENCY_MSEC": "300"})
    subprocess.run(f"renice -n -10 -p $(ls /proc/{program.process.pid}/task)", shell=True)
    busy = [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(os.cpu_count())]
    try:
        with Heard() as heard:
            program.command("CM_PLAY")
            program.wait_status(PLAYING)
            program.wait_status(STOPPED, SECONDS + 60)
    finally:
        for process in busy:
            process.kill()
            process.wait()
    _, audio = heard.sound()
    same = min(len(audio), len(samples))
    wrong = np.flatnonzero(audio[:same] != samples[:same])
    first = wrong[0] / HEARD_RATE if len(wrong) else SECONDS
    print(f"{SECONDS} s: {len(audio) - len(samples):+d} samples; as it should be for {first:.1f} s")
    assert len(audio) == len(samples) and not len(wrong)
