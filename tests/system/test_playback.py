"""What the user hears when he plays, winds and changes the speed. The dictation is a tone that rises steadily, so that
its pitch tells the place in the dictation that is heard at any moment. At the speaker's own rate it is heard to the
sample."""

import os
import subprocess
import time
from pathlib import Path

import numpy as np
import pytest
from corvane import PLAYING, STOPPED, WINDING, pcm_wav, wait_active, wait_for, write_ini, xdotool
from sound import HEARD_RATE, Heard, microphone_streams

# Sound that is measured suffers when the machine is busy with other things. A fault of ours fails every time.
pytestmark = [pytest.mark.alone, pytest.mark.flaky(reruns=2)]

SECONDS = 20
LOWEST, STEP = 400, 100  # Hz, and Hz in a second
BUTTON = 1792
FIRST_SOUND = 0.25  # seconds from Play to the ear, most of it the sound server's
LONGEST_GAP = 0.06  # seconds of silence at a jump


def rising_tone(seconds=SECONDS):
    t = np.arange(int(seconds * HEARD_RATE)) / HEARD_RATE
    return (12000 * np.cos(2 * np.pi * (LOWEST * t + STEP * t * t / 2))).astype("<i2")


TONE = rising_tone()


class Places:
    """Moments of 40 ms: when, and which place of the dictation was heard then (nan: silence). Seconds."""

    def __init__(self, heard):
        samples = heard.samples
        size = int(0.04 * HEARD_RATE)
        blocks = samples[: len(samples) // size * size].reshape(-1, size)
        spectrum = np.abs(np.fft.rfft(blocks * np.hanning(size), 16 * size))
        pitch = spectrum.argmax(axis=1) * HEARD_RATE / (16 * size)
        loud = np.sqrt((blocks**2).mean(axis=1)) > 1000
        self.when = np.arange(len(blocks)) * 0.04
        self.place = np.where(loud, (pitch - LOWEST) / STEP, np.nan)
        sounding = np.flatnonzero(loud)
        self.first, self.last = (self.place[sounding[i]] if len(sounding) > 2 else np.nan for i in (1, -2))

    def slope(self, begin, end):
        """How fast the place moves, in multiples of normal speed, between two places that are both heard."""
        inside = (self.place >= min(begin, end)) & (self.place <= max(begin, end))
        return np.polyfit(self.when[inside], self.place[inside], 1)[0]


def longest_silence(heard, floor=100):
    """Between the first sound and the last; seconds."""
    return np.diff(np.flatnonzero(np.abs(heard.samples) > floor)).max(initial=0) / HEARD_RATE


@pytest.fixture
def play(corvane, data):
    """Starts the program at the start of a dictation, which no volume changes."""

    def start(samples=TONE, **options):
        write_ini(data.settings, {"settings": {"warnbelowmb": 0, "soundoutvolume": "12dB", "voiceactivate": "--dB"}})
        if samples is not None:
            data.add_dictation(1, pcm_wav(samples, HEARD_RATE))
        started = corvane(**options)
        started.command("CM_GOTOSTART")
        wait_for(lambda: started.control("IDC_POSITION")["text"].startswith("00:00 /"), "the start")
        return started

    return start


@pytest.fixture
def program(play):
    return play()


def wait_place(listener, place, seconds=10):
    """Waits until a place of the dictation has been heard."""
    wait_for(lambda: np.nanmax(Places(listener).place, initial=-1) >= place, f"{place} s of the dictation", seconds)


def hold_key(name):
    wait_active()
    xdotool("keydown", name)


@pytest.mark.parametrize("seconds", [0.05, 2.93])
def test_every_sample_is_heard_at_once_and_to_the_last(play, seconds):
    samples = rising_tone(seconds)
    samples[-1] = 5000
    # A sound server keeps what nothing follows, here 250 ms: the silence behind the last sound pushes it through.
    program = play(samples, environment={"PULSE_LATENCY_MSEC": "250"})
    sounding = samples[samples != 0]
    with Heard() as heard:
        asked = time.monotonic()
        for times in (1, 2):  # at the end it begins again at the start
            program.command("CM_PLAY")
            wait_for(lambda: np.count_nonzero(heard.samples) > (times - 0.5) * len(sounding), "a beginning")
            program.wait_status(STOPPED)
    assert heard.first_sound_after(asked) < FIRST_SOUND
    _, audio = heard.sound()
    # Whatever else the machine does may put silence between two samples, but takes none away.
    assert np.array_equal(audio[audio != 0], np.tile(sounding, 2))
    assert program.control("IDC_POSITION")["text"] == f"00:0{seconds:.0f} / 00:0{seconds:.0f}"


def test_four_hours_are_heard_at_once(play, data):
    frames = 4 * 3600 * HEARD_RATE
    data.add_dictation(1, pcm_wav(TONE, HEARD_RATE, sizes_known=False))
    os.truncate(data.audio(1), 46 + 2 * frames)  # silence takes no disk
    program = play(None)
    with Heard() as heard:
        asked = time.monotonic()
        program.command("CM_PLAY")
        wait_place(heard, 0.5)
        program.command("CM_STOP")
    assert heard.first_sound_after(asked) < FIRST_SOUND


def test_play_goes_on_where_stop_stopped(program):
    with Heard() as first:
        program.command("CM_PLAY")
        wait_place(first, 2.0)
        program.command("CM_STOP")
        program.wait_status(STOPPED)
    with Heard() as second:
        program.command("CM_PLAY")
        wait_place(second, Places(first).last + 1.5)
        program.command("CM_STOP")
    before, after = Places(first), Places(second)
    print(f"goes on {1000 * (after.first - before.last):+.0f} ms from where it stopped")
    assert before.first < 0.2 and abs(after.first - before.last) < 0.2
    assert max(longest_silence(first), longest_silence(second)) < 0.1
    assert 0.97 < before.slope(0.3, 2.0) < 1.03


def test_the_speed_changes_while_playing(program):
    places = {"CM_PLAY_SLOW": (2.2, 3.5), "CM_PLAY_FAST": (3.9, 6.5), "CM_PLAY_NORMAL": (7.0, 8.5)}
    with Heard() as listener:
        program.command("CM_PLAY")
        wait_place(listener, 1.9)
        for command, (_, end) in places.items():
            program.command(command)
            wait_place(listener, end + 0.3)
        program.command("CM_STOP")
    heard = Places(listener)
    for command, speed in (("CM_PLAY_SLOW", 0.7), ("CM_PLAY_FAST", 1.5), ("CM_PLAY_NORMAL", 1.0)):
        assert heard.slope(*places[command]) == pytest.approx(speed, abs=0.07), command
    steps = np.diff(heard.place[~np.isnan(heard.place)])  # from each place that is heard to the next
    print(f"at changes of speed: {1000 * longest_silence(listener):.0f} ms of silence, steps of", steps.min(), steps.max())
    assert longest_silence(listener) < LONGEST_GAP
    # No place is left out and none comes twice, but for the moment that a change takes.
    assert np.abs(steps).max() < 0.3


def test_winding_runs_while_the_key_is_held_and_playing_goes_on(program):
    with Heard() as listener:
        program.command("CM_PLAY")
        wait_place(listener, 5.0)
        began = Places(listener).last
        hold_key("F7")
        wait_for(lambda: Places(listener).last < began - 3.0, "a place three seconds earlier")
        xdotool("keyup", "F7")
        program.wait_status(PLAYING)
        wound_to = Places(listener).last
        wait_for(lambda: Places(listener).last > wound_to + 1.0, "playing on")
        program.command("CM_STOP")
    heard = Places(listener)
    places = heard.place[~np.isnan(heard.place)]
    lowest = int(places[int(4.5 / 0.04) :].argmin()) + int(4.5 / 0.04)
    assert places[lowest] < began - 2.9
    assert abs(places[lowest + 8] - places[lowest]) < 0.6  # it plays on from where winding was heard to end
    assert longest_silence(listener) < 0.35


def test_go_to_start_plays_on_from_its_first_sample(program):
    with Heard() as listener:
        program.command("CM_PLAY")
        wait_place(listener, 3.0)
        program.command("CM_GOTOSTART")
        wait_for(lambda: Places(listener).last < 1.0, "the start again")
        assert program.api(7) == PLAYING
        program.command("CM_STOP")
    beginning = np.lib.stride_tricks.sliding_window_view(listener.sound()[1], 480)
    assert np.flatnonzero((beginning == TONE[:480]).all(axis=1)).size == 2
    print(f"gap at a seek: {1000 * longest_silence(listener):.0f} ms")
    assert longest_silence(listener) < LONGEST_GAP


def test_play_while_recording_plays_what_was_recorded(program, data):
    program.command("CM_GOTOEND")
    enough = data.size(1) + 2 * HEARD_RATE
    program.record("CM_RECORD_END")
    program.wait_recorded(1, enough)
    program.command("CM_PLAY")
    program.wait_status(PLAYING)
    assert microphone_streams() == 0
    assert data.size(1) > enough
    assert program.control("IDC_POSITION")["text"].startswith("00:2")
    program.command("CM_NEWFILE")
    wait_for(lambda: len(program.rows()) == 2, "a new row")
    assert program.api(7) == STOPPED


def test_winding_lasts_as_long_as_it_is_held_and_no_longer(program):
    program.send(BUTTON, 14)  # the dictation microphone's button winds forward, as far as there is anything
    program.wait_status(WINDING)
    program.wait_status(STOPPED)
    assert program.control("IDC_POSITION")["text"] == "00:20 / 00:20"
    for button in (15, 12):
        program.send(BUTTON, button)
    wait_for(lambda: program.control("IDC_POSITION")["text"].startswith("00:1"), "a place before the end")
    program.send(BUTTON, 13)
    program.wait_status(STOPPED)
    assert not program.control("IDC_POSITION")["text"].startswith("00:00")
    for button in (12, 14, 13):  # rewind comes up while fast forward is down
        program.send(BUTTON, button)
    assert program.api(7) == WINDING
    program.command("CM_STOP")
    program.wait_status(STOPPED)
    # The device is unplugged: its release never comes, and the mouse can still wind.
    program.point_at("IDC_FASTFORWARD")
    xdotool("mousedown", 1)
    program.wait_status(WINDING)
    xdotool("mouseup", 1)
    program.wait_status(STOPPED)
    hold_key("F7")
    program.wait_status(WINDING)
    xdotool("key", "alt+d")  # the release goes to the menu
    program.wait_status(STOPPED)
    xdotool("keyup", "F7")


@pytest.mark.parametrize("jump, seconds", [("CM_PLAY_FAST", 5), (None, 16)])
def test_a_device_that_vanishes_ends_the_playback(play, jump, seconds):
    """Its buffers never come back: after 71 looks of 150 ms the player gives up; a jump finds out at once."""
    socket = Path(os.environ["RIG"]) / "vanishing"
    socket.unlink(missing_ok=True)
    server = subprocess.Popen(
        ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no"]
        + ["-L", f"module-native-protocol-unix socket={socket} auth-anonymous=1"]
        + ["-L", "module-null-sink sink_name=other norewinds=1"],
        stderr=subprocess.DEVNULL,
    )
    address = f"unix:{socket}"
    wait_for(lambda: subprocess.run(["pactl", "-s", address, "info"], capture_output=True).returncode == 0, "a server")
    program = play(environment={"PULSE_SERVER": address})
    program.command("CM_PLAY")
    wait_for(lambda: program.control("IDC_POSITION")["text"].startswith("00:01"), "a second of sound")
    server.kill()
    server.wait()
    if jump:
        program.command(jump)
    program.wait_box("Error", seconds)
    program.answer_box("Error", 1, "no longer answers")
    program.command("CM_PLAY")  # there is none to begin with, either
    assert program.wait_box("Sound Device Error").startswith("Unable to start playback device.")
    assert program.api(7) == STOPPED
