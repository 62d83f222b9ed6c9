"""Audio files of others become dictations: chosen in the platform's dialog, through every route."""

import os
import shutil
import struct
import subprocess

import pytest
import sound
from corvane import TOOLS, Dialog, pcm_wav, read_ini, wait_for, windows_path, write_ini

OK, CANCEL = 1, 2
FILE_NAME = 1148  # in the platform's dialog
WM_CHAR = 0x102
PLAYER_KEY = r"Software\RealNetworks\Preferences\DT_Common"
WHEN = 1100000000


@pytest.fixture
def folder(data):
    """The one that the dialog shows first."""
    path = data.folder / "audio files"
    path.mkdir()
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "loadfolder": windows_path(path)}})
    return path


def dct_file(notes, audio):
    """As a colleague's program writes it."""
    text = lambda value: bytes([len(value)]) + value
    fields = struct.pack("<IIII", 0, 7, 12, WHEN + 60) + text(b"Knees") + text(b"Dr. Cole") + bytes(9)
    body = fields + struct.pack("<BI", 100, len(notes)) + notes + audio
    return struct.pack("<HI", 0, len(body) + 6) + body


def choose(program, command, title, *names):
    """Types names into the dialog, as one does who chooses several at once."""
    dialog = Dialog(program, title, command)
    ask = program.winctl.ask

    def find(kind, control):
        return next((c for c in ask("window", dialog.window)["children"] if (c["class"], c["id"]) == (kind, control)), None)

    box = wait_for(lambda: find("Edit", FILE_NAME), "the file name's box")["hwnd"]
    for character in " ".join(f'"{name}"' for name in names):
        ask("send", box, WM_CHAR, ord(character), 1)
    ask("click", find("Button", OK)["hwnd"])


def load(program, *names):
    choose(program, "CM_LOADFILE", "Load File(s)", *names)


def test_files_of_all_kinds_become_dictations(corvane, data, folder, speech):
    path, spoken = speech
    for name, *options in (("Knee.mp3", "-b:a", "64k"), ("adpcm.wav", "-acodec", "adpcm_ms")):
        subprocess.run(["ffmpeg", "-loglevel", "error", "-i", path, *options, folder / name], check=True)
    (folder / "plain.wav").write_bytes(pcm_wav(16000))
    (folder / "colleague.dct").write_bytes(dct_file(b"Please hurry.\r\n", pcm_wav(24000)))
    (folder / "bad.dct").write_bytes(dct_file(b"", b"")[:-1])
    for file in folder.iterdir():
        os.utime(file, (WHEN, WHEN))
    program = corvane()
    row = lambda number: wait_for(lambda: program.row(number), f"dictation {number}", 20)["texts"]

    load(program, "plain.wav", "Knee.mp3", "adpcm.wav", "colleague.dct")
    seconds = f"00:{round(spoken.duration):02}"
    for number, (name, length) in enumerate((("plain", "00:02"), ("Knee", seconds), ("adpcm", seconds)), 1):
        assert (row(number)[0], row(number)[3], data.record(number)["date"]) == (name, length, str(WHEN))
    assert row(4)[::3] + row(4)[4:] == ["Knees", "00:03", "High", "Please hurry.  "]
    assert data.audio(1).read_bytes() == (folder / "plain.wav").read_bytes()
    assert all(sound.correlation(spoken, sound.read_wav(data.audio(number))) > 0.95 for number in (2, 3))

    load(program, "plain.wav", "bad.dct", "Knee.mp3")
    program.answer_box("bad.dct", OK, "file corruption (length error)")
    assert [r["number"] for r in program.rows()] == [1, 2, 3, 4, 5], "it ends the loading"
    assert read_ini(data.settings)["settings"]["loadfolder"].rstrip("\\") == windows_path(folder)

    send = lambda *names: choose(program, "CM_LOADSENDFILE", "Load and Send File(s)", *names)
    send("plain.wav")
    assert program.wait_sent(7) == "Sent" and len(data.delivered()) == 1 and not program.row(7)
    data.user_file.write_bytes(data.user_file.read_bytes().replace(b"sendcount=1", b"sendcount=0"))
    send("plain.wav", "Knee.mp3")
    program.answer_box("No Send To Recipients", OK, "No Typist Recipients have been set up.")
    assert row(8) and row(9)


def test_libraries_of_other_programs_decode_or_say_why_not(corvane, winctl, data, drive_c, folder):
    system = drive_c / "windows" / "system32"
    libraries = [drive_c / "pnen3260.dll", system / "SrPump.dll", system / "dsscore.dll"]
    winctl.ask("setreg", PLAYER_KEY, "", "C:\\")
    program = corvane()

    def outcome(name):
        """What is said about the file, or the length of its dictation."""
        broken = name == "broken.sri"
        (folder / name).write_bytes(pcm_wav(8000)[: 5000 if broken else None])
        before = len(program.rows())
        load(program, name)
        wait_for(lambda: len(program.rows()) > before or any(b["text"] == name for b in program.boxes()), name)
        if len(program.rows()) > before:
            return program.rows()[-1]["texts"][3]
        return program.answer_box(name, OK)

    missing = {"ra": "Real Audio Core DLL", "mp3": "Real Audio Core DLL", "sri": "SrPump.dll", "dss": "dsscore.dll is missing"}
    for name in ("mapi/mapi32.dll", "decoders/decoders.dll"):
        for kind, words in missing.items():
            assert words in outcome("good." + kind)
        for path in libraries:
            shutil.copy(TOOLS.parent / "win" / name, path)
    cases = {f"{word}.{kind}": answer for kind in missing for word, answer in (("good", "00:01"), ("broken", "to its end"))}
    cases |= {"closed.ra": "with Real Player.", "closed.dss": "Unable to open DSS", "still.dss": "Unable to start decoding"}
    for name, answer in cases.items():
        assert answer in outcome(name), name
    left_over = lambda: list((data.user / "Import").iterdir())
    assert not left_over()

    # A call that does not return: Cancel ends the loading, the window works, and the library is left alone.
    (folder / "late.sri").write_bytes(b"")
    load(program, "late.sri")
    Dialog(program, "Uncompress VoiceIt").end(CANCEL)
    assert program.new() and "has not finished with an earlier file" in outcome("good.sri")
    (folder / "late.sri").unlink()
    wait_for(lambda: not left_over(), "the end of the call")
    assert program.close() == 0
