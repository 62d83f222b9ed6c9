"""From the microphone to the typist."""

import dct
import pytest
import sound
from corvane import wait_for, windows_path

pytestmark = [pytest.mark.every_windows, pytest.mark.alone, pytest.mark.recording]


def test_what_was_spoken_arrives_at_the_typist(corvane, data, speech):
    path, spoken = speech
    program = corvane()
    number = program.dictate(path, spoken, number=program.new())
    recording = sound.read_wav(data.audio(number))
    assert (recording.rate, recording.bits, recording.channels) == (8000, 16, 1)
    sound.assert_is(spoken, recording)
    seconds = round(recording.duration)
    assert program.row(number)["texts"][3] == f"{seconds // 60:02}:{seconds % 60:02}"
    program.type_notes("Case 12\rMr. Harris")
    program.send_default(number)
    assert program.wait_sent(number) == "Sent"

    assert program.rows() == [] and list(data.current.iterdir()) == []
    assert sorted(p.name for p in data.sent.iterdir()) == ["00000001.dat", "00000001.txt", "00000001.wav"]
    record = data.record(number, data.sent)
    assert record["recipient"] == f"Typist DEFAULT ({windows_path(data.share)})"
    assert int(record["senddate"]) >= int(record["date"])
    (delivered,) = data.delivered()
    assert delivered.name == "dct00000-00001.dct"
    container = dct.read(delivered)
    assert (container.version, container.flags, container.user, container.number) == (0, 0, 0, number)
    assert (container.priority, container.date) == (50, int(record["date"]))
    assert container.texts["name"] == "Dictation 001"
    assert container.texts["sendername"] == "Dr. Ada Blake" and container.texts["company"] == "Harbour Clinic"
    assert container.notes == b"Case 12\r\nMr. Harris\0"
    heard = sound.read_wav(container.audio)
    assert (heard.rate, heard.bits, heard.channels) == (8000, 8, 1)
    sound.assert_is(spoken, heard)
    assert data.queued() == 0
    wait_for(lambda: program.progress() == 0, "an empty progress bar")


def test_send_during_a_recording_finishes_and_sends_it(corvane, data, more_speech):
    path, spoken = more_speech
    program = corvane()
    number = program.new()
    program.record()
    sound.play(path)
    program.wait_recorded(number, spoken.duration * 16000 + 6400)
    program.command("CM_SENDFILE")
    assert program.wait_sent(number) == "Sent"
    sound.assert_is(spoken, sound.read_wav(dct.read(data.delivered()[0]).audio))
