#!/usr/bin/env python3
"""The tool from outside: what it prints, how it ends, and what it does with files that are no movies.

run.py TOOL [TEST...]
"""
import json
import os
import random
import re
import resource
import subprocess
import tempfile
import unittest

import moviemaker
from tool import EMULATOR, command, fewer, main, native_only, run


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.movie = self.file("movie.mov", moviemaker.example())

    def file(self, name, content):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def path(self, name):
        return os.path.join(self.folder.name, name)

    def json_lines(self, *arguments):
        code, out, err = run(*arguments)
        self.assertEqual((code, err), (0, ""))
        return [json.loads(line) for line in out.decode("utf-8").splitlines()]

    def assert_fails(self, code, *arguments):
        found, out, err = run(*arguments)
        self.assertEqual(found, code, err)
        self.assertEqual(out, b"")
        return err


class Usage(ToolTest):
    def test_help_and_version(self):
        code, out, _ = run("--help")
        self.assertEqual(code, 0)
        commands = re.findall(r"^  ([a-z]+)  ", out.decode().partition("Subcommands:")[2], re.M)
        self.assertLess({"info", "tree", "samples", "extract", "check", "remux", "hint"}, set(commands))
        for name in commands:
            code, out, _ = run(name, "--help")
            self.assertEqual(code, 0, name)
            self.assertRegex(out.decode().replace("\r\n", "\n"), rf"\nExamples?:\n(  ketraqt {name} .+\n){{1,3}}$")
        code, out, _ = run("--version")
        self.assertEqual(code, 0)
        self.assertRegex(out.decode(), r"^ketraqt \d+\.\d+\.\d+\r?\n$")

    def test_wrong_usage_is_2(self):
        for arguments in ([], ["what"], ["info"], ["tree", self.movie, "--no-such"], ["samples", self.movie],
                          ["samples", self.movie, "--track", "x"], ["samples", self.movie, "--track", "-1"],
                          ["samples", self.movie, "--track", "1", "--count", "-3"],
                          ["samples", self.movie, "--track", "1", "--from-time", "0", "--from-sample", "1"],
                          ["extract", self.movie, "--track", "1"]):
            self.assert_fails(2, *arguments)

    def test_what_the_movie_does_not_have_is_2(self):
        for arguments in (["samples", self.movie, "--track", "9"], ["extract", self.movie, "--track", "9", "-o", "-"],
                          ["samples", self.movie, "--track", "1", "--from-sample", "7"],
                          ["samples", self.movie, "--track", "1", "--from-sample", "0"],
                          ["samples", self.movie, "--track", "1", "--from-time", "5"]):
            self.assertRegex(self.assert_fails(2, *arguments), r"^ketraqt: .*movie\.mov: .+\n$")


class Files(ToolTest):
    def commands(self, path):
        return (["info", path], ["info", "--json", path], ["tree", path], ["samples", path, "--track", "1"],
                ["extract", path, "--track", "1", "-o", self.path("out")])

    def test_files_that_cannot_be_read_are_3(self):
        for path in (self.path("missing.mov"), self.folder.name):
            for arguments in self.commands(path):
                self.assertRegex(self.assert_fails(3, *arguments), f"^ketraqt: {path}: .+\n$")

    def test_files_that_are_no_movies_are_4(self):
        noise = random.Random(1)
        contents = {"empty": b"", "short": b"\0\0", "zeros": bytes(4096), "text": b"This is a text.\n" * 100,
                    "noise": noise.randbytes(50000), "no header": moviemaker.atom(b"ftyp", b"qt  \0\0\0\0"),
                    "no tracks": moviemaker.movie([], [])}
        for name, content in contents.items():
            path = self.file(name, content)
            for arguments in self.commands(path):
                code, out, err = run(*arguments)
                self.assertEqual(code, 4, (name, arguments))
                self.assertRegex(err, f"^ketraqt: {path}: .+\n$")
                self.assertTrue(arguments[0] == "tree" or out == b"")
            self.assertFalse(os.path.exists(self.path("out")))

    def test_info_goes_on_and_returns_the_worst(self):
        empty, missing = self.file("empty", b""), self.path("missing")
        for files, expected in (([missing, self.movie], 3), ([self.movie, empty, missing, self.movie], 4)):
            code, out, err = run("info", "--json", *files)
            self.assertEqual(code, expected)
            self.assertEqual(len(out.splitlines()), files.count(self.movie))
            self.assertEqual(len(err.splitlines()), len(files) - files.count(self.movie))


