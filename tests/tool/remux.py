#!/usr/bin/env python3
"""The commands that write, from outside: what they write, how they end, and that files are whole or untouched.

remux.py TOOL [TEST...]
"""
import glob
import os
import random
import resource
import signal
import struct
import subprocess
import time

import moviemaker
import run as base
from tool import command, fewer, main, native_only, run

KILLS = 30


def large_movie(samples=64, size=1 << 20):
    """A movie of many bytes, for what has to be caught while it is being written."""
    media = b"".join(bytes([n % 251]) * size for n in range(samples))
    tables = [moviemaker.table(b"stts", (samples, 24)), moviemaker.table(b"stsc", (1, samples, 1)),
              moviemaker.full(b"stsz", moviemaker.words(size, samples)), moviemaker.full(b"stsh", moviemaker.words(0))]
    track = moviemaker.Track(1, b"vide", moviemaker.full(b"vmhd", bytes(8), flags=1), moviemaker.video_entry(), 600,
                             [media], tables)
    return moviemaker.movie([track], [samples * 24])


class RemuxTest(base.ToolTest):
    def read(self, path):
        with open(path, "rb") as file:
            return file.read()

    def write(self, *arguments, source=None, name="out.mov", flavour="mov"):
        out = self.path(name)
        code, text, err = run("remux", source or self.movie, "-o", out, "--flavour", flavour, *arguments)
        self.assertEqual((code, text), (0, b""), err)
        return out

    def assert_nothing_left(self):
        self.assertEqual(glob.glob(self.path(".*")), [])

    def frames(self, path, track):
        frames = self.json_lines("samples", "--json", path, "--track", track)
        for frame in frames:
            del frame["offset"], frame["chunk"]
        return frames, run("extract", path, "--track", track, "-o", "-")[1]

    def info(self, path):
        return self.json_lines("info", "--json", path)[0]

    def top(self, path):
        data, at, kinds = self.read(path), 0, []
        while at < len(data):
            size = int.from_bytes(data[at:at + 4], "big")
            kinds.append(data[at + 4:at + 8])
            at += size if size != 1 else int.from_bytes(data[at + 8:at + 16], "big")
        self.assertEqual(at, len(data))
        return kinds


