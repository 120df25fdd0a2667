#!/usr/bin/env python3
"""`check`: for every rule a movie that breaks it, and movies that break none.

check.py TOOL [TEST...]
"""
import json
import os
import resource
import struct
import subprocess
import tempfile
import unittest
import zlib

import moviemaker
from moviemaker import atom, full, table, words
from tool import command, fewer, main, native_only, run, takes_address_limits

STBL = "moov/trak[1]/mdia/minf/stbl"


def place(content, *kinds):
    """The offset of the atom that the last kind names; each is searched for behind the one before."""
    found = 0
    for kind in kinds:
        found = content.index(kind, found + 1)
    return found - 4


def patched(content, offset, *values, form="I"):
    new = struct.pack(">" + form * len(values), *values)
    return content[:offset] + new + content[offset + len(new):]


def inserted(content, before, new, *around):
    """Puts `new` in front of an offset, into the atoms at the offsets of `around`."""
    for at in around:
        content = patched(content, at, struct.unpack_from(">I", content, at)[0] + len(new))
    return content[:before] + new + content[before:]


def video(**changes):
    """A movie of one video track without edits, right in everything. `changes` replaces tables by kind."""
    track = moviemaker.video_track(name=b"Video")
    track.extra = track.edits = b""
    for number, old in enumerate(track.tables):
        track.tables[number] = changes.pop(old[4:8].decode(), old)
    for name, value in changes.items():
        if name == "more":
            track.tables += value
        else:
            setattr(track, name, value)
    return single(track)


def single(track, duration=600):
    content = moviemaker.movie([track], [duration])
    return patched(content, place(content, b"mvhd") + 24, duration)


def two_tracks():
    content = moviemaker.movie([moviemaker.video_track(), moviemaker.sound_track(3)], [600, 40])
    content = patched(content, place(content, b"tkhd", b"tkhd") + 28, 3)
    content = patched(content, place(content, b"mvhd") + 24, 600, 0x10000)
    content = patched(content, place(content, b"mvhd") + 104, 4)
    return patched(content, place(content, b"tmcd") + 8, 1)


class CheckTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def file(self, content, name="movie.mov"):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def findings(self, content, expected_code=None):
        path = self.file(content)
        code, out, err = run("check", "--json", path)
        self.assertEqual(err, "")
        told = json.loads(out)
        self.assertEqual((told["schema"], told["file"]), (1, path))
        wrong = any(finding["severity"] != "note" for finding in told["findings"])
        self.assertEqual(code, int(wrong))
        if expected_code is not None:
            self.assertEqual(code, expected_code)
        return {(f["rule"], f["path"]): f for f in told["findings"] if f["rule"] != "header-last"}

    def assert_finds(self, content, severity, rule, path, offset=None, text=".", count=None):
        """That, and nothing worse."""
        findings = self.findings(content)
        self.assertIn((rule, path), findings)
        finding = findings[rule, path]
        self.assertEqual(finding["severity"], severity)
        self.assertRegex(finding["text"], text)
        if offset is not None:
            self.assertEqual(finding["offset"], offset)
        if count is not None:
            self.assertEqual(finding["count"], count)
        return findings

    def assert_only(self, content, *expected, **more):
        self.assertEqual(list(self.assert_finds(content, *expected, **more)), [tuple(expected[1:3])])


class Fine(CheckTest):
    def test_movies_without_findings(self):
        for content in (video(), two_tracks()):
            self.assertEqual(self.findings(content, 0), {})

    def test_header_behind_the_media(self):
        path = self.file(video())
        code, out, err = run("check", path)
        self.assertEqual((code, err), (0, ""))
        self.assertRegex(out.decode(), rf"^{path}: note: moov @0x[0-9a-f]+: .* \[header-last\]\n$")


