"""Delivery by FTP to a real server, the typist's report that waits there, and what servers do not take."""

import os
import struct
import subprocess
import time
from pathlib import Path

import pytest

from corvane import BUILD, DIALOG_CLASS, TITLE, WM_CLOSE, pcm_wav, recipient_record, wait_for
from ftp import ADDRESS, PASSWORD, USER, FtpServer, SilentServer
from test_queue import queue_count
from test_sent import SENT, SENT_LIST, Dialog

CLICK_OK = (
    "\n\nClick OK to continue to attempt to connect when you send your next file. "
    "Click Cancel to clear all pending send files."
)
NUMBER_IN_DCT = slice(14, 18)


@pytest.fixture
def server(request):
    server = FtpServer(Path(os.environ["RIG"]) / request.node.name)
    yield server
    server.close()


@pytest.fixture
def silent():
    silent = SilentServer()
    yield silent
    silent.close()


def address_to(data, folder="pool/in", password=PASSWORD):
    record = bytearray(recipient_record("Typist", "").ljust(1964, b"\0"))
    struct.pack_into("<I", record, 40, 2)
    for offset, text in ((428, ADDRESS), (556, USER), (588, password), (620, folder)):
        struct.pack_into(f"{len(text)}s", record, offset, text.encode())
    (data.user / "rec0.dat").write_bytes(record)


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
    address_to(data)
    program.send_default(12)
    assert program.wait_sent(12) == "Sent"
    wait_for(lambda: data.status(11) == "Typed" and not report.exists(), "the typist's report")
    copied = bytearray(data.delivered()[0].read_bytes())
    copied[NUMBER_IN_DCT] = struct.pack("<I", 12)
    assert (typist / "dct00000-00012.dct").read_bytes() == copied
    wait_for(lambda: not (data.folder / "Temp.sta").exists(), "the end of the delivery")
    assert not list(data.sent.glob("*.dct"))
    dialog = Dialog(program, "CM_RECOVER", "Recover Sent Dictations")
    assert "2020-09-13 Reported: Sent to [Jo (jo@a)] status [Typed]" in dialog.ask("items", SENT_LIST)


def test_the_library_gives_what_it_is_asked(server):
    (server.root / "in").mkdir()
    program = ["wine", str(BUILD / "tests" / "corvane_wintests.exe"), "--gtest_filter=LFileTransferProtocol.*"]
    environment = {**os.environ, "CORVANE_FTP_SERVER": ADDRESS, "CORVANE_FTP_PASSWORD": PASSWORD}
    ended = subprocess.run(program, env=environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
    assert ended.returncode == 0 and b"1 test" in ended.stdout and b"SKIPPED" not in ended.stdout, ended.stdout.decode()


def test_what_the_server_refuses_is_told(corvane, data, server):
    (server.root / "dct00000-00023.dct").mkdir()
    program = corvane()
    for number, settings, words in (
        (21, {"password": "wrong"}, "Unable to log onto FTP server."),
        (22, {"folder": "nowhere"}, "Unable to find FTP server directory."),
        (23, {"folder": ""}, "Unable to upload file to FTP server."),
    ):
        address_to(data, **settings)
        data.add_dictation(number, pcm_wav(8000))
        program.kill()
        program = corvane()
        program.send_default(number)
        assert program.wait_box("Error").startswith(words)
        program.answer_box("Error", 1)
        assert data.status(number) == "Send Failed"
        assert (data.sent / f"dct00000-{number:05}.dct").exists()
    assert list(server.root.iterdir()) == [server.root / "dct00000-00023.dct"]


def test_a_server_that_hangs_keeps_neither_the_window_nor_the_dictations(corvane, data, silent, request):
    for number in (31, 32, 33):
        data.add_dictation(number, pcm_wav(8000))
    address_to(data, folder="")
    program = corvane()
    program.select(31, 32)
    program.command("CM_SENDFILE")
    silent.refuse()
    assert program.wait_box("Error").startswith("Unable to log onto FTP server.")
    silent.take()
    begun = time.monotonic()
    program.answer_box("Error", 2)
    assert program.api(0) == 1 and time.monotonic() - begun < 3
    wait_for(lambda: queue_count(data) == 0, "an empty queue")
    program.send_default(33)  # waits behind the one that hangs
    wait_for(lambda: queue_count(data) == 1, "a dictation in the queue")

    silent.listener.close()
    server = FtpServer(Path(os.environ["RIG"]) / request.node.name)
    request.addfinalizer(server.close)
    program.post(WM_CLOSE)
    wait_for(lambda: not program.winctl.ask("find", DIALOG_CLASS, TITLE)["hwnd"], "a closed window", 2)
    corvane()  # while the other still waits for its server
    wait_for(lambda: data.status(33) == "Sent", "a dictation that is sent after all", 20)
    assert [path.name for path in server.root.iterdir()] == ["dct00000-00033.dct"]
