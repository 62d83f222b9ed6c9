"""Delivery by FTP to a real server, the typist's report that waits there, and a server that hangs."""

import os
import struct
import subprocess
import time
from contextlib import closing

import pytest

from corvane import BUILD, DIALOG_CLASS, TITLE, WM_CLOSE, Dialog, pcm_wav, wait_for
from ftp import ADDRESS, PASSWORD, FtpServer, SilentServer, add_recipient
from test_sent import SENT

NUMBER_IN_DCT = slice(14, 18)


@pytest.fixture
def server(tmp_path):
    yield (server := FtpServer(tmp_path))
    server.close()


def test_a_dictation_arrives_by_ftp_and_the_typist_reports(corvane, data, server):
    typist = server.root / "pool" / "in"
    typist.mkdir(parents=True)
    report = typist / "s0000000.sta"
    report.write_bytes(struct.pack("<II16s", 0, 11, b"Typed"))
    data.add_dictation(11, pcm_wav(800), folder=data.sent, name="Reported", **SENT)
    sound = pcm_wav(90000, value=0x0A0D)  # no byte of it may be taken for the end of a line
    for number in (12, 13):
        data.add_dictation(number, sound, notes=b"first\r\nsecond\0", name="Same", date=1000000000)
    (data.folder / "Temp.sta").write_bytes(struct.pack("<II16s", 0, 11, b"Of an earlier run"))

    program = corvane()
    program.send_default(13)
    assert program.wait_sent(13) == "Sent"
    add_recipient(data)
    program.send_default(12)
    assert program.wait_sent(12) == "Sent"
    wait_for(lambda: data.status(11) == "Typed" and not report.exists(), "the typist's report")
    copied = bytearray(data.delivered()[0].read_bytes())
    copied[NUMBER_IN_DCT] = struct.pack("<I", 12)
    assert (typist / "dct00000-00012.dct").read_bytes() == copied
    wait_for(lambda: not (data.folder / "Temp.sta").exists(), "the end of the delivery")
    assert not list(data.sent.glob("*.dct"))
    dialog = Dialog(program, "Recover Sent Dictations", "CM_RECOVER")
    assert "2020-09-13 Reported: Sent to [Jo (jo@a)] status [Typed]" in dialog.ask("items", "IDC_RECOVER_LIST")


def test_the_library_lists_a_folder(server):
    (server.root / "in").mkdir()
    (server.root / "in" / "a.dct").touch()
    (server.root / "in" / "b.sta").write_bytes(bytes(24))
    program = ["wine", str(BUILD / "tests" / "corvane_wintests.exe"), "--gtest_filter=LFileTransferProtocol.*"]
    environment = {**os.environ, "CORVANE_FTP_SERVER": ADDRESS, "CORVANE_FTP_PASSWORD": PASSWORD}
    told = subprocess.run(program, env=environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=60).stdout
    assert b"PASSED  ] 1 test" in told, told.decode()


def test_a_server_that_hangs_keeps_neither_the_window_nor_the_dictations(corvane, data, tmp_path):
    silent = SilentServer()
    for number in (31, 32, 33):
        data.add_dictation(number, pcm_wav(8000))
    add_recipient(data, folder="")
    program = corvane()
    program.select(31, 32)
    program.command("CM_SENDFILE")
    silent.refuse()
    program.wait_box("Error")
    silent.take()
    begun = time.monotonic()
    program.answer_box("Error", 2, "Unable to log onto FTP server.")
    assert program.api(0) == 1 and time.monotonic() - begun < 3
    wait_for(lambda: data.queued() == 0, "an empty queue")
    program.send_default(33)  # waits behind the one that hangs
    wait_for(lambda: data.queued() == 1, "a dictation in the queue")

    silent.listener.close()
    with closing(FtpServer(tmp_path)) as server:
        program.post(WM_CLOSE)
        wait_for(lambda: not program.winctl.ask("find", DIALOG_CLASS, TITLE)["hwnd"], "a closed window", 2)
        corvane()  # while the other still waits for its server
        wait_for(lambda: data.status(33) == "Sent", "a dictation that is sent after all", 20)
        assert [path.name for path in server.root.iterdir()] == ["dct00000-00033.dct"]