class Atoms(CheckTest):
    def test_sizes(self):
        content = video()
        moov, mdat, mdhd = place(content, b"moov"), place(content, b"mdat"), place(content, b"mdhd")
        size = len(content) - moov
        self.assert_only(patched(content, moov, size + 20), "error", "atom-size", "moov", offset=moov, text="^20 bytes")
        at = place(content, b"stco")
        self.assert_finds(patched(content, at, 60), "error", "atom-size", STBL + "/stco", offset=at)
        self.assert_finds(patched(content, mdhd, 7), "error", "atom-size", "moov/trak[1]/mdia/mdhd", offset=mdhd)
        self.assert_finds(patched(content, mdhd, 0), "error", "atom-size", "moov/trak[1]/mdia/mdhd", offset=mdhd)
        self.assert_finds(patched(content, moov, 0), "error", "atom-size", "moov", offset=moov)
        self.assert_finds(content + words(1) + b"free" + words(0, 15), "error", "atom-size", "free",
                          offset=len(content), text="15 bytes")
        self.assert_finds(content + words(1) + b"free", "error", "atom-size", "free", offset=len(content))
        long_size = content + words(1) + b"free" + words(0, 16)
        self.assertEqual(self.findings(long_size, 0), {})
        self.assertEqual(mdat, 24)

    def test_open_end(self):
        content = video()
        self.assert_only(content + words(0) + b"mdat" + b"abc", "note", "open-size", "mdat[2]", offset=len(content))

    def test_trailing_bytes(self):
        content = video()
        for end in (b"\0", b"\0\0\0\0", bytes(12), bytes(4096)):
            self.assert_only(content + end, "warning", "trailing-bytes", "", offset=len(content))
        moov = place(content, b"moov")
        content = patched(content + b"abcd", moov, len(content) - moov + 4)
        self.assert_only(content, "warning", "trailing-bytes", "moov", offset=len(content) - 4)

    def test_user_data_ends_with_a_zero(self):
        content = video()
        moov = place(content, b"moov")
        udta = atom(b"udta", atom(b"\xa9nam", b"\0\1\0\0x"), words(0))
        self.assertEqual(self.findings(inserted(content, len(content), udta, moov), 0), {})

    def test_types(self):
        content = video()
        self.assert_only(content + atom(b"\0\1\2\3"), "warning", "atom-type", "", offset=len(content))

    def test_missing(self):
        content = video()
        for kind, path in ((b"mvhd", "moov"), (b"tkhd", "moov/trak[1]"), (b"mdhd", "moov/trak[1]/mdia"),
                           (b"hdlr", "moov/trak[1]/mdia"), (b"minf", "moov/trak[1]/mdia"),
                           (b"vmhd", "moov/trak[1]/mdia/minf"), (b"stbl", "moov/trak[1]/mdia/minf"),
                           (b"mdia", "moov/trak[1]")):
            at = place(content, kind)
            self.assert_finds(patched(content, at + 4, 0x66726565), "error", "missing-atom",
                              f"{path}/{kind.decode()}")
        for kind in (b"dinf", b"dref"):
            path = "moov/trak[1]/mdia/minf/dinf"[:26 if kind == b"dref" else 22]
            content_without = patched(content, place(content, kind) + 4, 0x66726565)
            findings = self.findings(content_without, 1)
            self.assertTrue(any(f["rule"] == "missing-atom" and f["path"].endswith(kind.decode()) and
                                f["severity"] == "warning" for f in findings.values()), path)
        for kind in (b"stsd", b"stts", b"stsc", b"stsz", b"stco"):
            at = place(content, kind)
            self.assert_finds(patched(content, at + 4, 0x66726565), "error", "missing-table",
                              f"{STBL}/{kind.decode()}")

    def test_no_movie_is_4(self):
        for content in (b"", b"text", bytes(100), atom(b"ftyp", b"qt  \0\0\0\0"), atom(b"mdat", bytes(50))):
            path = self.file(content)
            code, out, err = run("check", path)
            self.assertEqual((code, out), (4, b""))
            self.assertRegex(err, f"^ketraqt: {path}: .*not a movie.*\n$")
        self.assertEqual(run("check", path + ".missing")[0], 3)

    def test_no_tracks(self):
        self.assert_finds(moviemaker.movie([], []), "warning", "no-tracks", "moov")

    def test_duplicates(self):
        content = video()
        moov, trak = place(content, b"moov"), place(content, b"trak")
        tkhd = content[trak + 8:trak + 100]
        again = inserted(content, trak + 8, tkhd, moov, trak)
        self.assert_only(again, "warning", "duplicate-atom", "moov/trak[1]/tkhd[2]", offset=trak + 100)
        self.assert_finds(content + content[moov:], "warning", "duplicate-atom", "moov[2]", offset=len(content))
        self.assert_finds(content + content[:24], "warning", "duplicate-atom", "ftyp[2]", offset=len(content))

    def test_file_type(self):
        content = video()
        free = atom(b"free", bytes(16))
        self.assert_finds(free + content[:24].replace(b"qt  ", b"mp42") + content[24:], "warning", "ftyp-not-first",
                          "ftyp", offset=24)
        self.assert_finds(free + content, "note", "ftyp-not-first", "ftyp")
        self.assert_finds(patched(patched(content, 0, 12), 12, 12, 0x66726565), "error", "short-atom", "ftyp")
        content = patched(content, 4, 0x66726565)
        moov, trak = place(content, b"moov"), place(content, b"trak")
        iods = full(b"iods", b"\x10\x07\0\x4f\xff\xff\xff\xff\xff")
        self.assert_only(inserted(content, trak, iods, moov), "warning", "missing-ftyp", "moov/iods", offset=trak)

    def test_fragments(self):
        content = video()
        moof = atom(b"moof", full(b"mfhd", words(1)))
        findings = self.assert_finds(content + moof + moof, "note", "fragments", "moof", offset=len(content), text="2 movie")
        self.assertEqual(len(findings), 1)

    def test_many_atoms(self):
        content = video() + atom(b"free") * 200000
        self.assert_finds(content, "warning", "too-many-atoms", "")


