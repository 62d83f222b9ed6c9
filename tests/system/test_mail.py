"""Dictations that go by mail: through a server, and through the mail program of the platform."""

import email
import email.policy
import os
import shutil
import socket
import time

import dct
import mail
import pytest
from aiosmtpd.smtp import AuthResult
from corvane import TOOLS, pcm_wav, windows_path, write_ini
from ftp import ADDRESS

PHRASE = "open sesame, and all else that a recipient's file has room for"


def prepare(data, to, dictations, mailhost="", usemapi="false"):
    """One typist with a mail address, and some dictations."""
    write_ini(data.settings, {"settings": {"warnbelowmb": 0}, "email": {"usemapi": usemapi, "mailhost": mailhost}})
    mail.add_recipient(data, to, PHRASE)
    for number in dictations:
        data.add_dictation(number, pcm_wav(8000), b".secret\0")


def check_password(server, session, envelope, mechanism, data):
    return AuthResult(success=(data.login, data.password) == (b"ann", b"se:cret"))


@pytest.mark.every_windows
@pytest.mark.parametrize("login", ["", ":ann:se:cret"])
@pytest.mark.filterwarnings("ignore:Requiring AUTH")
def test_a_mail_arrives_with_its_dictation(corvane, data, login, tmp_path):
    prepare(data, "refuse@example.org,typist@example.org", [5], ADDRESS + login)
    options = {"auth_required": True, "auth_require_tls": False, "authenticator": check_password} if login else {}
    with mail.server(ADDRESS, **options) as letters:
        program = corvane(environment={"TZ": "UTC-10"})  # ten hours ahead
        program.send_default(5)
        assert program.wait_sent(5) == "Sent" and program.close() == 0
    ((authenticated, envelope),) = letters
    assert (authenticated, envelope.mail_from, envelope.rcpt_tos) == (
        bool(login), "ada@example.org", ["typist@example.org"])  # fmt: skip
    letter = email.message_from_bytes(envelope.original_content, policy=email.policy.default)
    assert letter["To"] == "refuse@example.org, typist@example.org" and letter["Subject"] == "Corvane Dictation"
    assert abs(letter["Date"].datetime.timestamp() - 36000 - time.time()) < 60
    text, file = letter.iter_parts()
    assert text.get_content().startswith("File: Dictation 005\r\nFrom: Dr. Ada Blake\r\nEmail: ada@example.org\r\n\r\n")
    path = tmp_path / file.get_filename()
    path.write_bytes(file.get_content())
    assert b"secret" not in path.read_bytes() and b"WAVE" not in path.read_bytes()
    container = dct.read(path, PHRASE)
    assert (path.name, container.number, container.notes) == ("dct00000-00005.dct", 5, b".secret\0")
    assert container.audio.startswith(b"RIFF")
    assert sorted(p.suffix for p in data.sent.iterdir()) == [".dat", ".txt", ".wav"]


def test_a_silent_server_does_not_hold_the_program_up(corvane, data):
    prepare(data, "typist@example.org", [5, 6], ADDRESS)
    with socket.create_server((ADDRESS, 25)) as silent:
        program = corvane()
        program.send_default(5)
        silent.settimeout(20)
        client, _ = silent.accept()
        begun = time.monotonic()
        assert program.close() == 0 and time.monotonic() - begun < 3
        client.close()
    assert data.status(5) == "Sending" and data.queued() == 1
    with mail.server(ADDRESS) as letters:
        program = corvane()
        assert program.wait_sent(5) == "Sent" and len(letters) == 1
    program.send_default(6)  # to nobody
    program.answer_box("Error", 1, "Unable to connect to the mail server\n")
    assert data.status(6) == "Send Failed" and not list(data.sent.glob("dct*"))


def test_the_mail_program_of_the_platform_is_given_the_file(corvane, data, drive_c, tmp_path):
    log, windows = tmp_path / "mails", drive_c / "windows"
    shutil.copy(TOOLS.parent / "win" / "mapi" / "mapi32.dll", windows / "system32" / "mapi32.dll")
    override = os.environ["WINEDLLOVERRIDES"] + ";mapi32=n"
    environment = {"WINEDLLOVERRIDES": override, "CORVANE_TEST_MAPI": windows_path(log)}
    prepare(data, "typist@example.org", [5, 6, 7], usemapi="true")
    write_ini(windows / "win.ini", {"Mail": {"MAPI": 0}})  # no mail program is declared
    program = corvane(environment=environment)
    program.send_default(5)
    program.answer_box("Error", 1, "Unable to send mail using MAPI.")
    assert not log.exists() and program.close() == 0

    write_ini(windows / "win.ini", {"Mail": {"MAPI": 1}})
    program = corvane(environment=environment)
    program.send_default(6)
    assert program.wait_sent(6) == "Sent"
    file = data.sent / "dct00000-00006.dct"
    assert log.read_bytes().decode().replace("\r", "").split("\n")[:8] == [
        "0 0 0 0 1", "typist@example.org", "SMTP:typist@example.org", "Corvane Dictation", "-1",
        windows_path(file), file.name, "File: Dictation 006"]  # fmt: skip
    assert dct.read(file, PHRASE).number == 6
    prepare(data, "FAX:refuse", [], usemapi="true")
    program.send_default(7)
    program.answer_box("Error", 1)
    assert data.status(7) == "Send Failed" and "\nFAX:refuse\nFAX:refuse\n" in log.read_bytes().decode()
    assert program.close() == 0 and list(data.sent.glob("dct*")) == [file]

    long_ago = time.time() - 2 * 86400  # the mail program has had a day for it
    os.utime(file, (long_ago, long_ago))
    program = corvane()
    assert program.close() == 0 and not list(data.sent.glob("dct*"))
