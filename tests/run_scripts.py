#!/usr/bin/env python3
"""Runs Lua scripts with tarvellua and checks what they promise in their comments.

    tests/run_scripts.py [options] [FILE or part of a test's name ...]

Without a name all tests run: tests/scripts/**/*.lua and examples/*.lua. A test is named after its path:
`language/numeric_for`, `library/table.sort`, `examples/hello`. The program runs in the repository's root and gets the
script's path relative to it, so that is the chunk name in messages.

Directives are comments; code may stand before them on the line. T is the rest of the line after one blank.

    -- expect: T              the next line of standard output (an empty T: an empty line)
    -- expect stderr: T       the next line of standard error
    -- expect error: T        the run fails on this very line:       tarvellua: <path>:<line>: T
    -- expect error 4:9: T    a front-end error at line:column:      tarvellua: <path>:4:9: T
    -- expect error bare: T   a failure without a location:          tarvellua: T
    -- expect exit: 3         the exit status; without it 1 if an error is expected, else 0
    -- args: a "b c"          arguments, split as a shell does
    -- stdin: T               the next line of standard input
    -- stdin unterminated: T  the same without a line feed after it
    -- mode: repl             run `tarvellua --repl`; the whole standard output, prompts included, must equal the
                              expected lines (the blank after the last prompt may be left out)
    -- cyclic:                the script makes reference cycles, which are never reclaimed: a program that counts its
                              objects must report some, and leaks are not looked for
    -- skip sanitized: why    do not run in a build with sanitizers

In arguments, input and expectations {tmp} is a fresh directory, removed afterwards, and {script} the script's path. A
script that expects nothing is an error, and so is output that nothing expects.

The exit status is 0 if all tests passed, 77 if every one was skipped, 1 if one failed, 2 for wrong usage.
"""

import argparse
import concurrent.futures
import dataclasses
import difflib
import os
import pathlib
import re
import shlex
import signal
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
MODES = ("script", "repl")
SKIPPED_STATUS = 77

DIRECTIVE = re.compile(
    r"-- (?P<name>expect error (?P<line>\d+):(?P<column>\d+)|expect error bare|expect error|expect exit|expect stderr"
    r"|expect|args|stdin unterminated|stdin|mode|cyclic|skip sanitized):(?: (?P<text>.*)|$)"
)
# What was probably meant as a directive; where it is none, the test would silently check less than it says.
LOOKS_LIKE_DIRECTIVE = re.compile(
    r"--\s*(?:(?:expect\w*|skip|stdin)\b[^:]{0,20}|args\s*|mode\s*|cyclic\s*):", re.IGNORECASE
)


class ScriptError(Exception):
    """The script's directives make no test."""


@dataclasses.dataclass
class Run:
    """One finished process; bytes that are not UTF-8 survive in the texts as surrogates."""

    status: "int | None"  # None: it was ended after the time limit
    stdout: str
    stderr: str


@dataclasses.dataclass
class Outcome:
    test_name: str
    kind: str  # "passed", "failed" or "skipped"
    report: str = ""


def decode(data):
    return data.decode("utf-8", "surrogateescape")


def printable(text):
    return text.encode("utf-8", "surrogateescape").decode("utf-8", "backslashreplace")


def test_name(path):
    """The name of the test in the file `path`, which is relative to the repository's root."""
    return path.removeprefix("tests/scripts/").removesuffix(".lua")


class ScriptTest:
    """What a script's directives say."""

    def __init__(self, source, path):
        self.path = path  # as the program gets it: relative to the repository's root
        self.stdout = []
        self.stderr = []
        self.error = None
        self.status = None
        self.args = []
        self.stdin = ""
        self.mode = "script"
        self.cyclic = False
        self.skip_sanitized = None
        for number, line in enumerate(decode(source).split("\n"), start=1):
            match = DIRECTIVE.search(line)
            suspect = LOOKS_LIKE_DIRECTIVE.search(line)
            if suspect and (not match or suspect.start() < match.start()):
                raise ScriptError(f"{path}:{number}: looks like a directive and is none: {suspect.group()}")
            if match:
                try:
                    self.apply(match, match["text"] or "", number)
                except ValueError as error:
                    raise ScriptError(f"{path}:{number}: {error}") from None
        if not (self.stdout or self.stderr or self.error or self.status is not None):
            raise ScriptError(f"{path}: the script expects nothing")
        if self.status is None:
            self.status = 1 if self.error else 0

    def apply(self, directive, text, number):
        name = directive["name"]
        if name == "expect":
            self.stdout.append(text)
        elif name == "expect stderr":
            self.stderr.append(text)
        elif name.startswith("expect error"):
            if self.error:
                raise ValueError("a run ends with one error at most")
            place = f"{directive['line']}:{directive['column']}" if directive["line"] else number
            location = "" if name == "expect error bare" else f"{self.path}:{place}: "
            self.error = f"tarvellua: {location}{text}"
        elif name == "expect exit":
            self.status = int(text)
        elif name == "args":
            self.args += shlex.split(text)
        elif name.startswith("stdin"):
            self.stdin += text if name == "stdin unterminated" else text + "\n"
        elif name == "mode":
            self.mode = MODES[MODES.index(text)]
        elif name == "cyclic":
            self.cyclic = True
        else:
            self.skip_sanitized = text


