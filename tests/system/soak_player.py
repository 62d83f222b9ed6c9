"""Playback on a machine that is busy with other things (tools/soak).

Behind the player's seven seconds of buffers stand the threads of Wine and of the sound server. On Windows the program
runs in the high priority class and its sound at time-critical priority; this Wine ignores both, so the process gets a
priority from outside (where we may give one), and the sound server 300 ms to spare instead of the rig's 40.
"""

import os
import subprocess

import numpy as np

from player import AT_END, HEARD_RATE, Heard, Places, PlayTool, write_wav

SECONDS = int(os.environ.get("CORVANE_SOAK_SECONDS", 600))


def test_nothing_drops_out_while_every_core_is_busy():
    samples = (np.random.default_rng(2).standard_normal(SECONDS * HEARD_RATE) * 3000).clip(-20000, 20000).astype(int)
    samples[[0, -1]] = 5000
    tool = PlayTool({**os.environ, "PULSE_LATENCY_MSEC": "300"}, ("nice", "-n", "-10", "wine"))
    tool.start(write_wav("soak.wav", samples))
    busy = [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(os.cpu_count())]
    try:
        with Heard() as heard:
            tool.do("play")
            assert tool.wait_stopped(SECONDS + 60) == AT_END
    finally:
        for process in busy:
            process.kill()
            process.wait()
        tool.close()
    _, audio = heard.sound()
    found = Places(samples).runs(audio)
    breaks = [
        f"at {after[0] / HEARD_RATE:.2f} s: {1000 * (after[0] - before[1]) / HEARD_RATE:.0f} ms of something else,"
        f" {1000 * (after[2] - before[2] - before[1] + before[0]) / HEARD_RATE:.0f} ms of sound lost"
        for before, after in zip(found, found[1:])
    ]
    late = [x.at - x.fields["frames"] / HEARD_RATE for x in tool.events("position")[1:]]
    print(f"{SECONDS} s: {len(breaks)} drop-outs; positions within {1000 * (max(late) - min(late)):.0f} ms")
    assert not breaks, breaks[:10]
    assert len(audio) == len(samples)
