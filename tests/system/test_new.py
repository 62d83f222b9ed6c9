"""A new dictation: the fields that are asked for, and the tones."""

import numpy as np
from corvane import pcm_wav, read_ini, wait_for, write_ini, xdotool
from sound import HEARD_RATE, Heard

CM_OK, CM_CANCEL = 1, 2


def test_the_fields_that_are_asked_for_stand_in_the_notes(corvane, data):
    settings = {"settings": {"warnbelowmb": 0}, "prompt1": {"prompt": "true", "previous": "17"}}
    settings["prompt2"] = {"prompt": "true", "text": "Patient?", "xmltag": "patient"}
    write_ini(data.settings, settings)
    program = corvane()
    number = program.new()
    program.wait_box("Dictation 001")
    xdotool("type", "A 12")  # over the answer before, which is selected
    program.answer_box("Dictation 001", CM_OK, "Enter case or file no.")
    wait_for(lambda: any("Patient?" in c["text"] for b in program.boxes() for c in b["children"]), "the second field")
    program.answer_box("Dictation 001", CM_CANCEL)
    notes = data.current / f"{number:08}.txt"
    wait_for(lambda: notes.exists() and notes.read_bytes() == b"<fileno>A 12</fileno>\r\n\0", "the notes")
    assert read_ini(data.settings)["prompt1"]["previous"] == "A 12"
    assert program.row(number)["texts"][5] == "<fileno>A 12</fileno>  "


def test_a_tone_tells_that_nothing_runs_any_more(corvane, data):
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "stoppedtone": "true", "stoppedtonerepeat": "true"}})
    data.add_dictation(1, pcm_wav(16000, value=0))
    program = corvane()
    with Heard() as heard:
        pause = lambda: np.diff(np.flatnonzero(np.abs(heard.samples) > 300)).max(initial=0) / HEARD_RATE
        program.command("CM_PLAY")
        wait_for(lambda: pause() > 1, "a tone after the end, and again", 15)
    assert 5 < pause() < 8
