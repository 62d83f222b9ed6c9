"""What the window offers: its menu, its list, and the ways in for other programs."""

from corvane import pcm_wav, wait_for, xdotool


def test_other_programs_can_send_create_and_delete(corvane, data):
    data.add_dictation(9, pcm_wav(8000))
    program = corvane()
    program.select(9)
    program.post(32767, 9)
    assert program.wait_sent(9) == "Sent"
    assert (program.api(0), program.api(8), program.api(11)) == (1, 0, 0)
    assert program.api(4) == 0
    number = program.api(8)
    assert number == 1 and data.record(1)["name"] == "Dictation 001"
    program.post(32767, 10)
    program.answer_box("Confirm Delete", 6, "Are you sure you want to delete this dictation?")
    wait_for(lambda: not program.rows(), "an empty list")
    assert list(data.current.iterdir()) == [] and program.api(8) == 0
    program.api(3)
    assert program.process.wait(10) == 0


def test_notes_are_kept_when_another_row_is_chosen_and_when_the_program_ends(corvane, data):
    for number in (1, 2):
        data.add_dictation(number, notes=b"old\0")
    program = corvane()
    for number in (1, 2):
        program.select(number)
        wait_for(lambda: program.api(8) == number and program.notes() == "old", "the notes of the row")
        program.api(6, f" and {number}")
    assert program.row(1)["texts"][5] == "old and 1"
    assert program.close() == 0
    assert [(data.current / f"0000000{n}.txt").read_bytes() for n in (1, 2)] == [b"old and 1\0", b"old and 2\0"]


def test_priorities_and_deletion_take_every_selected_row(corvane, data):
    data.add_dictation(1, pcm_wav(60 * 8000), b"\r\nfirst line\r\nsecond\0gone", date=1012345678)
    for number in (2, 3, 4):
        data.add_dictation(number, pcm_wav(800), b"n\0")
    program = corvane()
    name, date, clock, *rest = program.row(1)["texts"]
    assert (name, rest) == ("Dictation 001", ["01:00", "Normal", "  first line  second"])
    assert "29" in date and "02" in date and ":07" in clock
    assert program.row(4)["selected"] and program.row(4)["focused"]
    program.select(1, 2, 4)
    program.command("CM_PRIORITY_HIGH")
    wait_for(lambda: [data.record(n).get("priority") for n in (1, 2, 3, 4)] == ["High", "High", None, "High"], "High")
    assert {r["number"] for r in program.rows() if r["selected"]} == {1, 2, 4}
    assert [program.row(n)["texts"][4] for n in (1, 2, 3, 4)] == ["High", "High", "Normal", "High"]
    program.command("CM_DELETEFILE")
    program.answer_box("Confirm Delete", 7)
    assert len(program.rows()) == 4
    program.command("CM_DELETEFILE")
    program.answer_box("Confirm Delete", 6)
    wait_for(lambda: [r["number"] for r in program.rows()] == [3], "one row left")
    assert sorted(p.name for p in data.current.iterdir()) == ["00000003.dat", "00000003.txt", "00000003.wav"]


def test_a_hurried_hand_makes_one_dictation_and_stays_with_it(corvane, data):
    for number in (1, 2, 3):
        data.add_dictation(number, pcm_wav(8000), name=f"Case {number}")
    program = corvane()
    wait_for(lambda: program.describe()["foreground"], "the window in front")

    def click(name, times):
        program.point_at(name)
        xdotool("click", "--repeat", times, "--delay", 40, 1)

    click("IDC_NEW", 2)
    wait_for(lambda: program.api(8) == 4, "a new dictation")
    xdotool("key", "c", "space", "Return")
    program.command("CM_PRIORITY_LOW")  # worked off after the keys
    wait_for(lambda: data.record(4).get("priority") == "Low", "the priority of the new dictation")
    assert program.api(8) == 4 and len(program.rows()) == 4 and program.api(7) == 0
    # Typing on after a command that takes another dictation changes nobody's notes.
    program.select(2)
    click("IDC_NOTES", 1)
    xdotool("key", "--delay", 50, "x", "ctrl+s", "ctrl+s", "y")
    wait_for(lambda: data.status(2) == "Sent", "the dictation delivered")
    assert (data.sent / "00000002.txt").read_bytes() == b"x\0" and program.notes() == "" and len(program.rows()) == 3
    # Where one row is shown, one is selected.
    program.select(1, 3)
    program.command("CM_VIEW_COMPACT")
    program.command("CM_DELETEFILE")
    assert "All" not in program.wait_box("Confirm Delete")
    program.answer_box("Confirm Delete", 6)
    wait_for(lambda: len(program.rows()) == 2, "one deleted")


def test_read_only_files_are_read_and_a_change_that_cannot_be_stored_is_told_once(corvane, data):
    data.add_dictation(1, pcm_wav(8000))
    paths = [data.settings, data.user_file, *data.current.iterdir()]
    before = [path.read_bytes() for path in paths]
    for path in paths:
        path.chmod(0o444)
    program = corvane()
    for change in (lambda: program.api(5, "Harris"), lambda: program.command("CM_PRIORITY_HIGH")):
        change()
        assert "could not be stored" in program.wait_box("Error")
        assert (program.api(8), program.api(7)) == (1, 0)  # answered while a box stands; changes are not made
        program.api(10)
        program.answer_box("Error", 1)
        assert not program.boxes()
    assert [program.row(1)["texts"][column] for column in (0, 3, 4)] == ["Dictation 001", "00:01", "Normal"]
    program.command("CM_VIEW_COMPACT")
    assert program.close() == 0 and [path.read_bytes() for path in paths] == before
