#!/usr/bin/env python3
"""Compares what the tool says of real movies with what two other readers found in them.

run.py TOOL, with KETRAQT_CORPUS naming the folder of the movies (expected/*.json hold the facts). Ends with 77,
which the test runner takes as skipped, where there is no such folder.
"""
import hashlib
import json
import os
import subprocess
import sys
import tempfile

from differences import CHAPTERS, MISSING_TRACKS, REFUSED, TRACKS
from sampletables import read_tracks

SKIPPED = 77
MALFORMED = 4


def md5(lines):
    return hashlib.md5("".join(lines).encode()).hexdigest()


class Tool:
    def __init__(self, program):
        self.program = program

    def run(self, *arguments):
        done = subprocess.run([self.program, *map(str, arguments)], capture_output=True, timeout=120)
        return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace").strip()

    def lines(self, *arguments):
        code, out, err = self.run(*arguments)
        return code, [json.loads(line) for line in out.splitlines()], err

    def extract(self, path, track):
        with tempfile.TemporaryDirectory() as folder:
            out = os.path.join(folder, "payload")
            code, _, _ = self.run("extract", path, "--track", track, "-o", out)
            if not os.path.exists(out):
                return code, b""
            with open(out, "rb") as payload:
                return code, payload.read()


def compare_frames(track, frames):
    """Frames against samples, one to one."""
    if len(frames) != len(track.samples):
        yield "samples", f"{len(frames)} frames instead of {len(track.samples)}"
    chunk_of = [number for number, chunk in enumerate(track.chunks, 1) for _ in range(chunk[2])]
    for frame, sample, chunk in zip(frames, track.samples, chunk_of):
        number, offset, size, dts, shift, key, _ = sample
        expected = {"sample": number, "chunk": chunk, "offset": offset, "size": size, "dts_ticks": dts,
                    "pts_ticks": dts + shift, "key": bool(key), "samples": 1, "dts": dts / track.timescale,
                    "pts": (dts + shift) / track.timescale}
        wrong = {name: (frame[name], value) for name, value in expected.items() if frame[name] != value}
        if wrong:
            yield "samples", f"sample {number}: " + ", ".join(f"{n} {a} instead of {b}" for n, (a, b) in wrong.items())
            return


def compare_chunks(track, frames):
    """Frames against chunks, where sound is handed out as it lies there; parts of a chunk are joined."""
    joined = {}
    for frame in frames:
        if frame["chunk"] in joined:
            joined[frame["chunk"]][1] += frame["size"]
        else:
            joined[frame["chunk"]] = [frame["offset"], frame["size"]]
    found = [joined[number] for number in sorted(joined)]
    expected = [[chunk[0], track.chunk_bytes(chunk)] for chunk in track.chunks]
    if len(found) != len(expected):
        yield "samples", f"{len(found)} chunks instead of {len(expected)}"
    for number, (a, b) in enumerate(zip(found, expected), 1):
        if a != b:
            yield "samples", f"chunk {number}: offset and size {a} instead of {b}"
            return


def compare_packets(track, facts, frames, payload):
    """Frames and payload against the packets that the other reader took out of the file."""
    streams = facts.get("ffprobe", {}).get("streams", [])
    index = next((s["index"] for s in streams if int(s.get("id", "0"), 16) == track.id), None)
    told = facts.get("packets_edit_list_ignored", {}).get(str(index))
    if not told or told["nb_read_packets"] == 0:
        return
    if len(payload) != told["total_bytes"]:
        yield "packets", f"{len(payload)} bytes instead of the packets' {told['total_bytes']}"
    if not track.samples or told["nb_read_packets"] != len(track.samples):
        return  # the other reader joins samples
    at, hashes = 0, []
    for frame in frames:
        hashes.append(f"{frame['size']},MD5:{hashlib.md5(payload[at:at + frame['size']]).hexdigest()}\n")
        at += frame["size"]
    if md5(hashes) != told["md5_size_datahash"]:
        yield "packets", "sizes and bytes are not those of the packets"
    # The other reader moves decode times ahead so that none is behind its presentation time.
    shift = max([0] + [f["dts_ticks"] - f["pts_ticks"] for f in frames])
    lines = [f"{f['pts_ticks']},{f['dts_ticks'] - shift},{f['size']}\n" for f in frames]
    if md5(lines) != told["md5_pts_dts_size"]:
        yield "packets", "times and sizes are not those of the packets"


def check_second_reader(track, table):
    """The test's own reader is itself held against the facts, so that it can stand for them."""
    chunks = [",".join(map(str, chunk)) + "\n" for chunk in track.chunks]
    if md5(chunks) != table["md5_chunks"]:
        yield "own reader", "chunks are not those of the facts"
    samples = [",".join(map(str, sample)) + "\n" for sample in track.samples]
    if "md5_samples" in table and md5(samples) != table["md5_samples"]:
        yield "own reader", "samples are not those of the facts"


def compare_info(info, table):
    expected = {"type": table["handler"], "format": table["sample_descriptions"][0], "samples": table["sample_count"],
                "timescale": table["media_timescale"], "key_frames": table["sync_count"],
                "duration": table["media_duration"] / table["media_timescale"]}
    for name, value in expected.items():
        if info[name] != value:
            yield "info", f"{name} is {info[name]} instead of {value}"
    edits = [[e["duration"], e["media_time"], round(e["rate"] * 65536)] for e in info["edits"]]
    if edits != (table.get("edits_duration_mediatime_rate16_16") or []):
        yield "info", f"edits {edits}"