class Info(ToolTest):
    def test_json(self):
        (info,) = self.json_lines("info", "--json", self.movie)
        self.assertEqual(info["schema"], 1)
        self.assertEqual(info["file"], self.movie)
        self.assertEqual(info["brands"], {"major": "qt  ", "minor": 0x20050300, "compatible": ["qt  ", "mp42"]})
        self.assertEqual((info["timescale"], info["duration"]), (600, 2.0))
        video, sound, text, timecode = info["tracks"]
        self.assertEqual(list(video)[:8], ["id", "type", "format", "timescale", "duration", "samples", "key_frames",
                                           "bit_rate"])
        expected = {"id": 1, "type": "vide", "format": "mp4v", "timescale": 600, "duration": 1.0, "samples": 6,
                    "key_frames": 2, "bit_rate": 210 * 8, "width": 64, "height": 48, "language": "eng",
                    "edits": [{"duration": 600, "media_time": 0, "rate": 1.0}],
                    "references": [{"type": "chap", "tracks": [3]}, {"type": "tmcd", "tracks": [4]}]}
        self.assertEqual({key: video[key] for key in expected}, expected)
        expected = {"id": 2, "type": "soun", "format": "sowt", "duration": 0.005, "samples": 40, "key_frames": 40,
                    "bit_rate": 160 * 8 * 200, "sample_rate": 8000, "channels": 2, "bits": 16, "edits": []}
        self.assertEqual({key: sound[key] for key in expected}, expected)
        self.assertEqual(text["type"], "text")
        self.assertEqual([(c["title"], c["start"]) for c in info["chapter_tracks"][0]["chapters"]],
                         [("Anfang \u00e4", 0.0), ("Ende", 0.5)])
        # 17982 frames are ten minutes of drop-frame counting.
        self.assertEqual(timecode["timecode"]["start"], "00:10:00;00")
        self.assertEqual(timecode["timecode"]["drop_frame"], True)
        self.assertAlmostEqual(timecode["timecode"]["rate"], 30000 / 1001)

    def test_drop_frame_numbers(self):
        for frame, expected in ((0, "00:00:00;00"), (1799, "00:00:59;29"), (1800, "00:01:00;02"),
                                (17981, "00:09:59;29"), (107892, "01:00:00;00")):
            path = self.file("tc.mov", moviemaker.movie([moviemaker.timecode_track(frame=frame)], [600]))
            (info,) = self.json_lines("info", "--json", path)
            self.assertEqual(info["tracks"][0]["timecode"]["start"], expected)

    def test_texts_that_are_not_utf8(self):
        (info,) = self.json_lines("info", "--json", self.movie)
        self.assertEqual(info["tracks"][0]["handler"], "Video \ufffd\x1b[31m handler")
        self.assertEqual([entry["type"] for entry in info["user_data"]], ["\u00a9nam", "\\x01\\xf0zz", "name"])
        self.assertEqual([entry.get("text") for entry in info["user_data"]], ["Ti\ufffdtl", None, "A name"])
        for command in ("info", "tree"):
            code, out, _ = run(command, self.movie)
            self.assertEqual(code, 0)
            self.assertNotIn(b"\x1b", out)
            out.decode("utf-8")


