#!/usr/bin/env python3
"""Runs Lua scripts with tarvellua and checks what they promise in their comments.

    tests/run_scripts.py [options] [FILE or part of a test's name ...]

Without a name all tests run: tests/scripts/{language,library,regressions,cli}/**/*.lua and examples/*.lua. A test is
named after its path: `language/numeric_for`, `library/table.sort`, `examples/hello`. The program runs in the
repository's root and gets the script's path relative to it, so that is the chunk name in messages.

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
    -- mode: container        compile the script with --compile, then run the container
    -- mode: command          run tarvellua with nothing but the arguments of `args:`
    -- cyclic:                the script makes reference cycles, which are never reclaimed: a program that counts its
                              objects must report some, and leaks are not looked for
    -- skip: why              do not run; the reason is printed
    -- skip sanitized: why    the same in a build with sanitizers only

In arguments, input and expectations {tmp} is a fresh directory, removed afterwards, {script} the script's path and
{program} the program's. A script that expects nothing is an error, and so is output that nothing expects.

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
SCRIPT_FOLDERS = ("language", "library", "regressions", "cli")
MODES = ("script", "repl", "container", "command")
SKIPPED_STATUS = 77

DIRECTIVE = re.compile(
    r"-- (?P<name>expect error (?P<line>\d+):(?P<column>\d+)|expect error bare|expect error|expect exit|expect stderr"
    r"|expect|args|stdin unterminated|stdin|mode|cyclic|skip sanitized|skip):(?: (?P<text>.*)|$)"
)
# What was probably meant as a directive; where it is none, the test would silently check less than it says.
LOOKS_LIKE_DIRECTIVE = re.compile(
    r"--\s*(?:(?:expect\w*|skip|stdin)\b[^:]{0,20}|args\s*|mode\s*|cyclic\s*):", re.IGNORECASE
)


class ScriptError(Exception):
    """The script's directives make no test."""


@dataclasses.dataclass
class Expected:
    """A line that must come out, and the line of the script that says so."""

    text: str
    source_line: int


@dataclasses.dataclass
class ScriptTest:
    """What a script's directives say."""

    name: str
    path: str  # as the program gets it: relative to the repository's root
    stdout: list = dataclasses.field(default_factory=list)
    stderr: list = dataclasses.field(default_factory=list)
    error: "Expected | None" = None
    status: "int | None" = None
    args: list = dataclasses.field(default_factory=list)
    stdin: str = ""
    mode: str = "script"
    cyclic: bool = False
    skip: "str | None" = None
    skip_sanitized: "str | None" = None

    def expected_status(self):
        if self.status is not None:
            return self.status
        return 1 if self.error else 0

    def expected_stderr(self):
        return self.stderr + ([self.error] if self.error else [])


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
    name = path[: -len(".lua")] if path.endswith(".lua") else path
    prefix = "tests/scripts/"
    return name[len(prefix) :] if name.startswith(prefix) else name


def parse_script(source, path):
    """Reads the directives of a script, given as bytes."""
    test = ScriptTest(name=test_name(path), path=path)
    for number, line in enumerate(decode(source).split("\n"), start=1):
        line = line[:-1] if line.endswith("\r") else line
        match = DIRECTIVE.search(line)
        suspect = LOOKS_LIKE_DIRECTIVE.search(line)
        if suspect and (not match or suspect.start() < match.start()):
            raise ScriptError(f"{path}:{number}: looks like a directive and is none: {suspect.group()}")
        if match:
            apply_directive(test, match, number)
    check_test(test)
    return test


def apply_directive(test, match, number):
    name = match["name"]
    text = match["text"] or ""

    def fail(message):
        raise ScriptError(f"{test.path}:{number}: {message}")

    if name == "expect":
        test.stdout.append(Expected(text, number))
    elif name == "expect stderr":
        test.stderr.append(Expected(text, number))
    elif name.startswith("expect error"):
        if test.error:
            fail("a run ends with one error at most")
        location = f"{test.path}:{number}: "
        if match["line"]:
            location = f"{test.path}:{match['line']}:{match['column']}: "
        elif name == "expect error bare":
            location = ""
        test.error = Expected(f"tarvellua: {location}{text}", number)
    elif name == "expect exit":
        if test.status is not None or not re.fullmatch(r"\d+", text):
            fail("expect exit takes one number, once")
        test.status = int(text)
    elif name == "args":
        try:
            test.args += shlex.split(text)
        except ValueError as error:
            fail(str(error))
    elif name == "stdin":
        test.stdin += text + "\n"
    elif name == "stdin unterminated":
        test.stdin += text
    elif name == "mode":
        if text not in MODES:
            fail(f"unknown mode: {text}")
        test.mode = text
    elif name == "cyclic":
        test.cyclic = True
    elif not text:
        fail(f"{name} needs a reason")
    elif name == "skip":
        test.skip = text
    else:
        test.skip_sanitized = text


