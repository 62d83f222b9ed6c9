"""Reads a dictation container of any version, plain or encrypted, as the typist's program would: written from
docs/file-formats.md alone, and decrypted by a general cryptography library."""

import ctypes
import io
import struct
from pathlib import Path
from types import SimpleNamespace

import numpy as np

SHORT_STRINGS = (
    "name sendername senderemail company phone cell fax address1 address2 address3 address4"
).split()
CRYPTO = ctypes.CDLL("libcrypto.so.3")
DECRYPT = 0


def decrypt(region, password):
    # Unlike most, the library's own call takes keys of up to 72 bytes, which are all that count.
    key = ctypes.create_string_buffer(4 * (18 + 4 * 256))
    CRYPTO.BF_set_key(key, len(password), password)
    # It takes the words of a block with their highest byte first.
    swapped = lambda words: np.frombuffer(words, "<u4").astype(">u4").tobytes()
    clear = ctypes.create_string_buffer(8)
    blocks = []
    for at in range(0, len(region), 8):
        CRYPTO.BF_ecb_encrypt(swapped(region[at : at + 8]), clear, key, DECRYPT)
        blocks.append(clear.raw)
    return swapped(b"".join(blocks))


def read(path, password=None):
    data = Path(path).read_bytes()
    file = io.BytesIO(data)

    def take(count):
        taken = file.read(count)
        assert len(taken) == count, "the file ends too early"
        return taken

    number = lambda code: struct.unpack("<" + code, take(struct.calcsize("<" + code)))[0]

    def contents(length):
        if not encrypted:
            return take(length)
        return decrypt(take((length + 7) // 8 * 8), password.encode("latin-1"))[:length]

    version, length = number("H"), number("I")
    assert length == len(data), f"the file says {length} bytes and has {len(data)}"
    assert version in (0, 1, 2)
    flags, user, dictation = number("I"), number("I"), number("I")
    encrypted = version == 2 and flags & 2 != 0
    assert not encrypted or number("B") == sum(password.encode("latin-1")) % 256, "another pass phrase"
    date = number("I")
    texts = {name: take(number("B")).decode("latin-1") for name in SHORT_STRINGS}
    priority = number("B")
    notes = contents(number("I"))
    assert version == 0 or number("B") == 1
    audio = contents(number("I") if version > 0 else len(data) - file.tell())
    assert not file.read()
    numbers = {"version": version, "flags": flags, "user": user, "number": dictation, "date": date}
    return SimpleNamespace(**numbers, priority=priority, notes=notes, audio=audio, texts=texts)
