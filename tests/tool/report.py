#!/usr/bin/env python3
"""The page that `report` makes, from outside: that it is sound, complete, harmless and small, whatever the movie.

report.py TOOL [TEST...]
"""
import base64
import glob
import hashlib
import html.parser
import json
import os
import random
import re
import shutil
import struct
import subprocess
import unittest
import xml.etree.ElementTree

import moviemaker
import run as base
from tool import fewer, main, native_only, run

MOST = 1 << 20
VOID = {"meta", "link", "br", "img", "input", "hr"}
EVIL = "<script>alert(1)</script><img src=x onerror=alert(2)>\"'&amp;"


class Page(html.parser.HTMLParser):
    """Elements, attributes and text of a page; complains about what does not nest."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.open, self.elements, self.ids, self.links, self.texts = [], [], [], [], []
        self.feed(text)
        self.close()
        assert not self.open, self.open

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.elements.append((tag, attributes))
        if "id" in attributes:
            self.ids.append(attributes["id"])
        if "href" in attributes:
            self.links.append(attributes["href"])
        if tag not in VOID:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in VOID:
            self.open.pop()

    def handle_endtag(self, tag):
        assert self.open and self.open[-1] == tag, (tag, self.open)
        self.open.pop()

    def handle_data(self, data):
        if self.open[-1:] not in (["style"], ["title"]) or "svg" in self.open:
            self.texts.append(data)

    @property
    def text(self):
        return "\n".join(self.texts)


def facts(page):
    """The figures of each track: {ID: {name: value}}."""
    found = {}
    for article in re.findall(r"<article.*?</article>", page, re.S):
        number = int(re.search(r"<h3>Track (\d+)", article)[1])
        pairs = re.findall(r"<dt>(.*?)</dt><dd>(.*?)</dd>", article, re.S)
        found[number] = {re.sub("<[^>]+>", "", name): re.sub("<[^>]+>", "", value) for name, value in pairs}
    return found


def number(text):
    return int(re.match(r"[\d\u202f]+", text)[0].replace("\u202f", ""))


def long_movie(seconds, rate=25):
    """Pictures with key frames and reordering, and sound, side by side for that long; few bytes a sample."""
    chance = random.Random(7)
    frames, sounds, chunk = seconds * rate, seconds * 47, 2
    sizes = [24 if n % 50 == 0 else chance.randrange(2, 9) for n in range(frames)]
    offsets = [(1, (1, 3, 0)[n % 3]) for n in range(frames)]
    media = [bytes(sum(sizes[n:n + chunk * rate])) for n in range(0, frames, chunk * rate)]
    tables = [moviemaker.table(b"stts", (frames, 1)), moviemaker.table(b"ctts", *offsets),
              moviemaker.table(b"stss", *((n + 1,) for n in range(0, frames, 50))),
              moviemaker.table(b"stsc", (1, chunk * rate, 1)), moviemaker.full(b"stsz", moviemaker.words(0, frames, *sizes))]
    video = moviemaker.Track(1, b"vide", moviemaker.full(b"vmhd", bytes(8), flags=1), moviemaker.video_entry(), rate,
                             media, tables)
    tables = [moviemaker.table(b"stts", (sounds, 1)), moviemaker.table(b"stsc", (1, 47 * chunk, 1)),
              moviemaker.full(b"stsz", moviemaker.words(0, sounds, *[3] * sounds))]
    sound = moviemaker.Track(2, b"soun", moviemaker.full(b"smhd", bytes(4)), moviemaker.sound_entry(), 47,
                             [bytes(47 * chunk * 3)] * (seconds // chunk), tables)
    return moviemaker.movie([video, sound], [frames, sounds])


def titled(titles):
    """The example with these chapters, markup in every text that a file brings, and edits."""
    chunks = [struct.pack(">H", len(title)) + title for title in titles]
    tables = [moviemaker.table(b"stts", (len(titles), 300)), moviemaker.table(b"stsc", (1, 1, 1)),
              moviemaker.full(b"stsz", moviemaker.words(0, len(titles), *map(len, chunks)))]
    header = moviemaker.atom(b"gmhd", moviemaker.full(b"gmin", bytes(12)), moviemaker.atom(b"text", bytes(36)))
    chapters = moviemaker.Track(3, b"text", header, moviemaker.text_entry(), 600, chunks, tables)
    video = moviemaker.video_track(name=EVIL.encode())
    evil = moviemaker.atom(b"udta", moviemaker.atom(b"\xa9<b>", struct.pack(">HH", len(EVIL), 0), EVIL.encode()))
    data = moviemaker.movie([video, moviemaker.sound_track(), chapters, moviemaker.timecode_track()],
                            [600, 40, 300 * len(titles), 600], evil)
    return data.replace(b"mp42", b"<i>\"", 1)


class ReportTest(base.ToolTest):
    def report(self, movie, code=0):
        out = self.path("out.html")
        found, text, err = run("report", movie, "-o", out, "--force")
        self.assertEqual((found, text), (code, b""), err)
        with open(out, encoding="utf-8") as file:
            page = file.read()
        self.assert_sound(page)
        return page

    def report_of(self, content, code=0):
        return self.report(self.file("input.mov", content), code)

    def assert_sound(self, page):
        self.assertLess(len(page.encode()), MOST)
        self.assertNotIn("\0", page)
        parsed = Page(page)
        self.assertEqual(len(parsed.ids), len(set(parsed.ids)))
        for link in parsed.links:
            self.assertEqual(link[0], "#")
            self.assertIn(link[1:], parsed.ids)
        for tag, attributes in parsed.elements:
            self.assertNotIn(tag, ("script", "img", "link", "iframe", "object", "embed", "base", "form", "b>"))
            for name, value in attributes.items():
                self.assertNotIn(name, ("src", "style", "srcset", "data", "action"))
                self.assertFalse(name.startswith("on"), name)
                self.assertNotRegex(value or "", r"^\s*(javascript|https?|file|data):(?!//www\.w3\.org/2000/svg$)")
        for picture in re.findall(r"<svg class=\"graph\".*?</svg>(?=</?figure|<figcaption)", page, re.S):
            xml.etree.ElementTree.fromstring(picture)
        return parsed


class Content(ReportTest):
    def test_offline(self):
        page = self.report(self.movie)
        self.assertNotRegex(page.replace("http://www.w3.org/2000/svg", ""), r"https?:|@import|url\((?!#)")
        style = re.search(r"<style>(.*?)</style>", page, re.S)[1]
        expected = "sha256-" + base64.b64encode(hashlib.sha256(style.encode()).digest()).decode()
        policy = re.search(r'http-equiv="Content-Security-Policy" content="([^"]*)"', page)[1]
        self.assertEqual(policy, f"default-src 'none'; style-src '{expected}'; base-uri 'none'; form-action 'none'")

    def test_for_everybody(self):
        page = self.report(self.movie)
        parsed = Page(page)
        self.assertIn(("html", {"lang": "en"}), parsed.elements)
        self.assertIn('name="viewport" content="width=device-width, initial-scale=1"', page)
        levels = [int(tag[1]) for tag, _ in parsed.elements if re.fullmatch(r"h\d", tag)]
        self.assertEqual(levels[0], 1)
        self.assertEqual(levels.count(1), 1)
        self.assertTrue(all(b - a <= 1 for a, b in zip(levels, levels[1:])))
        for tag, attributes in parsed.elements:
            if tag == "svg" and attributes.get("class") == "graph":
                self.assertIn(attributes["role"], ("img", "group"))
                self.assertTrue(attributes["aria-label"])
            if tag == "th":
                self.assertEqual(attributes["scope"], "col")
        self.assertIn("(prefers-color-scheme:dark)", page)
        self.assertIn("@media print", page)

    def test_contrast(self):
        style = re.search(r"<style>(.*?)</style>", self.report(self.movie), re.S)[1]
        light, dark = (dict(re.findall(r"--(\w+):(#[0-9a-f]{3,6})", block))
                       for block in re.findall(r":root\{(.*?)\}", style, re.S))

        def luminance(colour):
            digits = colour[1:] if len(colour) == 7 else "".join(c * 2 for c in colour[1:])
            parts = [int(digits[i:i + 2], 16) / 255 for i in (0, 2, 4)]
            parts = [c / 12.92 if c <= 0.03928 else ((c + 0.055) / 1.055) ** 2.4 for c in parts]
            return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2]

        for colours in (light, {**light, **dark}):
            ground = luminance(colours["page"])
            for name in ("ink", "dim", "link", "error", "warning", "noted", *(f"t{n}" for n in range(8))):
                a, b = sorted((ground, luminance(colours[name])))
                self.assertGreaterEqual((b + 0.05) / (a + 0.05), 4.5, name)

    def test_numbers_are_those_of_info(self):
        for content in (moviemaker.example(), long_movie(60)):
            movie = self.file("input.mov", content)
            info = self.json_lines("info", "--json", movie)[0]
            page = self.report(movie)
            self.assertEqual(number(re.search(r"<dt>File size</dt><dd>([^<]*)", page)[1]), len(content))
            self.assertIn(f"({info['duration']:.6f} s)", page)
            found = facts(page)
            self.assertEqual(sorted(found), [track["id"] for track in info["tracks"]])
            for track in info["tracks"]:
                told = found[track["id"]]
                self.assertEqual(told["Media type"], track["type"])
                self.assertEqual(told["Codec"], track["format"])
                self.assertEqual(number(told["Samples"]), track["samples"])
                self.assertEqual(number(told["Key frames"]), track["key_frames"])
                self.assertEqual(number(told["Time scale"]), track["timescale"])
                self.assertIn(f"({track['duration']:.6f} s)", told["Duration"])
                self.assertEqual(told["Edits"], str(len(track["edits"]) or "none"))
            for chapter in (chapter for chapters in info["chapter_tracks"] for chapter in chapters["chapters"]):
                self.assertIn(chapter["title"], page)
            for track in info["tracks"]:
                if "timecode" in track:
                    self.assertIn(track["timecode"]["start"], page)

    def test_every_atom_has_its_line(self):
        page = self.report(self.movie)
        rows = re.findall(r'<tr id="a\d+"><td class="d(\d)"><bdi>(.*?)</bdi></td><td>(.*?)</td><td>(.*?)</td></tr>', page)
        tree = json.loads(run("tree", "--json", self.movie)[1])
        expected = []

        def walk(node, depth):
            for child in node["children"]:
                if child["offset"] is None:
                    continue
                expected.append((str(depth), child["type"], child["offset"]))
                walk(child, depth + 1)

        walk(tree, 0)
        types = [(depth, html.unescape(kind), number(offset)) for depth, kind, offset, _ in rows if offset != "\u2014"]
        for row in expected:
            if row[1] != "name":
                self.assertIn(row, types)
        with open(self.movie, "rb") as file:
            content = file.read()
        for _, kind, offset, size in rows:
            at = number(offset)
            self.assertEqual(struct.unpack(">I", content[at:at + 4])[0], number(size), kind)

    def test_bit_rate_and_places(self):
        page = self.report_of(long_movie(120))
        section = page[page.index('<section id="rate"'):page.index('<section id="interleaving"')]
        self.assertEqual(section.count('class="area"'), 2)
        self.assertEqual(section.count('class="key"'), 1)
        self.assertIn("60 key frames, 2 s apart on average, 2 s at most", section)
        # 47 samples of 3 bytes a second
        self.assertIn("1.13 kbit/s on average", section)
        keys = re.search(r'class="key" d="([^"]*)"', section)[1]
        self.assertEqual(keys.count("M"), 60)
        section = page[page.index('<section id="interleaving"'):page.index('<section id="timeline"')]
        self.assertIn("Track 1: 60 chunks. Track 2: 60 chunks.", section)
        distance = float(re.search(r"video and sound are at most 1:([\d.]+) apart", section)[1])
        self.assertGreater(distance, 50) # one track lies behind the other

    def test_times(self):
        empty = moviemaker.atom(b"edts", moviemaker.table(b"elst", (300, -1, 0x10000), (600, 100, 0x10000), (60, 50, 0)))
        track = moviemaker.video_track()
        track.edits = empty
        page = self.report_of(moviemaker.movie([track], [960]))
        section = page[page.index('<section id="timeline"'):page.index('<section id="chapters"')]
        self.assertIn("Edit 1: 0 s to 0.5 s, empty: nothing is presented", section)
        self.assertIn("Edit 2: 0.5 s to 1.5 s, media from 0.1667 s", section)
        self.assertIn("Edit 3: 1.5 s to 1.6 s, holds the media at 0.0833 s", section)
        self.assertIn("Sample 1, a key frame: decoded at 0 s, presented at 0.0833 s", section)
        self.assertIn("Sample 3: decoded at 0.3333 s, presented at 0.25 s", section)
        self.assertIn("presentation comes \u22120.0833 s to 0.0833 s after", section)

    def test_findings(self):
        movie = self.file("input.mov", moviemaker.example()[:-40])
        findings = json.loads(run("check", "--json", movie)[1])["findings"]
        page = self.report(movie, run("tree", movie)[0])
        self.assertTrue(findings)
        for finding in findings:
            self.assertIn(html.escape(finding["text"], quote=True), page)
            self.assertIn(f"<b>{finding['severity'].capitalize()}</b>", page)

    def test_standard_output(self):
        code, out, err = run("report", self.movie, "-o", "-")
        self.assertEqual((code, err), (0, ""))
        self.assertEqual(out.decode(), self.report(self.movie))


class Size(ReportTest):
    def test_two_hours(self):
        page = self.report_of(long_movie(7200))
        self.assertLess(len(page), 200000)
        self.assertIn("2:00:00", page)

    def test_a_hundred_of_everything(self):
        tracks = []
        for n in range(1, 101):
            track = moviemaker.video_track(number=n, name=b"'" * 200)
            track.edits = moviemaker.atom(b"edts", moviemaker.table(b"elst", *(((600, -1, 0x10000), (600, 9, 0)) * 500)))
            tracks.append(track)
        user = b"".join(moviemaker.atom(b"\xa9%03d" % n, struct.pack(">HH", 500, 0), b"'" * 500) for n in range(100))
        chapters = titled([b"\"" * 500] * 3000)
        page = self.report_of(moviemaker.movie(tracks, [600] * 100, moviemaker.atom(b"udta", user)))
        self.assertIn("36 more tracks are not shown", page)
        page = self.report_of(chapters)
        self.assertIn("2\u202f800 more chapters are not shown", page)

    def test_many_atoms(self):
        page = self.report_of(moviemaker.example() + moviemaker.atom(b"free") * 50000)
        self.assertRegex(page, "more atoms are not shown")

    def test_tables_that_promise_much(self):
        most = 0xFFFFFFFF
        gmhd = moviemaker.atom(b"gmhd", moviemaker.full(b"gmin", bytes(12)), moviemaker.atom(b"text", bytes(36)))
        for constant in (1, 4, most):
            tables = [moviemaker.table(b"stts", (most, most), (most, 1)), moviemaker.table(b"stsc", (1, most, 1)),
                      moviemaker.table(b"ctts", (most, most), (most, 1), (most, 0x80000000)),
                      moviemaker.table(b"stss", (1,), (most,), (3,), (0,)),
                      moviemaker.full(b"stsz", moviemaker.words(constant, most))]
            for handler, entry, header in ((b"vide", moviemaker.video_entry(), moviemaker.full(b"vmhd", bytes(8), flags=1)),
                                           (b"soun", moviemaker.sound_entry(), moviemaker.full(b"smhd", bytes(4))),
                                           (b"text", moviemaker.text_entry(), gmhd)):
                track = moviemaker.Track(1, handler, header, entry, 1, [bytes(10)] * 50, tables,
                                         extra=moviemaker.atom(b"tref", moviemaker.atom(b"chap", moviemaker.words(1))))
                self.report_of(moviemaker.movie([track], [most]))


class Hostile(ReportTest):
    def test_texts_are_texts(self):
        titles = [EVIL.encode(), b"\xff\xfe\xc0\xaf bad", "\u202eback \u0085 \ufffe".encode(), b"</bdi></td><h1>x", b"\x1b[31m"]
        page = self.report_of(titled(titles))
        parsed = self.assert_sound(page)
        self.assertIn(EVIL, parsed.text)
        self.assertNotIn("alert(1)</script>", page)
        self.assertIn("<i>\"", parsed.text)
        self.assertIn("</bdi></td><h1>x", parsed.text)
        self.assertIn("\\x1b[31m", parsed.text)
        self.assertIn("\ufffd", parsed.text)
        self.assertNotRegex(page, "[\x00-\x08\x0b-\x1f\x7f-\x9f\ufffe]")

    @native_only("no file of the other system has such a name")
    def test_names_are_texts(self):
        movie = self.file("<svg onload=alert(1)>&'\".mov", moviemaker.example())
        parsed = self.assert_sound(self.report(movie))
        self.assertIn("<svg onload=alert(1)>&'\".mov", parsed.text)

    def test_changed_bytes(self):
        chance = random.Random(11)
        good = titled([b"One", b"Two"])
        for _ in fewer(range(60)):
            content = bytearray(good)
            for _ in range(chance.randrange(1, 12)):
                content[chance.randrange(len(content))] = chance.choice((0, 1, 255, chance.randrange(256)))
            movie = self.file("input.mov", bytes(content))
            code, _, err = run("report", movie, "-o", self.path("out.html"), "--force")
            self.assertIn(code, (0, 4), err)
            if os.path.exists(self.path("out.html")):
                with open(self.path("out.html"), encoding="utf-8") as file:
                    self.assert_sound(file.read())

    def test_cut_short(self):
        good = titled([b"One", b"Two"])
        for length in range(0, len(good), 97):
            movie = self.file("input.mov", good[:length])
            self.assertIn(run("report", movie, "-o", self.path("out.html"), "--force")[0], (0, 4))


class Output(ReportTest):
    def test_a_file_is_replaced_only_by_force(self):
        out = self.file("out.html", b"old")
        err = self.assert_fails(5, "report", self.movie, "-o", out)
        self.assertIn("--force", err)
        with open(out, "rb") as file:
            self.assertEqual(file.read(), b"old")
        self.report(self.movie)

    def test_the_movie_itself_is_no_output(self):
        before = moviemaker.example()
        self.assert_fails(2, "report", self.movie, "-o", self.movie, "--force")
        with open(self.movie, "rb") as file:
            self.assertEqual(file.read(), before)

    def test_errors(self):
        self.assert_fails(2, "report", self.movie)
        self.assert_fails(3, "report", self.path("none.mov"), "-o", self.path("out.html"))
        self.assert_fails(3, "report", self.movie, "-o", self.path("none/out.html"))
        self.assert_fails(4, "report", self.file("text.txt", b"no"), "-o", self.path("out.html"))
        self.assertFalse(os.path.exists(self.path("out.html")))
        self.assertEqual(glob.glob(self.path(".*")), [])

    def test_atoms_without_a_movie(self):
        page = self.report_of(moviemaker.atom(b"ftyp", b"qt  ", bytes(4)) + moviemaker.atom(b"free", bytes(100)), 4)
        self.assertIn("no movie that can be read", page)
        self.assertIn("<bdi>free</bdi>", page)


BROWSER = shutil.which("chromium") or shutil.which("chromium-browser")


@unittest.skipUnless(BROWSER, "there is no chromium")
class Browser(ReportTest):
    def browse(self, page, *options):
        done = subprocess.run([BROWSER, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                               "--allow-file-access-from-files", "--enable-logging=stderr", "--log-level=0",
                               f"--user-data-dir={self.path('profile')}", *options, "file://" + page],
                              capture_output=True, timeout=120, check=True)
        messages = [line for line in done.stderr.decode("utf-8", "replace").splitlines() if "CONSOLE" in line]
        self.assertEqual(messages, [])
        return done.stdout.decode()

    def test_as_wide_as_a_phone(self):
        self.report_of(titled([b"One", b"A_long_title_without_any_space_in_it_at_all" * 3]))
        frame = self.file("frame.html", b"""<!DOCTYPE html><iframe src="out.html" width="360" height="800" frameborder="0"
            onload="document.title = 'width ' + this.contentDocument.documentElement.scrollWidth
                + ' height ' + this.contentDocument.documentElement.scrollHeight;
            this.contentDocument.querySelector('details').open = true;
            document.title += ' open ' + this.contentDocument.documentElement.scrollWidth"></iframe>""")
        seen = self.browse(frame, "--virtual-time-budget=2000", "--dump-dom")
        wide, high, opened = map(int, re.search(r"<title>width (\d+) height (\d+) open (\d+)", seen).groups())
        self.assertEqual((wide, opened), (360, 360))
        self.assertGreater(high, 2000)

    def test_picture(self):
        self.report_of(titled([b"One", b"Two"]))
        for scheme in (0, 1): # dark, light
            picture = self.path(f"{scheme}.png")
            self.browse(self.path("out.html"), f"--blink-settings=preferredColorScheme={scheme}",
                        "--window-size=1280,3000", f"--screenshot={picture}")
            with open(picture, "rb") as file:
                content = file.read()
            self.assertEqual(struct.unpack(">4sII", content[12:24]), (b"IHDR", 1280, 3000))
            self.assertGreater(len(content), 50000)


if __name__ == "__main__":
    main()
