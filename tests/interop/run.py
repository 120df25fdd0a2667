#!/usr/bin/env python3
"""Writes movies of every codec anew in every flavour that takes it, and asks independent readers about the result.

run.py TOOL [--table FILE] [--only WORD]
"""
import argparse
import os
import subprocess
import sys
import tempfile

from cases import CASES
from checks import CHECKS, run


# What these find does not depend on where the header is.
LAYOUT_BLIND = ("decoded", "gstreamer")
LAYOUTS = ("", "header first", "hinted")


def version(*command):
    try:
        text = run(*command)[1].strip().splitlines()
    except FileNotFoundError:
        return "absent"
    return next((line for line in text if any(c.isdigit() for c in line)), "?")[:60]


def remux(tool, source, written, flavour, first):
    done = subprocess.run([tool, "remux", source, "-o", written, "--flavour", flavour, "--force"]
                          + (["--fast-start"] if first else []), capture_output=True, timeout=300, check=False)
    return done.returncode, done.stderr.decode("utf-8", "replace").strip()


def write(tool, source, folder, case, flavour, layout):
    """The movie in that layout, or what keeps the tool from it."""
    end = flavour if flavour not in ("amc", "psp") else "mp4"
    written = os.path.join(folder, f"written.{end}")
    code, err = remux(tool, source, written, flavour, layout == "header first")
    if code != 0 or layout != "hinted":
        return written, code and f"remux ends with {code}: {err}"
    hinted = os.path.join(folder, f"hinted.{end}")
    done = subprocess.run([tool, "hint", written, "-o", hinted, "--force"], capture_output=True, timeout=300, check=False)
    code, err = done.returncode, done.stderr.decode("utf-8", "replace").strip()
    return hinted, code and f"hint ends with {code}: {err}"


def check(tool, case, source, flavour, folder):
    """[(name of the check, what is wrong: "" for nothing, None where the reader is absent)]"""
    results = {}
    for layout in LAYOUTS:
        if layout == "hinted" and flavour not in case.hinted:
            continue
        written, trouble = write(tool, source, folder, case, flavour, layout)
        if trouble:
            return {name: trouble for name, _ in CHECKS}
        for name, function in CHECKS:
            if layout == "header first" and name in LAYOUT_BLIND:
                continue
            wrong = function(source, written, case)
            if wrong is None or results.get(name) is None and name in results:
                results[name] = None
            elif not results.get(name):
                results[name] = wrong and (f"{layout}: " if layout else "") + wrong
    return results


def table(rows):
    names = [name for name, _ in CHECKS]
    yield "# Independent readers\n\n"
    yield ("Every codec in every flavour that takes it: a movie made with ffmpeg is written anew with `ketraqt remux`, with\n"
           "the header last, with the header first and, where RTP has a payload for the codec, with hint tracks, and independent\n"
           "readers are asked about the result. `./dev interop` makes this table.\n\n")
    yield ("- ffprobe: the same streams with the same properties and decoder configuration, no complaint.\n"
           "- decoded: the MD5 sum of every decoded picture and of the sound is that of the original.\n"
           "- times: presentation and decode time, duration, size and key mark of every packet, to the tick, with and without\n"
           "  the edit list.\n"
           "- mediainfo, exiftool, gstreamer: the same tracks, no warning that the original does not get.\n\n")
    yield (f"Made with {version('ffmpeg', '-version')}; MediaInfo {version('mediainfo', '--Version')}; ExifTool "
           f"{version('exiftool', '-ver')}; {version('gst-inspect-1.0', '--version')}.\n\n")
    yield "| Codec | Flavour | " + " | ".join(names) + " |\n|---|---|" + "---|" * len(names) + "\n"
    troubles = []
    for case, flavour, results in rows:
        cells = []
        for name in names:
            wrong = results[name]
            if wrong:
                troubles.append(f"- {case.name} in {flavour}, {name}: {wrong}\n")
            cells.append("absent" if wrong is None else "no" if wrong else "yes")
        yield f"| {case.name} | {flavour} | " + " | ".join(cells) + " |\n"
    if troubles:
        yield "\n## Differences\n\n"
        yield from troubles


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("--table")
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        for number, case in enumerate(CASES):
            if options.only not in case.name:
                continue
            source = os.path.join(folder, f"source{number}.{case.source}")
            case.create(source)
            for flavour in case.flavours:
                results = check(options.tool, case, source, flavour, folder)
                rows.append((case, flavour, results))
                wrong = {name: text for name, text in results.items() if text}
                print(f"{case.name} in {flavour}: " + ("; ".join(f"{n}: {t}" for n, t in wrong.items()) or "as before"),
                      flush=True)
            os.remove(source)
    if options.table:
        with open(options.table, "w", encoding="utf-8") as file:
            file.writelines(table(rows))
    failures = sum(any(results.values()) for _, _, results in rows)
    print(f"{len(rows)} combinations, {failures} of them with a difference")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
