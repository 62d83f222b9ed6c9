"""Killed at any moment, as by a power failure: the next start has everything that was on disk."""

import os
import random
import time

import dct
import sound
from corvane import pcm_wav, sizes_known, wait_for

KILLS = int(os.environ.get("CORVANE_KILLS", "4"))


def test_a_recording_that_was_cut_off_lists_grows_and_is_sent(corvane, data, more_speech):
    program = corvane()
    number = program.new()
    program.record()
    sound.play(more_speech[0])
    program.wait_recorded(number, more_speech[1].duration * 16000)
    program.kill()
    audio = data.audio(number)
    cut = audio.read_bytes()
    assert not sizes_known(audio)
    kept = (len(cut) - 46) / 16000

    program = corvane()
    assert program.row(number)["texts"][3] == f"00:{round(kept):02}"
    program.select(number)
    program.dictate(*more_speech, command="CM_RECORD_END", number=number)
    assert audio.read_bytes()[46 : len(cut) - 46] == cut[46 : len(cut) - 46]
    recorded = sound.read_wav(audio).duration
    assert recorded > kept + more_speech[1].duration
    program.send_default(number)
    assert program.wait_sent(number) == "Sent"
    heard = sound.read_wav(dct.read(data.delivered()[0]).audio)
    assert abs(heard.duration - recorded) < 0.01


def test_kills_at_random_moments_lose_no_dictation(corvane, data):
    data.settings.write_text("[settings]\r\nvoiceactivate=--dB\r\nwarnbelowmb=0\r\n")
    chance = random.Random(7)
    numbers = set(range(100, 100 + 3 * KILLS))
    for number in numbers:
        data.add_dictation(number, pcm_wav(40000), b"note\0")
    recorded = {}
    for _ in range(KILLS):
        program = corvane()
        number = program.new()
        program.record()
        program.wait_recorded(number, 8000)
        recorded[number] = data.size(number)
        moment = time.monotonic() + chance.uniform(0, 1.5)
        todo = [n for n in numbers if data.audio(n).exists()]
        while time.monotonic() < moment and todo:
            program.send_default(todo.pop())
            time.sleep(0.05)
        program.kill()
        for n, size in recorded.items():
            path = data.audio(n) if data.audio(n).exists() else data.audio(n, data.sent)
            assert path.stat().st_size >= size
    program = corvane()
    listed = {r["number"] for r in program.rows()}
    assert listed == {int(p.stem) for p in data.current.glob("*.wav")}
    kept = [*data.current.glob("*.wav"), *data.sent.glob("*.wav")]
    assert {int(p.stem) for p in kept if p.with_suffix(".dat").exists()} == numbers | set(recorded)
    wait_for(lambda: data.queued() == 0, "an empty queue", 30)
    queued = {int(p.stem) for p in data.sent.glob("*.wav")}
    wait_for(lambda: all(data.status(n) in ("Sent", None) for n in queued), "the end of all sending", 30)
    for path in data.delivered():
        dct.read(path)
