"""The queue: what an earlier run left, what cannot be sent, and a file that lies."""

import dct
from corvane import WM_CLOSE, pcm_wav, read_ini, wait_for, windows_path, write_ini


def queue_count(data):
    return int(read_ini(data.queue)["bgsend"].get("count", 0))


def test_what_an_earlier_run_left_is_sent_in_order(corvane, data):
    values = {"count": 3}
    for i, number in enumerate([11, 12, 13]):
        base = data.add_dictation(number, pcm_wav(8000), folder=data.sent, sendstatus="Sending")
        values[f"file{i}"] = windows_path(base.with_suffix(".wav"))
        values |= {f"sendto{i}": windows_path(data.user / "rec0.dat"), f"id{i}": 0}
    write_ini(data.queue, {"bgsend": values})
    program = corvane()
    for number in (11, 12, 13):
        assert program.wait_sent(number) == "Sent"
    wait_for(lambda: queue_count(data) == 0, "an empty queue")
    delivered = sorted(data.delivered(), key=lambda p: p.stat().st_mtime_ns)
    assert [dct.read(p).number for p in delivered] == [11, 12, 13]
    assert program.close() == 0


def test_a_share_that_is_gone_is_told(corvane, data):
    for number in (31, 32):
        data.add_dictation(number, pcm_wav(8000))
    data.share.rmdir()
    program = corvane()
    program.send_default(31)
    text = program.wait_box("Error")
    assert text.startswith("Unable to copy files over network") and "kept among the sent dictations" in text
    program.answer_box("Error", 2)
    assert program.api(0) == 1 and queue_count(data) == 0
    # The recording itself is still there to be recovered and sent again.
    assert data.audio(31, data.sent).read_bytes() == pcm_wav(8000)
    # Closing tells what the timer has not told yet, and a kill only puts it off.
    program.send_default(32)
    wait_for(lambda: data.status(32) == "Sent" and queue_count(data) == 0, "an empty queue")
    program.post(WM_CLOSE)
    assert program.wait_box("Error")
    program.kill()
    program = corvane()
    program.answer_box("Error", 1)
    assert program.close() == 0


def test_without_a_recipient_nothing_is_moved(corvane, data):
    base = data.add_dictation(41, pcm_wav(8000))
    write_ini(data.user_file, {"settings": {"sendcount": 1, "senddefault": 1}})
    program = corvane()
    program.select(41)
    program.command("CM_SENDFILE")
    box = wait_for(lambda: next(iter(program.boxes()), None), "a message")
    assert any(c["text"].startswith("No Typist Recipients have been set up") for c in box["children"])
    program.answer_box(box["text"], 1)
    assert base.with_suffix(".wav").exists() and program.row(41)
