"""Reads a dictation container, plain or encrypted, as the typist's program would."""

import struct
from dataclasses import dataclass, field
from functools import lru_cache

SHORT_STRINGS = (
    "name sendername senderemail company phone cell fax address1 address2 address3 address4"
).split()


@lru_cache
def _pi_words(count):
    """The fractional digits of pi as 32-bit words (Machin's formula, with guard bits)."""
    bits = 32 * count + 64
    one = 1 << bits

    def arctan_inverse(x):
        power = total = one // x
        divisor, sign = 3, -1
        while power:
            power //= x * x
            total += sign * (power // divisor)
            divisor, sign = divisor + 2, -sign
        return total

    digits = (4 * (4 * arctan_inverse(5) - arctan_inverse(239)) - 3 * one) >> 64
    return [(digits >> (32 * (count - 1 - i))) & 0xFFFFFFFF for i in range(count)]


class Blowfish:
    """The published cipher in electronic-codebook mode, the two words of a block little-endian."""

    def __init__(self, key):
        words = _pi_words(18 + 4 * 256)
        self.p = words[:18]
        self.s = [words[18 + 256 * i : 18 + 256 * (i + 1)] for i in range(4)]
        for i in range(18):
            self.p[i] ^= int.from_bytes(bytes(key[(4 * i + j) % len(key)] for j in range(4)), "big")
        left = right = 0
        for table in (self.p, *self.s):
            for i in range(0, len(table), 2):
                left, right = self._rounds(left, right, self.p)
                table[i], table[i + 1] = left, right

    def _rounds(self, left, right, p):
        s0, s1, s2, s3 = self.s
        for i in range(16):
            left ^= p[i]
            right ^= (((s0[left >> 24] + s1[left >> 16 & 255]) ^ s2[left >> 8 & 255]) + s3[left & 255]) & 0xFFFFFFFF
            left, right = right, left
        return right ^ p[17], left ^ p[16]

    def decrypt(self, data):
        backwards = self.p[::-1]
        out = bytearray()
        for left, right in struct.iter_unpack("<II", data):
            out += struct.pack("<II", *self._rounds(left, right, backwards))
        return bytes(out)


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
    key_check: int = None
    texts: dict = field(default_factory=dict)


class _Reader:
    def __init__(self, data):
        self.data, self.at = data, 0

    def bytes(self, count):
        assert self.at + count <= len(self.data), "the file ends too early"
        self.at += count
        return self.data[self.at - count : self.at]

    def number(self, code):
        return struct.unpack("<" + code, self.bytes(struct.calcsize("<" + code)))[0]


def _padded(count):
    return (count + 7) // 8 * 8


def read(path, password=None):
    with open(path, "rb") as file:
        data = file.read()
    r = _Reader(data)
    version = r.number("H")
    length = r.number("I")
    assert length == len(data), f"the file says {length} bytes and has {len(data)}"
    assert version in (0, 2)
    encrypted = version == 2
    flags, user, number = r.number("I"), r.number("I"), r.number("I")
    key_check = r.number("B") if encrypted else None
    cipher = Blowfish(password.encode("latin-1")) if encrypted else None
    date = r.number("I")
    texts = {name: r.bytes(r.number("B")).decode("latin-1") for name in SHORT_STRINGS}
    priority = r.number("B")
    length = r.number("I")
    notes = cipher.decrypt(r.bytes(_padded(length)))[:length] if encrypted else r.bytes(length)
    if encrypted:
        assert r.number("B") == 1
        length = r.number("I")
        audio = cipher.decrypt(r.bytes(_padded(length)))[:length]
    else:
        audio = r.bytes(len(data) - r.at)
    assert r.at == len(data)
    return Dct(version, flags, user, number, date, priority, notes, audio, key_check, texts)
