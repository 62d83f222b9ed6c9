"""Several dictating users on one installation, and the settings of one of them."""

import subprocess

import pytest
from corvane import WAITING, Dialog, pcm_wav, read_ini, sizes_known, wait_for, write_ini
from sound import assert_is, microphone_streams, play, read_wav

CB_SETCURSEL, LB_SETCURSEL = 0x14E, 0x186
OK, CANCEL, YES, APPLY = 1, 2, 6, 0x3021
RECORDING_PAGE, OPTIONS_PAGE = 1, 3


@pytest.fixture(autouse=True)
def first_user():
    """The next test begins as user 0 again."""
    yield
    key = r"HKCU\Software\Mervald\Corvane\CurrentVersion"
    subprocess.run(["wine", "reg", "add", key, "/v", "CurrentUser", "/t", "REG_DWORD", "/d", "0", "/f"], check=True)


def expect_user(program, name):
    wait_for(lambda: program.control("IDC_LOGGEDON")["text"] == f"Logged on as [{name}]", f"{name} logged on")


def open_log_on(program):
    return Dialog(program, "Log On As Other User", "CM_LOGON")


def log_on(program, position, name):
    dialog = open_log_on(program)
    dialog.tell("IDC_LOGON_LIST", LB_SETCURSEL, position)
    dialog.end(OK)
    expect_user(program, name)


def numbers(program):
    return sorted(row["number"] for row in program.rows())


def test_each_user_has_a_list_of_his_own_and_the_queue_goes_on(corvane, data, more_speech):
    ada, bo = "Dr. Ada Blake", "Dr. Bo Frey"
    data.add_dictation(1, pcm_wav(8000 * 60))
    data.add_dictation(2, notes=b"old\0")
    program = corvane()
    program.send_default(1)
    wait_for(lambda: program.api(8) == 2, "the other dictation")
    program.api(6, " and new")
    dialog = open_log_on(program)
    dialog.press("IDC_LOGON_ADD")
    add = Dialog(program, "Add User")
    add.refuse("Please enter the name")
    add.type("IDC_ADDUSER_NAME", bo)
    add.end(OK)
    expect_user(program, bo)
    assert program.rows() == [] and (data.current / "00000002.txt").read_bytes() == b"old and new\0"
    assert program.wait_sent(1) == "Sent" and len(data.delivered()) == 1

    data.current = data.folder / "00000001" / "Current"
    assert program.dictate(*more_speech) == 1 and numbers(program) == [1]
    assert_is(more_speech[1], read_wav(data.audio(1)))
    notes = data.current / "00000001.txt"
    notes.mkdir()  # as little writable as on a full disk
    program.api(6, "mine")
    program.command("CM_LOGON")
    program.answer_box("Notes Not Saved", OK, "could not be saved")
    notes.rmdir()
    program.record()
    log_on(program, 0, ada)
    assert notes.read_bytes() == b"mine\0"
    assert numbers(program) == [2] and program.notes() == "old and new" and sizes_known(data.audio(1))
    (data.current / "00000005.wav").write_bytes(pcm_wav(8000, sizes_known=False))  # left by a crash
    log_on(program, 1, bo)
    assert numbers(program) == [1, 5]
    assert program.close() == 0

    program = corvane()
    expect_user(program, bo)
    dialog = open_log_on(program)
    dialog.press("IDC_LOGON_REMOVE")
    program.answer_box("Confirm Remove User", YES, "Are you sure you want to remove this user?")
    expect_user(program, ada)
    assert numbers(program) == [2] and data.audio(1).exists()
    assert read_ini(data.settings)["users"] == {"count": "1", "user0": "0"}


def test_the_first_user_gives_himself_a_name_once(corvane, data):
    name, email = "Dr. Jo Lind", "jo@example.org"
    write_ini(data.user_file, {"settings": {"sendcount": 1}})
    program = corvane()
    expect_user(program, "User 0")
    for typed in (name, "x"):
        sheet = Dialog(program, "User Settings", "CM_SETTINGS_USER")
        sheet.type("IDC_DETAILS_NAME", typed)
        sheet.type("IDC_DETAILS_EMAIL", email)
        sheet.end(OK)
        expect_user(program, name)
    assert {"name": name, "email": email}.items() <= read_ini(data.user_file)["user"].items()


def test_the_settings_take_effect_at_once_and_what_cannot_be_is_refused(corvane, data, more_speech):
    program = corvane()
    sheet = Dialog(program, "User Settings", "CM_SETTINGS_USER")
    assert sheet.item("IDC_DETAILS_NAME")["text"] == "Dr. Ada Blake"
    sheet.type("IDC_DETAILS_PHONE", "12 34")
    assert microphone_streams() == 0
    sheet.show(RECORDING_PAGE)
    wait_for(lambda: "would wait" in sheet.item("IDC_RECORDING_HEARD")["text"], "a silent microphone")
    sheet.type("IDC_RECORDING_VOLUME", "5")
    sheet.type("IDC_RECORDING_START", "-40")
    sheet.tell("IDC_RECORDING_RATE", CB_SETCURSEL, 2)
    sheet.press(APPLY)
    wait_for(lambda: read_ini(data.settings)["settings"].get("voiceactivate") == "-40dB", "the stored level")
    # Who dictates with a pedal may do so while the sheet stands.
    program.command("CM_RECORD")
    program.wait_status(WAITING)
    wait_for(lambda: "Not measured" in sheet.item("IDC_RECORDING_HEARD")["text"], "a meter that rests")
    play(more_speech[0])
    program.command("CM_STOP")
    wait_for(lambda: "would wait" in sheet.item("IDC_RECORDING_HEARD")["text"], "the meter again")
    assert read_wav(data.audio(program.api(8))).rate == 16000

    sheet.show(OPTIONS_PAGE)
    wait_for(lambda: microphone_streams() == 0, "a closed microphone")
    sheet.type("IDC_OPTIONS_DELETEDAYS", "4000")
    sheet.refuse("from 0 to 3650")
    sheet.type("IDC_OPTIONS_DELETEDAYS", "90")
    sheet.press("IDC_OPTIONS_ASK2")
    assert sheet.item("IDC_OPTIONS_TAG2")["enabled"]
    sheet.type("IDC_OPTIONS_TAG2", "case no")
    sheet.refuse("a tag of one word")
    sheet.type("IDC_OPTIONS_TAG2", "case")
    sheet.end(OK)
    settings = read_ini(data.settings)
    expected = {"recordvolume": "5dB", "voiceactivate": "-40dB", "autodeletedays": "90", "warnbelowmb": "0"}
    assert expected.items() <= settings["settings"].items() and "soundin" not in settings["settings"]
    assert settings["prompt2"] == {"prompt": "true", "xmltag": "case"}
    user = read_ini(data.user_file)
    assert user["user"]["phone"] == "12 34" and user["settings"]["samplerate"] == "16000"
    sheet = Dialog(program, "User Settings", "CM_SETTINGS_USER")
    sheet.type("IDC_DETAILS_PHONE", "56 78")
    sheet.end(CANCEL)
    assert read_ini(data.user_file)["user"]["phone"] == "12 34"
