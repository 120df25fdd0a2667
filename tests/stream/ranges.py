#!/usr/bin/env python3
"""The movie that comes over HTTP: how many requests and bytes it takes to open it, and that all frames come.

ranges.py HTTP_STREAM KETRAQT WRITE_MOVIE              the test
ranges.py HTTP_STREAM KETRAQT WRITE_MOVIE --table FILE  measures longer movies, too (needs ffmpeg), and writes the
                                                      table into FILE
"""
import argparse
import http.server
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading

MOST_REQUESTS = 3
MOST_BYTES = 1.1
BEGIN, END = "<!-- measured -->\n", "<!-- end -->"


class Handler(http.server.BaseHTTPRequestHandler):
    """Serves the files of a folder, whole or a range of each, and counts."""
    folder = None
    ranges = True
    requests = 0
    bytes = 0

    def do_GET(self):
        path = self.folder / pathlib.Path(self.path).name
        asked = re.fullmatch(r"bytes=(\d+)-(\d+)", self.headers.get("Range", ""))
        if not path.exists():
            self.send_error(404)
            return
        size = path.stat().st_size
        Handler.requests += 1
        if not self.ranges or not asked:
            self.reply(200, path, 0, size)
        elif int(asked[1]) >= size:
            self.send_error(416)
        else:
            first, last = int(asked[1]), min(int(asked[2]), size - 1)
            self.reply(206, path, first, last - first + 1, f"bytes {first}-{last}/{size}")

    def reply(self, status, path, first, count, content_range=None):
        with open(path, "rb") as file:
            file.seek(first)
            body = file.read(count)
        self.send_response(status)
        self.send_header("Content-Length", str(len(body)))
        if content_range:
            self.send_header("Content-Range", content_range)
        self.end_headers()
        Handler.bytes += len(body)
        try:
            self.wfile.write(body)
        except (BrokenPipeError, ConnectionResetError):
            pass  # the client has enough

    def log_message(self, *_):
        pass


class Bench:
    def __init__(self, program, tool, maker, folder):
        self.program, self.tool, self.maker, self.folder = program, tool, maker, folder
        Handler.folder = folder
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def run(self, name, frames=0):
        """The program's answer, and what the server counted."""
        Handler.requests = Handler.bytes = 0
        url = f"http://127.0.0.1:{self.server.server_address[1]}/{name}"
        done = subprocess.run([self.program, url, str(frames)], capture_output=True, text=True, timeout=60)
        return done, Handler.requests, Handler.bytes

    def remux(self, source, name, *options):
        subprocess.run([self.tool, "remux", self.folder / source, "-o", self.folder / name, *options], check=True,
                       capture_output=True)
        return name

    def opening(self, name):
        """Requests and bytes to open the movie, and the bytes of its header."""
        done, requests, count = self.run(name)
        if done.returncode != 0:
            sys.exit(f"{name}: {done.stderr}")
        told = re.match(r"opened with (\d+) requests, (\d+) bytes", done.stdout)
        if (int(told[1]), int(told[2])) != (requests, count):
            sys.exit(f"{name}: {done.stdout}, but the server saw {requests} requests, {count} bytes")
        return requests, count, header_bytes(self.folder / name)


def atoms(path):
    with open(path, "rb") as file:
        end = path.stat().st_size
        at = 0
        while at + 8 <= end:
            file.seek(at)
            size, kind = struct.unpack(">I4s", file.read(8))
            if size == 1:
                size = struct.unpack(">Q", file.read(8))[0]
            elif size == 0:
                size = end - at
            yield kind, size
            at += size


def header_bytes(path):
    return sum(size for kind, size in atoms(path) if kind in (b"ftyp", b"moov"))


def is_header_first(path):
    kinds = [kind for kind, _ in atoms(path)]
    return kinds.index(b"moov") < kinds.index(b"mdat")


def made_movies(bench):
    """The movies that the library's own example and tool make."""
    subprocess.run([bench.maker, bench.folder / "written.mov"], check=True)
    yield "two seconds, raw", "written.mov"
    yield "two seconds, raw", bench.remux("written.mov", "first.mov", "--flavour", "mov", "--fast-start")


def long_movies(bench):
    for label, seconds in (("a minute", 60), ("ten minutes", 600), ("two hours", 7200)):
        source = f"{seconds}.mp4"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", f"testsrc=s=32x32:r=25:d={seconds}", "-f", "lavfi",
                        "-i", f"sine=r=8000:d={seconds}", "-c:v", "mpeg4", "-bf", "2", "-c:a", "aac", "-b:a", "16k",
                        bench.folder / source], check=True)
        yield f"{label}, MPEG-4 and AAC", bench.remux(source, f"{seconds}-last.mp4", "--flavour", "mp4")
        yield f"{label}, MPEG-4 and AAC", bench.remux(source, f"{seconds}-first.mp4", "--flavour", "mp4", "--fast-start")


def grouped(number):
    return f"{number:,}".replace(",", " ")


def row(bench, label, name):
    requests, count, header = bench.opening(name)
    first = is_header_first(bench.folder / name)
    met = requests <= MOST_REQUESTS and (count <= MOST_BYTES * header or not first)
    print(f"{'met' if met else 'NOT met':8} {name}: {requests} requests, {count} bytes for a header of {header}")
    size = (bench.folder / name).stat().st_size
    text = (f"| {label} | {'first' if first else 'last'} | {grouped(size)} | {grouped(header)} | {requests} | "
            f"{grouped(count)} | {count / header:.3f} |\n")
    return met, text


def check_failures(bench):
    for name, message in (("missing.mov", "HTTP response code"), ("empty.mov", "HTTP response code"),
                          ("text.mov", "is no movie")):
        done, _, _ = bench.run(name)
        assert done.returncode == 1 and message in done.stderr, (name, done.stderr)
    Handler.ranges = False
    done, _, _ = bench.run("written.mov")
    Handler.ranges = True
    assert done.returncode == 1 and "does not give parts" in done.stderr, done.stderr


def check_frames(bench):
    """All frames come, with far fewer requests than frames."""
    done, requests, _ = bench.run("first.mov", 1000)
    assert done.returncode == 0, done.stderr
    counts = sorted(int(count) for count in re.findall(r"(\d+) frames read", done.stdout))
    assert counts[-1] >= 50 and requests <= 40, (done.stdout, requests)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("programs", nargs=3, metavar="PROGRAM")
    parser.add_argument("--table", type=pathlib.Path)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(*arguments.programs, pathlib.Path(folder))
        rows = [row(bench, *movie) for movie in made_movies(bench)]
        if arguments.table:
            if not shutil.which("ffmpeg"):
                sys.exit("ffmpeg makes the longer movies")
            rows += [row(bench, *movie) for movie in long_movies(bench)]
            text = arguments.table.read_text()
            before, rest = text.split(BEGIN)
            head = ("\n| Movie | Header | File, bytes | Header, bytes | Requests | Bytes fetched | Of the header |\n"
                    "|---|---|---|---|---|---|---|\n")
            arguments.table.write_text(before + BEGIN + head + "".join(text for _, text in rows) + "\n"
                                       + rest[rest.index(END):])
        (bench.folder / "empty.mov").write_bytes(b"")
        (bench.folder / "text.mov").write_bytes(b"This is no movie at all.\n" * 100)
        check_failures(bench)
        check_frames(bench)
        bench.server.shutdown()
    return 0 if all(met for met, _ in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
