"""What was sent: its list, which follows the queue, and the way back."""

import struct

from corvane import DIALOG_CLASS, IDS, pcm_wav, wait_for, windows_path

WM_KEYDOWN, VK_DOWN = 0x100, 0x28
SENT = {"sendstatus": "Sent", "senddate": 1600000000, "recipient": "Jo (jo@a)"}


class Dialog:
    """A dialog that a command opens."""

    def __init__(self, program, command, title):
        self.winctl = program.winctl
        program.command(command)
        self.hwnd = wait_for(lambda: self.winctl.ask("find", DIALOG_CLASS, title)["hwnd"], title)

    def control(self, number):
        return next(c for c in self.winctl.ask("window", self.hwnd)["children"] if c["id"] == number)

    def rows(self):
        return self.winctl.ask("list", self.control(IDS["IDC_SENTWORK_LIST"])["hwnd"])["rows"]

    def items(self):
        return self.winctl.ask("items", self.control(IDS["IDC_RECOVER_LIST"])["hwnd"])

    def key(self, control, key):
        self.winctl.ask("post", self.control(control)["hwnd"], WM_KEYDOWN, key, 0)

    def click(self, number):
        self.winctl.ask("click", self.control(number)["hwnd"])

    def close(self):
        self.click(2)
        wait_for(lambda: not self.winctl.ask("window", self.hwnd), "the end of the dialog")


def test_the_list_of_sent_work_follows_the_queue(corvane, winctl, data):
    data.add_dictation(11, pcm_wav(800), folder=data.sent, **SENT)
    data.add_dictation(12, pcm_wav(8000))
    report = data.share / "s0000000.sta"
    report.write_bytes(struct.pack("<II16s", 0, 11, b"Typed"))
    winctl.ask("hold", windows_path(data.folder / "sending.lck"))  # as another program that sends does
    program = corvane()
    program.send_default(12)
    wait_for(lambda: program.rows() == [], "a dictation in the queue")
    dialog = Dialog(program, "CM_VIEWSENT", "Sent Work Progress")
    waiting, sent = (row["texts"][:4] for row in dialog.rows())
    assert (waiting[0], waiting[3]) == ("Dictation 012", "Waiting, place 1")
    assert sent[:3] == ["Dictation 011", "2020-09-13 12:26", "Jo (jo@a)"]
    wait_for(lambda: dialog.rows()[1]["texts"][3] == "Typed" and not report.exists(), "the typist's report")
    assert dialog.control(IDS["IDC_SENTWORK_SUMMARY"])["text"] == "1 dictation waits to be sent."
    dialog.key(IDS["IDC_SENTWORK_LIST"], VK_DOWN)
    wait_for(lambda: dialog.rows()[1]["selected"], "a selected row")
    winctl.ask("release")
    wait_for(lambda: dialog.rows()[0]["texts"][3] == "Sent", "a status that follows")
    wait_for(lambda: dialog.control(IDS["IDC_SENTWORK_SUMMARY"])["text"] == "No dictation waits to be sent.", "a summary")
    assert [row["selected"] for row in dialog.rows()] == [False, True]
    dialog.close()


def test_a_sent_dictation_is_recovered_whole_and_can_be_sent_again(corvane, winctl, data):
    sound, notes = pcm_wav(24000), b"Case 12\0"
    data.add_dictation(12, sound, notes, folder=data.sent, **SENT)
    data.add_dictation(13, sound, folder=data.sent, **{**SENT, "senddate": 1600000001})
    data.add_dictation(12, pcm_wav(800), b"other\0", name="Same number")
    winctl.ask("hold", windows_path(data.folder / "sending.lck"))
    program = corvane()
    waiting = program.new()
    data.audio(waiting).write_bytes(sound)
    program.send_default(waiting)
    wait_for(lambda: data.status(waiting) == "Sending", "a dictation in the queue")

    dialog = Dialog(program, "CM_RECOVER", "Recover Sent Dictations")
    texts = [item["text"] for item in dialog.items()["items"]]
    assert texts[1:] == [f"2020-09-13 Dictation {n}: Sent to [Jo (jo@a)] status [Sent]" for n in ("013", "012")]
    select_next = lambda row: (dialog.key(101, VK_DOWN), wait_for(lambda: dialog.items()["selected"] == row, "a selection"))
    select_next(0)
    dialog.click(1)  # the queue still names it
    assert "still waits to be sent" in program.wait_box("Error")
    program.answer_box("Error", 1)
    select_next(1)
    select_next(2)
    dialog.click(IDS["IDC_RECOVER_PLAY"])
    wait_for(lambda: dialog.control(IDS["IDC_RECOVER_PLAY"])["text"] == "&Stop", "a dictation that plays")
    dialog.click(1)  # while it plays
    wait_for(lambda: len(dialog.items()["items"]) == 2, "a shorter list")
    dialog.close()
    wait_for(lambda: program.row(12) and program.row(12)["selected"], "the recovered dictation")

    # That of the same number has another one, with its own words.
    (other,) = [row["number"] for row in program.rows() if row["texts"][0] == "Same number"]
    assert (data.audio(12).read_bytes(), data.audio(other).read_bytes()) == (sound, pcm_wav(800))
    assert (program.notes(), program.row(other)["texts"][5]) == ("Case 12", "other")
    assert program.row(12)["texts"][3] == "00:03"
    assert not list(data.sent.glob("00000012.*")) and not (data.user / "moving.txt").exists()
    winctl.ask("release")
    program.send_default(12)
    assert program.wait_sent(12) == "Sent"
