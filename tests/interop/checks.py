"""What independent readers make of a file, and whether it is what they made of its source."""
import json
import re
import shutil
import subprocess

ANSWERS = {}


def run(*arguments):
    """Exit code, output, errors. What is said of a source is asked once."""
    if any("source" in str(argument) for argument in arguments):
        if arguments not in ANSWERS:
            ANSWERS[arguments] = ask(arguments)
        return ANSWERS[arguments]
    return ask(arguments)


def ask(arguments):
    done = subprocess.run([str(a) for a in arguments], capture_output=True, timeout=300, check=False)
    return done.returncode, done.stdout.decode("utf-8", "replace"), done.stderr.decode("utf-8", "replace").strip()


STREAM = ("codec_name,profile,width,height,sample_aspect_ratio,pix_fmt,color_space,color_primaries,sample_rate,channels,"
          "bits_per_sample,time_base,start_pts,duration_ts,has_b_frames,extradata_hash")
# What the flavours name or count differently by their nature.
LOOSE = {"channel_layout"}


def streams(path):
    code, out, err = run("ffprobe", "-v", "error", "-show_data_hash", "md5", "-show_entries",
                         f"stream=codec_type,{STREAM}", "-of", "json", path)
    found = [s for s in json.loads(out or "{}").get("streams", []) if s.get("codec_type") in ("video", "audio")]
    return code, found, err


def ffprobe(source, written, case):
    """Streams as before, and no complaint that was not there before."""
    _, old, old_err = streams(source)
    code, new, err = streams(written)
    if code != 0 or (err and not old_err):
        return f"code {code}, {err[:200]}"
    if len(old) != len(new):
        return f"{len(new)} streams instead of {len(old)}"
    for a, b in zip(old, new):
        differs = {key: (a.get(key), b.get(key)) for key in a if a.get(key) != b.get(key) and key not in LOOSE}
        # Two kinds of file hold the same decoder configuration in different wrappings.
        if a.get("codec_name") in ("alac", "mp3", "ac3"):
            differs.pop("extradata_hash", None)
        if case.plain:
            differs = {key: value for key, value in differs.items() if key not in ("extradata_hash", "profile")}
        if differs:
            return ", ".join(f"{key} {b} instead of {a}" for key, (a, b) in differs.items())
    return ""


def framemd5(path, stream):
    return run("ffmpeg", "-v", "error", "-copyts", "-i", path, "-map", f"0:{stream}", "-f", "framemd5", "-")[1]


def decoded(source, written, case):
    """Every decoded frame at its time in the movie, wherever other tracks begin; of plain sound, whose packets are as
    the reader likes them, all samples."""
    for stream in {"video": "v", "sound": "a", "both": "va"}[case.kind]:
        if stream == "a" and case.plain:
            hashes = [run("ffmpeg", "-v", "error", "-i", path, "-map", "0:a", "-f", "md5", "-")[1]
                      for path in (source, written)]
        else:
            hashes = [framemd5(path, stream) for path in (source, written)]
        if hashes[0] != hashes[1] or not hashes[0]:
            return f"stream {stream} decodes differently"
    return ""


def packets(path, stream, *options):
    out = run("ffprobe", "-v", "error", *options, "-select_streams", stream, "-show_entries",
              "packet=pts,dts,duration,flags,size", "-of", "csv=p=0", path)[1]
    return [line for line in out.splitlines() if line]


def ticks(source, written, case):
    """Times, sizes and key marks of packets with and without the edit list; of plain sound, the whole extent."""
    for stream in {"video": "v", "sound": "a", "both": "va"}[case.kind]:
        for options in ((), ("-ignore_editlist", "1")):
            old, new = (packets(path, stream, *options) for path in (source, written))
            if stream == "a" and (case.plain or case.kind == "both"):
                extents = []
                for lines in (old, new):
                    rows = [line.split(",") for line in lines]
                    extents.append((rows[0][0], sum(int(row[2]) for row in rows), sum(int(row[3]) for row in rows)))
                if extents[0] != extents[1]:
                    return f"sound begins, lasts and weighs {extents[1]} instead of {extents[0]}"
            elif old != new:
                differs = next((f"{b} instead of {a}" for a, b in zip(old, new) if a != b), f"{len(new)} for {len(old)}")
                return f"packet {differs}"
    return ""


def complaints(node, inside=False):
    """Whatever stands below a node of conformance errors, or is called truncated."""
    if isinstance(node, dict):
        for key, value in node.items():
            if key in ("ConformanceErrors", "IsTruncated", "Truncated"):
                yield f"{key}: {value}"
            else:
                yield from complaints(value)
    elif isinstance(node, list):
        for value in node:
            yield from complaints(value)


def mediainfo(source, written, case):
    if not shutil.which("mediainfo"):
        return None
    found = [sorted(set(complaints(json.loads(run("mediainfo", "--Output=JSON", path)[1] or "{}"))))
             for path in (source, written)]
    fresh = [text for text in found[1] if text not in found[0]]
    tracks = [[track["@type"] for track in json.loads(run("mediainfo", "--Output=JSON", path)[1])["media"]["track"]
               if track["@type"] in ("Video", "Audio")] for path in (source, written)]
    if tracks[0] != tracks[1]:
        return f"tracks {tracks[1]} instead of {tracks[0]}"
    return "; ".join(fresh)[:200]


def exiftool(source, written, case):
    if not shutil.which("exiftool"):
        return None
    found = [set(run("exiftool", "-s", "-Warning", "-Error", path)[1].splitlines()) for path in (source, written)]
    return "; ".join(sorted(found[1] - found[0]))[:200]


def gstreamer(source, written, case):
    """The elements of the demuxer; what else is installed decides how far decoding goes, so the source tells."""
    if not shutil.which("gst-discoverer-1.0"):
        return None
    results = []
    for path in (source, written):
        code, out, err = run("gst-discoverer-1.0", path)
        text = re.sub(r"\(.*?\)|file://\S+|\S*tmp\S*", "", out + err)
        kinds = re.findall(r"(video|audio)(?: #\d+)?: ", text)
        trouble = re.findall(r"(?i)(?:warning|error|critical|could not)[^\n]*", text)
        results.append((code, sorted(kinds), trouble))
    (old_code, old_kinds, old_trouble), (code, kinds, trouble) = results
    fresh = [line for line in trouble if line not in old_trouble]
    if code != old_code or kinds != old_kinds:
        return f"code {code}, streams {kinds} instead of {old_code}, {old_kinds}"
    return "; ".join(fresh)[:200]


CHECKS = [("ffprobe", ffprobe), ("decoded", decoded), ("times", ticks), ("mediainfo", mediainfo), ("exiftool", exiftool),
          ("gstreamer", gstreamer)]
