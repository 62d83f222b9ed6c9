"""What is shown, what is typed and what is recorded concern one and the same dictation, whatever happens meanwhile."""

import struct
import subprocess

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


def record_a_second(program, number, command):
    path = program.data.audio(number)
    before = path.stat().st_size
    program.record(command)
    wait_for(lambda: path.stat().st_size != before, "a first block on disk")
    grown = path.stat().st_size
    wait_for(lambda: path.stat().st_size >= grown + 2 * SECOND, "a second more")
    program.stop()


def samples(data, number):
    return data.audio(number).read_bytes()[46:]


def foreign_wav(frames):
    """A recording with the 44-byte header of other programs."""
    sound = bytes(i & 0xFF for i in range(2 * SECOND)) * (frames // SECOND)
    head = b"WAVEfmt " + struct.pack("<IHHIIHH", 16, 1, 1, 8000, 16000, 2, 16) + b"data" + struct.pack("<I", len(sound))
    return b"RIFF" + struct.pack("<I", len(head) + len(sound)) + head + sound, sound


def test_the_keyboard_moves_everything_to_the_dictation_that_is_shown(corvane, data):
    record_every_sound(data)
    data.add_dictation(1, pcm_wav(10 * SECOND), b"notes one\0")
    data.add_dictation(2, pcm_wav(SECOND), b"notes two\0")
    program = corvane()
    names = {1: "Dictation 001", 2: "Dictation 002"}
    for key in ("shift+Up", "ctrl+Down", "ctrl+Up"):
        keys(key)
        current = program.api(8)
        wait_for(lambda: program.notes() == f"notes {('one', 'two')[current - 1]}", f"the notes of {current} after {key}")
        assert program.control("IDC_DICTATIONNAME")["text"] == names[program.api(8)]
    shown = program.api(8)
    other = 3 - shown
    before = samples(data, other)
    keys("F5")
    wait_for(lambda: microphone_streams() > 0, "a running microphone")
    keys("Escape")
    wait_for(lambda: microphone_streams() == 0, "a stopped microphone")
    assert samples(data, other) == before


def test_a_recording_over_a_passage_shows_the_length_that_is_left(corvane, data):
    record_every_sound(data)
    data.add_dictation(1, pcm_wav(10 * SECOND))
    program = corvane()
    program.command("CM_GOTOSTART")
    program.record()
    wait_for(lambda: program.control("IDC_POSITION")["text"] in ("00:01 / 00:01", "00:02 / 00:02"), "its length")


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
    write_ini(data.user_file, {"settings": {"sendcount": 0}})
    program.select(2, 3)
    program.command("CM_SENDFILE")
    box = wait_for(lambda: next(iter(program.boxes()), None), "a message")
    assert any(c["text"].startswith("No Typist Recipients have been set up") for c in box["children"])
    program.answer_box(box["text"], 1)
    data.add_recipient("Typist")
    program.command("CM_SENDFILE")
    assert "no recording yet" in program.wait_box("Error")
    program.answer_box("Error", 1)
    assert program.wait_sent(2) == "Sent"
    assert program.row(3) is not None


def test_a_new_name_goes_to_the_dictation_that_was_edited(corvane, data):
    for number in (1, 2):
        data.add_dictation(number, pcm_wav(SECOND))
    program = corvane()
    program.select(1)
    # Half a second later the notes are saved, and the row would move to the end of the list.
    program.type_notes("for Smith")
    keys("F2")
    xdotool("type", "--delay", 120, "Mr. Smith")
    keys("Return")
    wait_for(lambda: data.record(1).get("name") == "Mr. Smith", "the new name")
    assert data.record(2)["name"] == "Dictation 002"
    wait_for(lambda: program.row(1)["texts"][0] == "Mr. Smith" and program.row(1)["texts"][5] == "for Smith", "the row")


def test_a_foreign_recording_is_continued_without_changing_a_sample(corvane, data):
    record_every_sound(data)
    wav, sound = foreign_wav(3 * SECOND)
    data.add_dictation(1, wav)
    program = corvane()
    record_a_second(program, 1, "CM_RECORD_END")
    head = data.audio(1).read_bytes()[:46]
    assert struct.unpack("<I", head[42:])[0] == len(samples(data, 1))
    assert samples(data, 1).startswith(sound)


def test_a_compressed_recording_is_continued_as_it_sounds(corvane, data, tmp_path):
    record_every_sound(data)
    tone = tmp_path / "tone.wav"
    sine = ["synth", "3", "sine", "440", "gain", "-6"]
    subprocess.run(["sox", "-n", "-r", "8000", "-c", "1", "-e", "gsm-full-rate", tone, *sine], check=True)
    data.add_dictation(1, tone.read_bytes())
    program = corvane()
    record_a_second(program, 1, "CM_RECORD_END")
    head = data.audio(1).read_bytes()[:46]
    assert struct.unpack("<HHI", head[20:28]) == (1, 1, 8000) and struct.unpack("<H", head[34:36])[0] == 16
    sound = np.frombuffer(samples(data, 1), "<i2").astype(float)
    assert len(sound) > 4 * SECOND - 400
    pitch = np.abs(np.fft.rfft(sound[SECOND // 2 : SECOND // 2 + SECOND])).argmax()
    assert pitch == 440 and sound[: 3 * SECOND].std() > 8000
    assert sound[3 * SECOND + 400 :].std() < 100


def test_a_recording_that_heard_no_voice_is_told_until_the_next_command(corvane, data):
    data.add_dictation(1, before := pcm_wav(SECOND))
    program = corvane()
    state = lambda: program.control("IDC_LOGGEDON")["text"]
    usual = state()
    program.command("CM_RECORD")
    wait_for(lambda: program.api(7) == 2, "voice activation")
    assert state() == usual
    program.command("CM_STOP")
    wait_for(lambda: state() != usual, "the notice")
    assert data.audio(1).read_bytes() == before
    program.command("CM_GOTOSTART")
    wait_for(lambda: state() == usual, "its end")


def test_closing_while_a_long_recording_is_prepared_leaves_it_as_it_was(corvane, data):
    record_every_sound(data)
    wav, _ = foreign_wav(3600 * 4 * SECOND)
    data.add_dictation(1, wav)
    program = corvane()
    program.command("CM_RECORD_END")
    wait_for(lambda: data.audio(1).with_suffix(".tmp").exists(), "the preparation")
    program.post(1792, 6)  # the microphone's record button must not disturb it
    assert program.close() == 0
    assert data.audio(1).read_bytes() == wav
    assert not data.audio(1).with_suffix(".tmp").exists()
