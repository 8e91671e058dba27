#!/usr/bin/env python3
# make_defs_compat.py: writes defs_compat.dat, a small definition file made straight from
# the file format and the classic generator, independently of the engine's cipher code.
import struct
import sys

STATE = 0x50000


def f32(x):
    return struct.unpack('<f', struct.pack('<f', x))[0]


def rnd(n=1.0):
    global STATE
    n = f32(n)
    if n == 0:
        return STATE / 2**24
    if n < 0:
        b = struct.unpack('<I', struct.pack('<f', n))[0]
        STATE = ((b >> 24) + b) & 0xFFFFFF
    STATE = (STATE * 1140671485 + 12820163) % 2**24
    return STATE / 2**24


def randomize(d):
    global STATE
    h = struct.unpack('<Q', struct.pack('<d', d))[0] >> 32
    STATE = (((h & 0xFFFF) << 8) ^ ((h >> 8) & 0xFFFF00)) | (STATE & 0xFF)


def initialize(key_field):
    randomize(rnd(-1))
    for c in key_field:
        r = rnd()
        p = f32(-r * float(c))  # exact product, one rounding to single
        randomize(rnd(p))


def stretch(data):
    out = bytearray()
    a = 0
    for i, c in enumerate(data, 1):
        out.append((c & 63) + 59)
        if i % 3 == 1:
            a |= (c // 64) * 16
        elif i % 3 == 2:
            a |= (c // 64) * 4
        else:
            a |= c // 64
            out.append(a + 59)
            a = 0
    if len(data) % 3:
        out.append(a + 59)
    return bytes(out)


def encrypt(line, key):
    field = key.encode('latin-1')[:10].ljust(10, b' ')
    plain = line.encode('latin-1') + field
    initialize(field)
    xored = bytes(b ^ int(rnd() * 256) for b in plain)
    return stretch(xored) + b'<e'


def record(stored):
    return struct.pack('<I', len(stored)) + stored


def self_check():
    global STATE
    STATE = 0x50000
    got = [round(rnd(), 7) for _ in range(5)]
    assert got == [0.7055475, 0.533424, 0.5795186, 0.2895625, 0.301948], got
    assert round(rnd(-1), 6) == 0.224007
    assert stretch(bytes([65, 66, 67])) == bytes([60, 61, 62, 80])


LINES = [
    'Ver=2026.11.01',
    '[MD5]',
    '0f343b0931126a20f133d67c2b018a3b|Compat.Md5',
    '[End]',
    '[Files]',
    'Compat.Beta|Beta.EXE',
    'Compat.Alpha|alpha.dll   ',
    '[End]',
    '[Registry]',
]

if __name__ == '__main__':
    self_check()
    out = b''.join(record(encrypt(line, 'Tq3m')) for line in LINES)
    out += record(b'')                                  # zero length: skipped
    out += record(encrypt('Compat.Other', 'WrongKey'))  # wrong key: "ERR2"
    out += record(b'no marker here')                    # no marker: "ERR1"
    out += record(encrypt('[End]', 'Tq3m'))
    out += struct.pack('<I', 500) + b'short'            # incomplete: ends the file
    open(sys.argv[1] if len(sys.argv) > 1 else 'defs_compat.dat', 'wb').write(out)