def compare_track(tool, path, facts, track, info):
    table = next(t for t in facts["sample_tables"] if t["track_id"] == track.id)
    yield from check_second_reader(track, table)
    yield from compare_info(info, table)
    code, frames, message = tool.lines("samples", "--json", path, "--track", track.id)
    if code != 0:
        yield "samples", f"code {code}: {message}"
    one_to_one = track.handler != "soun" or all(frame["samples"] == 1 for frame in frames)
    yield from compare_frames(track, frames) if track.samples and one_to_one else compare_chunks(track, frames)
    code, payload = tool.extract(path, track.id)
    if payload != track.payload():
        yield "extract", f"{len(payload)} bytes, not the {len(track.payload())} of the samples"
    elif code != 0:
        yield "extract code", str(code)
    yield from compare_packets(track, facts, frames, payload)


def compare_timed(info, facts):
    """Chapters and timecodes against the other reader's."""
    told = [(round(float(c["start_time"]), 3), c["tags"]["title"]) for c in facts.get("ffprobe", {}).get("chapters", [])]
    found = [[(round(c["start"], 3), c["title"]) for c in track["chapters"]] for track in info["chapter_tracks"]]
    if facts["name"] in CHAPTERS:
        print(f"  {facts['name']} (chapters): {CHAPTERS[facts['name']]}")
    elif info["chapter_tracks"] and told and told not in found:
        yield f"chapters {found} instead of {told}"
    timecodes = {int(s["id"], 16): s["tags"]["timecode"] for s in facts.get("ffprobe", {}).get("streams", [])
                 if s.get("codec_tag_string") == "tmcd" and "timecode" in s.get("tags", {})}
    for track in info["tracks"]:
        if track["id"] in timecodes and track["timecode"]["start"] != timecodes[track["id"]]:
            yield f"track {track['id']}: timecode {track['timecode']} instead of {timecodes[track['id']]}"


def tree_nodes(node, inside):
    yield node, inside
    for child in node["children"]:
        yield from tree_nodes(child, node)


def compare_tree(tool, path, facts):
    """Every atom lies in its parent; the top level is that of the facts."""
    code, trees, message = tool.lines("tree", "--json", path)
    if code != 0:
        return [f"tree: code {code}: {message}"]
    wrong = []
    for node, inside in tree_nodes(trees[0], None):
        if inside is None or node["offset"] is None or inside["offset"] is None:
            continue
        if node["offset"] < inside["offset"] or node["header_size"] not in (8, 16):
            wrong.append(f"tree: {node['type']} at {node['offset']} is not in {inside['type']}")
    told = [kind for kind, _ in facts["scan"]["top"]]
    found = [child["type"] for child in trees[0]["children"]]
    if not set(found) <= set(told):
        wrong.append(f"tree: top level {found} instead of {told}")
    return wrong


def check_movie(tool, corpus, facts):
    """All that is wrong with one file, as lines; what may differ is told beside it."""
    name, path = facts["name"], os.path.join(corpus, facts["name"])
    code, infos, message = tool.lines("info", "--json", path)
    if name in REFUSED:
        if code != MALFORMED:
            return [f"code {code} where 4 was expected: {REFUSED[name]}"]
        print(f"  {name} refused: {REFUSED[name]}")
        return []
    if code != 0:
        return [f"info: code {code}: {message}"]
    info = infos[0]
    wrong = list(compare_timed(info, facts)) + compare_tree(tool, path, facts)
    with open(path, "rb") as movie:
        tracks = read_tracks(movie.read())
    by_id = {track["id"]: track for track in info["tracks"]}
    missing, instead, why = MISSING_TRACKS.get(name, (set(), set(), ""))
    if set(by_id) != {track.id for track in tracks} - missing | instead:
        wrong.append(f"tracks {sorted(by_id)} instead of {[track.id for track in tracks]}")
    elif why:
        print(f"  {name}: {why}")
    for track in tracks:
        if track.handler not in ("vide", "soun") or track.id not in by_id:
            continue
        found = list(compare_track(tool, path, facts, track, by_id[track.id]))
        kinds, reason = TRACKS.get((name, track.id), (set(), ""))
        wrong += [f"track {track.id}, {kind}: {text}" for kind, text in found if kind not in kinds]
        wrong += [f"track {track.id}: no longer differs in {kind}" for kind in kinds - {kind for kind, _ in found}]
        if reason:
            print(f"  {name} track {track.id} ({', '.join(sorted(kinds))}): {reason}")
    return wrong


def main(program):
    corpus = os.environ.get("KETRAQT_CORPUS", "")
    if not os.path.isdir(os.path.join(corpus, "expected")):
        print("skipped: KETRAQT_CORPUS names no folder of movies")
        return SKIPPED
    tool = Tool(program)
    movies = failures = 0
    print("Differences that are the library's rules, or the file's damage:")
    for entry in sorted(os.listdir(os.path.join(corpus, "expected"))):
        if not entry.endswith(".json"):
            continue
        with open(os.path.join(corpus, "expected", entry), encoding="utf-8") as file:
            facts = json.load(file)
        if "name" not in facts or not os.path.exists(os.path.join(corpus, facts["name"])):
            continue
        wrong = check_movie(tool, corpus, facts)
        movies += 1
        failures += bool(wrong)
        for line in wrong:
            print(f"FAILED {facts['name']}: {line}")
    print(f"{movies} movies, {failures} of them not as expected")
    return 1 if failures or not movies else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
