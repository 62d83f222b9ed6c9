"""Dictations that come from a portable recorder: recorded from its line, and as files."""

import subprocess

import pytest
import sound
from corvane import WAITING, WM_CLOSE, Dialog, pcm_wav, read_ini, sizes_known, wait_for, windows_path

pytestmark = [pytest.mark.alone, pytest.mark.recording]

OK, NO = 1, 7
TITLE = "Record from Portable Recorder"


def says(dialog, words):
    wait_for(lambda: words in dialog.item("IDC_DOCK_STATUS")["text"], words)


def test_a_tape_is_recorded_at_normal_and_at_high_speed(corvane, data, speech, more_speech, tmp_path):
    tape, spoken = speech
    fast = tmp_path / "fast.wav"
    subprocess.run(["sox", tape, fast, "speed", "2"], check=True)
    settings = lambda: read_ini(data.settings)["settings"]
    program = corvane()
    program.command("IDC_DOCK")
    program.answer_box("Dock Method Not Known", OK, "you must select your preferred Dock method")

    dialog = Dialog(program, TITLE, "CM_DOCK_CABLE")
    says(dialog, "press the play button on your portable")
    program.command("CM_RECORD")  # nothing is lost yet, so the microphone goes first
    program.wait_status(WAITING)
    says(dialog, "Unable to start transfer")
    program.stop()
    says(dialog, "press the play button on your portable")
    dialog.press(OK)
    program.answer_box("Portable Recorder", OK, "no sound has reached the activation level")
    program.winctl.ask("post", dialog.window, WM_CLOSE, 0, 0)
    wait_for(lambda: not program.winctl.ask("window", dialog.window), "a closed dialog")
    assert not data.record(1) and not data.audio(1).exists(), "nothing was heard"
    assert settings()["dockmethod"] == "0" and "dockactivate" not in settings()

    program.command("IDC_DOCK")
    dialog = Dialog(program, TITLE)
    sound.play(more_speech[0])
    says(dialog, "When complete please click Done.")
    program.command("CM_RECORD")
    program.answer_box("Portable Recorder", OK, "recording your portable recorder")
    dialog.press("IDC_DOCK_HIGHSPEED")
    says(dialog, "counts when you click Restart")
    dialog.press(OK)
    program.answer_box("Portable Recorder", NO, "was recorded at 100 percent")
    dialog.press("IDC_DOCK_HIGHSPEED")
    dialog.press("IDC_DOCK_RESTART")
    says(dialog, "press the play button")
    assert data.audio(3).stat().st_size > 40000, "kept until something new is heard"
    sound.play(tape)
    dialog.end(OK)
    sound.assert_is(spoken, sound.read_wav(data.audio(3)))
    assert data.record(3)["name"] == "Tape 3" and program.row(3)["texts"][3] == "00:06"

    dialog = Dialog(program, TITLE, "CM_DOCK_CABLE")
    dialog.press("IDC_DOCK_HIGHSPEED")
    dialog.type("IDC_DOCK_PERCENT", "200")
    dialog.press("IDC_DOCK_AUTOSEND")
    says(dialog, "press the play button")
    sound.play(fast)
    dialog.end(OK)
    assert program.wait_sent(4) == "Sent" and len(data.delivered()) == 1 and not program.row(4)
    # What is kept around the words lasts twice as long at their own speed.
    sound.assert_is(spoken, sound.read_wav(data.audio(4, data.sent)), seconds=0.6)
    expected = {"dockhighspeed": "true", "dockhighspeedpercent": "200", "dockactivate": "-15dB"}
    assert expected.items() <= settings().items() and "docksoundinchan" not in settings()

    dialog = Dialog(program, TITLE, "CM_DOCK_CABLE")
    sound.play(fast)
    says(dialog, "When complete")
    dialog.press("IDC_DOCK_RESTART")
    says(dialog, "press the play button")
    program.command("CM_RECORD")
    program.wait_status(WAITING)
    dialog.end(OK)
    assert program.row(5) and program.api(7) == WAITING, "sending waits for the microphone"
    program.command("CM_ABOUT")
    assert program.close() == 0
    assert data.record(5, data.sent)["name"] == "Tape 5", "sent before the program ends"

    program = corvane()
    dialog = Dialog(program, TITLE, "CM_DOCK_CABLE")
    sound.play(fast)
    says(dialog, "When complete")
    assert program.close() == 0
    assert sizes_known(data.audio(6)) and sound.read_wav(data.audio(6)).duration > 5


def test_files_that_were_transferred_are_selected_and_the_rest_is_told(corvane, data, tmp_path):
    for name, wav in (("a", pcm_wav(8000)), ("b", pcm_wav(8000)), ("c", b"bad"), ("d", pcm_wav(8000))):
        (tmp_path / f"{name}.wav").write_bytes(wav)
    data.add_dictation(1, pcm_wav(8000))
    program = corvane()
    program.select(1)
    dialog = Dialog(program, "Transfer Files from Portable Recorder", "CM_DOCK_TRANSFER")
    dialog.type("IDC_DOCKTRANSFER_FOLDER", windows_path(tmp_path))
    dialog.end(OK)
    program.answer_box("c.wav", OK)
    program.answer_box("Transfer from Portable Recorder", OK, "were not transferred: 1.")
    wait_for(lambda: [r["number"] for r in program.rows() if r["selected"]] == [2, 3], "the selection")
