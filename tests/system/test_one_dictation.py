"""What is shown, what is typed and what is recorded concern one and the same dictation, whatever happens meanwhile."""

import struct
import subprocess
import wave

import numpy as np

from corvane import pcm_wav, wait_active, wait_for, write_ini, xdotool
from sound import microphone_streams

SECOND = 8000  # frames


def keys(*names):
    """Types keys as a user does, once the program's window is the active one."""
    wait_active()
    xdotool("key", "--delay", 40, *names)


def record_every_sound(data):
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}})


def samples(data, number):
    return data.audio(number).read_bytes()[46:]


def test_the_keyboard_moves_everything_to_the_dictation_that_is_shown(corvane, data):
    record_every_sound(data)
    for number in (1, 2):
        data.add_dictation(number, pcm_wav(10 * SECOND), b"notes %d\0" % number)
    program = corvane()
    for key in ("shift+Up", "ctrl+Down", "ctrl+Up"):
        keys(key)
        current = program.api(8)
        wait_for(lambda: program.notes() == f"notes {current}", f"the notes of {current} after {key}")
        assert program.control("IDC_DICTATIONNAME")["text"] == f"Dictation 00{current}"
    other = 3 - current
    before = samples(data, other)
    keys("Home", "F5")  # over all of it, which is shown at once
    wait_for(lambda: program.control("IDC_POSITION")["text"] in ("00:01 / 00:01", "00:02 / 00:02"), "its length")
    keys("Escape")
    wait_for(lambda: microphone_streams() == 0, "a stopped microphone")
    assert samples(data, other) == before


def test_send_sends_what_was_selected_and_has_a_recording(corvane, data):
    data.add_recipient("Other", index=1)
    (data.user / "rec0.dat").unlink()  # his place in the list stays empty; the others are offered all the same
    data.add_dictation(1, pcm_wav(SECOND))
    data.add_dictation(2, pcm_wav(SECOND))
    data.add_dictation(3)
    program = corvane()
    program.select(1)
    program.command("CM_SENDFILE_TO")
    wait_for(lambda: [b for b in program.boxes() if b["text"] == "Send Dictation To"], "the list of recipients")
    program.select(2)
    program.answer_box("Send Dictation To", 1)
    assert program.wait_sent(1) == "Sent"
    assert data.record(1, data.sent)["recipient"].startswith("Other (")
    assert program.row(2) is not None
    data.add_recipient("Typist")
    program.select(2, 3)
    program.command("CM_SENDFILE")
    program.answer_box("Error", 1, "no recording yet")
    assert program.wait_sent(2) == "Sent"
    assert program.row(3) is not None


def test_a_new_name_goes_to_the_dictation_that_was_edited(corvane, data):
    for number in (1, 2):
        data.add_dictation(number, pcm_wav(SECOND))
    program = corvane()
    program.select(1)
    wait_active()
    program.point_at("IDC_NOTES")
    # Half a second later the notes are saved, and the row would move to the end of the list.
    xdotool("click", 1, "type", "for Smith")
    keys("F2")
    xdotool("type", "--delay", 120, "Mr. Smith")
    keys("Return")
    wait_for(lambda: data.record(1).get("name") == "Mr. Smith", "the new name")
    assert data.record(2)["name"] == "Dictation 002"
    wait_for(lambda: program.row(1)["texts"][::5] == ["Mr. Smith", "for Smith"], "the row")
    xdotool("type", ", and on")
    wait_for(lambda: program.notes() == "for Smith, and on", "typing goes on in the notes")


def test_a_compressed_recording_is_continued_as_it_sounds(corvane, data, tmp_path):
    record_every_sound(data)
    tone = tmp_path / "tone.wav"
    sine = ["synth", "3", "sine", "440", "gain", "-6"]
    subprocess.run(["sox", "-n", "-r", "8000", "-c", "1", "-e", "gsm-full-rate", tone, *sine], check=True)
    data.add_dictation(1, tone.read_bytes())
    program = corvane()
    program.record("CM_RECORD_END")
    program.wait_recorded(1, 2 * 4 * SECOND + 2000)
    program.stop()
    head = data.audio(1).read_bytes()[:46]
    assert struct.unpack("<HHI", head[20:28]) == (1, 1, 8000) and struct.unpack("<H", head[34:36])[0] == 16
    sound = np.frombuffer(samples(data, 1), "<i2").astype(float)
    assert len(sound) > 4 * SECOND - 400
    pitch = np.abs(np.fft.rfft(sound[SECOND // 2 : SECOND // 2 + SECOND])).argmax()
    assert pitch == 440 and sound[: 3 * SECOND].std() > 8000
    assert sound[3 * SECOND + 400 :].std() < 100


def test_closing_while_a_long_recording_is_prepared_leaves_it_as_it_was(corvane, data):
    record_every_sound(data)
    with wave.open(str(data.add_dictation(1).with_suffix(".wav")), "wb") as file:  # with another head than ours
        file.setparams((1, 2, SECOND, 0, "NONE", None))
        file.writeframes(bytes(range(250)) * (4 * 3600 * 2 * SECOND // 250))
    before = data.audio(1).read_bytes()
    program = corvane()
    program.command("CM_RECORD_END")
    wait_for(lambda: data.audio(1).with_suffix(".tmp").exists(), "the preparation")
    program.post(1792, 6)  # the microphone's record button must not disturb it
    assert program.close() == 0
    assert data.audio(1).read_bytes() == before
    assert not data.audio(1).with_suffix(".tmp").exists()