class Tree(ToolTest):
    def test_json(self):
        (tree,) = self.json_lines("tree", "--json", self.movie)
        self.assertEqual((tree["schema"], tree["type"]), (1, "root"))
        self.assertEqual([child["type"] for child in tree["children"]], ["ftyp", "mdat", "moov"])
        ftyp, mdat, moov = tree["children"]
        self.assertEqual(set(ftyp), {"type", "offset", "header_size", "size", "fields", "children"})
        self.assertEqual((ftyp["offset"], ftyp["header_size"], ftyp["size"]), (0, 8, 24))
        self.assertEqual((mdat["offset"], mdat["size"]), (24, 8 + 210 + 160 + 17 + 4))
        self.assertEqual(moov["offset"] + moov["size"], os.path.getsize(self.movie))
        atoms = {}
        self.collect(tree, atoms)
        self.assertEqual(atoms["stsz"][0]["fields"]["first"], [10, 20, 30, 40])
        self.assertEqual(atoms["ctts"][0]["fields"]["first"][1], {"samples": 1, "offset": -50})
        self.assertEqual(atoms["stsc"][0]["fields"]["entries"], 3)
        self.assertEqual(atoms["elst"][0]["fields"]["first"], [{"duration": 600, "media_time": 0, "rate": 1.0}])
        self.assertEqual(atoms["mp4v"][0]["fields"]["width"], 64)
        self.assertEqual(atoms["sowt"][0]["fields"]["channels"], 2)
        self.assertEqual(atoms["url "][0]["fields"]["data_size"], 0)
        self.assertEqual(atoms["\u00a9nam"][0]["fields"], {"text": "Ti\ufffdtl"})
        self.assertEqual(atoms["chap"][0]["fields"], {"track_id": 3})

    def test_sizes_are_those_of_the_file(self):
        (tree,) = self.json_lines("tree", "--json", self.movie)
        atoms = {}
        self.collect(tree, atoms)
        with open(self.movie, "rb") as file:
            content = file.read()
        for nodes in atoms.values():
            for node in nodes:
                if node["offset"] is None or node["type"] == "root":
                    continue
                size = int.from_bytes(content[node["offset"]:node["offset"] + 4], "big")
                self.assertEqual(node["size"], size, node["type"])
        self.assertEqual([node["size"] for node in atoms["stsc"]], [16 + 12 * 3, 16 + 12 * 2, 16 + 12, 16 + 12])

    def collect(self, node, atoms):
        atoms.setdefault(node["type"], []).append(node)
        for child in node["children"]:
            self.collect(child, atoms)

    def test_a_large_table_is_counted_only(self):
        track = moviemaker.video_track()
        track.tables[4] = moviemaker.full(b"stsz", moviemaker.words(0, 2000, *range(2000)))
        path = self.file("large.mov", moviemaker.movie([track], [600]))
        atoms = {}
        self.collect(self.json_lines("tree", "--json", path)[0], atoms)
        self.assertEqual(atoms["stsz"][0]["fields"], {"version": 0, "flags": 0, "sample_size": 0, "entries": 2000})


class Samples(ToolTest):
    def frames(self, *arguments):
        return self.json_lines("samples", "--json", self.movie, *arguments)

    def test_json(self):
        frames = self.frames("--track", "1")
        self.assertEqual(list(frames[0]), ["sample", "chunk", "offset", "size", "dts", "pts", "duration", "dts_ticks",
                                           "pts_ticks", "key", "samples"])
        self.assertEqual([f["sample"] for f in frames], [1, 2, 3, 4, 5, 6])
        self.assertEqual([f["chunk"] for f in frames], [1, 1, 1, 2, 2, 3])
        self.assertEqual([f["offset"] for f in frames], [32, 42, 62, 92, 132, 182])
        self.assertEqual([f["size"] for f in frames], list(moviemaker.VIDEO_SIZES))
        self.assertEqual([f["dts_ticks"] for f in frames], [0, 100, 200, 300, 400, 500])
        self.assertEqual([f["pts_ticks"] for f in frames], [50, 150, 150, 300, 400, 500])
        self.assertEqual([f["dts"] for f in frames], [n / 6 for n in range(6)])
        self.assertEqual([f["key"] for f in frames], [True, False, False, True, False, False])
        self.assertEqual({(f["samples"], f["duration"]) for f in frames}, {(1, 100 / 600)})

    def test_text(self):
        code, out, _ = run("samples", self.movie, "--track", "1")
        rows = [line.split() for line in out.decode().splitlines()]
        self.assertEqual(code, 0)
        self.assertEqual(rows[1], ["1", "32", "10", "0.000000", "0.083333", "0.166667", "key", "1"])
        self.assertEqual(rows[3], ["3", "62", "30", "0.333333", "0.250000", "0.166667", "-", "1"])
        self.assertEqual(len(rows), 7)

    def test_sound_comes_in_chunks(self):
        found = [(f["sample"], f["chunk"], f["offset"], f["size"], f["samples"], f["dts_ticks"])
                 for f in self.frames("--track", "2")]
        self.assertEqual(found, [(1, 1, 242, 120, 30, 0), (31, 2, 362, 40, 10, 30)])

    def test_parts(self):
        def numbers(*arguments):
            return [f["sample"] for f in self.frames("--track", "1", *arguments)]

        self.assertEqual(numbers("--from-sample", "5"), [5, 6])
        self.assertEqual(numbers("--from-sample", "2", "--count", "3"), [2, 3, 4])
        self.assertEqual(numbers("--count", "0"), [])
        self.assertEqual(numbers("--from-time", "0.4"), [1, 2, 3, 4, 5, 6])  # sample 3 needs key frame 1
        self.assertEqual(numbers("--from-time", "0.7", "--count", "1"), [4])
        self.assertEqual(numbers("--from-time", "0.5"), [4, 5, 6])
        self.assertEqual(numbers("--from-time", "-1", "--count", "1"), [1])

    def test_media_need_not_be_there(self):
        content = moviemaker.example()
        header = content[content.index(b"moov") - 4:]
        path = self.file("header.mov", header)
        code, out, err = run("samples", "--json", path, "--track", "1")
        self.assertEqual(code, 0)
        self.assertEqual([json.loads(line)["size"] for line in out.splitlines()], list(moviemaker.VIDEO_SIZES))
        self.assertEqual(err, "")  # the header itself is longer than the places that the tables name
        path = self.file("short.mov", header[:4] + header[4:])
        self.assertEqual(run("samples", path, "--track", "2")[0], 0)


