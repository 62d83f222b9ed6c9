"""Inserting: at the position, and whatever ends the program meanwhile, nothing of it is lost."""

import numpy as np
import pytest
import sound
from corvane import WM_CLOSE, pcm_wav, sizes_known, wait_for, windows_path, write_ini

CAPTION = "Insert Recording"
NUMBER = 5


@pytest.fixture
def program(corvane, data):
    """Stands in the middle of a dictation of six seconds, of which no two samples are alike."""
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "voiceactivate": "--dB"}})
    data.add_dictation(NUMBER, pcm_wav(np.arange(48000).astype("<u2")), name="Case 5")
    started = corvane()
    started.before = data.audio(NUMBER).read_bytes()
    started.command("CM_GOTOSTART")
    started.command("CM_PLAY")
    wait_for(lambda: started.control("IDC_POSITION")["text"].startswith("00:02"), "the middle")
    started.command("CM_STOP")
    return started


@pytest.fixture
def insert(program, drive_c):
    """Begins to insert and waits for a second of sound in the temporary file."""

    def start(command="CM_RECORD_INSERT"):
        files = lambda: {p for p in drive_c.glob("**/[Tt]emp/tmp*") if p.is_file()}
        known = files()
        program.record(command)
        (recording,) = wait_for(lambda: files() - known, "a temporary file")
        wait_for(lambda: recording.stat().st_size > 16000, "a second of sound")
        return recording

    return start


def inserted(before, after):
    """What was put between the two halves of the dictation, and where (bytes)."""
    assert sum(a != b for a, b in zip(before[:46], after[:46])) <= 8, "nothing but its sizes"
    before, after = before[46:], after[46:]
    extra = len(after) - len(before)
    place = next((i for i in range(0, len(before), 2) if before[i : i + 2] != after[i : i + 2]), len(before))
    assert extra > 0 and after[place + extra :] == before[place:]
    return place, after[place : place + extra]


def test_what_is_said_goes_between_and_nothing_is_lost(program, data, insert):
    program.command("CM_RECORDMODE_INSERT")
    recording = insert("CM_RECORD")
    assert program.control("IDC_DICTATIONNAME")["text"] == "Inserting: Case 5"
    assert data.audio(NUMBER).read_bytes() == program.before, "not before it ends"
    program.stop()
    wait_for(lambda: data.audio(NUMBER).read_bytes() != program.before, "the insertion")
    place, extra = inserted(program.before, data.audio(NUMBER).read_bytes())
    assert 1.5 * 16000 <= place < 3 * 16000 and len(extra) > 16000
    wait_for(lambda: not recording.exists(), "an end of the temporary file")
    assert sizes_known(data.audio(NUMBER))
    wait_for(lambda: sorted(p.suffix for p in data.current.iterdir()) == [".dat", ".wav"], "nothing left over")
    length = round((48000 + len(extra) / 2) / 8000)
    end = round((place + len(extra)) / 16000)
    text = program.control("IDC_POSITION")["text"]
    assert text.endswith(f"/ 00:{length:02}") and abs(int(text[3:5]) - end) <= 1
    wait_for(lambda: program.row(NUMBER)["texts"][3] == f"00:{length:02}", "the new length in the list")


@pytest.mark.parametrize("answer", [6, 7, 2], ids=["yes", "no", "cancel"])
def test_an_end_of_the_program_leaves_it_to_the_next_start(program, corvane, data, insert, answer):
    recording = insert()
    if answer == 7:  # an orderly end merges nothing, either
        program.post(WM_CLOSE)
        assert program.process.wait(10) == 0
        assert sound.microphone_streams() == 0
    else:
        program.kill()
    spoken = recording.read_bytes()[46:]
    assert data.audio(NUMBER).read_bytes() == program.before

    again = corvane()
    assert "Case 5" in again.answer_box(CAPTION, answer, "An insertion could not be completed.")
    if answer == 2:
        assert recording.exists() and data.audio(NUMBER).read_bytes() == program.before
        again.send_default(NUMBER)
        again.answer_box(CAPTION, 6)
        assert again.wait_sent(NUMBER) == "Sent"
        place, extra = inserted(program.before, data.audio(NUMBER, data.sent).read_bytes())
    elif answer == 6:
        wait_for(lambda: data.audio(NUMBER).read_bytes() != program.before, "the insertion")
        place, extra = inserted(program.before, data.audio(NUMBER).read_bytes())
        seconds = round(6 + len(extra) / 16000)  # it stood at its end, and the next recording must not cut that
        at_end = f"00:{seconds:02} / 00:{seconds:02}"
        wait_for(lambda: again.control("IDC_POSITION")["text"] == at_end, "the end")
    else:
        name = "Insertion for Case 5"
        row = wait_for(lambda: next((r for r in again.rows() if r["texts"][0] == name), None), "a new row")
        extra = data.audio(row["number"]).read_bytes()[46:]
        assert data.audio(NUMBER).read_bytes() == program.before
    assert extra == spoken[: len(spoken) // 2 * 2]
    wait_for(lambda: not recording.exists() and not list(data.current.glob("*.ins")), "nothing left over")
    assert again.close() == 0


@pytest.fixture
def waiting(program, data):
    """An insertion at four seconds waits; the program, at two seconds, has not asked about it yet."""
    recording = data.folder / "tmpAA.tmp"
    recording.write_bytes(pcm_wav(8000, value=-9))
    note = data.current / f"{NUMBER:08}.ins"
    note.write_bytes(windows_path(recording).encode() + b"\r\n32000\r\n")
    return recording, note


def test_what_waits_is_settled_before_its_place_is_recorded_over_and_goes_with_its_dictation(program, data, waiting):
    program.command("CM_RECORD_OVERWRITE")
    program.answer_box(CAPTION, 2, "at 00:04 is kept")
    assert sound.microphone_streams() == 0 and data.audio(NUMBER).read_bytes() == program.before
    program.command("CM_GOTOEND")
    program.record("CM_RECORD_OVERWRITE")
    program.stop()
    assert data.audio(NUMBER).read_bytes()[46:].startswith(program.before[46:]) and waiting[1].exists()
    program.command("CM_DELETEFILE")
    program.answer_box("Confirm Delete", 6, "A recording that waits to be inserted goes with it.")
    wait_for(lambda: not waiting[0].exists() and not list(data.current.iterdir()), "an empty folder")
    assert not program.rows() and not program.boxes()


@pytest.mark.parametrize("told, answer", [("00000005.bad1", 1), ("cannot be found or read here", 6)])
def test_record_never_refuses_without_a_word(program, data, waiting, told, answer):
    recording, note = waiting
    if answer == 1:
        note.write_bytes(b"\0" * 2000)
    else:  # as that of another Windows user
        recording.unlink()
        recording.mkdir()
    program.command("CM_RECORD_INSERT")
    program.answer_box(CAPTION, answer, told)
    wait_for(lambda: sound.microphone_streams() > 0, "a running microphone")
    program.stop()
    assert (data.current / "00000005.bad1").exists() == (answer == 1)
