"""The queue: what an earlier run left, what cannot be sent, and a file that lies."""

from corvane import WM_CLOSE, pcm_wav, read_ini, wait_for, windows_path, write_ini


def queue_count(data):
    return int(read_ini(data.queue)["bgsend"].get("count", 0))


def test_what_an_earlier_run_left_is_sent(corvane, data):
    audio = data.add_dictation(11, pcm_wav(8000), folder=data.sent, sendstatus="Sending").with_suffix(".wav")
    entry = {"file0": windows_path(audio), "sendto0": windows_path(data.user / "rec0.dat"), "id0": 0}
    write_ini(data.queue, {"bgsend": {"count": 1, **entry}})
    program = corvane()
    assert program.wait_sent(11) == "Sent"
    wait_for(lambda: queue_count(data) == 0, "an empty queue")


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
