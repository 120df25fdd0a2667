#!/usr/bin/env python3
"""Streams hinted movies over the loopback interface to an independent player and compares what it decodes with
what it decodes from the movie itself.

run.py TOOL SERVER [TEST...]     exit code 77: ffmpeg or what it would need is missing
"""
import os
import random
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

TOOL = ""
SERVER = ""
RUNS = 3
SPEED = 2
TIMEOUT = 40  # seconds for one run; it takes three
PICTURES = ["-f", "lavfi", "-i", "testsrc2=size=320x240:rate=25:duration=2"]
SOUND = ["-f", "lavfi", "-i", "sine=frequency=440:sample_rate=44100:duration=2"]
H264 = ["-c:v", "libx264", "-g", "20", "-bf", "2", "-b:v", "900k"]
H265 = ["-c:v", "libx265", "-x265-params", "log-level=error:keyint=20", "-b:v", "900k"]
VISUAL = ["-c:v", "mpeg4", "-b:v", "900k"]


def ffmpeg(*arguments, **options):
    return subprocess.run(["ffmpeg", "-hide_banner", "-nostdin", "-loglevel", "error", "-y", *arguments],
                          stdin=subprocess.DEVNULL, timeout=120, check=True, **options)


def encoders():
    listing = subprocess.run(["ffmpeg", "-hide_banner", "-encoders"], capture_output=True, check=True).stdout
    return {line.split()[1] for line in listing.decode().splitlines() if len(line.split()) > 1}


def free_port_pairs(count):
    """Even ports whose successors are free as well: the second one is for the control packets."""
    pairs = []
    for _ in range(200):
        port = random.randrange(20000, 60000, 2)
        try:
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as first, \
                    socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as second:
                first.bind(("127.0.0.1", port))
                second.bind(("127.0.0.1", port + 1))
        except OSError:
            continue
        if port not in pairs:
            pairs.append(port)
        if len(pairs) == count:
            return pairs
    raise unittest.SkipTest("no free ports")


def wait_for(ports):
    """Until somebody listens on all of them, as the system's table of sockets says."""
    for _ in range(200):
        with open("/proc/net/udp", encoding="ascii") as table:
            bound = {int(line.split()[1].split(":")[1], 16) for line in list(table)[1:]}
        if set(ports) <= bound:
            return
        time.sleep(0.05)
    raise AssertionError("the player does not listen")


def frames(path):
    """Size and hash of every decoded frame, without times, which begin anywhere in a stream."""
    with open(path, encoding="ascii") as file:
        rows = [line.split(",") for line in file if not line.startswith("#")]
    return [(row[4].strip(), row[5].strip()) for row in rows]


class Served(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def make(self, name, needed, *arguments):
        missing = set(needed) - encoders()
        if missing:
            self.skipTest(f"no encoder: {', '.join(sorted(missing))}")
        ffmpeg(*arguments, self.path(name))
        return self.path(name)

    def make_speech(self):
        """Two seconds of AMR frames of the highest mode: any bits are speech to a decoder."""
        bits = random.Random(7)
        with open(self.path("speech.amr"), "wb") as file:
            file.write(b"#!AMR\n")
            for _ in range(100):
                file.write(bytes([7 << 3 | 4]) + bits.randbytes(31))
        return self.path("speech.amr")

    def decode(self, source, name, sound, *options):
        """Pictures frame by frame; sound frame by frame or, where packets cut it differently, in one."""
        outputs = [self.path(f"{name}.video"), self.path(f"{name}.audio")]
        command = [*options, "-i", source, "-map", "0:v", "-fps_mode", "passthrough", "-f", "framemd5", outputs[0],
                   "-map", "0:a", "-f", sound, outputs[1]]
        return command, outputs

    def result(self, outputs, sound):
        if sound == "framemd5":
            return frames(outputs[0]), frames(outputs[1])
        with open(outputs[1], encoding="ascii") as file:
            return frames(outputs[0]), file.read()

    def session(self, hinted, ports):
        """The tool's session description with the addresses of this machine in it."""
        text = subprocess.run([TOOL, "sdp", hinted], capture_output=True, check=True).stdout.decode()
        text = text.replace("c=IN IP4 0.0.0.0", "c=IN IP4 127.0.0.1")
        left = list(ports)
        lines = [line.replace(" 0 RTP", f" {left.pop(0)} RTP") if line.startswith("m=") else line
                 for line in text.splitlines()]
        self.assertEqual(left, [])
        with open(self.path("session.sdp"), "w", encoding="ascii", newline="") as file:
            file.write("\r\n".join(lines) + "\r\n")
        return self.path("session.sdp")

    def receive(self, hinted, sound):
        ports = free_port_pairs(2)
        session = self.session(hinted, ports)
        command, outputs = self.decode(session, "received", sound, "-protocol_whitelist", "file,udp,rtp",
                                       "-buffer_size", "4194304", "-reorder_queue_size", "0")
        player = subprocess.Popen(["ffmpeg", "-hide_banner", "-nostdin", "-loglevel", "error", "-y", *command],
                                  stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)
        try:
            wait_for(ports)
            subprocess.run([SERVER, hinted, str(SPEED), *map(str, ports)], check=True, timeout=TIMEOUT,
                           stdout=subprocess.DEVNULL)
            complaint = player.communicate(timeout=TIMEOUT)[1].decode()
        finally:
            if player.poll() is None:
                player.kill()
                player.communicate()
        return self.result(outputs, sound), complaint

    def serve(self, movie, sound="framemd5", options=()):
        hinted = self.path("hinted" + os.path.splitext(movie)[1])
        subprocess.run([TOOL, "hint", movie, "-o", hinted, *options], check=True, timeout=60)
        subprocess.run([SERVER, "--check", hinted], check=True, timeout=60, stdout=subprocess.DEVNULL)
        # Everything is sent, also what the edit list leaves out.
        command, outputs = self.decode(movie, "source", sound, "-ignore_editlist", "1")
        ffmpeg(*command)
        expected = self.result(outputs, sound)
        self.assertGreater(len(expected[0]), 40)
        for attempt in range(RUNS):
            received, complaint = self.receive(hinted, sound)
            for kind, found, wanted in zip(("pictures", "sound"), received, expected):
                self.assertEqual(found, wanted, f"{kind} in run {attempt + 1}: {complaint}")

    def test_h264_and_aac(self):
        self.serve(self.make("a.mp4", ["libx264", "aac"], *PICTURES, *SOUND, *H264, "-c:a", "aac"))

    def test_h265_and_aac(self):
        self.serve(self.make("b.mp4", ["libx265", "aac"], *PICTURES, *SOUND, *H265, "-tag:v", "hvc1", "-c:a", "aac"))

    def test_visual_and_aac(self):
        self.serve(self.make("c.mp4", ["mpeg4", "aac"], *PICTURES, *SOUND, *VISUAL, "-c:a", "aac"))

    def test_visual_and_amr(self):
        self.serve(self.make("d.3gp", ["mpeg4"], *PICTURES, "-i", self.make_speech(), *VISUAL, "-c:a", "copy"))

    def test_h264_and_pcm_in_small_packets(self):
        movie = self.make("e.mov", ["libx264"], *PICTURES, *SOUND, *H264, "-c:a", "pcm_s16le", "-ac", "2")
        self.serve(movie, "md5", ["--mtu", "512"])


if __name__ == "__main__":
    TOOL, SERVER = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))
    if not shutil.which("ffmpeg") or not os.path.exists("/proc/net/udp"):
        sys.exit(77)
    unittest.main(verbosity=2)