class Heads(CheckTest):
    def test_short(self):
        for kind, path, size in ((b"mvhd", "moov/mvhd", 100), (b"tkhd", "moov/trak[1]/tkhd", 60),
                                 (b"mdhd", "moov/trak[1]/mdia/mdhd", 20), (b"hdlr", "moov/trak[1]/mdia/hdlr", 20)):
            content = video()
            at = place(content, kind)
            old = struct.unpack_from(">I", content, at)[0]
            content = patched(content, at, size)
            content = patched(content, at + size, old - size, 0x66726565) if old - size >= 8 else content
            self.assert_finds(content, "error", "short-atom", path, offset=at)

    def test_time_scale(self):
        content = video()
        self.assert_only(patched(content, place(content, b"mvhd") + 20, 0), "error", "time-scale", "moov/mvhd")
        self.assert_only(patched(content, place(content, b"mdhd") + 20, 0), "error", "time-scale",
                         "moov/trak[1]/mdia/mdhd")

    def test_track_ids(self):
        content = two_tracks()
        first, second = place(content, b"tkhd"), place(content, b"tkhd", b"tkhd")
        self.assert_finds(patched(content, first + 20, 0), "error", "track-id", "moov/trak[1]/tkhd", offset=first + 20)
        findings = self.assert_finds(patched(content, second + 20, 1), "error", "track-id", "moov/trak[2]/tkhd",
                                     offset=second, text=r"trak\[1\] has the ID 1")
        self.assertIn(("track-reference", "moov/trak[1]/tref/chap"), findings)
        self.assert_finds(patched(content, place(content, b"mvhd") + 104, 3), "warning", "next-track-id", "moov/mvhd",
                          text="next track ID is 3")

    def test_references(self):
        content = two_tracks()
        at = place(content, b"chap")
        self.assert_only(patched(content, at + 8, 9), "warning", "track-reference", "moov/trak[1]/tref/chap",
                         offset=at + 8, text="no track 9")
        self.assertEqual(self.findings(patched(content, at + 8, 0), 0), {})

    def test_media_header(self):
        for header in (full(b"smhd", bytes(4)), full(b"nmhd")):
            findings = self.findings(video(header=header), 1)
            self.assertIn("media-header", {rule for rule, _ in findings})

    def test_durations(self):
        content = video()
        self.assert_only(patched(content, place(content, b"mvhd") + 24, 605), "warning", "movie-duration", "moov/mvhd")
        self.assertEqual(self.findings(patched(content, place(content, b"mvhd") + 24, 601), 0), {})
        self.assertEqual(self.findings(patched(content, place(content, b"mvhd") + 24, 0xFFFFFFFF), 0), {})
        findings = self.assert_finds(patched(content, place(content, b"tkhd") + 28, 605), "warning", "track-duration",
                                     "moov/trak[1]/tkhd", text="1.008333 s.* 1.000000")
        self.assertEqual(len(findings), 2)
        self.assert_finds(patched(content, place(content, b"mdhd") + 24, 599), "warning", "media-duration",
                          "moov/trak[1]/mdia/mdhd", text="599 ticks.* 600")

    def test_edits(self):
        def edited(*rows):
            track = moviemaker.video_track(name=b"Video")
            track.extra, track.edits = b"", atom(b"edts", table(b"elst", *rows))
            return single(track)

        path = "moov/trak[1]/edts/elst"
        self.assertEqual(self.findings(edited((100, 0xFFFFFFFF, 0x10000), (500, 100, 0x10000)), 0), {})
        self.assertEqual(self.findings(edited((600, 500, 0)), 0), {})  # one picture all the time
        self.assert_only(edited((600, 0, 0x20000)), "warning", "edit-beyond-media", path, text="0.916")
        self.assert_only(edited((600, 60, 0x10000)), "note", "edit-beyond-media", path)  # less than a sample
        self.assert_only(edited((600, -2, 0x10000)), "error", "edit-time", path)
        self.assert_only(edited((300, 0, 0x10000)), "note", "track-duration", "moov/trak[1]/tkhd")
        content = edited((300, 0, 0x10000))
        for kind, at in ((b"mvhd", 24), (b"tkhd", 28)):
            content = patched(content, place(content, kind) + at, 400)
        self.assert_only(content, "warning", "track-duration", "moov/trak[1]/tkhd")


