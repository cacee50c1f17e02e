#!/usr/bin/env python3
"""Runs Lua scripts with tarvellua and checks what they promise in their comments.

    tests/run_scripts.py [--program FILE] [part of a path ...]

Without a part of a path all tests run: tests/scripts/**/*.lua and examples/*.lua. The program runs in the repository's
root and gets the script's path relative to it, so that is the chunk name in messages.

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
    -- repl:                  run `tarvellua --repl`; the whole standard output, prompts included, must equal the
                              expected lines (the blank after the last prompt may be left out)
    -- cyclic:                the script makes reference cycles, which are never reclaimed: a program that counts its
                              objects must report some, and leaks are not looked for

In arguments, input and expectations {tmp} is a fresh directory, removed afterwards, and {script} the script's path. A
script that expects nothing is an error, and so is output that nothing expects.

The exit status is 0 if all tests passed, else 1.
"""

import argparse
import concurrent.futures
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
SECONDS = 60  # that a run may take

DIRECTIVE = re.compile(
    r"-- (?P<name>expect error (?P<line>\d+):(?P<column>\d+)|expect error bare|expect error|expect exit|expect stderr"
    r"|expect|args|stdin unterminated|stdin|repl|cyclic):(?: (?P<text>.*)|$)"
)


def decode(data):
    """Bytes that are not UTF-8 survive in the text as surrogates."""
    return data.decode("utf-8", "surrogateescape")


class ScriptTest:
    """What a script's directives say."""

    def __init__(self, source, path):
        self.path = path  # as the program gets it: relative to the repository's root
        self.stdout = []
        self.stderr = []
        self.errors = []
        self.status = None
        self.args = []
        self.stdin = ""
        self.repl = False
        self.cyclic = False
        for number, line in enumerate(source.split("\n"), start=1):
            match = DIRECTIVE.search(line)
            if match:
                self.apply(match, match["text"] or "", number)
        self.expects_something = self.stdout or self.stderr or self.errors or self.status is not None
        if self.status is None:
            self.status = 1 if self.errors else 0

    def apply(self, directive, text, number):
        name = directive["name"]
        if name == "expect":
            self.stdout.append(text)
        elif name == "expect stderr":
            self.stderr.append(text)
        elif name.startswith("expect error"):
            place = f"{directive['line']}:{directive['column']}" if directive["line"] else number
            location = "" if name == "expect error bare" else f"{self.path}:{place}: "
            self.errors.append(f"tarvellua: {location}{text}")
        elif name == "expect exit":
            self.status = int(text)
        elif name == "args":
            self.args += shlex.split(text)
        elif name.startswith("stdin"):
            self.stdin += text if name == "stdin unterminated" else text + "\n"
        elif name == "repl":
            self.repl = True
        else:
            self.cyclic = True


def run_file(program, file, root=ROOT):
    """Runs the test in a file; the problems, as lines."""
    test = ScriptTest(decode(file.read_bytes()), str(file.relative_to(root)))
    if not test.expects_something:
        return ["the script expects nothing"]
    with tempfile.TemporaryDirectory(prefix="tarvellua-") as tmp:
        return run_test(program, test, root, tmp)


def run_test(program, test, root, tmp):
    def fill(text):
        return text.replace("{tmp}", tmp).replace("{script}", test.path)

    first = "--repl" if test.repl else test.path
    command = [program, first, *map(fill, test.args)]
    status, stdout, stderr = execute(command, root, fill(test.stdin), environment(test.cyclic))
    problems = []
    if status != test.status:
        problems.append(f"exit status: expected {test.status}, got {status}")
    # Standard error first: a message there explains what is missing from the output.
    problems += compare("standard error", map(fill, test.stderr + test.errors), stderr)
    if test.repl:
        # The interactive loop ends right after a prompt: there each byte counts.
        dialogue = "\n".join(map(fill, test.stdout)).rstrip(" ") + " "
        return problems + ([] if stdout == dialogue else report_difference("standard output", dialogue, stdout))
    return problems + compare("standard output", map(fill, test.stdout), stdout)


def execute(command, folder, stdin, variables):
    """The status, None after the time limit, and what is written to standard output and standard error."""
    process = subprocess.Popen(
        command,
        cwd=folder,
        env=variables,
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        start_new_session=True,  # so that what the script started can be ended with it
    )
    try:
        stdout, stderr = process.communicate(stdin.encode("utf-8", "surrogateescape"), timeout=SECONDS)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return None, "", f"still running after {SECONDS} seconds"
    return process.returncode, decode(stdout), decode(stderr)


def environment(cyclic=False):
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
    return [f"{what} differs", *("    " + line for line in list(lines)[:60])]


def option_parser(description):
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    program = str(ROOT / "build" / "tarvellua")
    parser.add_argument("--program", type=os.path.abspath, default=program, help="default: build/tarvellua")
    sys.stdout.reconfigure(errors="backslashreplace")
    return parser


def main():
    parser = option_parser(__doc__)
    parser.add_argument("tests", nargs="*", metavar="TEST", help="a part of tests' paths")
    options = parser.parse_args()
    everything = [*sorted((ROOT / "tests/scripts").rglob("*.lua")), *sorted((ROOT / "examples").glob("*.lua"))]
    files = [file for file in everything if not options.tests or any(part in str(file) for part in options.tests)]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        for file, problems in zip(files, pool.map(lambda file: run_file(options.program, file), files)):
            if problems:
                failed += 1
                print("\n  ".join([f"failed: {file.relative_to(ROOT)}", *problems]))
    print(f"{len(files)} tests, {failed} failed")
    return 1 if failed or not files else 0


if __name__ == "__main__":
    sys.exit(main())
