#!/usr/bin/env python3
"""The manual page and the completions name every command and every option that the tool's help names.

pages.py TOOL
"""
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TOOL = ""


def text_of(*command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.stderr}")
    return done.stdout


def commands():
    listed = text_of(TOOL, "--help").split("Subcommands:")[1].split("\n\n")[0]
    return re.findall(r"^  (\S+)", listed, re.MULTILINE)


def options(command):
    """All spellings of all options, as the help of the command begins its lines with them."""
    lines = re.findall(r"^  (-\S+)", text_of(TOOL, command, "--help"), re.MULTILINE)
    return [name for line in lines for name in line.split(",")]


class Pages(unittest.TestCase):
    def test_are_those_of_the_tool(self):
        text_of(sys.executable, "-B", str(ROOT / "scripts/cli-pages"), TOOL, "--check")

    def test_there_are_commands(self):
        self.assertGreaterEqual(set(commands()), {"info", "tree", "samples", "extract", "remux", "chapters"})
        self.assertIn("--fast-start", options("remux"))


class Manual(unittest.TestCase):
    def setUp(self):
        self.page = (ROOT / "docs/man/ketraqt.1").read_text()

    def test_has_every_option_in_the_section_of_its_command(self):
        sections = dict(re.findall(r"^\.SS (\S+)\n(.*?)(?=^\.S[SH])", self.page, re.MULTILINE | re.DOTALL))
        for command in commands():
            plain = sections[command].replace("\\-", "-")
            for name in options(command):
                if name not in ("-h", "--help"):
                    self.assertIn(f"\\fB{name}\\fR", plain, command)

    def test_has_every_exit_code_of_the_help(self):
        codes = re.search(r"Exit codes: (.*)", text_of(TOOL, "--help"))[1]
        for code in re.findall(r"(?:^|, )(\d) ", codes):
            self.assertIn(f"\\fB{code}\\fR", self.page)

    @unittest.skipUnless(shutil.which("groff"), "no groff")
    def test_is_clean(self):
        done = subprocess.run(["groff", "-man", "-Tutf8", "-ww", ROOT / "docs/man/ketraqt.1"], capture_output=True,
                              text=True, check=True)
        self.assertEqual(done.stderr, "")

    @unittest.skipUnless(shutil.which("mandoc"), "no mandoc")
    def test_is_clean_for_mandoc(self):
        done = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", ROOT / "docs/man/ketraqt.1"],
                              capture_output=True, text=True, check=False)
        self.assertEqual(done.stdout + done.stderr, "")


class Completion(unittest.TestCase):
    def offered(self, *words):
        """What bash offers for the last word."""
        script = (f"source {ROOT / 'completions/ketraqt.bash'}; COMP_WORDS=({' '.join(repr(w) for w in words)}); "
                  f"COMP_CWORD={len(words) - 1}; _ketraqt; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        return text_of("bash", "-c", script).split()

    @unittest.skipUnless(shutil.which("bash"), "no bash")
    def test_of_bash(self):
        self.assertEqual(set(self.offered("ketraqt", "")), {*commands(), "--help", "--version"})
        for command in commands():
            self.assertEqual(set(self.offered("ketraqt", command, "-")), set(options(command)), command)
        self.assertEqual(self.offered("ketraqt", "remux", "--flavour", "3"), ["3gp", "3g2"])

    def test_of_zsh(self):
        text = (ROOT / "completions/_ketraqt").read_text()
        for command in commands():
            self.assertRegex(text, rf"'{command}:")
            branch = re.search(rf"^    {command}\)\n(.*?);;", text, re.MULTILINE | re.DOTALL)[1]
            for name in options(command):
                self.assertRegex(branch, rf"(?<![\w-]){re.escape(name)}['\[,}}]", command)
        if shutil.which("zsh"):
            text_of("zsh", "-n", str(ROOT / "completions/_ketraqt"))

    def test_of_fish(self):
        text = (ROOT / "completions/ketraqt.fish").read_text()
        for command in commands():
            self.assertIn(f"-a {command} ", text)
            lines = re.findall(rf"__fish_seen_subcommand_from {command}'(.*)", text)
            for name in options(command):
                flag = f" -l {name[2:]} " if name.startswith("--") else f" -s {name[1:]} "
                self.assertTrue(any(flag in line for line in lines), f"{command} {name}")
        if shutil.which("fish"):
            text_of("fish", "-n", str(ROOT / "completions/ketraqt.fish"))


if __name__ == "__main__":
    TOOL = sys.argv.pop(1)
    unittest.main()
