"""Audio files of others become dictations: chosen in the platform's dialog, through every route."""

import os
import shutil
import struct
import subprocess

import sound
from corvane import IDS, TOOLS, Dialog, pcm_wav, read_ini, wait_active, wait_for, windows_path, write_ini, xdotool

OK, CANCEL = 1, 2
PLAYER_KEY = r"Software\RealNetworks\Preferences\DT_Common"
WHEN = 1100000000


def dct_file(notes, audio, name=b"Knees"):
    """As a colleague's program writes it."""
    text = lambda value: bytes([len(value)]) + value
    fields = struct.pack("<IIII", 0, 7, 12, WHEN + 60) + text(name) + text(b"Dr. Cole") + bytes(9)
    body = fields + struct.pack("<BI", 100, len(notes)) + notes + audio
    return struct.pack("<HI", 0, len(body) + 6) + body


def choose(program, command, *names):
    """Types names into the dialog, as one does who chooses several at once."""
    program.command(command)
    title = "Load File(s)" if command == "CM_LOADFILE" else "Load and Send File(s)"
    wait_active(title)
    xdotool("type", "--delay", "5", " ".join(f'"{name}"' for name in names))
    xdotool("key", "Return")


def convert(source, target, *options):
    subprocess.run(["ffmpeg", "-loglevel", "error", "-y", "-i", source, *options, target], check=True)


def test_files_of_all_kinds_become_dictations(corvane, winctl, data, drive_c, speech):
    folder = drive_c / "in" / "audio files"
    folder.mkdir(parents=True)
    path, spoken = speech
    convert(path, folder / "Knee.mp3", "-b:a", "64k")
    convert(path, folder / "adpcm.wav", "-acodec", "adpcm_ms")
    (folder / "plain.wav").write_bytes(pcm_wav(16000))
    (folder / "colleague.dct").write_bytes(dct_file(b"Please hurry.\r\n", pcm_wav(24000)))
    (folder / "bad.dct").write_bytes(dct_file(b"", b"")[:-1])
    for file in folder.iterdir():
        os.utime(file, (WHEN, WHEN))
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "loadfolder": windows_path(folder)}})
    program = corvane()
    row = lambda number: wait_for(lambda: program.row(number), f"dictation {number}", 20)["texts"]

    choose(program, "CM_LOADFILE", "plain.wav", "Knee.mp3", "adpcm.wav", "colleague.dct")
    seconds = f"00:{round(spoken.duration):02}"
    expected = [("plain", "00:02"), ("Knee", seconds), ("adpcm", seconds), ("Knees", "00:03")]
    for number, (name, length) in enumerate(expected, 1):
        assert (row(number)[0], row(number)[3]) == (name, length)
        assert data.record(number)["date"] == str(WHEN + 60 * (name == "Knees"))
    assert row(4)[4:] == ["High", "Please hurry.  "] and data.record(4)["sendername"] == "Dr. Cole"
    assert data.audio(1).read_bytes() == (folder / "plain.wav").read_bytes()
    for number in (2, 3):
        assert sound.correlation(spoken, sound.read_wav(data.audio(number))) > 0.95
    wait_for(lambda: {r["number"] for r in program.rows() if r["selected"]} == {1, 2, 3, 4}, "them as the selection")

    # A file that fails ends the loading and leaves nothing; those before it stay.
    choose(program, "CM_LOADFILE", "plain.wav", "bad.dct", "Knee.mp3")
    assert "file corruption (length error)" in program.wait_box("bad.dct")
    program.answer_box("bad.dct", OK)
    assert {r["number"] for r in program.rows()} == {1, 2, 3, 4, 5} and not list((data.user / "Import").iterdir())
    assert read_ini(data.settings)["settings"]["loadfolder"].rstrip("\\") == windows_path(folder)
    assert read_ini(data.user_file)["settings"]["number"] == "7"

    choose(program, "CM_LOADSENDFILE", "plain.wav")
    assert program.wait_sent(7) == "Sent" and len(data.delivered()) == 1 and program.row(7) is None
    data.user_file.write_bytes(data.user_file.read_bytes().replace(b"sendcount=1", b"sendcount=0"))
    choose(program, "CM_LOADSENDFILE", "plain.wav", "Knee.mp3")
    assert "No Typist Recipients have been set up." in program.wait_box("No Send To Recipients")
    program.answer_box("No Send To Recipients", OK)
    assert row(8) and row(9)
    assert program.close() == 0


def test_libraries_of_other_programs_decode_or_say_why_not(corvane, winctl, data, drive_c):
    player, folder = drive_c / "player", drive_c / "in" / "foreign"
    for path in (player, folder):
        path.mkdir(parents=True)
    double = TOOLS.parent / "win" / "decoders" / "decoders.dll"
    other = TOOLS.parent / "win" / "mapi" / "mapi32.dll"
    libraries = [player / "pnen3260.dll", *(drive_c / "windows" / "system32" / n for n in ("SrPump.dll", "dsscore.dll"))]
    winctl.ask("setreg", PLAYER_KEY, "", windows_path(player))
    write_ini(data.settings, {"settings": {"warnbelowmb": 0, "loadfolder": windows_path(folder)}})
    program = corvane()

    def load(kind, word):
        (folder / f"a.{kind}").write_bytes(word)
        before = len(program.rows())
        choose(program, "CM_LOADFILE", f"a.{kind}")
        wait_for(lambda: len(program.rows()) > before or program.boxes(), f"the end of {kind}, {word}")
        if len(program.rows()) > before:
            return program.rows()[-1]["texts"][3]
        text = program.wait_box(f"a.{kind}")
        program.answer_box(f"a.{kind}", OK)
        assert len(program.rows()) == before
        return text

    missing = {"ra": "Real Audio Core DLL", "mp3": "Real Audio Core DLL", "sri": "SrPump.dll", "dss": "dsscore.dll is missing"}
    for library in (None, other):
        for kind, words in missing.items():
            assert words in load(kind, b"sound")
        for path in libraries:
            shutil.copy(other, path)
    for path in libraries:
        shutil.copy(double, path)
    cases = [(kind, b"sound", "00:01") for kind in missing] + [(kind, b"broken", "to its end") for kind in missing]
    cases += [("ra", b"closed", "Unable to open file with Real Player."), ("dss", b"closed", "Unable to open DSS file.")]
    for kind, word, answer in [*cases, ("dss", b"still", "Unable to start decoding DSS file.")]:
        assert answer in load(kind, word), (kind, word)

    assert not list((data.user / "Import").iterdir())

    # A call that does not return: Cancel ends the loading, the window works, and the library is left alone.
    count = len(program.rows())
    for kind, title in (("sri", "Uncompress VoiceIt"), ("dss", "Uncompress DSS")):
        (folder / f"a.{kind}").write_bytes(b"late")
        choose(program, "CM_LOADFILE", f"a.{kind}")
        Dialog(program, title).end(CANCEL)
        assert program.new() and program.control("IDC_NEW")["enabled"]
        assert "has not finished with an earlier file" in load("b." + kind, b"sound")
        (folder / f"a.{kind}").unlink()
    assert len(program.rows()) == count + 2
    wait_for(lambda: not list((data.user / "Import").iterdir()), "nothing left over")
    assert program.close() == 0
