"""What the user hears when he plays, winds and changes the speed. The dictation is a tone that rises steadily, so that
its pitch tells the place in the dictation that is heard at any moment."""

import struct
import subprocess

import numpy as np
import pytest

from corvane import pcm_wav, wait_for, write_ini
from player import HEARD_RATE, Heard, patient
from sound import microphone_streams

pytestmark = patient

RATE = 8000
SECONDS = 20
LOWEST, STEP = 400, 100  # Hz, and Hz in a second
STOPPED, RECORDING, PLAYING, WINDING = 0, 1, 3, 4
STATUS = 7


def rising_tone():
    t = np.arange(SECONDS * RATE) / RATE
    tone = 12000 * np.sin(2 * np.pi * (LOWEST * t + STEP * t * t / 2))
    return pcm_wav(0)[:4] + struct.pack("<I", 38 + 2 * len(t)) + pcm_wav(0)[8:42] + struct.pack("<I", 2 * len(t)) + (
        tone.astype("<i2").tobytes()
    )


class Places:
    """Moments of 40 ms: when, and which place of the dictation was heard then (nan: silence). Seconds."""

    def __init__(self, heard):
        samples = heard.so_far()
        size = int(0.04 * HEARD_RATE)
        blocks = samples[: len(samples) // size * size].reshape(-1, size)
        spectrum = np.abs(np.fft.rfft(blocks * np.hanning(size), 16 * size))
        pitch = spectrum.argmax(axis=1) * HEARD_RATE / (16 * size)
        loud = np.sqrt((blocks**2).mean(axis=1)) > 1000
        self.when = np.arange(len(blocks)) * 0.04
        self.place = np.where(loud, (pitch - LOWEST) / STEP, np.nan)
        self.seconds = loud.sum() * 0.04
        sounding = np.flatnonzero(loud)
        self.first, self.last = (self.place[sounding[i]] if len(sounding) > 2 else np.nan for i in (1, -2))
        inside = loud[sounding[0] : sounding[-1]] if len(sounding) else loud
        self.silences = np.diff(np.flatnonzero(np.concatenate(([1], inside, [1])))).max(initial=1) * 0.04 - 0.04

    def slope(self, begin, end):
        """How fast the place moves, in multiples of normal speed, between two places that are both heard."""
        inside = (self.place >= min(begin, end)) & (self.place <= max(begin, end))
        return np.polyfit(self.when[inside], self.place[inside], 1)[0]


@pytest.fixture
def program(corvane, data):
    data.add_dictation(1, rising_tone())
    started = corvane()
    started.command("CM_GOTOSTART")
    wait_for(lambda: started.control("IDC_POSITION")["text"].startswith("00:00 /"), "the start")
    return started


def wait_status(program, status, seconds=10):
    wait_for(lambda: program.api(STATUS) == status, f"status {status}", seconds)


def wait_place(listener, place, seconds=10):
    """Waits until a place of the dictation has been heard."""
    wait_for(lambda: np.nanmax(Places(listener).place, initial=-1) >= place, f"{place} s of the dictation", seconds)


def hold_key(key):
    wait_for(
        lambda: subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, text=True)
        .stdout.strip()
        == "Corvane",
        "an active main window",
    )
    subprocess.run(["xdotool", "keydown", key], check=True)


def test_play_goes_on_where_stop_stopped(program):
    with Heard() as first:
        program.command("CM_PLAY")
        wait_place(first, 2.0)
        program.command("CM_STOP")
        wait_status(program, STOPPED)
        before = Places(first)
    with Heard() as second:
        program.command("CM_PLAY")
        wait_place(second, before.last + 1.5)
        program.command("CM_STOP")
        after = Places(second)
    assert before.first < 0.2 and abs(after.first - before.last) < 0.35
    assert before.silences < 0.1 and after.silences < 0.1
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
    assert heard.silences < 0.2
    # No place is left out and none comes twice, but for the moment that a change takes.
    steps = np.diff(heard.place[~np.isnan(heard.place)])
    assert np.abs(steps).max() < 0.3


def test_playing_ends_with_the_dictation_and_begins_again_at_its_start(program):
    program.command("CM_GOTOEND")
    with Heard() as listener:
        program.command("CM_PLAY")
        wait_place(listener, 0.5)
        assert Places(listener).first < 0.2
        program.command("CM_PLAY_FAST")
        wait_status(program, STOPPED, 25)
        heard = Places(listener)
    assert heard.last > SECONDS - 0.3
    assert program.control("IDC_POSITION")["text"] == "00:20 / 00:20"