class Extract(ToolTest):
    video = b"".join(bytes([n]) * size for n, size in enumerate(moviemaker.VIDEO_SIZES, 1))

    def test_file_and_standard_output(self):
        out = self.path("out")
        self.assertEqual(run("extract", self.movie, "--track", "1", "-o", out), (0, b"", ""))
        with open(out, "rb") as file:
            self.assertEqual(file.read(), self.video)
        self.assertEqual(run("extract", self.movie, "--track", "1", "-o", "-"), (0, self.video, ""))
        self.assertEqual(run("extract", self.movie, "--track", "2", "-o", "-"), (0, bytes(range(160)), ""))

    def test_output_that_cannot_be_written_is_3(self):
        for out in (self.path("no/such/folder"), self.folder.name):
            self.assert_fails(3, "extract", self.movie, "--track", "1", "-o", out)
        if os.path.exists("/dev/full") and not EMULATOR:
            self.assert_fails(3, "extract", self.movie, "--track", "1", "-o", "/dev/full")
            self.assertTrue(os.path.exists("/dev/full"))
            with open("/dev/full", "wb") as full:
                done = subprocess.run(command("extract", self.movie, "--track", "1", "-o", "-"), stdout=full,
                                      stderr=subprocess.PIPE, check=False)
            self.assertEqual(done.returncode, 3, done.stderr)

    @native_only("sets a limit that only this system's own programs see")
    def test_a_partial_file_is_removed(self):
        big = moviemaker.video_track()
        sizes = [100000] * 6
        big.payload = [bytes(300000), bytes(200000), bytes(100000)]
        big.tables[4] = moviemaker.full(b"stsz", moviemaker.words(0, 6, *sizes))
        path, out = self.file("big.mov", moviemaker.movie([big], [600])), self.path("out")

        def small_files_only():
            resource.setrlimit(resource.RLIMIT_FSIZE, (250000, 250000))

        # The signal of that limit stays ignored, as Python leaves it.
        code, _, err = run("extract", path, "--track", "1", "-o", out, preexec_fn=small_files_only,
                           restore_signals=False)
        self.assertEqual(code, 3, err)
        self.assertFalse(os.path.exists(out))
        self.assertEqual(run("extract", path, "--track", "1", "-o", out)[0], 0)
        self.assertEqual(os.path.getsize(out), 600000)

    def test_the_movie_itself_is_no_output(self):
        before = os.path.getsize(self.movie)
        self.assert_fails(2, "extract", self.movie, "--track", "1", "-o", self.movie)
        self.assertEqual(os.path.getsize(self.movie), before)

    def test_a_file_that_ends_early(self):
        track = moviemaker.video_track()
        content = moviemaker.movie([track], [600])
        start = content.index(b"mdat") - 4
        header = content[content.index(b"moov") - 4:]
        # The header in front of the media, whose end is missing.
        shift = len(header)
        for number in range(3):
            at = header.index(b"stco") + 12 + 4 * number
            old = int.from_bytes(header[at:at + 4], "big")
            header = header[:at] + (old + shift).to_bytes(4, "big") + header[at + 4:]
        path = self.file("early.mov", content[:start] + header + content[start:start + 8 + 95])
        code, out, err = run("extract", path, "--track", "1", "-o", "-")
        self.assertEqual(code, 4)
        self.assertEqual(out, self.video[:95])
        self.assertIn(f"{210 - 95} bytes of track 1 are missing", err)
        code, out, err = run("samples", path, "--track", "1")
        self.assertEqual((code, len(out.splitlines())), (0, 7))
        self.assertIn("3 of these frames end beyond the end of the file", err)

    def test_an_output_that_exists(self):
        out = self.file("out", b"old")
        self.assertEqual(run("extract", self.movie, "--track", "1", "-o", out), (0, b"", ""))
        self.assertEqual(os.path.getsize(out), len(self.video))


