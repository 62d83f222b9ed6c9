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
    samples = np.arange(48000).astype("<u2")
    data.add_dictation(NUMBER, pcm_wav(48000)[:46] + samples.tobytes(), name="Case 5")
    started = corvane()
    started.before = data.audio(NUMBER).read_bytes()
    started.command("CM_GOTOSTART")
    started.command("CM_PLAY")
    wait_for(lambda: started.control("IDC_POSITION")["text"].startswith("00:02"), "the middle")
    started.command("CM_STOP")
    return started


def insert(program, tmp_files, command="CM_RECORD_INSERT"):
    """Begins to insert and waits for a second of sound in the temporary file."""
    known = set(tmp_files())
    program.record(command)
    (recording,) = wait_for(lambda: set(tmp_files()) - known, "a temporary file")
    wait_for(lambda: recording.stat().st_size > 16000, "a second of sound")
    return recording


@pytest.fixture
def tmp_files(drive_c):
    return lambda: [p for p in drive_c.glob("**/[Tt]emp/tmp*") if p.is_file()]


def inserted(before, after):
    """What was put between the two halves of the dictation, and where (bytes)."""
    assert sum(a != b for a, b in zip(before[:46], after[:46])) <= 8, "nothing but its sizes"
    before, after = before[46:], after[46:]
    extra = len(after) - len(before)
    place = next((i for i in range(0, len(before), 2) if before[i : i + 2] != after[i : i + 2]), len(before))
    assert extra > 0 and after[place + extra :] == before[place:]
    return place, after[place : place + extra]


def test_what_is_said_goes_between_and_nothing_is_lost(program, data, tmp_files):
    program.command("CM_RECORDMODE_INSERT")
    recording = insert(program, tmp_files, "CM_RECORD")
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
def test_an_end_of_the_program_leaves_it_to_the_next_start(program, corvane, data, tmp_files, answer):
    recording = insert(program, tmp_files)
    if answer == 7:  # an orderly end merges nothing, either
        program.post(WM_CLOSE)
        assert program.process.wait(10) == 0
        assert sound.microphone_streams() == 0
    else:
        program.kill()
    spoken = recording.read_bytes()[46:]
    assert data.audio(NUMBER).read_bytes() == program.before

    again = corvane()
    assert "An insertion could not be completed." in (text := again.wait_box(CAPTION)) and "Case 5" in text
    again.answer_box(CAPTION, answer)
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
        row = wait_for(lambda: next((r for r in again.rows() if "Insertion" in r["texts"][0]), None), "a new row")
        assert row["texts"][0] == "Insertion for Case 5"
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


def test_what_waits_is_settled_before_its_place_is_recorded_over(program, data, waiting):
    program.command("CM_RECORD_OVERWRITE")
    assert "at 00:04 is kept" in program.wait_box(CAPTION)
    program.answer_box(CAPTION, 2)
    assert sound.microphone_streams() == 0 and data.audio(NUMBER).read_bytes() == program.before
    program.command("CM_GOTOEND")
    program.record("CM_RECORD_OVERWRITE")
    program.stop()
    assert data.audio(NUMBER).read_bytes()[46:].startswith(program.before[46:]) and waiting[1].exists()


def test_what_waits_goes_with_its_dictation(program, data, waiting):
    program.command("CM_DELETEFILE")
    assert "A recording that waits to be inserted goes with it." in program.wait_box("Confirm Delete")
    program.answer_box("Confirm Delete", 6)
    wait_for(lambda: not waiting[0].exists() and not list(data.current.iterdir()), "an empty folder")
    assert not program.rows() and not program.boxes()


def make_damaged(recording, note):
    note.write_bytes(b"\0" * 2000)


def make_unreadable(recording, note):  # as that of another Windows user
    recording.unlink()
    recording.mkdir()


def make_held(recording, note):
    note.unlink()
    note.mkdir()


@pytest.mark.parametrize(
    "spoil, told, answer, records",
    [
        (make_damaged, "00000005.bad1", 1, True),
        (make_unreadable, "cannot be found or read here", 6, True),
        (make_held, "Please try again.", 1, False),
    ],
)
def test_record_never_refuses_without_a_word(program, data, waiting, spoil, told, answer, records):
    spoil(*waiting)
    program.command("CM_RECORD_INSERT")
    assert told in program.wait_box(CAPTION)
    program.answer_box(CAPTION, answer)
    if records:
        wait_for(lambda: sound.microphone_streams() > 0, "a running microphone")
        program.stop()
    assert sound.microphone_streams() == 0
    assert (data.current / "00000005.bad1").exists() == (spoil is make_damaged)
