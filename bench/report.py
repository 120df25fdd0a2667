#!/usr/bin/env python3
"""Runs the library and its peers over the same movies and prints one table with the goals.

The peers (a reference without any library, libavformat, and the maker of the movies) are not part of this
repository. KETRAQT_BENCH_PEERS names their folder (default: ../shared/bench beside the repository); without it the
library is measured alone on the movies that are there.
"""
import argparse
import json
import os
import pathlib
import statistics
import subprocess
import sys

import page

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "bench"
DATA = BUILD / "data"
PEERS = pathlib.Path(os.environ.get("KETRAQT_BENCH_PEERS") or ROOT.parent / "shared" / "bench")
SIZES = (100_000, 1_000_000, 4_000_000)
MAIN = 1_000_000
MEBIBYTE = 1 << 20


def build_peers():
    """The peers that can be built, by name."""
    tools = {}
    links = {"genbig": [], "bench_limit": [],
             "bench_libav": ["-lavformat", "-lavcodec", "-lavutil"]}
    if not PEERS.is_dir():
        print(f"No peers in {PEERS}: no ratios. KETRAQT_BENCH_PEERS names their folder.")
        return tools
    (BUILD / "peers").mkdir(parents=True, exist_ok=True)
    for name, libraries in links.items():
        source, binary = PEERS / f"{name}.cpp", BUILD / "peers" / name
        if not source.exists():
            continue
        newest = max(p.stat().st_mtime for p in PEERS.glob("*.*"))
        if not binary.exists() or binary.stat().st_mtime < newest:
            done = subprocess.run(["g++", "-std=c++17", "-O2", "-o", binary, source, *libraries])
            if done.returncode != 0:
                print(f"{name} does not build: left out.")
                continue
        tools[name] = binary
    return tools


def movies(tools):
    """The movies by samples a track; made where missing."""
    DATA.mkdir(parents=True, exist_ok=True)
    found = {}
    for samples in SIZES:
        path = DATA / f"{samples}.mp4"
        if not path.exists() and "genbig" in tools:
            part = path.with_suffix(".part")
            subprocess.run([tools["genbig"], part, str(samples)], check=True, stdout=subprocess.DEVNULL)
            part.rename(path)
        if path.exists():
            found[samples] = path
    return found


def line(command):
    """The first JSON line that a program prints, or None."""
    done = subprocess.run([str(c) for c in command], capture_output=True, text=True)
    if done.returncode != 0 or not done.stdout:
        print(f"failed: {' '.join(map(str, command))}: {done.stderr.strip()}", file=sys.stderr)
        return None
    return json.loads(done.stdout.splitlines()[0])


def measure(jobs, runs):
    """Every job `runs` times, one round after another; medians by (peer, measure, samples)."""
    for key, command in jobs.items():
        line(command)  # the movie into the page cache, the program off the disk
    taken = {key: [] for key in jobs}
    for turn in range(runs):
        for key, command in jobs.items():
            if key[1] == "write":
                # Cutting off a file that is there costs by its size, which the one before has set.
                pathlib.Path(command[2]).unlink(missing_ok=True)
            if sys.stderr.isatty():
                print(f"\r{turn + 1}/{runs} {key[0]} {key[1]} {key[2]:>9}   ", end="", file=sys.stderr)
            result = line(command)
            if result:
                taken[key].append(result)
    if sys.stderr.isatty():
        print("\r" + " " * 50 + "\r", end="", file=sys.stderr)
    medians = {}
    for key, results in taken.items():
        if not results:
            continue
        middle = dict(results[0])
        for field in ("seconds", "per_s", "peak_kb", "peak_per_sample", "heap_per_sample"):
            if field in middle:
                middle[field] = statistics.median(r[field] for r in results)
        medians[key] = middle
    return medians


def job_list(tools, files):
    jobs = {}
    ketra = BUILD / "bin" / "bench_ketraqt"
    for samples, path in files.items():
        for name in ("open", "seqread", "seektime", "seeknum"):
            jobs["ketraqt", name, samples] = [ketra, name, path]
        if "bench_limit" in tools:
            for name in ("open", "seqwindow", "seektime", "seeknum"):
                jobs["limit", name, samples] = [tools["bench_limit"], name, path]
        if "bench_libav" in tools and samples <= MAIN:
            for name in ("open", "seqread", "seektime"):
                jobs["libav", name, samples] = [tools["bench_libav"], name, path]
    out = DATA / "written.mp4"
    for samples in SIZES:
        jobs["ketraqt", "write", samples] = [ketra, "write", out, samples]
        for name in ("limit", "libav"):
            if f"bench_{name}" in tools:
                jobs[name, "write", samples] = [tools[f"bench_{name}"], "write", out, samples]
    return jobs


def print_medians(medians):
    print(f"\n{'peer':8} {'measure':10} {'samples':>9} {'seconds':>10} {'per second':>12} {'peak KiB':>9} {'B/sample':>9}")
    for (peer, name, samples), m in sorted(medians.items(), key=lambda i: (i[0][1][:4], i[0][2], i[0][0])):
        rate = f"{m['per_s']:12,.0f}" if "per_s" in m else " " * 12
        peak = f"{m['peak_kb']:9,.0f} {m['peak_per_sample']:9.2f}" if "peak_kb" in m else ""
        print(f"{peer:8} {name:10} {samples:9,} {m['seconds']:10.6f} {rate} {peak}")