def check_test(test):
    if test.error and test.status not in (None, 1):
        raise ScriptError(f"{test.path}: a run that ends with an error has status 1, not {test.status}")
    if not (test.stdout or test.stderr or test.error or test.status is not None):
        raise ScriptError(f"{test.path}: the script expects nothing")


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
            test = parse_script(pathlib.Path(file).read_bytes(), path)
        except (OSError, ScriptError) as error:
            return Outcome(test_name(path), "failed", str(error))
        reason = self.skip_reason(test)
        if reason is not None:
            return Outcome(test.name, "skipped", reason)
        with tempfile.TemporaryDirectory(prefix="tarvellua-") as tmp:
            problems = self.run_test(test, tmp)
        return Outcome(test.name, "failed" if problems else "passed", "\n".join(problems))

    def skip_reason(self, test):
        if test.skip is None and self.sanitized:
            return test.skip_sanitized
        return test.skip

    def run_test(self, test, tmp):
        def fill(text):
            for key, value in (("{tmp}", tmp), ("{script}", test.path), ("{program}", self.program)):
                text = text.replace(key, value)
            return text

        arguments = [fill(argument) for argument in test.args]
        stdin = fill(test.stdin)
        problems = []
        if test.mode == "container":
            container = os.path.join(tmp, "c.tlbc")
            run = self.execute(["--compile", test.path, container], "", cyclic=False)
            if run.status == 0:
                problems = compare(test.path, "output of --compile", [], run.stdout + run.stderr, fill)
                run = self.execute(["--run-bytecode", container, *arguments], stdin, test.cyclic)
            elif os.path.exists(container):
                problems = ["--compile failed and left a container behind"]
        else:
            head = {"script": [test.path], "repl": ["--repl"], "command": []}[test.mode]
            run = self.execute(head + arguments, stdin, test.cyclic)
        return problems + self.check_run(test, run, fill)

    def check_run(self, test, run, fill):
        problems = []
        if run.status is None:
            problems.append(f"still running after {self.timeout:g} seconds")
        elif run.status != test.expected_status():
            problems.append(f"exit status: expected {test.expected_status()}, got {describe_status(run.status)}")
        # Standard error first: a message there explains what is missing from the output.
        problems += compare(test.path, "standard error", test.expected_stderr(), run.stderr, fill)
        if test.mode == "repl":
            problems += compare_dialogue(test.path, test.stdout, run.stdout, fill)
        else:
            problems += compare(test.path, "standard output", test.stdout, run.stdout, fill)
        return problems

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
        status = None
        try:
            data = stdin.encode("utf-8", "surrogateescape")
            stdout, stderr = process.communicate(data, timeout=self.timeout)
            status = process.returncode
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            stdout, stderr = process.communicate()
        return Run(status, decode(stdout), decode(stderr))


def environment(cyclic):
    variables = dict(os.environ)
    variables.pop("TARVELLUA_EXPECT_CYCLES", None)
    if cyclic:
        variables["TARVELLUA_EXPECT_CYCLES"] = "1"
        options = variables.get("ASAN_OPTIONS")
        variables["ASAN_OPTIONS"] = (options + ":" if options else "") + "detect_leaks=0"
    return variables


def describe_status(status):
    if status >= 0:
        return str(status)
    try:
        return f"a death by {signal.Signals(-status).name}"
    except ValueError:
        return f"a death by signal {-status}"


