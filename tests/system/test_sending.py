"""Dictations to several typists at once, each in his own way, and what one of them cannot have."""

import email

import dct
import mail
import pytest
from corvane import WM_CLOSE, Dialog, pcm_wav, wait_for, write_ini
from ftp import ADDRESS, FtpServer
from ftp import add_recipient as add_ftp_recipient
from sound import read_wav

FOLDER, FTP, MAIL, NOWHERE, WRONG = range(5)
LB_SETCURSEL = 0x186
OK, CANCEL = 1, 2
SOUND = pcm_wav(8000 * 30)


@pytest.fixture
def typists(data, tmp_path):
    """One for each method; one whose folder the FTP server does not have, one whose password is wrong."""
    server = FtpServer(tmp_path)
    (server.root / "pool" / "in").mkdir(parents=True)
    data.add_recipient("Typist", index=FOLDER)
    add_ftp_recipient(data, index=FTP)
    mail.add_recipient(data, "typist@example.org", "open sesame", MAIL)
    add_ftp_recipient(data, "nowhere", index=NOWHERE)
    add_ftp_recipient(data, password="wrong", index=WRONG)
    write_ini(data.settings, {"settings": {"warnbelowmb": 0}, "email": {"usemapi": "false", "mailhost": ADDRESS}})
    for number in range(1, 8):
        data.add_dictation(number, SOUND, b"note\0")
    yield server
    server.close()


def send_to(program, number, recipient):
    program.select(number)
    dialog = Dialog(program, "Send Dictation To", "CM_SENDFILE_TO")
    dialog.tell("IDC_CHOOSE_LIST", LB_SETCURSEL, recipient)
    dialog.end(OK)


def test_three_methods_at_once_and_a_typist_who_is_not_reached(corvane, winctl, data, typists):
    with mail.server(ADDRESS) as letters:
        program = corvane()
        seen = {program.progress()}
        for number, recipient in ((1, FOLDER), (2, FTP), (3, MAIL)):
            send_to(program, number, recipient)
        wait_for(lambda: seen.add(program.progress()) or data.status(3) == "Sent", "the last of three", 30)
        assert [data.status(number) for number in (1, 2, 3)] == ["Sent"] * 3
        assert len(seen) > 1, f"progress that moves: {seen}"
        ((_, envelope),) = letters
        (_, file) = email.message_from_bytes(envelope.original_content).get_payload()
        arrived = {
            1: (data.delivered()[0].read_bytes(), ""),
            2: ((typists.root / "pool" / "in" / "dct00000-00002.dct").read_bytes(), ""),
            3: (file.get_payload(decode=True), "open sesame"),
        }
        for number, (contents, password) in arrived.items():
            (data.folder / "arrived").write_bytes(contents)
            container = dct.read(data.folder / "arrived", password)
            assert (container.number, container.notes) == (number, b"note\0")
            assert abs(read_wav(container.audio).duration - 30) < 0.1

        # What was not sent is kept, and the others go on.
        (typists.root / "pool" / "in" / "dct00000-00005.dct").mkdir()
        told = {NOWHERE: "Unable to find FTP server", FTP: "Unable to upload file", WRONG: "Unable to log onto"}
        for number, (recipient, words) in enumerate(told.items(), 4):
            send_to(program, number, recipient)
            program.answer_box("Error", OK, words)
            assert program.wait_sent(number) == "Send Failed" and data.audio(number, data.sent).exists()
        program.send_default(7)
        assert program.wait_sent(7) == "Sent"


def test_a_share_that_is_gone_is_told(corvane, data):
    for number in (31, 32):
        data.add_dictation(number, pcm_wav(8000))
    data.share.rmdir()
    program = corvane()
    program.send_default(31)
    text = program.answer_box("Error", CANCEL, "Unable to copy files over network")
    assert "kept among the sent dictations" in text and program.api(0) == 1 and data.queued() == 0
    # The recording itself is still there to be recovered and sent again.
    assert data.audio(31, data.sent).read_bytes() == pcm_wav(8000)
    # Closing tells what the timer has not told yet, and a kill only puts it off.
    program.send_default(32)
    wait_for(lambda: data.status(32) == "Sent" and data.queued() == 0, "an empty queue")
    program.post(WM_CLOSE)
    assert program.wait_box("Error")
    program.kill()
    program = corvane()
    program.answer_box("Error", OK)
    assert program.close() == 0
