"""What comes out of the speaker when the player plays."""

import os
import struct
import subprocess
import time
from pathlib import Path

import numpy as np
import pytest

import sound
from corvane import wait_for
from player import AT_END, DEVICE_LOST, HEARD_RATE, RIG, Heard, Places, PlayTool, patient, windows_file, write_wav

FIRST_SOUND = 0.25  # seconds from Play to the ear, most of it the sound server's
LONGEST_GAP = 0.06  # seconds of silence at a jump
LENGTH = 5 * HEARD_RATE


@pytest.fixture(scope="module")
def running_tool():
    tool = PlayTool()
    yield tool
    tool.close()


@pytest.fixture
def tool(running_tool):
    running_tool.do("stop")
    running_tool.do("speed", 100)
    return running_tool


@pytest.fixture(scope="module")
def noise():
    """Path and samples of five seconds of noise, in which every place can be told from every other."""
    samples = (np.random.default_rng(1).standard_normal(LENGTH) * 3000).clip(-20000, 20000).astype(int)
    samples[[0, -1]] = 5000
    return write_wav("noise.wav", samples), samples


def silences(heard, floor=100, least=0.002):
    """Where it was silent for longer than least seconds: (at, seconds)."""
    loud = np.flatnonzero(np.abs(heard) > floor)
    lengths = np.diff(loud) / HEARD_RATE
    return [(loud[i] / HEARD_RATE, lengths[i]) for i in np.flatnonzero(lengths > least)]


def assert_positions(tool, length):
    """The positions told follow the clock and stay within the material."""
    told = [(x.at, x.fields["frames"]) for x in tool.events("position")][1:]
    assert told[-1][1] == length and max(frames for _, frames in told) == length
    late = [at - frames / HEARD_RATE for at, frames in told]
    assert max(late) - min(late) < 0.25, "positions do not follow what is heard"


@patient
def test_a_whole_file_is_heard_at_once_and_to_the_sample(tool, noise):
    path, samples = noise
    tool.start(path)
    with Heard() as heard:
        tool.do("play")
        played = tool.asked
        assert tool.wait_stopped() == AT_END
    _, audio = heard.sound()
    assert heard.first_sound_after(played) < FIRST_SOUND
    assert len(audio) == len(samples) and (audio == samples).all()
    assert_positions(tool, len(samples))
    # 10 lg (mean of squares / 2 ^ 23), of half the 16-bit sample
    expected = 10 * np.log10(((samples[4800:9600] / 2) ** 2).mean() / 2**23)
    assert abs(tool.events("level", "db")[1] - expected) <= 1


def write_four_hours(frames):
    """Silence that takes no disk, with sound at its start and in its middle."""
    beep = (8000 * np.sin(np.arange(40000))).astype("<i2").tobytes()
    path = write_wav("hours.wav", np.zeros(0), 8000)
    with open(path, "r+b") as file:
        for at, size in ((4, 36 + 2 * frames), (40, 2 * frames)):
            file.seek(at)
            file.write(struct.pack("<I", size))
        for at in (0, frames):
            file.seek(44 + at)
            file.write(beep)
        file.truncate(44 + 2 * frames)
    return path