class Places(ToolTest):
    """Messages about damage tell where it is."""

    def test_tables(self):
        content = moviemaker.movie([moviemaker.video_track()], [600])
        at = content.index(b"stsc") - 4
        path = self.file("bad.mov", content[:at + 16] + b"\1" + content[at + 17:])
        place = rf"^ketraqt: {path}: moov/trak\[1\]/mdia/minf/stbl/stsc @0x{at:x}: chunks of 0 samples, .* \(track 1.*\)\n$"
        for arguments in (["samples", path, "--track", "1"], ["extract", path, "--track", "1", "-o", self.path("out")],
                          ["remux", path, "-o", self.path("out.mov"), "--flavour", "mov"]):
            code, _, err = run(*arguments)
            self.assertEqual(code, 4, arguments)
            self.assertRegex(err, place)

    def test_only_of_the_track(self):
        content = moviemaker.example()
        at = content.index(b"stsc") - 4  # of the first track
        cut = content.index(b"stco", content.index(b"stco") + 1) + 12
        content = content[:at + 16] + b"\1" + content[at + 17:cut] + b"\x7f" + content[cut + 1:]
        path = self.file("bad.mov", content)
        code, _, err = run("extract", path, "--track", "2", "-o", self.path("out"))
        self.assertEqual(code, 4)
        self.assertRegex(err, rf"^ketraqt: {path}: moov/trak\[2\]/mdia/minf/stbl/stco @0x[0-9a-f]+: chunk 1 .*track 2.*\n$")

    def test_no_header(self):
        content = moviemaker.example()
        at = content.index(b"mdat") - 4
        path = self.file("bad.mov", content[:at] + b"\xff" + content[at + 1:])
        for command in ("info", "tree", "check"):
            code, _, err = run(command, path)
            self.assertEqual(code, 4)
            self.assertRegex(err, rf"^ketraqt: {path}: mdat @0x{at:x}: \d+ bytes of it run over .* \(not a movie: .*\)\n$")

    def test_repeated_messages(self):
        path = self.path("missing")
        code, _, err = run("info", path, path, path)
        self.assertEqual(code, 3)
        self.assertEqual(err, f"ketraqt: {path}: no such file\nketraqt: 2 more messages like these\n")


class Hostile(ToolTest):
    def assert_survives(self, content):
        path = self.file("bad.mov", content)
        for arguments in (["info", "--json", path], ["tree", "--json", path], ["samples", "--json", path, "--track", "1"],
                          ["extract", path, "--track", "2", "-o", "-"]):
            code, out, _ = run(*arguments)
            self.assertIn(code, (0, 2, 4), arguments)
            if arguments[0] != "extract":
                for line in out.splitlines():
                    json.loads(line)

    def test_truncations(self):
        content = moviemaker.example()
        for end in fewer(range(0, len(content), 29)):
            self.assert_survives(content[:end])

    def test_changed_bytes(self):
        for content in fewer(moviemaker.damaged(moviemaker.example(), 120, seed=7)):
            self.assert_survives(content)


if __name__ == "__main__":
    main()