class Runner:
    """Runs tests with one program."""

    def __init__(self, program, root=ROOT, timeout=60.0, sanitized=False):
        self.program = program
        self.root = root
        self.timeout = timeout
        self.sanitized = sanitized

    def run_file(self, file):
        """Runs the test in a file and tells how it went."""
        path = os.path.relpath(file, self.root)
        try:
            test = ScriptTest(pathlib.Path(file).read_bytes(), path)
        except (OSError, ScriptError) as error:
            return Outcome(test_name(path), "failed", str(error))
        if self.sanitized and test.skip_sanitized is not None:
            return Outcome(test_name(path), "skipped", test.skip_sanitized)
        with tempfile.TemporaryDirectory(prefix="tarvellua-") as tmp:
            problems = self.run_test(test, tmp)
        return Outcome(test_name(path), "failed" if problems else "passed", "\n".join(problems))

    def run_test(self, test, tmp):
        def fill(text):
            return text.replace("{tmp}", tmp).replace("{script}", test.path)

        arguments = ["--repl"] if test.mode == "repl" else [test.path]
        arguments += [fill(argument) for argument in test.args]
        run = self.execute(arguments, fill(test.stdin), test.cyclic)
        problems = []
        if run.status != test.status:
            problems.append(f"exit status: expected {test.status}, got {run.status}")
        # Standard error first: a message there explains what is missing from the output.
        errors = test.stderr + ([test.error] if test.error else [])
        problems += compare("standard error", [fill(line) for line in errors], run.stderr)
        expected = [fill(line) for line in test.stdout]
        if test.mode != "repl":
            return problems + compare("standard output", expected, run.stdout)
        # The interactive loop ends right after a prompt: there each byte counts.
        dialogue = "\n".join(expected).rstrip(" ") + " "
        return problems + ([] if run.stdout == dialogue else report_difference("standard output", dialogue, run.stdout))

    def execute(self, arguments, stdin, cyclic):
        process = subprocess.Popen(
            [self.program, *arguments],
            cwd=self.root,
            env=environment(cyclic),
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            start_new_session=True,  # so that what the script started can be ended with it
        )
        try:
            data = stdin.encode("utf-8", "surrogateescape")
            stdout, stderr = process.communicate(data, timeout=self.timeout)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return Run(None, "", f"still running after {self.timeout:g} seconds")
        return Run(process.returncode, decode(stdout), decode(stderr))


def environment(cyclic):
    variables = dict(os.environ)
    variables.pop("TARVELLUA_EXPECT_CYCLES", None)
    variables.pop("TARVELLUA_TRACE", None)
    if cyclic:
        variables["TARVELLUA_EXPECT_CYCLES"] = "1"
        options = variables.get("ASAN_OPTIONS")
        variables["ASAN_OPTIONS"] = (options + ":" if options else "") + "detect_leaks=0"
    return variables


def compare(what, expected, actual):
    """The problems of a whole output against the lines expected; the last line may lack its line feed."""
    wanted = "".join(line + "\n" for line in expected)
    return [] if actual in (wanted, wanted[:-1]) else report_difference(what, wanted, actual)


def report_difference(what, wanted, actual):
    lines = difflib.unified_diff(wanted.split("\n"), actual.split("\n"), "expected", "actual", lineterm="", n=2)
    return [f"{what} differs", *("    " + printable(line) for line in list(lines)[:60])]


def select_files(root, wanted):
    """The files that are named, or whose test's name holds one of the texts; all if there is none."""
    everything = [*sorted((root / "tests" / "scripts").rglob("*.lua")), *sorted((root / "examples").glob("*.lua"))]

    def is_wanted(file):
        path = os.path.relpath(file, root)
        return not wanted or any(text in test_name(path) or os.path.abspath(text) == str(file) for text in wanted)

    return [file for file in everything if is_wanted(file)]


def parse_options(description, takes_tests=False):
    parser = argparse.ArgumentParser(
        description=description, formatter_class=argparse.RawDescriptionHelpFormatter, usage=argparse.SUPPRESS
    )
    if takes_tests:
        parser.add_argument("tests", nargs="*", metavar="TEST", help="a file, or a part of tests' names")
    parser.add_argument("--program", default=str(ROOT / "build" / "tarvellua"), help="default: build/tarvellua")
    parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
    options = parser.parse_args()
    options.program = os.path.abspath(options.program)
    if not os.access(options.program, os.X_OK):
        parser.error(f"there is no program {options.program}; build it or name it with --program")
    sys.stdout.reconfigure(errors="backslashreplace")
    return options


def main():
    options = parse_options(__doc__, takes_tests=True)
    files = select_files(ROOT, options.tests)
    if not files:
        print("there are no such script tests")
        return 2
    runner = Runner(options.program, ROOT, sanitized=options.sanitized)
    counts = {"passed": 0, "failed": 0, "skipped": 0}
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        for outcome in pool.map(runner.run_file, files):
            counts[outcome.kind] += 1
            if outcome.kind != "passed":
                print(f"{outcome.kind}: {outcome.test_name}")
                print("\n".join("  " + line for line in printable(outcome.report).split("\n")))
    print(", ".join(f"{count} {kind}" for kind, count in counts.items()))
    if counts["failed"]:
        return 1
    return SKIPPED_STATUS if counts["skipped"] == len(files) else 0


if __name__ == "__main__":
    sys.exit(main())