@patient
def test_50_ms_and_4_hours_are_heard_at_once(tool, noise):
    path = write_wav("short.wav", noise[1][:2400])
    tool.start(path)
    with Heard() as heard:
        tool.do("play")
        played = tool.asked
        assert tool.wait_stopped(3) == AT_END
    assert len(heard.sound()[1]) == 2400 and heard.first_sound_after(played) < FIRST_SOUND
    assert tool.events("position", "frames")[-1] == 2400

    frames = 4 * 3600 * 8000
    four_hours = write_four_hours(frames)
    assert tool.load(four_hours)["took"] <= 5
    for begin in (0, frames // 2):
        tool.do("start")
        with Heard() as heard:
            if begin:
                tool.do("seek", begin)
            tool.do("play")
            played = tool.asked
            wait_for(lambda: tool.events("position")[-1].fields["frames"] >= begin + 1600, "the sound to run")
            tool.do("stop")
        assert heard.first_sound_after(played) < FIRST_SOUND
    four_hours.unlink()


@patient
def test_pause_loses_nothing_and_tells_where_it_is(tool, noise):
    path, samples = noise
    tool.start(path)
    with Heard() as heard:
        tool.do("play")
        wait_for(lambda: tool.events("position")[-1].fields["frames"] > HEARD_RATE, "a second")
        at = tool.do("pause")["position"]
        time.sleep(0.6)
        tool.do("play")
        assert tool.wait_stopped() == AT_END
    _, audio = heard.sound()
    ((stopped, seconds),) = silences(audio, least=0.3)
    audio = np.delete(audio, slice(int(stopped * HEARD_RATE) + 1, int((stopped + seconds) * HEARD_RATE)))
    assert abs(len(audio) - len(samples)) <= 2
    index = int(stopped * HEARD_RATE)
    assert (audio[:index] == samples[:index]).all() and (audio[-LENGTH // 2 :] == samples[-LENGTH // 2 :]).all()
    assert abs(at / HEARD_RATE - stopped) < 0.1, "the position is not where the sound stopped"


def test_nothing_ends_while_paused(tool, noise):
    """Not even when the last sound is back already and only what follows it is awaited."""
    path = write_wav("short.wav", noise[1][:9600])
    tool.start(path)
    tool.do("play")
    wait_for(lambda: tool.events("position")[-1].fields["frames"] == 9600, "the last sound")
    tool.do("pause")
    time.sleep(1.5)
    assert not tool.events("stopped")
    tool.do("play")
    assert tool.wait_stopped() == AT_END


@patient
def test_seek_is_heard_where_asked_without_a_gap(tool, noise):
    path, samples = noise
    tool.start(path)
    with Heard() as heard:
        tool.do("play")
        for second in (3, 1):
            wait_for(lambda: len(tool.events("position")) > 6, "some sound")
            tool.lines.clear()
            assert tool.do("seek", second * HEARD_RATE)["position"] == second * HEARD_RATE
        wait_for(lambda: len(tool.events("position")) > 6, "some sound")
        tool.do("seek", LENGTH - 4800)
        assert tool.wait_stopped(3) == AT_END
    _, audio = heard.sound()
    found = Places(samples).runs(audio)
    assert [run[2] // HEARD_RATE for run in found][:3] == [0, 3, 1]
    gaps = [after[0] - before[1] for before, after in zip(found, found[1:])]
    print("gaps at seeks:", [f"{1000 * gap / HEARD_RATE:.0f} ms" for gap in gaps])
    assert max(gaps[:2]) < LONGEST_GAP * HEARD_RATE
    assert all(run[2] - second * HEARD_RATE < 960 for run, second in zip(found[1:], (3, 1)))
    # Far beyond the end is the end, and below the start the start.
    tool.start(path)
    assert tool.do("seek", 2**31 - 1)["position"] == LENGTH
    assert tool.do("seek", -5)["position"] == 0
    tool.do("stop")


@patient
def test_speed_changes_keep_the_pitch_and_go_on_from_what_is_heard(tool):
    tone = (8000 * np.sin(2 * np.pi * 440 * np.arange(2 * LENGTH) / HEARD_RATE)).astype(int)
    tool.start(write_wav("tone.wav", tone))
    speeds = (70, 150, 100, 150)
    with Heard() as heard:
        tool.do("play")
        for speed in speeds:
            wait_for(lambda: len(tool.events("position")) > 6, "some sound")
            tool.lines.clear()
            before = tool.do("speed", speed)["position"]
        wait_for(lambda: len(tool.events("position")) > 6, "some sound")
        after = tool.do("stop")["position"]
    _, audio = heard.sound()
    gaps = silences(audio)
    print("gaps at changes of speed:", [f"{1000 * seconds:.0f} ms" for _, seconds in gaps])
    assert all(seconds < LONGEST_GAP for _, seconds in gaps)
    for second in range(len(audio) // HEARD_RATE):
        piece = audio[second * HEARD_RATE : (second + 1) * HEARD_RATE]
        assert abs(np.argmax(np.abs(np.fft.rfft(piece * np.hanning(len(piece))))) - 440) <= 1
    assert 0.5 * HEARD_RATE < after - before < 1.5 * HEARD_RATE
    tool.do("speed", 100)


@patient
def test_a_change_of_speed_drops_and_repeats_next_to_nothing(tool, noise):
    path, samples = noise
    tool.do("speed", 70)
    tool.start(path)
    with Heard() as heard:
        tool.do("play")
        wait_for(lambda: len(tool.events("position")) > 8, "some sound")
        tool.do("speed", 100)
        time.sleep(0.8)
        tool.do("stop")
    _, audio = heard.sound()
    heard_at, _, there = Places(samples).runs(audio)[-1]  # what is heard at normal speed
    print(f"after the change: {1000 * (there - 0.7 * heard_at) / HEARD_RATE:+.0f} ms")
    assert abs(there - 0.7 * heard_at) < 0.08 * HEARD_RATE


@pytest.mark.parametrize("speed", [70, 150])
@patient
def test_the_end_is_reached_at_every_speed(tool, speech, speed):
    path, spoken = speech
    tool.do("speed", speed)
    tool.start(path)
    tool.do("seek", int((sound.LEAD_IN + 4) * HEARD_RATE))
    with Heard() as heard:
        tool.do("play")
        assert tool.wait_stopped() == AT_END
    assert abs(len(heard.sound()[1]) / HEARD_RATE - 200 / speed) < 0.3
    assert tool.events("position", "frames")[-1] == tool.do("open", windows_file(path))["length"]
    tool.do("speed", 100)


@patient
def test_cue_repeats_a_snippet_until_the_next_seek(tool, noise):
    path, samples = noise
    tool.start(path)
    assert tool.do("graph", 1000)["graph"] == [0] * 512, "outside cue mode there is none"
    tool.do("seek", HEARD_RATE)
    with Heard() as heard:
        tool.do("play")
        tool.do("cue", 1)
        time.sleep(0.5)
        tool.do("seek", 2 * HEARD_RATE)
        time.sleep(0.5)
        graph = tool.do("graph", 1000)["graph"]
        tool.do("cue", 0)
        assert tool.wait_stopped() == AT_END
    _, audio = heard.sound()
    found = Places(samples).runs(audio)
    # Ten times per loop of 100 ms at the least, whatever was asked when.
    for where in (1, 2):
        cues = [run for run in found if 0 <= run[2] - where * HEARD_RATE < 1200 and run[1] - run[0] <= 1203]
        assert len(cues) > 10 and max(run[2] + run[1] - run[0] for run in cues) <= where * HEARD_RATE + 4000
    block = HEARD_RATE // 512 + 2
    peaks = np.abs(samples[2 * HEARD_RATE :][: 512 * block]).reshape(512, block).max(axis=1) * 16 >> 11
    assert graph == list(peaks)
    # Played on from there, to the end.
    assert found[-1][1] == len(audio) and found[-1][2] + found[-1][1] - found[-1][0] == LENGTH


@patient
def test_winding_is_heard_both_ways(tool, speech):
    path, spoken = speech
    for speeds, start in (((1.5, 8.0), 0), ((-1.5, -8.0), 5 * HEARD_RATE)):
        tool.load(path)
        tool.do("skip", start)
        length = tool.do("wind", *speeds, 6000)["length"]
        assert HEARD_RATE < length < 4 * HEARD_RATE
        tool.do("start")
        with Heard() as heard:
            tool.do("play")
            assert tool.wait_stopped() == AT_END
        _, audio = heard.sound()
        assert abs(len(audio) - length) < 0.4 * HEARD_RATE
        loudness = np.sqrt((audio**2).mean()) / 32768
        assert loudness > 0.3 * np.sqrt((spoken.samples**2).mean()), "winding is hardly audible"
        assert tool.events("position", "frames")[-1] == length


@patient
def test_a_file_that_is_being_recorded_plays_on(tool, speech):
    path = RIG / "growing.wav"
    recorder = PlayTool()
    recorder.do("record", windows_file(path), HEARD_RATE)
    wait_for(lambda: path.stat().st_size > 46 + 20000, "a recording")
    assert tool.start(path)["growing"]
    with Heard() as heard:
        tool.do("play")  # catches up with the recorder at once
        sound.play(speech[0])
        recorder.do("endrecord")
        assert tool.wait_stopped() == AT_END
    recorder.close()
    recorded = sound.read_wav(path)
    assert tool.events("position", "frames")[-1] == len(recorded.samples)
    audio = sound.Audio(heard.sound(20)[1] / 32768, HEARD_RATE)
    spoken = speech[1]
    sound.assert_is(spoken, audio)
    gaps = silences(heard.samples, floor=20, least=0.3)
    # Nobody writes it any more, whatever its header says.
    with open(path, "r+b") as file:
        file.seek(42)
        file.write(b"\xff" * 4)
    assert not tool.load(path)["growing"]


def test_a_machine_without_a_device_says_so():
    tool = PlayTool({**os.environ, "PULSE_SERVER": "unix:/nowhere"})
    path = write_wav("any.wav", np.ones(100))
    tool.load(path)
    assert not tool.ask("start")["ok"]
    assert tool.traces() == ["LSoundPlayer::Start waveOutOpen Error"]
    tool.close()


@pytest.fixture
def bereft(noise):
    """A tool that plays, and whose sound server has just been killed."""
    socket = RIG / "vanishing"
    socket.unlink(missing_ok=True)
    server = subprocess.Popen(
        ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no"]
        + ["-L", f"module-native-protocol-unix socket={socket} auth-anonymous=1"]
        + ["-L", "module-null-sink sink_name=other norewinds=1"],
        stderr=subprocess.DEVNULL,
    )
    address = f"unix:{socket}"
    wait_for(lambda: subprocess.run(["pactl", "-s", address, "info"], capture_output=True).returncode == 0, "a server")
    tool = PlayTool({**os.environ, "PULSE_SERVER": address})
    tool.start(write_wav("long.wav", np.tile(noise[1], 4)))
    tool.do("play")
    wait_for(lambda: len(tool.events("position")) > 4, "some sound")
    server.kill()
    server.wait()
    yield tool
    tool.close()


def test_a_device_that_vanishes_ends_the_playback(bereft):
    """Its buffers never come back: after 71 looks of 150 ms the player gives up, and does not hang."""
    gone = time.monotonic()
    assert bereft.wait_stopped(25) == DEVICE_LOST
    assert 9 < time.monotonic() - gone < 16
    assert "iCountFail so stop - buffers are not being returned" in bereft.traces()
    assert not bereft.ask("start")["ok"]


@pytest.mark.parametrize("jump", [("cue", 1), ("seek", 4 * LENGTH - 100), ("speed", 150)])
def test_a_jump_finds_out_that_the_device_has_vanished(bereft, jump):
    """Even one to the last sound, which is no end that was heard, and a cue, whose buffer never comes back."""
    bereft.do(*jump)
    assert bereft.wait_stopped(5) == DEVICE_LOST


def thread_seconds(process):
    """Seconds that each thread of a process has run."""
    seconds = {}
    for task in Path(f"/proc/{process}/task").iterdir():
        seconds[task.name] = int((task / "schedstat").read_text().split()[0]) / 1e9
    return seconds


def test_the_player_costs_next_to_nothing(tool):
    """At 8000 Hz; every thread of the process counts, those of the platform's sound too."""
    seconds = 6
    path = write_wav("cheap.wav", 8000 * np.sin(np.arange(8000 * (seconds + 10))), 8000)
    tool.start(path)
    player = max(p.name for p in Path(f"/proc/{tool.process.pid}/task").iterdir())  # the thread that is new
    tool.do("play")
    time.sleep(1)
    before = thread_seconds(tool.process.pid)
    time.sleep(seconds)
    after = thread_seconds(tool.process.pid)
    tool.do("stop")
    shares = {t: 100 * (after[t] - before.get(t, 0)) / seconds for t in after}
    assert shares[player] < 1
    print(f"player: {shares.pop(player):.2f} % of a core; others:", [f"{s:.2f}" for s in shares.values()])
