#!/usr/bin/env python3
"""Hinting from outside: what is written, what is taken back, and how it ends.

hinting.py TOOL [TEST...]
"""
import json
import os
import random
import resource
import struct
import subprocess
import tempfile
import unittest

import moviemaker
from moviemaker import atom, full, sound_track, table, words
from tool import command, fewer, main, native_only, run


def sound_movie(sound=None, duration=40, **options):
    return moviemaker.movie([sound or sound_track(1)], [duration], **options)


def speech_track(frames):
    """AMR, one frame a sample."""
    entry = atom(b"samr", bytes(6), b"\0\1", bytes(8), struct.pack(">HHHHI", 1, 16, 0, 0, 8000 << 16),
                 atom(b"damr", b"test", b"\0\0\x80\0\1"))
    tables = [table(b"stts", (len(frames), 160)), table(b"stsc", (1, len(frames), 1)),
              full(b"stsz", words(0, len(frames), *map(len, frames))), full(b"stsh", words(0))]
    return moviemaker.Track(1, b"soun", full(b"smhd", bytes(4)), entry, 8000, [b"".join(frames)], tables)


def top_atoms(data):
    at, found = 0, []
    while at < len(data):
        size, kind = struct.unpack_from(">I4s", data, at)
        if size == 1:
            size = struct.unpack_from(">Q", data, at + 8)[0]
        found.append((kind, data[at:at + size]))
        at += size
    return found


class HintTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.out = self.path("out.mov")

    def path(self, name):
        return os.path.join(self.folder, name)

    def file(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def content(self, path):
        with open(path, "rb") as file:
            return file.read()

    def hint(self, content, *options):
        code, out, err = run("hint", self.file("in.mov", content), "-o", self.out, "--force", *options)
        self.assertEqual((code, out), (0, b""), err)
        return self.out

    def packets(self, path):
        code, out, err = run("hint", "--dump", path)
        self.assertEqual((code, err), (0, ""))
        return [json.loads(line) for line in out.decode().splitlines()]

    def assert_fails(self, expected, *arguments):
        before = sorted(os.listdir(self.folder))
        code, out, err = run(*arguments)
        self.assertEqual((code, out), (expected, b""), err)
        self.assertNotEqual(err, "")
        self.assertEqual(sorted(os.listdir(self.folder)), before, "something was left behind")
        return err


class Writing(HintTest):
    def test_media_and_tracks_stay_byte_for_byte(self):
        source = sound_movie(user_data=moviemaker.user_data())
        before, after = top_atoms(source), top_atoms(self.content(self.hint(source)))
        self.assertEqual([kind for kind, _ in after], [b"ftyp", b"mdat", b"mdat", b"moov"])
        self.assertEqual(after[:2], before[:2])
        trak = before[2][1][8 + 108:-len(moviemaker.user_data())]
        self.assertIn(trak, after[3][1])
        self.assertEqual(struct.unpack_from(">I", after[3][1], 8 + 104)[0], 3)  # the next track ID

    def test_taking_the_hints_out_gives_the_movie_back(self):
        for source in (sound_movie(), sound_movie(user_data=moviemaker.user_data())):
            hinted = self.hint(source)
            code, _, err = run("hint", "--remove", hinted, "-o", self.path("back.mov"), "--force")
            self.assertEqual((code, err), (0, ""))
            self.assertEqual(self.content(self.path("back.mov")), source)

    def test_a_header_in_front_moves_behind_the_media(self):
        ftyp, mdat, moov = top_atoms(sound_movie())
        shift = len(moov[1])
        header = bytearray(moov[1])
        at = header.index(b"stco") + 12
        for i in range(2):
            offset = struct.unpack_from(">I", header, at + 4 * i)[0]
            struct.pack_into(">I", header, at + 4 * i, offset + shift)
        hinted = self.content(self.hint(ftyp[1] + bytes(header) + mdat[1]))
        self.assertEqual([kind for kind, _ in top_atoms(hinted)], [b"ftyp", b"free", b"mdat", b"mdat", b"moov"])
        self.assertEqual(self.packets(self.out)[0]["payload"],
                         "".join(f"{i + 1:02x}{i:02x}" for i in range(0, 120, 2)))

    def test_an_atom_that_goes_to_the_end_gets_a_size(self):
        ftyp, mdat, moov = top_atoms(sound_movie())
        offsets = bytearray(moov[1])
        at = offsets.index(b"stco") + 12
        for i in range(2):
            struct.pack_into(">I", offsets, at + 4 * i, struct.unpack_from(">I", offsets, at + 4 * i)[0] + len(moov[1]))
        hinted = self.content(self.hint(ftyp[1] + bytes(offsets) + words(0) + mdat[1][4:]))
        self.assertEqual(top_atoms(hinted)[2], mdat)

    def test_only_the_tracks_that_can_be_sent(self):
        code, _, err = run("hint", self.file("in.mov", moviemaker.example()), "-o", self.out)
        self.assertEqual(code, 0)
        self.assertIn("track 1 cannot be hinted: it has no decoder configuration", err)
        self.assertEqual({packet["media_track"] for packet in self.packets(self.out)}, {2})
        self.assert_fails(5, "hint", self.path("in.mov"), "-o", self.path("x.mov"), "--tracks", "1,2")
        self.assertEqual(run("hint", self.path("in.mov"), "-o", self.path("y.mov"), "--tracks", "2")[0], 0)


class Packets(HintTest):
    def test_plain_sound(self):
        self.hint(sound_movie())
        packets = self.packets(self.out)
        # The chunks of 30 and 10 sample frames, every sample most significant byte first.
        self.assertEqual([packet["size"] for packet in packets], [120, 40])
        self.assertEqual(packets[1]["payload"], "".join(f"{i + 1:02x}{i:02x}" for i in range(120, 160, 2)))
        self.assertEqual([packet["sequence"] for packet in packets], [1, 2])
        self.assertEqual([packet["time"] for packet in packets], [0, 30 / 8000])
        self.assertEqual({(packet["track"], packet["media_track"], packet["marker"]) for packet in packets},
                         {(2, 1, False)})

    def test_packets_as_small_as_asked_for(self):
        self.hint(sound_movie(), "--mtu", "128")  # 88 bytes behind 40 of headers: 22 sample frames
        self.assertEqual([packet["size"] for packet in self.packets(self.out)], [88, 32, 40])

    def test_speech(self):
        frames = [b"\x3c" + bytes(range(31)), b"\x44" + bytes(5), b"\x7c"]
        self.hint(sound_movie(speech_track(frames), 480))
        packets = self.packets(self.out)
        self.assertEqual([packet["payload"] for packet in packets],
                         ["f03c" + bytes(range(31)).hex(), "f044" + bytes(5).hex(), "f07c"])
        self.assertEqual([packet["time"] for packet in packets], [0, 0.02, 0.04])

    def test_edits_shift_timestamps(self):
        track = sound_track(1)
        track.edits = atom(b"edts", table(b"elst", (600, 10, 0x10000)))  # the first ten are not shown
        self.hint(sound_movie(track))
        self.assertEqual([packet["timestamp_offset"] for packet in self.packets(self.out)], [-10, -10])
        track.edits = atom(b"edts", table(b"elst", (300, -1, 0x10000), (600, 0, 0x10000)))  # half a second late
        self.hint(sound_movie(track))
        self.assertEqual([packet["timestamp_offset"] for packet in self.packets(self.out)], [0, 0])
        code, out, _ = run("info", "--json", self.out)
        edits = [track for track in json.loads(out)["tracks"] if track["id"] == 2][0]["edits"]
        self.assertEqual([edit["media_time"] for edit in edits], [-1, 0])
        self.assertEqual(edits[0]["duration"], 300)


class Session(HintTest):
    def test_lines_and_their_order(self):
        self.hint(sound_movie(speech_track([b"\x7c"] * 3), 480))
        code, out, err = run("sdp", self.out)
        self.assertEqual((code, err), (0, ""))
        lines = out.decode().split("\r\n")
        self.assertEqual(lines.pop(), "")
        self.assertEqual([line[0] for line in lines], list("voscbtaa") + list("mbaaaa"))
        self.assertEqual(lines[0], "v=0")
        self.assertIn("m=audio 0 RTP/AVP 98", lines)
        self.assertIn("a=rtpmap:98 AMR/8000/1", lines)
        self.assertIn("a=control:trackID=2", lines)
        self.assertIn("a=fmtp:98 octet-align=1", lines)

    def test_profile_and_level_of_h265(self):
        sets = b"".join(bytes([kind | 0x80, 0, 1, 0, 2, kind << 1, 1]) for kind in (32, 33, 34))
        # Main 10, high tier, level 4.
        record = bytes([1, 0x22]) + words(0x20000000) + bytes.fromhex("B0000000000A") + bytes([120]) + bytes(8)
        entry = moviemaker.video_entry().replace(b"mp4v", b"hvc1") + atom(b"hvcC", record + b"\x0b" + b"\x03" + sets)
        entry = words(len(entry)) + entry[4:]
        unit = words(4) + b"\x26\x01ab"
        tables = [table(b"stts", (1, 600)), table(b"stsc", (1, 1, 1)), full(b"stsz", words(len(unit), 1))]
        track = moviemaker.Track(1, b"vide", full(b"vmhd", bytes(8), flags=1), entry, 600, [unit], tables)
        self.hint(moviemaker.movie([track], [600]))
        code, out, err = run("sdp", self.out)
        self.assertEqual((code, err), (0, ""))
        (line,) = [line for line in out.decode().split("\r\n") if line.startswith("a=fmtp:")]
        self.assertEqual(line.split(" ", 1)[1],
                         "profile-space=0;profile-id=2;tier-flag=1;level-id=120;interop-constraints=B0000000000A;"
                         "sprop-vps=QAE=;sprop-sps=QgE=;sprop-pps=RAE=")

    def test_no_hints(self):
        movie = self.file("in.mov", sound_movie())
        self.assert_fails(5, "sdp", movie)
        self.assert_fails(5, "hint", "--dump", movie)
        self.assert_fails(5, "hint", "--remove", movie, "-o", self.out)


class Ends(HintTest):
    def test_wrong_usage_is_2(self):
        movie = self.file("in.mov", sound_movie())
        for arguments in (["hint"], ["hint", movie], ["hint", movie, "-o", self.out, "--mtu", "127"],
                          ["hint", movie, "-o", self.out, "--mtu", "x"], ["hint", "--dump", movie, "-o", self.out],
                          ["hint", "--remove", movie, "-o", self.out, "--mtu", "500"], ["sdp"],
                          ["hint", movie, "-o", self.out, "--tracks", "9"]):
            self.assertEqual(run(*arguments)[0], 2, arguments)
        self.assertFalse(os.path.exists(self.out))

    def test_files_that_cannot_be_read_or_written_are_3(self):
        movie = self.file("in.mov", sound_movie())
        self.assert_fails(3, "hint", self.path("none.mov"), "-o", self.out)
        self.assert_fails(3, "hint", movie, "-o", self.path("no/folder/out.mov"))
        self.assert_fails(3, "hint", movie, "-o", self.folder, "--force")
        self.assert_fails(3, "sdp", self.folder)

    def test_what_is_no_movie_is_4(self):
        for content in (b"", b"not a movie", sound_movie()[:-30], sound_movie()[:100]):
            self.assert_fails(4, "hint", self.file("bad.mov", content), "-o", self.out)
        for content in (b"", b"not a movie", sound_movie()[:100]):
            self.assert_fails(4, "sdp", self.file("bad.mov", content))

    def test_missing_media_is_4(self):
        ftyp, mdat, moov = top_atoms(sound_movie())
        header = bytearray(moov[1])
        struct.pack_into(">I", header, header.index(b"stco") + 12, 100000)
        self.assert_fails(4, "hint", self.file("bad.mov", ftyp[1] + mdat[1] + bytes(header)), "-o", self.out)

    def test_an_existing_output_is_replaced_when_told_to(self):
        movie = self.file("in.mov", sound_movie())
        self.file("out.mov", b"precious")
        self.assert_fails(5, "hint", movie, "-o", self.out)
        self.assertEqual(self.content(self.out), b"precious")
        self.assertEqual(run("hint", movie, "-o", self.out, "--force")[0], 0)
        self.assertGreater(len(self.content(self.out)), 500)
        self.assertEqual(run("hint", movie, "-o", movie, "--force")[0], 0)  # even over itself
        self.assert_fails(5, "hint", movie, "-o", self.path("twice.mov"))  # hinted by now

    def test_fragments_and_other_files_are_5(self):
        self.assert_fails(5, "hint", self.file("f.mov", sound_movie() + atom(b"moof")), "-o", self.out)
        elsewhere = sound_movie().replace(b"url \0\0\0\1", b"url \0\0\0\0")
        err = self.assert_fails(5, "hint", self.file("g.mov", elsewhere), "-o", self.out)
        self.assertIn("its media are in another file", err)

    @native_only("sets a limit that only this system's own programs see")
    def test_a_full_disk_leaves_nothing(self):
        movie = self.file("in.mov", sound_movie())

        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (600, 600))
        before = sorted(os.listdir(self.folder))
        done = subprocess.run(command("hint", movie, "-o", self.out), capture_output=True, timeout=60, check=False,
                              preexec_fn=limit)
        self.assertNotEqual(done.returncode, 0)
        if done.returncode > 0:  # the signal leaves no time to clean up
            self.assertEqual(done.returncode, 3)
            self.assertEqual(sorted(os.listdir(self.folder)), before)


class Damage(HintTest):
    def test_nothing_crashes(self):
        choose = random.Random(5)
        whole = self.content(self.hint(sound_movie(speech_track([b"\x3c" + bytes(31)] * 20), 3200)))
        for _ in fewer(range(150)):
            broken = bytearray(whole)
            for _ in range(choose.randrange(1, 6)):
                broken[choose.randrange(len(broken))] = choose.choice((0, 1, 0x7F, 0x80, 0xFF, choose.randrange(256)))
            if choose.random() < 0.2:
                del broken[choose.randrange(len(broken)):]
            path = self.file("broken.mov", bytes(broken))
            for arguments in (["hint", "--dump", path], ["sdp", path], ["hint", "--remove", path, "-o", self.out,
                              "--force"], ["hint", path, "-o", self.out, "--force"]):
                self.assertIn(run(*arguments)[0], (0, 3, 4, 5), arguments)


if __name__ == "__main__":
    main()
