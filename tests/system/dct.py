"""Reads a dictation container, plain or encrypted, as the typist's program would."""

import io
import struct
from dataclasses import dataclass
from pathlib import Path

import numpy as np
from Cryptodome.Cipher import Blowfish

SHORT_STRINGS = (
    "name sendername senderemail company phone cell fax address1 address2 address3 address4"
).split()


@dataclass
class Dct:
    version: int
    flags: int
    user: int
    number: int
    date: int
    priority: int
    notes: bytes
    audio: bytes
    key_check: int
    texts: dict


def read(path, password=None):
    data = Path(path).read_bytes()
    file = io.BytesIO(data)

    def take(count):
        taken = file.read(count)
        assert len(taken) == count, "the file ends too early"
        return taken

    number = lambda code: struct.unpack("<" + code, take(struct.calcsize("<" + code)))[0]
    # The library takes the words of a block with their highest byte first.
    swapped = lambda block: np.frombuffer(block, "<u4").astype(">u4").tobytes()

    def contents(length):
        if version == 0:
            return take(length)
        cipher = Blowfish.new(password.encode("latin-1"), Blowfish.MODE_ECB)
        return swapped(cipher.decrypt(swapped(take((length + 7) // 8 * 8))))[:length]

    version, length = number("H"), number("I")
    assert length == len(data), f"the file says {length} bytes and has {len(data)}"
    assert version in (0, 2)
    flags, user, dictation = number("I"), number("I"), number("I")
    key_check = number("B") if version == 2 else None
    date = number("I")
    texts = {name: take(number("B")).decode("latin-1") for name in SHORT_STRINGS}
    priority = number("B")
    notes = contents(number("I"))
    assert version == 0 or number("B") == 1
    audio = contents(number("I") if version == 2 else len(data) - file.tell())
    assert not file.read()
    return Dct(version, flags, user, dictation, date, priority, notes, audio, key_check, texts)
