"""Small movies, put together byte by byte."""
import random
import struct


def atom(kind, *parts):
    body = b"".join(parts)
    return struct.pack(">I", 8 + len(body)) + kind + body


def full(kind, *parts, version=0, flags=0):
    return atom(kind, struct.pack(">I", version << 24 | flags), *parts)


def words(*values):
    return struct.pack(f">{len(values)}I", *(value & 0xFFFFFFFF for value in values))


def table(kind, *rows):
    return full(kind, words(len(rows)), *(words(*row) for row in rows))


def video_entry(width=64, height=48):
    fixed = bytes(16) + struct.pack(">HHIIIH", width, height, 0x480000, 0x480000, 0, 1) + bytes(32)
    return atom(b"mp4v", bytes(6), b"\0\1", fixed + struct.pack(">Hh", 24, -1))


def sound_entry(channels=2, bits=16, rate=8000):
    return atom(b"sowt", bytes(6), b"\0\1", bytes(8), struct.pack(">HHHHI", channels, bits, 0, 0, rate << 16))


def text_entry():
    return atom(b"text", bytes(6), b"\0\1", bytes(44))


def timecode_entry(scale, duration, frames, flags):
    return atom(b"tmcd", bytes(6), b"\0\1", words(0, flags, scale, duration) + bytes([frames, 0]))


class Track:
    def __init__(self, number, handler, header, entry, scale, payload, tables, *, name=b"", extra=b"", edits=b""):
        self.number, self.handler, self.header, self.entry, self.scale = number, handler, header, entry, scale
        self.payload, self.tables, self.name, self.extra, self.edits = payload, tables, name, extra, edits

    def atom(self, chunks, duration):
        tkhd = full(b"tkhd", words(0, 0, self.number, 0, duration, 0, 0), bytes(8),
                    words(0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x40000000, 64 << 16, 48 << 16), flags=15)
        mdhd = full(b"mdhd", words(0, 0, self.scale, duration), b"\x15\xC7\0\0")
        hdlr = full(b"hdlr", b"mhlr", self.handler, bytes(12), bytes([len(self.name)]), self.name)
        dinf = atom(b"dinf", full(b"dref", words(1), full(b"url ", flags=1)))
        stbl = atom(b"stbl", full(b"stsd", words(1), self.entry), *self.tables, table(b"stco", *((c,) for c in chunks)))
        minf = atom(b"minf", self.header, dinf, stbl)
        return atom(b"trak", tkhd, self.edits, self.extra, atom(b"mdia", mdhd, hdlr, minf))


def movie(tracks, durations, user_data=b""):
    """tracks with (payload pieces = chunks); the media data lies in front of the header."""
    ftyp = atom(b"ftyp", b"qt  ", words(0x20050300), b"qt  ", b"mp42")
    at, media, places = len(ftyp) + 8, b"", []
    for track in tracks:
        chunks = []
        for chunk in track.payload:
            chunks.append(at + len(media))
            media += chunk
        places.append(chunks)
    mvhd = full(b"mvhd", words(0, 0, 600, 1200, 0x10000), b"\1\0", bytes(10),
                words(0x10000, 0, 0, 0, 0x10000, 0, 0, 0, 0x40000000), bytes(24), words(len(tracks) + 1))
    traks = [track.atom(chunks, duration) for track, chunks, duration in zip(tracks, places, durations)]
    return ftyp + atom(b"mdat", media) + atom(b"moov", mvhd, *traks, user_data)


VIDEO_SIZES = (10, 20, 30, 40, 50, 60)


def video_track(number=1, name=b"Video \xff\x1b[31m handler"):
    """Six samples in chunks of 3, 2 and 1, at 0, 100, 200, 300, 400, 500 of 600; keys are 1 and 4."""
    samples = [bytes([n]) * size for n, size in enumerate(VIDEO_SIZES, 1)]
    chunks = [b"".join(samples[:3]), b"".join(samples[3:5]), samples[5]]
    tables = [table(b"stts", (6, 100)), table(b"ctts", (2, 50), (1, -50), (3, 0)), table(b"stss", (1,), (4,)),
              table(b"stsc", (1, 3, 1), (2, 2, 1), (3, 1, 1)), full(b"stsz", words(0, 6, *VIDEO_SIZES))]
    edits = atom(b"edts", table(b"elst", (600, 0, 0x10000)))
    return Track(number, b"vide", full(b"vmhd", bytes(8), flags=1), video_entry(), 600, chunks, tables, name=name,
                 edits=edits, extra=atom(b"tref", atom(b"chap", words(3)), atom(b"tmcd", words(4))))


def sound_track(number=2):
    """Forty stereo samples of four bytes, in chunks of 30 and 10."""
    chunks = [bytes(range(120)), bytes(range(120, 160))]
    tables = [table(b"stts", (40, 1)), table(b"stsc", (1, 30, 1), (2, 10, 1)), full(b"stsz", words(1, 40)),
              full(b"stsh", words(0))]
    return Track(number, b"soun", full(b"smhd", bytes(4)), sound_entry(), 8000, chunks, tables)


def chapter_track(number=3):
    texts = ["Anfang \u00e4", "Ende"]
    chunks = [struct.pack(">H", len(text.encode())) + text.encode() for text in texts]
    tables = [table(b"stts", (2, 300)), table(b"stsc", (1, 1, 1)), full(b"stsz", words(0, 2, *map(len, chunks))),
              full(b"stsh", words(0))]
    header = atom(b"gmhd", full(b"gmin", bytes(12)), atom(b"text", bytes(36)))
    return Track(number, b"text", header, text_entry(), 600, chunks, tables)


def timecode_track(number=4, frame=17982, flags=1, frames=30):
    tables = [table(b"stts", (1, 600)), table(b"stsc", (1, 1, 1)), full(b"stsz", words(4, 1)), full(b"stsh", words(0))]
    header = atom(b"gmhd", full(b"gmin", bytes(12)), atom(b"tmcd", full(b"tcmi", bytes(25))))
    return Track(number, b"tmcd", header, timecode_entry(30000, 1001, frames, flags), 600, [words(frame)], tables)


def user_data():
    return atom(b"udta", atom(b"\xa9nam", b"\0\5\0\0", b"Ti\xfftl"), atom(b"\x01\xf0zz", b"\1\2\3"),
                atom(b"name", b"A name\0"), words(0))


def example():
    return movie([video_track(), sound_track(), chapter_track(), timecode_track()], [600, 40, 600, 600], user_data())


def damaged(content, copies, seed, most=4):
    """Copies of a movie with one to `most` bytes from its header on changed; the same ones for every seed."""
    first, chance = content.index(b"moov"), random.Random(seed)
    for _ in range(copies):
        changed = bytearray(content)
        for _ in range(chance.randint(1, most)):
            changed[chance.randrange(first, len(content))] = chance.choice((0, 1, 0x7F, 0x80, 0xFF, chance.randrange(256)))
        yield bytes(changed)
