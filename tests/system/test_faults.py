"""Bad days: no sound card, no room on the disk."""

import os
import subprocess

import pytest
import sound
from corvane import Data, pcm_wav, sizes_known, wait_for


def test_without_a_sound_card_the_user_is_told_and_the_dictation_stays_as_it_was(corvane, data):
    contents = {6: pcm_wav(16000), 7: b"not a recording at all"}
    for number, before in contents.items():
        data.add_dictation(number, before)
    program = corvane(environment={"PULSE_SERVER": "unix:/nowhere"})
    for number, before in contents.items():
        for command in ("CM_RECORD", "CM_RECORD_END"):
            program.select(number)
            program.command(command)
            program.answer_box("Sound Device Error", 1, "Unable to start record device.\n\nThis might mean you do not")
            assert data.audio(number).read_bytes() == before
    assert program.row(6)["texts"][3] == "00:02" and program.close() == 0


@pytest.fixture
def small_disk(drive_c):
    """A data folder on a disk with room for a few seconds."""
    folder = drive_c / "small"
    folder.mkdir()
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=112k", "tmpfs", folder]).returncode:
        pytest.skip("needs the right to mount")
    yield folder
    subprocess.run(["umount", "-l", folder], check=True)


def test_a_full_disk_while_recording_is_told_and_what_was_written_stays(corvane, small_disk, drive_c, speech, more_speech):
    data = Data(small_disk, drive_c / "share" / "small")
    data.settings.write_text("[settings]\r\nvoiceactivate=--dB\r\nwarnbelowmb=0\r\n")
    program = corvane(data=data)
    number = program.new()
    program.record()
    sound.play(speech[0])
    box = wait_for(lambda: next(iter(program.boxes()), None), "a message", 15)
    program.answer_box(box["text"], 1)
    wait_for(lambda: sound.microphone_streams() == 0, "the end of the recording")
    audio = data.audio(number)
    wait_for(lambda: sizes_known(audio), "a finished recording")
    assert sound.read_wav(audio).duration > 2
    room = os.statvfs(small_disk)
    assert room.f_bavail * room.f_bsize < 16384
    assert program.row(number) and program.api(0) == 1
    # The drive has room again: nothing had to be thrown away, and the dictation goes on.
    subprocess.run(["mount", "-o", "remount,size=2m", small_disk], check=True)
    length = data.size(number)
    program.dictate(*more_speech, command="CM_RECORD_END", number=number)
    assert data.size(number) > length + 2 * 16000