def test_winding_runs_while_the_key_is_held_and_playing_goes_on(program):
    with Heard() as listener:
        program.command("CM_PLAY")
        wait_place(listener, 5.0)
        began = Places(listener).last
        hold_key("F7")
        wait_for(lambda: Places(listener).last < began - 3.0, "a place three seconds earlier")
        subprocess.run(["xdotool", "keyup", "F7"], check=True)
        wait_status(program, PLAYING)
        wound_to = Places(listener).last
        wait_for(lambda: Places(listener).last > wound_to + 1.0, "playing on")
        program.command("CM_STOP")
        heard = Places(listener)
    places = heard.place[~np.isnan(heard.place)]
    lowest = int(places[int(4.5 / 0.04) :].argmin()) + int(4.5 / 0.04)
    assert places[lowest] < began - 2.9
    assert abs(places[lowest + 8] - places[lowest]) < 0.6  # it plays on from where winding was heard to end
    assert heard.silences < 0.35


def test_winding_forward_ends_at_the_end(program):
    program.send(1792, 14)  # the dictation microphone's button goes down
    wait_status(program, WINDING)
    wait_status(program, STOPPED)
    assert program.control("IDC_POSITION")["text"] == "00:20 / 00:20"
    program.send(1792, 15)
    assert program.api(STATUS) == STOPPED
    program.send(1792, 12)
    wait_status(program, WINDING)
    program.send(1792, 13)
    wait_status(program, STOPPED)


def test_go_to_start_plays_on_from_there(program):
    with Heard() as listener:
        program.command("CM_PLAY")
        wait_place(listener, 3.0)
        program.command("CM_GOTOSTART")
        wait_for(lambda: Places(listener).last < 1.0, "the start again")
        assert program.api(STATUS) == PLAYING
        program.command("CM_STOP")


def test_play_while_recording_plays_what_was_recorded(program, data):
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}})
    program.command("CM_GOTOEND")
    before = data.audio(1).stat().st_size
    program.record("CM_RECORD_END")
    wait_for(lambda: data.audio(1).stat().st_size > before + 2 * RATE, "a second more")
    program.command("CM_PLAY")
    wait_status(program, PLAYING)
    assert microphone_streams() == 0
    assert data.audio(1).stat().st_size > before + 2 * RATE
    assert program.control("IDC_POSITION")["text"].startswith("00:2")
    program.command("CM_NEWFILE")
    wait_for(lambda: len(program.rows()) == 2, "a new row")
    assert program.api(STATUS) == STOPPED


def test_the_play_pedal_plays_while_it_is_held_and_after_a_tap(program):
    program.send(1792, 4)
    wait_status(program, PLAYING)
    program.send(1792, 5)  # a tap: it plays on
    assert program.api(STATUS) == PLAYING
    program.send(1792, 4)
    program.send(1792, 5)
    wait_status(program, STOPPED)


def key(action, name):
    subprocess.run(["xdotool", action, name], check=True)


def middle_of(program, control):
    left, top, right, bottom = program.control(control)["rect"]
    subprocess.run(["xdotool", "mousemove", str((left + right) // 2), str((top + bottom) // 2)], check=True)


def test_a_winding_key_that_comes_up_in_a_menu_is_not_held_for_ever(program):
    program.send(1792, 14)
    wait_status(program, STOPPED)  # at the end
    program.send(1792, 15)
    hold_key("F7")
    wait_status(program, WINDING)
    key("key", "alt+d")
    wait_status(program, STOPPED)
    key("keyup", "F7")
    key("key", "Escape")
    key("key", "Escape")
    hold_key("F7")
    wait_status(program, WINDING)
    key("keyup", "F7")
    wait_status(program, STOPPED)


def test_winding_belongs_to_the_button_that_was_pressed_last(program):
    program.send(1792, 12)
    program.send(1792, 14)
    program.send(1792, 13)  # rewind comes up while fast forward is down
    assert program.api(STATUS) == WINDING
    program.command("CM_STOP")
    wait_status(program, STOPPED)
    # The device is unplugged: its release never comes, and the mouse can still wind.
    middle_of(program, "IDC_FASTFORWARD")
    key("mousedown", "1")
    wait_status(program, WINDING)
    key("mouseup", "1")
    wait_status(program, STOPPED)


def test_the_space_bar_after_a_click_on_stop_records_nothing(program, data):
    before = data.audio(1).read_bytes()
    program.command("CM_PLAY")
    wait_status(program, PLAYING)
    middle_of(program, "IDC_STOP")
    key("click", "1")
    wait_status(program, STOPPED)
    wait_for(lambda: program.row(1)["focused"], "the keyboard on the list")
    key("key", "space")
    program.command("CM_PLAY")
    wait_status(program, PLAYING)
    program.command("CM_STOP")
    assert data.audio(1).read_bytes() == before
