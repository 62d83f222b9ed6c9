"""Dictations to several typists at once, each in his own way, and what one of them cannot have."""

import email

import dct
import mail
import pytest
from corvane import Dialog, pcm_wav, read_ini, wait_for, write_ini
from ftp import ADDRESS, FtpServer
from ftp import add_recipient as add_ftp_recipient
from sound import read_wav

FOLDER, FTP, MAIL, NOWHERE = range(4)
LB_SETCURSEL = 0x186
OK, CANCEL = 1, 2
SOUND = pcm_wav(8000 * 30)


@pytest.fixture
def typists(data, tmp_path):
    """One for each method, and one whose folder the FTP server does not have."""
    server = FtpServer(tmp_path)
    (server.root / "pool" / "in").mkdir(parents=True)
    data.add_recipient("Typist", index=FOLDER)
    add_ftp_recipient(data, index=FTP)
    mail.add_recipient(data, "typist@example.org", "open sesame", MAIL)
    add_ftp_recipient(data, "nowhere", index=NOWHERE)
    write_ini(data.settings, {"settings": {"warnbelowmb": 0}, "email": {"usemapi": "false", "mailhost": ADDRESS}})
    for number in range(1, 7):
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
        for number, recipient in ((1, FOLDER), (2, FTP), (3, MAIL)):
            send_to(program, number, recipient)
        seen = set()
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

        # OK goes on with the others, Cancel empties the queue; what was not sent is kept.
        send_to(program, 4, NOWHERE)
        assert "Unable to find FTP server directory." in program.wait_box("Error")
        program.answer_box("Error", OK)
        program.send_default(5)
        assert program.wait_sent(5) == "Sent" and data.status(4) == "Send Failed"
        send_to(program, 6, NOWHERE)
        program.wait_box("Error")
        program.answer_box("Error", CANCEL)
        wait_for(lambda: read_ini(data.queue)["bgsend"]["count"] == "0", "an empty queue")
        assert data.status(6) == "Send Failed" and data.audio(6, data.sent).exists()
