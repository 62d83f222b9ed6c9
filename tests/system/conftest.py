"""Fixtures of the system tests. They run on the rig: tools/rig pytest tests/system"""

import os
from pathlib import Path

import pytest

import sound
from corvane import Corvane, Data, WinCtl

WORDS = (
    "This is a letter about Mister Harris, who came to the clinic on Monday. "
    "His blood pressure is one hundred and thirty over eighty. Please see him again in two weeks."
)


@pytest.fixture(scope="session")
def winctl():
    helper = WinCtl()
    yield helper
    helper.close()


@pytest.fixture(scope="session")
def speech():
    """Path and audio of a spoken sample of some seconds."""
    path = Path(os.environ["RIG"]) / "speech.wav"
    return path, sound.speak(path, WORDS, 6)


@pytest.fixture(scope="session")
def more_speech():
    path = Path(os.environ["RIG"]) / "more.wav"
    return path, sound.speak(path, "And one more thing: the left knee is fine.", 3)


@pytest.fixture
def drive_c():
    return Path(os.environ["WINEPREFIX"]) / "drive_c"


@pytest.fixture
def data(drive_c, request):
    """A fresh data folder of its own."""
    name = "".join(c for c in request.node.name if c.isalnum())[:40]
    return Data(drive_c / "d" / name, drive_c / "share" / name)


@pytest.fixture
def corvane(winctl, data):
    """Starts corvane.exe, as often as a test asks; whatever still runs afterwards is ended."""
    started = []

    def start(data=data, environment=None):
        started.append(Corvane(winctl, data, environment))
        return started[-1].start()

    yield start
    for program in started:
        program.kill()


def pytest_configure(config):
    config.addinivalue_line("markers", "every_windows: also run in a prefix set to Windows 98")
    config.addinivalue_line("markers", "alone: measures sound or time, which other work on the machine would change")
    config.addinivalue_line("markers", "recording: of those, what needs little of the machine itself")