class Goals:
    def __init__(self):
        self.missed = 0
        self.checked = []

    def check(self, what, value, limit, at_most, unit=""):
        met = value <= limit if at_most else value >= limit
        self.missed += not met
        sign = "<=" if at_most else ">="
        self.checked.append((met, what, value, sign, limit, unit))
        print(f"{'met' if met else 'NOT met':8} {what:58} {value:8.2f} {sign} {limit:g}{unit}")


def check_speed(goals, medians):
    def field(peer, name, samples, key):
        return medians.get((peer, name, samples), {}).get(key)

    def ratio(what, ours, theirs, key, limit, at_most):
        a, b = field(*ours, key), field(*theirs, key)
        if a is not None and b:
            goals.check(what, a / b, limit, at_most)

    ratio("open, time over the reference's", ("ketraqt", "open", MAIN), ("limit", "open", MAIN), "seconds", 1.5, True)
    peak = field("ketraqt", "open", MAIN, "peak_per_sample")
    if peak is not None:
        goals.check("open, peak memory", peak, 9, True, " bytes a sample")
    ratio("whole video track, rate over the reference's window", ("ketraqt", "seqread", MAIN),
          ("limit", "seqwindow", MAIN), "per_s", 0.35, False)
    ratio("whole video track, rate over libavformat's", ("ketraqt", "seqread", MAIN), ("libav", "seqread", MAIN),
          "per_s", 12, False)
    ratio("seek by time and read, rate over the reference's", ("ketraqt", "seektime", MAIN),
          ("limit", "seektime", MAIN), "per_s", 0.25, False)
    ratio("write 1 M video samples, rate over libavformat's", ("ketraqt", "write", MAIN), ("libav", "write", MAIN),
          "per_s", 1.3, False)
    peak = field("ketraqt", "write", MAIN, "peak_per_sample")
    if peak is not None:
        goals.check("write, peak memory", peak, 24, True, " bytes a sample")
    ratio("write, cost of a sample of 4 M over that of 1 M", ("ketraqt", "write", MAIN),
          ("ketraqt", "write", SIZES[2]), "per_s", 1.3, True)
    ratio("seek by time, 4 M samples over 100 k", ("ketraqt", "seektime", SIZES[2]), ("ketraqt", "seektime", SIZES[0]),
          "seconds", 2, True)


def check_sums(goals, medians):
    """Equal sums: the same samples, bytes, times and key frames."""
    pairs = (("seqread", "seqwindow"), ("seektime", "seektime"), ("seeknum", "seeknum"))
    for samples in SIZES:
        for ours, theirs in pairs:
            a, b = medians.get(("ketraqt", ours, samples)), medians.get(("limit", theirs, samples))
            if not a or not b:
                continue
            wrong = [k for k in ("n", "bytes", "touch", "dts", "cts", "keys", "errors") if a[k] != b[k]]
            goals.check(f"{ours} at {samples:,}: sums that differ {' '.join(wrong)}", len(wrong), 0, True)


def check_hostile(goals):
    binary = BUILD / "bin" / "bench_hostile"
    names = subprocess.run([str(binary)], capture_output=True, text=True, check=True).stdout.splitlines()
    print(f"\n{'file of 1 MiB':40} {'open':>8} {'walk':>8} {'write':>8} {'peak KiB':>9} {'atoms':>7} {'frames':>6}")
    worst = {"seconds": 0.0, "peak": 0}
    rows = []
    for index, name in enumerate(names):
        r = line([binary, index])
        if not r:
            goals.check(f"{name}: ran to its end", 0, 1, False)
            continue
        print(f"{name:40} {r['open_s']:8.4f} {r['walk_s']:8.4f} {r['write_s']:8.4f} {r['peak_kb']:9,} {r['atoms']:7,} "
              f"{r['frames']:6,}{'' if r['movie'] else '  not a movie'}")
        rows.append((name, r["open_s"], r["walk_s"], r["write_s"], r["peak_kb"]))
        worst["seconds"] = max(worst["seconds"], r["open_s"] + r["walk_s"] + r["write_s"])
        worst["peak"] = max(worst["peak"], r["peak_kb"] * 1024)
    print()
    goals.check("hostile 1-MiB files, worst time", worst["seconds"], 1, True, " s")
    goals.check("hostile 1-MiB files, worst peak memory", worst["peak"] / MEBIBYTE, 64 + 4, True, " MiB")
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--runs", type=int, default=5, help="how often each measure is taken (5)")
    parser.add_argument("--micro", action="store_true", help="then run the single operations, too")
    parser.add_argument("--strict", action="store_true", help="end with 1 when a goal is not met")
    parser.add_argument("--table", type=pathlib.Path, help="write the page of the figures, docs/performance.md")
    arguments = parser.parse_args()

    tools = build_peers()
    files = movies(tools)
    if not files:
        print(f"No movies in {DATA}, and nothing to make them with.")
    medians = measure(job_list(tools, files), arguments.runs)
    print_medians(medians)
    goals = Goals()
    hostile = check_hostile(goals)
    check_speed(goals, medians)
    check_sums(goals, medians)
    if arguments.table:
        page.write(arguments.table, medians, goals.checked, hostile)
    if arguments.micro and files:
        subprocess.run([str(BUILD / "bin" / "ketraqt_bench")], env={**os.environ, "KETRAQT_BENCH_DATA": str(DATA)})
    return 1 if arguments.strict and goals.missed else 0


if __name__ == "__main__":
    sys.exit(main())
