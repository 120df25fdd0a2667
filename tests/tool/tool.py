"""The tool as its tests start it: FILE.py TOOL [TEST...].

KETRAQT_EMULATOR names a program that runs TOOL where the system itself cannot.
"""
import itertools
import os
import subprocess
import sys
import unittest

EMULATOR = os.environ.get("KETRAQT_EMULATOR")
_program = []


def command(*arguments):
    return [*_program, *map(str, arguments)]


def _started(arguments, options):
    for _ in range(3):
        done = subprocess.run(command(*arguments), capture_output=True, timeout=120, check=False, **options)
        if not EMULATOR or (done.returncode, done.stdout, done.stderr) != (1, b"", b""):
            break  # wine 8 ends so, before any program's first line, about once in 5,000 starts side by side
    return done


def run(*arguments, **options):
    """The exit code, what it printed, and what it said on the side."""
    done = _started(arguments, options)
    err = done.stderr.decode("utf-8", "replace")
    return done.returncode, done.stdout, err.replace("\r\n", "\n") if EMULATOR else err


def takes_address_limits():
    """Sanitizers and emulators take terabytes of addresses for themselves."""
    with open(_program[-1], "rb") as file:
        return not EMULATOR and b"__asan_init" not in file.read()


def fewer(inputs):
    """All of them, or every 20th where an emulator has to be started for each."""
    return itertools.islice(inputs, 0, None, 20 if EMULATOR else 1)


def native_only(reason):
    """For a test of what only the system's own programs can be asked for."""
    return unittest.skipIf(EMULATOR, reason)


def main():
    _program[:] = [EMULATOR] if EMULATOR else []
    _program.append(os.path.abspath(sys.argv.pop(1)))
    unittest.main()
