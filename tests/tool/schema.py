#!/usr/bin/env python3
"""Validates what the tool prints with --json against docs/schema/ketraqt.schema.json.

schema.py TOOL, with KETRAQT_CORPUS naming a folder of real movies, where there is one. Ends with 77, which the test
runner takes as skipped, without the validator.
"""
import copy
import glob
import json
import os
import pathlib
import sys
import tempfile
import unittest

try:
    import jsonschema
except ImportError:
    print("skipped: there is no python3-jsonschema")
    sys.exit(77)

import moviemaker
from tool import main, run

SCHEMA = json.loads((pathlib.Path(__file__).parents[2] / "docs/schema/ketraqt.schema.json").read_text("utf-8"))


def closed(schema):
    """What is not described counts as wrong here, though those who read the output should let it pass."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    schema = {name: closed(part) for name, part in schema.items()}
    if isinstance(schema.get("properties"), dict) and "type" in schema:
        schema["additionalProperties"] = False
    return schema


def validator(name):
    schema = closed(copy.deepcopy(SCHEMA))
    del schema["anyOf"]
    schema["$ref"] = f"#/$defs/{name}"
    return jsonschema.Draft202012Validator(schema)


class SchemaTest(unittest.TestCase):
    validators = {name: validator(name) for name in ("info", "tree", "samples", "check", "diff", "packet")}

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def movie(self, content=None, name="movie.mov"):
        with open(self.path(name), "wb") as file:
            file.write(content or moviemaker.example())
        return self.path(name)

    def lines(self, name, *arguments):
        """Every line is valid. How many there are."""
        lines = run(*arguments)[1].decode("utf-8").splitlines()
        for line in lines:
            value = json.loads(line)
            errors = [f"{error.json_path}: {error.message}" for error in self.validators[name].iter_errors(value)]
            self.assertEqual(errors[:3], [], arguments)
        return len(lines)

    def test_the_schema_itself(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        for name in self.validators:
            self.assertIn({"$ref": f"#/$defs/{name}"}, SCHEMA["anyOf"])

    def test_wrong_values_are_found(self):
        finding = {"severity": "note", "rule": "x", "path": "", "offset": 0, "text": "y", "count": 1}
        for change, valid in (({}, True), ({"severity": "bad"}, False), ({"offset": -1}, False), ({"more": 1}, False)):
            told = {"schema": 1, "file": "f", "findings": [{**finding, **change}]}
            self.assertEqual(self.validators["check"].is_valid(told), valid)

    def test_made_movies(self):
        movie = self.movie()
        self.assertEqual(self.lines("info", "info", "--json", movie, movie), 2)
        self.assertEqual(self.lines("tree", "tree", "--json", movie), 1)
        self.assertEqual(self.lines("check", "check", "--json", movie), 1)
        for track, frames in ((1, 6), (2, 2), (3, 2), (4, 1)):
            self.assertEqual(self.lines("samples", "samples", "--json", movie, "--track", str(track)), frames)
        other = self.movie(moviemaker.movie([moviemaker.video_track(), moviemaker.sound_track()], [600, 40]), "other.mov")
        self.assertEqual(self.lines("diff", "diff", "--json", movie, other), 1)
        self.assertEqual(self.lines("diff", "diff", "--json", movie, movie), 1)

    def test_packets(self):
        sound, hinted = self.path("sound.mov"), self.path("hinted.mov")
        track = moviemaker.sound_track(1)
        track.entry = track.entry.replace(b"sowt", b"twos")
        self.movie(moviemaker.movie([track], [40]), "sound.mov")
        code, _, err = run("hint", sound, "-o", hinted)
        self.assertEqual(code, 0, err)
        self.assertGreater(self.lines("packet", "hint", hinted, "--dump"), 0)
        self.assertEqual(self.lines("info", "info", "--json", hinted), 1)
        self.assertEqual(self.lines("tree", "tree", "--json", hinted), 1)

    def test_real_movies(self):
        corpus = os.environ.get("KETRAQT_CORPUS", "")
        movies = sorted(glob.glob(os.path.join(corpus, "*.[3m]*"))) if corpus else []
        if not movies:
            self.skipTest("there are no real movies")
        for movie in movies:
            for command in ("info", "tree", "check"):
                self.lines(command, command, "--json", movie)
            self.lines("samples", "samples", "--json", movie, "--track", "1", "--count", "1000")
            self.lines("diff", "diff", "--json", movie, movies[0])
            self.lines("packet", "hint", movie, "--dump")


if __name__ == "__main__":
    main()