def compare(path, what, expected, actual, fill):
    """The problems of a whole output against the lines expected; the last line may lack its line feed."""
    wanted = [fill(line.text) for line in expected]
    lines = actual.split("\n")
    if lines[-1] == "":
        lines.pop()
    if lines == wanted:
        return []
    same = 0
    while same < min(len(lines), len(wanted)) and lines[same] == wanted[same]:
        same += 1
    if same == len(wanted):
        where = f"{what}: nothing expects line {same + 1}"
    elif same == len(lines):
        where = f"{what}: ends before what {path}:{expected[same].source_line} expects"
    else:
        where = f"{what}: line {same + 1} differs from {path}:{expected[same].source_line}"
    diff = difflib.unified_diff(wanted, lines, "expected", "actual", lineterm="", n=2)
    return [where] + ["    " + printable(line) for line in shorten(list(diff))]


def compare_dialogue(path, expected, actual, fill):
    """The same for the interactive loop, which ends right after a prompt: there each byte counts."""
    wanted = fill("\n".join(line.text for line in expected))
    if actual in (wanted, wanted + " "):
        return []
    problems = compare(path, "standard output", expected, actual, fill)
    return problems or ["standard output: a line feed after the last prompt"]


def shorten(lines, limit=60):
    if len(lines) <= limit:
        return lines
    return lines[:limit] + [f"... and {len(lines) - limit} further lines"]


def all_files(root):
    files = []
    for folder in SCRIPT_FOLDERS:
        files += sorted((root / "tests" / "scripts" / folder).rglob("*.lua"))
    return files + sorted((root / "examples").glob("*.lua"))


def select_files(root, wanted):
    """The files that are named, or whose test's name holds one of the texts; raises LookupError for a text in vain."""
    if not wanted:
        return all_files(root)
    selected = []
    for text in wanted:
        if os.path.isfile(text):
            selected.append(pathlib.Path(text).resolve())
            continue
        found = [file for file in all_files(root) if text in test_name(os.path.relpath(file, root))]
        if not found:
            raise LookupError(f"no script test is named like {text}")
        selected += found
    return list(dict.fromkeys(selected))


def print_skips(runner, files):
    for file in files:
        path = os.path.relpath(file, runner.root)
        try:
            test = parse_script(file.read_bytes(), path)
        except ScriptError:
            continue  # running it reports this
        reason = runner.skip_reason(test)
        if reason is not None:
            print(f"skipped: {test.name}: {printable(reason)}")


def run_all(runner, files, jobs, verbose):
    counts = {"passed": 0, "failed": 0, "skipped": 0}
    with concurrent.futures.ThreadPoolExecutor(max_workers=jobs) as pool:
        for outcome in pool.map(runner.run_file, files):
            counts[outcome.kind] += 1
            if outcome.kind == "skipped":
                print(f"skipped: {outcome.test_name}: {printable(outcome.report)}")
            elif outcome.kind == "failed" or verbose:
                print(f"{outcome.kind}: {outcome.test_name}")
            if outcome.kind == "failed":
                print("\n".join("  " + line for line in printable(outcome.report).split("\n")))
    print(", ".join(f"{count} {kind}" for kind, count in counts.items()))
    return counts


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter, usage=argparse.SUPPRESS
    )
    parser.add_argument("tests", nargs="*", metavar="TEST", help="a file, or a part of tests' names")
    parser.add_argument("--program", default=str(ROOT / "build" / "tarvellua"), help="default: build/tarvellua")
    parser.add_argument("--root", default=str(ROOT), help="folder that the program runs in")
    parser.add_argument("--timeout", type=float, default=60.0, help="seconds for one script (60)")
    parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
    parser.add_argument("--list-skipped", action="store_true", help="only tell which tests are skipped and why")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count() or 1, help="scripts at a time (processors)")
    parser.add_argument("-v", "--verbose", action="store_true", help="name the tests that pass, too")
    options = parser.parse_args()
    sys.stdout.reconfigure(errors="backslashreplace")

    program = os.path.abspath(options.program)
    root = pathlib.Path(options.root).resolve()
    runner = Runner(program, root, options.timeout, options.sanitized)
    try:
        files = select_files(root, options.tests)
    except LookupError as error:
        parser.error(str(error))
    if options.list_skipped:
        print_skips(runner, files)
        return 0
    if not files:
        parser.error("there are no script tests")
    if not os.access(program, os.X_OK):
        parser.error(f"there is no program {program}; build it or name it with --program")
    counts = run_all(runner, files, options.jobs, options.verbose)
    if counts["failed"]:
        return 1
    return SKIPPED_STATUS if counts["skipped"] == len(files) else 0


if __name__ == "__main__":
    sys.exit(main())
