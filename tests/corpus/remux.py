#!/usr/bin/env python3
"""Writes real movies anew and holds what comes out against what went in, by the test's own reader and ffprobe.

remux.py TOOL, with KETRAQT_CORPUS naming the folder of the movies. Ends with 77, which the test runner takes as
skipped, where there is no such folder.
"""
import os
import shutil
import subprocess
import sys
import tempfile

from sampletables import read_tracks

SKIPPED = 77

# file: (exit code, the reason that it cannot be written anew)
REFUSED = {
    "3g2_kddi_fragmented_uuid.3g2": (4, "Movie fragments are not read, so most of it would be lost."),
    "bad_64bit_size_overflow.mov": (4, "A 64-bit size beyond the file hides everything behind it."),
    "bad_chunk_out_of_range.mp4": (4, "No chunk that exists holds samples."),
    "bad_infinite_loop_size.m4a": (4, "Sizes are larger than the file."),
    "bad_keys_count.mp4": (4, "There is no movie header."),
    "mp4_c608_init_only.mp4": (4, "Movie fragments are not read."),
    "mp4_fragmented.mp4": (4, "Movie fragments are not read."),
    "mp4_stpp_subtitles.mp4": (4, "Its only track has a subtitle media header, which makes no track."),
    "mp4_stz2.mp4": (4, "Compact sample sizes are not read."),
    "mp4_v1_headers_flac_fragmented.mp4": (4, "Movie fragments are not read."),
    "mp4_xavc_uuid_rtmd_header_only.mp4": (4, "The file is a header alone; its media data was left behind."),
    "qt_external_alias_two_stsd.mov": (3, "The media is in another file."),
    "qt_mebx_tracks_elst_v1.mov": (4, "It has metadata tracks only."),
}
# file: the reason that samples at the end of a track stay behind
SHORTER = {
    "qt_phone_metadata_tracks.mov": "Reading ends with the presentation: the last samples begin behind it.",
}


def run(*arguments):
    done = subprocess.run([str(a) for a in arguments], capture_output=True, timeout=300, check=False)
    return done.returncode, done.stdout.decode("utf-8", "replace"), done.stderr.decode("utf-8", "replace").strip()


def is_media(track):
    return track.handler in ("vide", "soun", "text", "sbtl", "tmcd") and track.count > 0


# Sound whose description tells the size after decoding: bytes of a packet and channel, samples of a packet.
PACKETS = {b"ulaw": (1, 1), b"alaw": (1, 1), b"MAC3": (2, 6), b"MAC6": (1, 6)}


def payload(track):
    entry = next(track.tables[b"stsd"].boxes(8))
    if track.constant != 1 or entry.kind not in PACKETS or entry.number("H", 8) != 0:
        return track.payload()
    size, samples = PACKETS[entry.kind]
    size *= entry.number("H", 16)
    return b"".join(track.data[offset:offset + count // samples * size] for offset, _, count, _ in track.chunks)


def frames(track):
    """(size, decode ticks, composition offset, key) of each sample, and the bytes of all."""
    return [(size, dts, shift, key) for _, _, size, dts, shift, key, _ in track.samples], payload(track)


def compare(source, written, shorter):
    if source.timescale != written.timescale:
        yield f"time scale {written.timescale} instead of {source.timescale}"
    old, old_bytes = frames(source)
    new, new_bytes = frames(written)
    if source.samples and written.samples:
        if shorter:
            old, old_bytes = old[:len(new)], old_bytes[:len(new_bytes)]
        if len(old) != len(new):
            yield f"{len(new)} samples instead of {len(old)}"
        for number, (a, b) in enumerate(zip(old, new), 1):
            if a != b:
                yield f"sample {number}: size, time, offset, key {b} instead of {a}"
                return
    durations = [sum(n * d for n, d in track.table(b"stts", "II")) for track in (source, written)]
    if durations[0] != durations[1] and not shorter:
        yield f"{durations[1]} ticks instead of {durations[0]}"
    if old_bytes != new_bytes:
        yield f"{len(new_bytes)} bytes, not the {len(old_bytes)} of the original"


def check(tool, path, flavour, folder):
    name = os.path.basename(path)
    out = os.path.join(folder, f"out.{flavour}")
    code, _, err = run(tool, "remux", path, "-o", out, "--flavour", flavour, "--force")
    if name in REFUSED:
        return [] if code == REFUSED[name][0] else [f"code {code} where {REFUSED[name][0]} was expected: {err}"]
    if flavour == "mp4" and code == 5:
        return []  # a codec that has no place there
    if code != 0:
        return [f"code {code}: {err}"]
    with open(path, "rb") as file:
        old = [track for track in read_tracks(file.read()) if is_media(track)]
    with open(out, "rb") as file:
        new = read_tracks(file.read())
    left = [track for track in old if f"track {track.id} is " not in err]
    if len(left) != len(new):
        return [f"{len(new)} tracks instead of {len(left)}"]
    wrong = []
    for source, written in zip(left, new):
        wrong += [f"track {source.id}: {text}" for text in compare(source, written, name in SHORTER)]
    if shutil.which("ffprobe"):
        code, streams, err = run("ffprobe", "-v", "error", "-show_entries", "stream=codec_name", "-of", "csv=p=0", out)
        before = run("ffprobe", "-v", "error", "-show_entries", "stream=codec_name", path)[2]
        if code != 0 or (err and not before):
            wrong.append(f"ffprobe: {code} {err[:300]}")
    return wrong


def main(tool):
    corpus = os.environ.get("KETRAQT_CORPUS", "")
    if not os.path.isdir(os.path.join(corpus, "expected")):
        print("skipped: KETRAQT_CORPUS names no folder of movies")
        return SKIPPED
    movies = failures = 0
    with tempfile.TemporaryDirectory() as folder:
        for name in sorted(os.listdir(corpus)):
            path = os.path.join(corpus, name)
            if not os.path.isfile(path) or name.endswith((".txt", ".tsv")):
                continue
            for flavour in ("mov", "mp4"):
                wrong = check(tool, path, flavour, folder)
                movies += 1
                failures += bool(wrong)
                for line in wrong:
                    print(f"FAILED {name} as {flavour}: {line}")
    for name, (_, reason) in sorted(REFUSED.items()):
        print(f"  {name} refused: {reason}")
    print(f"{movies} movies written anew, {failures} of them not as expected")
    return 1 if failures or not movies else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
