"""What was sent: its list, which follows the queue, and the way back."""

import struct

from corvane import Dialog, pcm_wav, wait_for, windows_path

WM_KEYDOWN, VK_DOWN, LB_GETCURSEL = 0x100, 0x28, 0x188
RECOVER, CLOSE = 1, 2
MIC_BUTTON, MIC_STOP = 1792, 2
SENT = {"sendstatus": "Sent", "senddate": 1600000000, "recipient": "Jo (jo@a)"}


def test_the_list_of_sent_work_follows_the_queue_and_the_typist(corvane, winctl, data):
    data.add_dictation(11, pcm_wav(800), folder=data.sent, **SENT)
    data.add_dictation(12, pcm_wav(8000))
    report = data.share / "s0000000.sta"
    report.write_bytes(struct.pack("<II16s", 0, 11, b"Typed"))
    winctl.ask("hold", windows_path(data.folder / "sending.lck"))  # as another program that sends does
    program = corvane()
    program.send_default(12)
    wait_for(lambda: program.rows() == [], "a dictation in the queue")
    dialog = Dialog(program, "Sent Work Progress", "CM_VIEWSENT")
    rows = lambda: [row["texts"][:4] for row in dialog.ask("list", "IDC_SENTWORK_LIST")["rows"]]
    selected = lambda: [row["selected"] for row in dialog.ask("list", "IDC_SENTWORK_LIST")["rows"]]
    wait_for(lambda: rows()[1][3] == "Typed" and not report.exists(), "the typist's report")
    assert (rows()[0][0], rows()[0][3]) == ("Dictation 012", "Waiting, place 1")
    assert rows()[1][:3] == ["Dictation 011", "2020-09-13 12:26", "Jo (jo@a)"]
    dialog.ask("post", "IDC_SENTWORK_LIST", WM_KEYDOWN, VK_DOWN, 0)
    wait_for(lambda: selected() == [False, True], "a selected row")
    winctl.ask("release")
    wait_for(lambda: rows()[0][3] == "Sent", "a status that follows")
    wait_for(lambda: dialog.item("IDC_SENTWORK_SUMMARY")["text"] == "No dictation waits to be sent.", "a summary that follows")
    assert selected() == [False, True]


def test_a_sent_dictation_is_recovered_whole_and_can_be_sent_again(corvane, winctl, data):
    sound = pcm_wav(240000)  # 30 s, longer than any wait
    data.add_dictation(12, sound, b"Case 12\0", folder=data.sent, **SENT)
    data.add_dictation(12, pcm_wav(800), b"other\0", name="Same number")
    winctl.ask("hold", windows_path(data.folder / "sending.lck"))
    program = corvane()
    waiting = []
    for _ in range(2):
        waiting.append(program.new())
        data.audio(waiting[-1]).write_bytes(sound)
        program.send_default(waiting[-1])
        wait_for(lambda: data.status(waiting[-1]) == "Sending", "a dictation in the queue")

    dialog = Dialog(program, "Recover Sent Dictations", "CM_RECOVER")
    items = lambda: dialog.ask("items", "IDC_RECOVER_LIST")
    assert items()[2:] == ["2020-09-13 Dictation 012: Sent to [Jo (jo@a)] status [Sent]"]

    def select(number):
        row = next(i for i, text in enumerate(items()) if f"Dictation {number:03}" in text)
        key = 0x24 if row == 0 else VK_DOWN  # Home
        while dialog.tell("IDC_RECOVER_LIST", LB_GETCURSEL) != row:
            dialog.ask("send", "IDC_RECOVER_LIST", WM_KEYDOWN, key, 0)

    select(waiting[0])
    dialog.press(RECOVER)  # the other program may be at work on the first of the queue
    program.answer_box("Error", 1, "It is being sent at the moment")
    select(waiting[1])
    dialog.press(RECOVER)
    wait_for(lambda: len(items()) == 2, "a dictation that is taken out of the queue")
    assert data.queued() == 1 and data.audio(waiting[1]).read_bytes() == sound
    select(12)
    play = lambda: dialog.item("IDC_RECOVER_PLAY")["text"]
    dialog.press("IDC_RECOVER_PLAY")
    wait_for(lambda: play() == "&Stop", "a dictation that plays")
    program.post(MIC_BUTTON, MIC_STOP)
    wait_for(lambda: play() == "&Play", "a microphone that stops it")
    dialog.press("IDC_RECOVER_PLAY")
    wait_for(lambda: play() == "&Stop", "a dictation that plays again")
    dialog.press(RECOVER)
    wait_for(lambda: len(items()) == 1, "a shorter list")
    dialog.press(CLOSE)
    wait_for(lambda: program.row(12) and program.row(12)["selected"], "the recovered dictation")

    program.select(12)
    wait_for(lambda: program.api(8) == 12, "the current dictation")
    # That of the same number has another one, with its own words.
    (other,) = [row["number"] for row in program.rows() if row["texts"][0] == "Same number"]
    assert (data.audio(12).read_bytes(), data.audio(other).read_bytes()) == (sound, pcm_wav(800))
    assert (program.notes(), program.row(12)["texts"][3], program.row(other)["texts"][5]) == ("Case 12", "00:30", "other")
    assert not list(data.sent.glob("00000012.*"))
    winctl.ask("release")
    program.send_default(12)
    assert program.wait_sent(12) == "Sent"
