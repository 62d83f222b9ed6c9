"""Selecting and recording for some minutes, and what the program holds of the machine before and after (tools/soak)."""

import os
import re
import time
from pathlib import Path

from corvane import RECORDING, STOPPED, WAITING, pcm_wav, wait_for, write_ini

SELECTIONS = int(os.environ.get("CORVANE_SOAK_SELECTIONS", 10000))
ROUNDS = int(os.environ.get("CORVANE_SOAK_ROUNDS", 500))
ROWS = 200
MEMORY_KB = 1024  # that may come and go


def held(program):
    """What it holds, once nothing of it has changed for a second: late threads and timers have ended."""
    proc = Path(f"/proc/{program.process.pid}")
    seen = []
    # On a machine that never rests, the last look counts.
    while len(seen) < 150 and (len(seen) < 6 or any(s != seen[-1] for s in seen[-5:])):
        rollup = (proc / "smaps_rollup").read_text()
        memory = int(re.search(r"^Private_Dirty:\s+(\d+) kB", rollup, re.M)[1])
        files = len(os.listdir(proc / "fd"))
        seen.append({**program.winctl.ask("resources", program.pid), "files": files, "memory KB": memory})
        time.sleep(0.2)
    return seen[-1]


def select(program, times):
    rows = program.control("IDC_LIST")["hwnd"]
    numbers = [r["number"] for r in program.rows()]
    for i in range(times):
        for row, on in ((-1, 0), (i * 7 % ROWS, 1)):
            program.winctl.ask("select", rows, row, on)
        assert program.api(8) == numbers[i * 7 % ROWS]


def record(program, rounds):
    for _ in range(rounds):
        program.command("CM_RECORD")
        wait_for(lambda: program.api(7) in (RECORDING, WAITING), "a recording")
        program.command("CM_STOP")
        program.wait_status(STOPPED)


def test_selecting_and_recording_leave_the_machine_as_it_was(corvane, data):
    for number in range(1, ROWS + 1):
        data.add_dictation(number, pcm_wav(8000), b"a note\0" if number % 2 else None)
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}})
    program = corvane()
    for what, action, times in (("selections", select, SELECTIONS), ("recordings", record, ROUNDS)):
        action(program, max(20, times // 50))  # what is made once is made
        before, begun = held(program), time.monotonic()
        action(program, times)
        print(f"{times} {what} in {time.monotonic() - begun:.0f} s")
        after = held(program)
        print(f"before: {before}\nafter:  {after}", flush=True)
        grown = {key: after[key] - before[key] for key in after}
        assert grown.pop("memory KB") < MEMORY_KB, grown
        assert max(grown.values()) <= 2, grown
