"""The user's recipients, and how e-mail is sent."""

from corvane import Dialog, pcm_wav, read_ini, wait_for, windows_path

LB_SETCURSEL = 0x186
OK, YES = 1, 6
LIST = "IDC_RECIPIENTS_LIST"


def test_recipients_are_added_edited_deleted_and_chosen(corvane, winctl, data):
    for index, name in enumerate(("Ann", "Bo")):
        data.add_recipient(name, index=index)
    data.add_dictation(7, pcm_wav(800))
    folder = windows_path(data.share)
    winctl.ask("hold", windows_path(data.folder / "sending.lck"))  # as another program that sends does
    program = corvane()
    program.send_default(7)
    sheet = Dialog(program, "Recipient Send Settings", "CM_SETTINGS_RECIPIENTS")
    shown = lambda: sheet.ask("items", LIST)
    assert shown() == [f"Ann DEFAULT ({folder})", f"Bo ({folder})"]

    sheet.press("IDC_RECIPIENTS_ADD")
    editor = Dialog(program, "Recipient")
    enabled = lambda *names: [editor.item("IDC_RECIPIENT_" + name)["enabled"] for name in names]
    assert editor.item("IDC_RECIPIENT_NAME")["text"] == "Untitled"
    assert enabled("ADDRESS", "FOLDER", "HOST", "ENCRYPT", "KEY") == [True, False, False, True, False]
    editor.refuse("e-mail address")
    editor.press("IDC_RECIPIENT_WAVE")
    program.answer_box("Confirm File Format", YES, "Are you sure you want to user the WAV file format?")
    assert enabled("ENCRYPT", "KEY") == [False, False]
    editor.press("IDC_RECIPIENT_DCT")
    editor.press("IDC_RECIPIENT_ENCRYPT")
    editor.press("IDC_RECIPIENT_BYFTP")
    assert enabled("ADDRESS", "FOLDER", "HOST", "ENCRYPT", "KEY") == [False, False, True, True, True]
    editor.type("IDC_RECIPIENT_NAME", "Cy")
    editor.type("IDC_RECIPIENT_HOST", "hostA")
    editor.refuse("unencrypted")
    editor.type("IDC_RECIPIENT_KEY", "secret")
    editor.end(OK)
    wait_for(lambda: shown()[2:] == ["Cy (hostA)"], "the new recipient")
    record = (data.user / "rec2.dat").read_bytes()
    assert (len(record), record[:11], record[40:44], record[428:434], record[876:883]) == (
        1964, b"\1\0\0\0\1\0\0\0Cy\0", b"\2\0\0\0", b"hostA\0", b"secret\0")  # fmt: skip

    sheet.tell(LIST, LB_SETCURSEL, 0)
    sheet.press("IDC_RECIPIENTS_DELETE")
    program.answer_box("Confirm Delete", YES, "1 dictation(s) still wait to be sent")
    program.answer_box("Error", OK, "is being sent")  # by that other program
    winctl.ask("release")
    assert program.wait_sent(7) == "Sent"
    sheet.press("IDC_RECIPIENTS_DELETE")
    question = program.answer_box("Confirm Delete", YES, "Are you sure you want to delete this recipient?")
    assert "will then be Bo" in question
    wait_for(lambda: shown() == [f"Bo DEFAULT ({folder})", "Cy (hostA)"], "the others")
    assert not (data.user / "rec2.dat").exists() and read_ini(data.user_file)["settings"]["sendcount"] == "2"

    sheet.show(1)
    sheet.press("IDC_EMAIL_SMTP")
    sheet.refuse("You must enter a mail host name")
    sheet.type("IDC_EMAIL_HOST", "mail.example:me:pw")
    sheet.end(OK)
    assert read_ini(data.settings)["email"] == {"usemapi": "false", "mailhost": "mail.example:me:pw"}