class Tables(CheckTest):
    def test_sizes(self):
        content = video()
        at = place(content, b"stco")
        findings = self.assert_finds(patched(content, at + 12, 4), "error", "table-size", STBL + "/stco", offset=at,
                                     text="4 entries do not fit, 3 do")
        self.assertEqual(len(findings), 1)
        self.assert_finds(patched(content, at + 12, 2), "note", "table-room", STBL + "/stco", offset=at + 24)
        at = place(content, b"stsd")
        self.assert_finds(patched(content, at + 12, 2), "error", "table-size", STBL + "/stsd")
        at = place(content, b"dref")
        self.assert_finds(patched(content, at + 12, 2), "error", "table-size", "moov/trak[1]/mdia/minf/dinf/dref")
        self.assert_finds(video(stsz=atom(b"stsz", bytes(10))), "error", "short-atom", STBL + "/stsz")

    def test_compact_sizes(self):
        def compact(bits, *sizes):
            return video(stsz=full(b"stz2", words(bits, 6), bytes(sizes)))

        self.assertEqual(self.findings(compact(8, *moviemaker.VIDEO_SIZES), 0), {})
        self.assert_finds(compact(8, 1, 2), "error", "table-size", STBL + "/stz2")
        self.assert_finds(compact(4, 0x11, 0x22), "error", "table-size", STBL + "/stz2")
        self.assertEqual(self.findings(compact(4, 0x12, 0x34, 0x56), 0), {})
        self.assert_finds(compact(7, *moviemaker.VIDEO_SIZES), "error", "size-bits", STBL + "/stz2")

    def test_sums(self):
        self.assert_finds(video(stts=table(b"stts", (5, 120))), "error", "table-sum", STBL + "/stts",
                          text="times of 5 samples, but sizes of 6")
        self.assert_finds(video(stts=table(b"stts", (6, 100), (1, 0))), "warning", "table-sum", STBL + "/stts")
        self.assert_only(video(stsc=table(b"stsc", (1, 3, 1), (2, 1, 1))), "error", "table-sum", STBL + "/stsc",
                         text="chunks of 5 samples")
        self.assert_finds(video(stsc=table(b"stsc", (1, 3, 1))), "warning", "table-sum", STBL + "/stsc")
        self.assert_only(video(ctts=table(b"ctts", (5, 50))), "error", "table-sum", STBL + "/ctts")
        self.assertEqual(self.findings(video(ctts=table(b"ctts")), 0), {})
        self.assert_only(video(more=[full(b"sdtp", bytes(5))]), "warning", "table-sum", STBL + "/sdtp")
        huge = table(b"stsc", (1, 0xFFFFFFFF, 1))
        self.assert_finds(video(stsc=huge), "warning", "table-sum", STBL + "/stsc", text=str(3 * 0xFFFFFFFF))

    def test_times(self):
        content = video(stts=table(b"stts", (3, 100), (0, 7), (3, 100)))
        self.assert_only(content, "warning", "empty-run", STBL + "/stts", offset=place(content, b"stts") + 24)
        self.assert_only(video(stts=table(b"stts", (3, 100), (1, 0), (2, 150))), "warning", "zero-duration",
                         STBL + "/stts")
        self.assertEqual(self.findings(video(stts=table(b"stts", (5, 120), (1, 0))), 0), {})

    def test_runs(self):
        path = STBL + "/stsc"
        self.assert_finds(video(stsc=table(b"stsc", (2, 3, 1))), "error", "chunk-runs", path, text="from 2 on, not from 1")
        self.assert_finds(video(stsc=table(b"stsc", (1, 3, 1), (3, 1, 1), (2, 2, 1))), "error", "chunk-runs", path)
        self.assert_only(video(stsc=table(b"stsc", (1, 3, 1), (2, 2, 1), (3, 1, 1), (9, 1, 1))), "warning",
                         "chunk-runs", path, text="from 9 on, of which there are 3")
        self.assert_finds(video(stsc=table(b"stsc", (1, 0, 1))), "warning", "empty-run", path)
        for index in (0, 2):
            self.assert_only(video(stsc=table(b"stsc", (1, 3, 1), (2, 2, index), (3, 1, 1))), "error",
                             "description-index", path, text=f"sample description {index} of 1")

    def test_data_references(self):
        content = video()
        at = place(content, b"mp4v")
        for index in (0, 2):
            self.assert_finds(patched(content, at + 14, index, form="H"), "error", "data-reference", STBL + "/stsd")
        # Elsewhere is not this file.
        content = patched(content, place(content, b"url ") + 8, 0)
        content = patched(content, place(content, b"stco") + 16, 0x7FFFFFFF)
        self.assertEqual(self.findings(content, 0), {})

    def test_sync(self):
        for kind in (b"stss", b"stps"):
            changes = {"stss": table(kind, (1,), (7,))}
            self.assert_only(video(**changes), "error", "sync-range", f"{STBL}/{kind.decode()}", text="no sample 7")
            changes = {"stss": table(kind, (0,), (4,))}
            self.assert_only(video(**changes), "error", "sync-range", f"{STBL}/{kind.decode()}", text="no sample 0")
            changes = {"stss": table(kind, (4,), (1,), (1,))}
            self.assert_only(video(**changes), "warning", "sync-order", f"{STBL}/{kind.decode()}", count=2)
        self.assertEqual(self.findings(video(stss=table(b"stss")), 0), {})


