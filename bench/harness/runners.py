"""The interpreters that are compared, and how each of them is started."""

import glob
import os
import shutil
import sys
from pathlib import Path

BENCH_DIR = Path(__file__).resolve().parents[1]
SUBJECT = "tarvellua"
BASE = "base"


class Runner:
    """One interpreter: the command that starts it and the kind of file that it runs."""

    def __init__(self, name, command, suffix):
        self.name = name
        self.command = command
        self.suffix = suffix

    def script(self, benchmark):
        folder = BENCH_DIR if self.suffix == ".lua" else BENCH_DIR / "ports"
        return folder / (benchmark + self.suffix)


def find_jsc():
    on_path = shutil.which("jsc")
    if on_path:
        return on_path
    found = sorted(glob.glob("/usr/lib/*/*webkit2gtk*/jsc"))
    return found[-1] if found else None


def known_peers():
    """Name, program or None, options, suffix. None of them compiles to machine code while it runs:
    the just-in-time compilers are switched off. python3 is the interpreter that runs this program:
    the one on PATH may be a wrapper script, whose own time would be counted. It does not look for
    installed packages, which would take longer than some of the programs."""
    return [
        ("python3", sys.executable, ["-S"], ".py"),
        ("node", shutil.which("node"), ["--jitless"], ".js"),
        ("jsc", find_jsc(), ["--useJIT=false"], ".js"),
        ("qjs", shutil.which("qjs"), [], ".js"),
        ("mujs", shutil.which("mujs"), [], ".js"),
        ("perl", shutil.which("perl"), [], ".pl"),
        ("ruby", shutil.which("ruby"), [], ".rb"),
    ]


def find_peers():
    """The peers that this machine has, and the names of the others."""
    found = [Runner(name, [path] + options, suffix)
             for name, path, options, suffix in known_peers() if path]
    missing = [name for name, path, _, _ in known_peers() if not path]
    return found, missing


def own_program(name, path):
    """A build of tarvellua as a runner; None if there is no program at the path."""
    path = path.absolute()
    if not os.access(path, os.X_OK) or path.is_dir():
        return None
    return Runner(name, [path], ".lua")
