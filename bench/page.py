"""The page of the figures: what report.py has measured, as docs/performance.md."""
import os
import re
import subprocess

HEAD = """# Performance

What the library costs, beside two others on the same movies: a reference that works on the tables with no library at
all ("limit": so much is possible), and libavformat. `./dev bench --table docs/performance.md` makes this page; no figure
in it is written by hand.

{machine} Each figure is the median of several runs,
one process each, with the file in the page cache.

The movies are MP4 files with the header in front, one video track with composition offsets and key frames, and one
sound track, of the stated number of samples each. The samples are small, so that what is measured is the work on the
tables, not the copying. 100 000 samples are a good hour of video.
"""
SECTIONS = (
    ("Open a movie", "open", "Milliseconds until all tracks can be asked.", "seconds", 1000, "{:.2f}"),
    ("Read every frame of the video", "seqread", "Frames a second, each as a block of its own; the reference takes them "
     "out of one window.", "per_s", 1, "{:,.0f}"),
    ("Seek to a time and read", "seektime", "Random places a second, each with the key frame in front of it.", "per_s", 1,
     "{:,.0f}"),
    ("Seek to a sample and read", "seeknum", "Random places a second.", "per_s", 1, "{:,.0f}"),
    ("Write a movie", "write", "Samples a second, header and all.", "per_s", 1, "{:,.0f}"),
)
SAME = {"seqwindow": "seqread"}
PEERS = (("ketraqt", "Ketra QT"), ("limit", "limit"), ("libav", "libavformat"))


def machine():
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]
    compiler = re.sub(r" \(.*?\)", "", compiler).replace("c++", "g++")
    with open("/proc/meminfo") as file:
        kibibytes = int(re.search(r"MemTotal: *(\d+)", file.read())[1])
    return f"Measured on {os.cpu_count()} cores with {round(kibibytes / (1 << 20))} GiB of memory, {compiler}."


def grouped(text):
    return text.replace(",", " ")


def table(figures, name, field, factor, form):
    """One row for every length of movie, one column for each of those compared."""
    rows = sorted({samples for _, measure, samples in figures if SAME.get(measure, measure) == name})
    peers = [(key, title) for key, title in PEERS
             if any(k[0] == key and SAME.get(k[1], k[1]) == name and field in v for k, v in figures.items())]
    text = f"| Samples | {' | '.join(title for _, title in peers)} |\n|---|{'---|' * len(peers)}\n"
    for samples in rows:
        cells = []
        for key, _ in peers:
            found = [v[field] for k, v in figures.items()
                     if k[0] == key and SAME.get(k[1], k[1]) == name and k[2] == samples and field in v]
            cells.append(grouped(form.format(found[0] * factor)) if found else "")
        text += f"| {grouped(f'{samples:,}')} | {' | '.join(cells)} |\n"
    return text


def write(path, figures, goals, hostile):
    """figures: {(peer, measure, samples): {seconds, per_s, peak_per_sample ...}}, goals: (met, what, value, sign, limit,
    unit), hostile: (name, open, walk, write in seconds, peak KiB)."""
    text = HEAD.format(machine=machine())
    for title, name, what, field, factor, form in SECTIONS:
        if any(SAME.get(measure, measure) == name for _, measure, _ in figures):
            text += f"\n## {title}\n\n{what}\n\n{table(figures, name, field, factor, form)}"
    for name, title in (("open", "Memory of an open movie"), ("write", "Memory while writing")):
        if any(measure == name and "peak_per_sample" in v for (_, measure, _), v in figures.items()):
            text += (f"\n## {title}\n\nBytes a sample, both tracks counted: how far the process's memory rose.\n\n"
                     f"{table(figures, name, 'peak_per_sample', 1, '{:.2f}')}")
    if hostile:
        text += ("\n## Files made to cost much\n\nFiles of 1 MiB whose tables and atoms claim as much as they can: opened, "
                 "walked and written again.\n\n| File | Open, ms | Walk, ms | Write, ms | Peak, KiB |\n|---|---|---|---|---|\n")
        for name, *seconds, peak in hostile:
            text += f"| {name} | {' | '.join(f'{1000 * s:.1f}' for s in seconds)} | {grouped(f'{peak:,}')} |\n"
    if goals:
        text += "\n## Goals\n\n| Goal | Measured | Asked | |\n|---|---|---|---|\n"
        for met, what, value, sign, limit, unit in goals:
            if "sums" in what and met:
                continue
            text += f"| {what[0].upper() + what[1:]} | {value:.2f}{unit} | {sign} {limit:g}{unit} | {'met' if met else 'not met'} |\n"
        if all(met for met, what, *_ in goals if "sums" in what):
            text += "\nThe sums over all bytes, times and key frames that were read are those of the reference.\n"
    path.write_text(text)