class Chunks(CheckTest):
    path = STBL + "/stco"

    def moved(self, chunk, offset):
        content = video()
        return patched(content, place(content, b"stco") + 12 + 4 * chunk, offset)

    def test_places(self):
        content = video()
        at, end, moov = place(content, b"stco"), len(content), place(content, b"moov")
        self.assert_only(self.moved(2, end - 10), "error", "chunk-outside-file", self.path, offset=at + 20,
                         text=rf"^chunk 2 \(90 bytes at 0x{end - 10:x}\)")
        self.assert_only(self.moved(1, 0xFFFFFFFF), "error", "chunk-outside-file", self.path)
        self.assert_only(self.moved(3, moov + 30), "error", "chunk-in-header", self.path)
        self.assert_only(self.moved(3, moov - 20), "error", "chunk-in-header", self.path)
        self.assert_finds(self.moved(1, 20), "warning", "chunk-outside-media", self.path)
        self.assert_finds(self.moved(1, 31), "warning", "chunk-outside-media", self.path)

    def test_64_bits(self):
        content = video()
        at = place(content, b"stco")
        track = moviemaker.video_track(name=b"Video")
        track.extra = track.edits = b""
        offsets = struct.unpack_from(">3I", content, at + 16)
        wide = full(b"co64", words(3), *(struct.pack(">Q", offset) for offset in offsets))
        content = patched(content, at + 4, 0x66726565)
        around = [place(content, kind) for kind in (b"moov", b"trak", b"mdia", b"minf", b"stbl")]
        content = inserted(content, len(content), wide, *around)
        self.assertEqual(self.findings(content, 0), {})
        content = patched(content, len(content) - 8, (1 << 64) - 2, form="Q")
        self.assert_only(content, "error", "chunk-outside-file", STBL + "/co64", offset=len(content) - 8)

    def test_overlap(self):
        self.assert_only(self.moved(2, 32 + 59), "warning", "chunk-overlap", self.path, text="chunk 2 .* overlaps chunk 1")
        content = video(stsz=full(b"stsz", words(10, 6)), payload=[bytes(30), bytes(20), bytes(10)])
        at = place(content, b"stco")
        self.assertEqual(self.findings(content, 0), {})
        content = video(stsz=full(b"stsz", words(10, 6)), stsc=table(b"stsc", (1, 2, 1)), payload=[bytes(20)] * 3)
        at = place(content, b"stco")
        self.assert_only(patched(content, at + 16, *[32] * 3), "note", "shared-chunk", self.path, count=2)

    def test_folding(self):
        count = 1000
        content = video(stsz=full(b"stsz", words(10, count)), stsc=table(b"stsc", (1, 1, 1)),
                        stts=table(b"stts", (count - 1, 0), (1, 600)), ctts=table(b"ctts"), stss=table(b"stss", (1,)),
                        payload=[bytes(1)] * count)
        path = self.file(content[:-count * 4] + words(*[len(content)] * count))
        code, out, _ = run("check", path)
        self.assertEqual(code, 1)
        self.assertRegex(out.decode(), r"error: moov/trak\[1\]/mdia/minf/stbl/stco @0x[0-9a-f]+: chunk 1 .* "
                                       r"\(and 999 more\) \[chunk-outside-file\]\n")

    def test_sound_in_packets(self):
        """Sizes of 1 say nothing: the description does."""
        content = single(moviemaker.sound_track(1), 40)
        for kind in (b"mvhd", b"tkhd"):
            content = patched(content, place(content, kind) + (24 if kind == b"mvhd" else 28), 3)
        self.assertEqual(self.findings(content, 0), {})
        at = place(content, b"stco")
        mdat = place(content, b"mdat")
        self.assert_only(patched(content, at + 20, mdat + 8 + 119), "warning", "chunk-overlap", STBL + "/stco")
        content = patched(content, place(content, b"sowt") + 4, 0x58595A20)  # nobody knows what a sample is
        self.assertEqual(self.findings(patched(content, at + 20, mdat + 8 + 119), 0), {})

    def test_interleaving(self):
        def track(number, handler, header, entry):
            tables = [table(b"stts", (6, 600)), table(b"stsc", (1, 1, 1)), full(b"stsz", words(10, 6))]
            return moviemaker.Track(number, handler, header, entry, 600, [bytes(10)] * 6, tables)

        content = moviemaker.movie([track(1, b"vide", full(b"vmhd", bytes(8)), moviemaker.video_entry()),
                                    track(2, b"soun", full(b"smhd", bytes(4)), moviemaker.sound_entry())], [3600, 3600])
        content = patched(content, place(content, b"mvhd") + 24, 3600)
        self.assert_only(content, "note", "interleaving", "moov/trak[2]/mdia/minf/stbl/stco", text="chunk 1 lies 6.0 s")
        for kinds, shift in (((b"stco",), 0), ((b"stco", b"stco"), 10)):
            at = place(content, *kinds)
            content = patched(content, at + 16, *(32 + shift + 20 * n for n in range(6)))
        self.assertEqual(self.findings(content, 0), {})


