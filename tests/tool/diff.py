#!/usr/bin/env python3
"""`diff`: what it says of two movies that differ in one thing, and that it says nothing of equal ones.

diff.py TOOL [TEST...]
"""
import json
import os
import struct
import tempfile
import unittest

import moviemaker
from moviemaker import atom, full, table, words
from tool import fewer, main, run


def patched(content, kind, offset, value, form="I"):
    """The first atom of the kind, changed at the offset."""
    at = content.index(kind) - 4 + offset
    new = struct.pack(">" + form, value)
    return content[:at] + new + content[at + len(new):]


def video(number=1, **tables):
    track = moviemaker.video_track(number)
    for position, old in enumerate(track.tables):
        track.tables[position] = tables.get(old[4:8].decode(), old)
    return track


class DiffTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.movie = moviemaker.example()

    def file(self, name, content):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def diff(self, a, b, *options):
        a, b = self.file("a.mov", a), self.file("b.mov", b)
        code, out, err = run("diff", "--json", a, b, *options)
        self.assertEqual(err, "")
        told = json.loads(out)
        self.assertEqual((told["schema"], told["a"], told["b"]), (1, a, b))
        self.assertEqual((told["equal"], code), (not told["differences"], 1 if told["differences"] else 0))
        text_code, text, _ = run("diff", a, b, *options)
        self.assertEqual((text_code, len(text.splitlines())), (code, len(told["differences"])))
        return told["differences"]

    def text(self, a, b):
        return run("diff", self.file("a.mov", a), self.file("b.mov", b))[1].decode().splitlines()

    def test_equal(self):
        self.assertEqual(self.diff(self.movie, self.movie), [])

    def test_field(self):
        other = patched(self.movie, b"tkhd", 84, 128 << 16)
        self.assertEqual(self.diff(self.movie, other),
                         [{"kind": "field", "path": "moov/trak[1]/tkhd", "name": "width", "a": 64.0, "b": 128.0}])
        self.assertEqual(self.text(self.movie, other), ["~ moov/trak[1]/tkhd: width 64.0 -> 128.0"])

    def test_times(self):
        other = self.movie
        for kind in (b"mvhd", b"tkhd", b"mdhd"):
            other = patched(patched(other, kind, 12, 3000000000), kind, 16, 3000000001)
        found = {(d["path"], d["name"]) for d in self.diff(self.movie, other)}
        names = ("creation_time", "modification_time")
        self.assertEqual(found, {(path, name) for name in names for path in
                                 ("moov/mvhd", "moov/trak[1]/tkhd", "moov/trak[1]/mdia/mdhd")})
        self.assertEqual(self.diff(self.movie, other, "--ignore-times"), [])

    def test_atoms(self):
        other = self.movie.replace(b"udta", b"free")
        self.assertEqual([(d["kind"], d["path"]) for d in self.diff(self.movie, other)],
                         [("only_a", "moov/udta"), ("only_b", "moov/free")])
        self.assertEqual(self.text(self.movie, other), ["- moov/udta", "+ moov/free"])

    def test_bytes_that_no_field_tells_of(self):
        a, b = (self.movie + atom(b"abcd", bytes(5000) + end) for end in (b"\1", b"\2"))
        self.assertEqual(self.diff(a, b), [{"kind": "content", "path": "abcd", "first_byte": 5000}])
        self.assertEqual(self.diff(a, self.movie + atom(b"abcd", bytes(9)))[0]["name"], "size")
        self.assertEqual(self.diff(self.movie + atom(b"free", b"1"), self.movie + atom(b"free", b"2")), [])

    def test_tracks(self):
        tracks = [video(), moviemaker.sound_track(), moviemaker.chapter_track(), moviemaker.timecode_track()]
        fewer = moviemaker.movie([tracks[0], tracks[3]], [600, 600], moviemaker.user_data())
        found = [(d["kind"], d["path"]) for d in self.diff(self.movie, fewer)]
        self.assertIn(("only_a", "moov/trak[2]"), found)
        self.assertIn(("only_a", "moov/trak[3]"), found)
        self.assertNotIn(("only_a", "moov/trak[4]"), found)  # told by its ID
        swapped = moviemaker.movie([tracks[1], tracks[0]], [40, 600])
        found = self.diff(moviemaker.movie(tracks[:2], [600, 40]), swapped)
        self.assertEqual([d["kind"] for d in found], ["order", "moved", "moved"])

    def one(self, **tables):
        return moviemaker.movie([video(**tables)], [600])

    def samples(self, a, b):
        return {d["name"]: d for d in self.diff(a, b) if d["kind"] == "samples"}

    def test_samples(self):
        a = self.one()
        found = self.samples(a, self.one(stsz=full(b"stsz", words(0, 6, 10, 21, 30, 41, 50, 60))))
        self.assertEqual(found, {"size": {"kind": "samples", "path": "track 1", "name": "size", "a": 20, "b": 21,
                                          "first_sample": 2, "count": 2}})
        found = self.samples(a, self.one(stss=table(b"stss", (1,), (5,))))
        self.assertEqual({name: (d["first_sample"], d["count"]) for name, d in found.items()}, {"key mark": (4, 2)})
        found = self.samples(a, self.one(ctts=table(b"ctts", (2, 50), (1, 0), (3, 0))))
        self.assertEqual({name: (d["a"], d["b"], d["count"]) for name, d in found.items()},
                         {"composition offset": (-50, 0, 1)})
        found = self.samples(a, self.one(stts=table(b"stts", (2, 100), (4, 50))))
        self.assertEqual({name: (d["first_sample"], d["count"]) for name, d in found.items()},
                         {"decode time": (4, 3), "duration": (3, 4)})
        text = self.text(a, self.one(stsz=full(b"stsz", words(0, 6, 10, 21, 30, 41, 50, 60))))
        self.assertIn("~ track 1: sample 2: size 20 -> 21 (and 1 more)", text)

    def test_number_of_frames(self):
        fewer = self.one(stsz=full(b"stsz", words(0, 5, 10, 20, 30, 40, 50)), stts=table(b"stts", (5, 100)))
        found = [d for d in self.diff(self.one(), fewer) if d["path"] == "track 1"]
        self.assertEqual(found, [{"kind": "field", "path": "track 1", "name": "frames", "a": 6, "b": 5}])

    def test_moved(self):
        def shifted(by):
            content = moviemaker.movie([video(), moviemaker.sound_track()], [600, 40])
            start = content.index(b"mdat") - 4
            header = content.index(b"moov") - 4
            for kind in (b"stco",) * 2:
                at = content.index(kind, header)
                count, = struct.unpack_from(">I", content, at + 8)
                for number in range(count):
                    place = at + 12 + 4 * number
                    old, = struct.unpack_from(">I", content, place)
                    content = content[:place] + words(old + by) + content[place + 4:]
                header = at + 1
            return content[:start] + atom(b"free", bytes(by - 8)) + content[start:] if by else content

        found = self.diff(shifted(0), shifted(100))
        self.assertEqual(found, [{"kind": "only_b", "path": "free"},
                                 {"kind": "moved", "path": "", "distance": 100, "count": 8}])
        self.assertIn("~ all tracks: 8 frames lie 100 bytes later", self.text(shifted(0), shifted(100)))
        self.assertIn("~ all tracks: 8 frames lie 100 bytes earlier", self.text(shifted(100), shifted(0)))

    def test_files_that_are_no_movies(self):
        a, none = self.file("a.mov", self.movie), self.file("none", b"no movie at all")
        self.assertEqual(run("diff", a, none)[0], 4)
        self.assertEqual(run("diff", none, a)[0], 4)
        code, out, err = run("diff", a, a + ".missing")
        self.assertEqual((code, out), (3, b""))
        self.assertIn("a.mov.missing: no such file", err)
        self.assertEqual(run("diff", a)[0], 2)

    def test_hostile(self):
        a = self.file("a.mov", self.movie)
        for changed in fewer(moviemaker.damaged(self.movie, 150, seed=3)):
            code, out, _ = run("diff", "--json", a, self.file("b.mov", changed))
            self.assertIn(code, (0, 1, 4))
            if out:
                json.loads(out)


if __name__ == "__main__":
    main()
