#!/usr/bin/env python3
"""The Windows tool under wine: run.py WINE KETRAQT.EXE WRITE_MOVIE.EXE, with names no code page holds."""
import json
import pathlib
import subprocess
import sys
import tempfile

WINE, TOOL, MAKER = sys.argv[1:4]


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


def run(program, *arguments, expect=0):
    done = subprocess.run([WINE, program, *arguments], capture_output=True, timeout=120)
    if done.returncode != expect:
        sys.exit(f"{program} {' '.join(arguments)}: {done.returncode}\n{done.stderr.decode(errors='replace')}")
    return done.stdout.decode()


with tempfile.TemporaryDirectory() as folder:
    folder = pathlib.Path(folder)
    plain, movie, copy = folder / "movie.mov", folder / "映画.mov", folder / "複製.mp4"
    run(MAKER, windows(plain))
    plain.rename(movie)

    info = json.loads(run(TOOL, "info", windows(movie), "--json"))
    assert info["schema"] == 1 and info["file"] == windows(movie), info
    assert len(info["tracks"]) == 4, info

    run(TOOL, "remux", windows(movie), "-o", windows(copy), "--flavour", "mov", "--fast-start")
    first = copy.read_bytes()
    assert b"mdat" in first and first.index(b"moov") < first.index(b"mdat")
    run(TOOL, "remux", windows(movie), "-o", windows(copy), "--flavour", "mov", expect=5)
    assert copy.read_bytes() == first, "an existing file was touched"
    run(TOOL, "remux", windows(movie), "-o", windows(copy), "--flavour", "mov", "--force")
    assert copy.read_bytes() != first, "the file was not replaced"
    assert sorted(p.name for p in folder.iterdir()) == sorted([movie.name, copy.name]), "something was left behind"

    frames = [json.loads(line) for line in run(TOOL, "samples", windows(copy), "--track", "2", "--json").splitlines()]
    assert len(frames) == 50 and all(frame["key"] for frame in frames), len(frames)
    run(TOOL, "info", windows(folder / "ない.mov"), expect=3)
print("passed")