class Writing(RemuxTest):
    def test_every_frame_is_carried_over(self):
        for arguments in ([], ["--fast-start"], ["--chunk-duration", "0.1"], ["--chunk-size", "1"]):
            out = self.write(*arguments, "--force")
            for track in (1, 3, 4):
                self.assertEqual(self.frames(out, track), self.frames(self.movie, track), arguments)
            # Sound comes in pieces of chunks, so its bytes are what counts.
            self.assertEqual(self.frames(out, 2)[1], self.frames(self.movie, 2)[1])
        self.assert_nothing_left()

    def test_header_last_or_first(self):
        self.assertEqual(self.top(self.write()), [b"ftyp", b"wide", b"mdat", b"moov"])
        self.assertEqual(self.top(self.write("--fast-start", "--force")), [b"ftyp", b"moov", b"free", b"wide", b"mdat"])

    def test_headers_are_carried_over(self):
        old, new = self.info(self.movie), self.info(self.write())
        self.assertEqual(new["brands"]["major"], "qt  ")
        for a, b in zip(old["tracks"], new["tracks"]):
            for key in ("type", "format", "timescale", "samples", "key_frames", "language", "references", "edits"):
                self.assertEqual(b[key], a[key], key)
        self.assertEqual(new["user_data"], old["user_data"])
        self.assertEqual([c["chapters"] for c in new["chapter_tracks"]], [c["chapters"] for c in old["chapter_tracks"]])
        self.assertEqual(new["tracks"][3]["timecode"], old["tracks"][3]["timecode"])

    def test_partial_sync_samples(self):
        track = moviemaker.video_track()
        track.tables.append(moviemaker.table(b"stps", (3,)))
        out = self.write(source=self.file("partial.mov", moviemaker.movie([track], [600])))
        self.assertIn(moviemaker.table(b"stps", (3,)), self.read(out))
        self.assertIn(moviemaker.table(b"stss", (1,), (4,)), self.read(out))

    def test_chunks_by_time(self):
        # They are shown at 50, 150, 150, 300, 400, 500 of 600: one more than 0.3 s behind the first fills a chunk.
        frames = self.json_lines("samples", "--json", self.write("--chunk-duration", "0.3", "--tracks", "1"), "--track", "1")
        self.assertEqual([frame["chunk"] for frame in frames], [1, 1, 1, 1, 2, 2])

    def test_tracks_are_chosen(self):
        out = self.write("--tracks", "2,4")
        self.assertEqual([(t["id"], t["type"]) for t in self.info(out)["tracks"]], [(1, "soun"), (2, "tmcd")])

    def test_flavours(self):
        for flavour, tracks, major in (("mp4", "1,2,3", "mp42"), ("m4v", "1", "M4V "), ("3gp", "1", "3gr6"),
                                       ("3g2", "1", "3g2a"), ("amc", "1", "isom"), ("psp", "1", "MSNV")):
            out = self.write("--tracks", tracks, name=f"out.{flavour}", flavour=flavour)
            self.assertEqual(self.info(out)["brands"]["major"], major)
            self.assertEqual(self.frames(out, 1), self.frames(self.movie, 1))

    def test_dry_run(self):
        code, out, err = run("remux", self.movie, "-o", self.path("out.mov"), "--flavour", "mov", "--dry-run")
        self.assertEqual((code, err), (0, ""))
        self.assertIn(b"track 1 (from 1): mp4v, 6 samples, 210 bytes, 1.000000 s", out)
        self.assertEqual(os.listdir(self.folder.name), ["movie.mov"])

    @native_only("links of this system")
    def test_a_link_stays_and_its_file_is_replaced(self):
        target = self.file("target.mov", b"old")
        os.symlink(target, self.path("link.mov"))
        self.write("--force", name="link.mov")
        self.assertTrue(os.path.islink(self.path("link.mov")))
        self.assertEqual(self.info(target)["brands"]["major"], "qt  ")


class Ends(RemuxTest):
    def test_usage_is_2(self):
        out = self.path("out.mov")
        for arguments in (["remux"], ["remux", self.movie], ["remux", self.movie, "-o", out],
                          ["remux", self.movie, "-o", out, "--flavour", "avi"],
                          ["remux", self.movie, "--flavour", "mov"],
                          ["remux", self.movie, "-o", out, "--flavour", "mov", "--tracks", "9"],
                          ["remux", self.movie, "-o", out, "--flavour", "mov", "--start-timecode", "01:00:00:00"],
                          ["remux", self.movie, "-o", out, "--flavour", "mov", "--start-timecode", "x", "--rate", "25"],
                          ["remux", self.movie, "-o", out, "--flavour", "mov", "--start-timecode", "01:00:00:25",
                           "--rate", "25"],
                          ["chapters", self.movie, "-o", out], ["timecode", self.movie, "-o", out],
                          ["chapters", self.movie, "--import", self.movie]):
            self.assert_fails(2, *arguments)
        self.assertEqual(os.listdir(self.folder.name), ["movie.mov"])

    def test_input_and_output_are_3(self):
        for source, out in (("missing.mov", "out.mov"), ("movie.mov", "no/folder/out.mov"), ("movie.mov", "")):
            self.assert_fails(3, "remux", self.path(source), "-o", self.path(out), "--flavour", "mov", "--force")
        self.assert_fails(3, "remux", self.movie, "-o", self.path("o.mov"), "--flavour", "mov", "--chapters",
                          self.path("missing.txt"))
        self.assertEqual(os.listdir(self.folder.name), ["movie.mov"])

    def test_damage_is_4(self):
        content = moviemaker.example()
        media = content.index(b"mdat") + 4
        header = content.index(b"moov") - 4
        early = content[:media] + content[header:]  # the header alone, its offsets beyond the end
        for bad in (b"", b"noise" * 1000, early):
            self.assert_fails(4, "remux", self.file("bad.mov", bad), "-o", self.path("out.mov"), "--flavour", "mov")
            self.assertEqual(sorted(os.listdir(self.folder.name)), ["bad.mov", "movie.mov"])

    def test_what_a_flavour_forbids_is_5(self):
        out = self.path("out")
        for flavour, track in (("m4a", "1"), ("3gp", "2"), ("psp", "2"), ("m4v", "2"), ("amc", "4")):
            self.assertIn("has no place in", self.assert_fails(5, "remux", self.movie, "-o", out, "--flavour", flavour,
                                                              "--tracks", track))
        self.assertFalse(os.path.exists(out))

    def test_a_file_is_replaced_only_by_force(self):
        out = self.file("out.mov", b"old")
        self.assert_fails(5, "remux", self.movie, "-o", out, "--flavour", "mov")
        self.assertEqual(self.read(out), b"old")
        self.write("--force")
        self.assertNotEqual(self.read(out), b"old")

    def test_a_file_written_anew_onto_itself(self):
        self.assert_fails(5, "remux", self.movie, "-o", self.movie, "--flavour", "mov")
        before = self.frames(self.movie, 1)
        self.write("--force", name="movie.mov")
        self.assertEqual(self.frames(self.movie, 1), before)

    def test_hostile_input(self):
        for content in fewer(moviemaker.damaged(moviemaker.example(), 150, seed=11)):
            code, _, err = run("remux", self.file("bad.mov", content), "-o", self.path("out.mov"), "--flavour", "mov",
                                "--force")
            self.assertIn(code, (0, 3, 4, 5, 7), err)
            self.assert_nothing_left()


