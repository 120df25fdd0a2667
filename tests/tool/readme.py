#!/usr/bin/env python3
"""What the pages show of the tool is what it prints.

readme.py TOOL WRITE_MOVIE [--write]

Every line "$ ketraqt ..." in a block of the kind "console" is run, one page after the other, each in a folder of its own with
the movie demo.mov; what stands below it must come out. A line of dots stands for any lines. --write puts what comes out into
the pages where there are no dots.
"""
import difflib
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BLOCK = re.compile(r"^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)
DOTS = "..."


def shown(command, tool, folder):
    """The lines that the command prints on a terminal: of both streams."""
    line = re.sub(r"(^|\| *)ketraqt\b", lambda found: f"{found[1]}'{tool}'", command)
    done = subprocess.run(["bash", "-c", line], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60,
                          check=False)
    return done.stdout.decode("utf-8", "replace").splitlines()


def fits(wanted, got):
    pattern = "".join("(?:.*\n)*?" if line == DOTS else re.escape(line) + "\n" for line in wanted)
    return re.fullmatch(pattern, "".join(line + "\n" for line in got)) is not None


def renewed(wanted, got):
    return wanted if fits(wanted, got) or DOTS in wanted else got


def check(page, tool, maker, write):
    wrong = []
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([maker, "demo.mov"], cwd=folder, check=True)

        def block(match):
            parts = re.split(r"^\$ (.*)\n", match[1], flags=re.MULTILINE)
            text = parts[0]
            for command, below in zip(parts[1::2], parts[2::2]):
                wanted, got = below.splitlines(), shown(command, tool, folder)
                if not fits(wanted, got):
                    wrong.append("\n".join([f"{page.relative_to(ROOT)}: $ {command}",
                                            *difflib.unified_diff(wanted, got, "page", "tool", lineterm="", n=1)]))
                text += f"$ {command}\n" + "".join(line + "\n" for line in renewed(wanted, got))
            return f"```console\n{text}```"

        fresh = BLOCK.sub(block, page.read_text())
    if write and fresh != page.read_text():
        page.write_text(fresh)
        return []
    return wrong


def main():
    tool, maker = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:3])
    wrong = []
    for page in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
        if BLOCK.search(page.read_text()):
            wrong += check(page, tool, maker, "--write" in sys.argv[3:])
    print("\n\n".join(wrong) or "passed")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
