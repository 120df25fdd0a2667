"""The tool as its tests start it: FILE.py TOOL [TEST...].

KETRAQT_EMULATOR names a program that runs TOOL where the system itself cannot.
"""
import os
import subprocess
import sys
import unittest

EMULATOR = os.environ.get("KETRAQT_EMULATOR")
_program = []


def command(*arguments):
    return [*_program, *map(str, arguments)]


def run(*arguments, **options):
    """The exit code, what it printed, and what it said on the side."""
    done = subprocess.run(command(*arguments), capture_output=True, timeout=120, check=False, **options)
    return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace")


def sanitized():
    with open(_program[-1], "rb") as file:
        return b"__asan_init" in file.read()


def native_only(reason):
    """For a test of what only the system's own programs can be asked for."""
    return unittest.skipIf(EMULATOR, reason)


def main():
    _program[:] = [EMULATOR] if EMULATOR else []
    _program.append(os.path.abspath(sys.argv.pop(1)))
    unittest.main()