class Faults(RemuxTest):
    def setUp(self):
        super().setUp()
        self.large = self.file("large.mov", large_movie())
        self.out = self.file("out.mov", b"old file")
        self.command = command("remux", self.large, "-o", self.out, "--flavour", "mov", "--force")

    def assert_whole_or_old(self):
        if os.path.getsize(self.out) == len(b"old file"):
            self.assertEqual(self.read(self.out), b"old file")
            return False
        self.assertEqual(self.frames(self.out, 1), self.frames(self.large, 1))
        return True

    def test_killed_at_any_moment(self):
        start = time.monotonic()
        subprocess.run(self.command, check=True, timeout=120)
        whole = time.monotonic() - start
        chance = random.Random(5)
        for _ in fewer(range(KILLS)):
            with open(self.out, "wb") as file:
                file.write(b"old file")
            process = subprocess.Popen(self.command)
            time.sleep(chance.uniform(0, whole * 1.2))
            process.kill()
            process.wait(timeout=60)
            self.assert_whole_or_old()
            for left in glob.glob(self.path(".*")):
                os.remove(left)

    @native_only("signals of this system")
    def test_interrupted(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            process = subprocess.Popen(self.command, stderr=subprocess.PIPE)
            while process.poll() is None and not glob.glob(self.path(".*")):
                time.sleep(0.001)
            process.send_signal(number)
            _, err = process.communicate(timeout=60)
            if process.returncode == 0:
                self.skipTest("it was faster than the signal")
            self.assertEqual(process.returncode, 130, err)
            self.assertEqual(self.read(self.out), b"old file")
            self.assert_nothing_left()

    @native_only("sets a limit that only this system's own programs see")
    def test_full_disk(self):
        for limit in (0, 1, 100, 1 << 20, 64 << 20):
            done = subprocess.run(self.command, capture_output=True, timeout=120, check=False,
                                  preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
            self.assertEqual(done.returncode, 3, done.stderr)
            self.assertEqual(self.read(self.out), b"old file")
            self.assert_nothing_left()

    def test_what_reads_back_differently_is_7(self):
        for _ in range(10):
            process = subprocess.Popen(self.command, stderr=subprocess.PIPE)
            while process.poll() is None:
                for path in glob.glob(self.path(".*")):
                    if os.path.getsize(path) > 8 << 20:
                        with open(path, "r+b") as file:
                            file.seek(2 << 20)
                            file.write(b"another's bytes")
                        process.wait(timeout=60)
            err = process.communicate()[1]
            if process.returncode != 0:
                self.assertEqual(process.returncode, 7, err)
                self.assertIn(b"reads back with other bytes", err)
                self.assertEqual(self.read(self.out), b"old file")
                self.assert_nothing_left()
                return
            with open(self.out, "wb") as file:
                file.write(b"old file")
        self.skipTest("it was too fast to be disturbed")


class Chapters(RemuxTest):
    LINES = "00:00:00.000 First \u00e4\n00:00:00.250 Second\n00:00:00.900 Third one\n"

    def test_list_and_export(self):
        code, out, err = run("chapters", self.movie)
        self.assertEqual((code, out.decode(), err), (0, "00:00:00.000 Anfang \u00e4\n00:00:00.500 Ende\n", ""))
        self.assertEqual(run("chapters", self.movie, "--export", self.path("list.txt"))[0], 0)
        self.assertEqual(self.read(self.path("list.txt")), out)

    def test_import(self):
        titles = self.file("titles.txt", self.LINES.encode())
        out = self.path("out.mov")
        self.assertEqual(run("chapters", self.movie, "--import", titles, "-o", out), (0, b"", ""))
        self.assertEqual(run("chapters", out)[1].decode(), self.LINES)
        tracks = self.info(out)["tracks"]
        self.assertEqual([track["type"] for track in tracks], ["text", "vide", "soun", "tmcd"])
        self.assertEqual(tracks[1]["references"], [{"type": "chap", "tracks": [1]}, {"type": "tmcd", "tracks": [4]}])
        self.assertEqual(self.frames(out, 2), self.frames(self.movie, 1))

    def test_import_that_begins_later(self):
        titles = self.file("titles.txt", b"\xef\xbb\xbf00:00:00.100 Late\r\n\r\n")
        out = self.write("--chapters", titles)
        self.assertEqual(run("chapters", out)[1], b"00:00:00.100 Late\n")

    def test_drop(self):
        out = self.write("--chapters", "drop")
        self.assertEqual(run("chapters", out)[1], b"")
        self.assertEqual([t["type"] for t in self.info(out)["tracks"]], ["vide", "soun", "tmcd"])

    def test_lines_that_are_no_chapters(self):
        for text in (b"First\n", b"00:00 First\n", b"00:00:61.000 x\n", b"00:00:01.000 a\n00:00:01.000 b\n",
                     b"00:00:00.5 a\n"):
            self.assert_fails(2, "chapters", self.movie, "--import", self.file("t.txt", text), "-o", self.path("out.mov"))


class Timecode(RemuxTest):
    def test_print(self):
        self.assertEqual(run("timecode", self.movie), (0, b"00:10:00;00 29.97 fps (track 4)\n", ""))

    def test_set(self):
        for code, rate, frame, printed in (("01:02:03:04", "25", 93079, "01:02:03:04 25 fps"),
                                           ("00:01:00;02", "29.97", 1800, "00:01:00;02 29.97 fps"),
                                           ("00:10:00;00", "30000/1001", 17982, "00:10:00;00 29.97 fps"),
                                           ("01:00:00:00", "23.976", 86400, "01:00:00:00 23.976 fps"),
                                           ("00:00:01:00", "59.94", 60, "00:00:01:00 59.9401 fps")):
            out = self.path("out.mov")
            self.assertEqual(run("timecode", self.movie, "--set", code, "--rate", rate, "-o", out, "--force"), (0, b"", ""))
            self.assertEqual(run("timecode", out)[1].decode(), printed + " (track 4)\n")
            self.assertEqual(self.frames(out, 4)[1], struct.pack(">I", frame))
            self.assertIn({"type": "tmcd", "tracks": [4]}, self.info(out)["tracks"][0]["references"])

    def test_files_of_the_other_kind(self):
        out = self.write("--tracks", "1", "--start-timecode", "10:00:00:00", "--rate", "24", flavour="mp4", name="out.mp4")
        self.assertEqual(run("timecode", out), (0, b"10:00:00:00 24 fps (track 2)\n", ""))

    def test_a_dropped_number_is_no_timecode(self):
        self.assert_fails(2, "timecode", self.movie, "--set", "00:01:00;01", "--rate", "29.97", "-o", self.path("o.mov"))
        self.assert_fails(2, "timecode", self.movie, "--set", "00:01:00;02", "--rate", "25", "-o", self.path("o.mov"))


if __name__ == "__main__":
    main()