class Compressed(CheckTest):
    def test_inside(self):
        content = video()
        moov = place(content, b"moov")

        def squeezed(header):
            packed = words(len(header)) + zlib.compress(header)
            return content[:moov] + atom(b"moov", atom(b"cmov", atom(b"dcom", b"zlib"), atom(b"cmvd", packed)))

        self.assertEqual(self.findings(squeezed(content[moov:]), 0), {})
        header = patched(content, place(content, b"mdhd") + 24, 599)[moov:]
        self.assert_finds(squeezed(header), "warning", "media-duration", "moov/trak[1]/mdia/mdhd", offset=moov + 8)
        self.assert_finds(squeezed(atom(b"free")), "error", "compressed-header", "moov/cmov")
        broken = squeezed(content[moov:])
        self.assert_finds(broken[:-30] + bytes(30), "error", "compressed-header", "moov/cmov")


class Hostile(CheckTest):
    def assert_survives(self, content):
        code, out, err = run("check", "--json", self.file(content))
        self.assertIn(code, (0, 1, 4), err)
        if code != 4:
            json.loads(out)

    def test_truncations(self):
        content = moviemaker.example()
        for end in fewer(range(0, len(content), 13)):
            self.assert_survives(content[:end])

    def test_changed_bytes(self):
        for content in fewer(moviemaker.damaged(moviemaker.example(), 300, seed=11, most=5)):
            self.assert_survives(content)

    def test_large_claims_take_neither_memory_nor_time(self):
        limited = takes_address_limits()

        def little_memory():
            if limited:
                resource.setrlimit(resource.RLIMIT_AS, (512 << 20, 512 << 20))

        many = 0xFFFFFFFF
        constant = video(stsz=full(b"stsz", words(many, many)), stts=table(b"stts", (many, many)),
                         stsc=table(b"stsc", (1, many, 1)), ctts=table(b"ctts", (many, 0)))
        variable = video(stsz=full(b"stsz", words(0, many), bytes(4 << 20)), stsc=table(b"stsc", (1, many, 1)))
        offsets = video(stsz=full(b"stsz", words(1, many)), payload=[b""] * 2500000)
        tracks = video()
        trak = tracks[place(tracks, b"trak"):]
        copies = patched(tracks, place(tracks, b"moov"), len(tracks) - place(tracks, b"moov") + 6000 * len(trak)) + trak * 6000
        for content in (constant, variable, offsets, copies):
            path = self.file(content)
            code, out, err = run("check", "--json", path, preexec_fn=little_memory)
            self.assertEqual((code, err), (1, ""))
            self.assertLess(len(out), 3 << 20)


@native_only("needs a terminal of this system")
class Terminal(CheckTest):
    def on_terminal(self, path, **environment):
        try:
            import pty
        except ImportError:
            self.skipTest("no terminals here")
        leader, follower = pty.openpty()
        process = subprocess.Popen(command("check", path), stdout=follower, env={**os.environ, "TERM": "xterm", **environment})
        os.close(follower)
        out = b""
        while True:
            try:
                part = os.read(leader, 4096)
            except OSError:
                break
            if not part:
                break
            out += part
        os.close(leader)
        process.wait()
        return out

    def test_colours(self):
        path = self.file(video())
        self.assertIn(b": \x1b[36mnote\x1b[0m: ", self.on_terminal(path, NO_COLOR=""))
        self.assertNotIn(b"\x1b", self.on_terminal(path, NO_COLOR="1"))
        self.assertNotIn(b"\x1b", self.on_terminal(path, NO_COLOR="", TERM="dumb"))
        self.assertNotIn(b"\x1b", run("check", path)[1])


if __name__ == "__main__":
    main()
