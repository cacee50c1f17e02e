#!/usr/bin/env python3
"""Runs the examples of the documentation with tarvellua and checks what they promise.

    tests/docs_test.py [--program PATH] [FILE ...]     default: docs/*.md and README.md
    tests/docs_test.py --self-test                     tests of this checker

A block fenced as ```lua is a whole script, with the directives of run_scripts.py. One fenced as ```console is a
transcript: lines that begin with `$ ` are commands for sh, which finds the program as `tarvellua`; the lines that
begin with `lua> ` after a `tarvellua --repl` are typed into it; all others are what comes out. Each block has a fresh
folder of its own. Other code has to be fenced with a language that is not checked here (OTHER_LANGUAGES), so that no
example goes unchecked by a slip. Lines in reports are those of the Markdown file.

The exit status is 0 if all examples passed, 1 if one failed, 2 for wrong usage.
"""

import argparse
import concurrent.futures
import dataclasses
import difflib
import os
import pathlib
import re
import shlex
import stat
import subprocess
import sys
import tempfile
import textwrap
import unittest

import run_scripts

SCRIPT_NAME = "example.lua"
OTHER_LANGUAGES = ("text", "sh", "cmake", "cpp")
FENCE = re.compile(r"(?P<indent> *)(?P<marks>`{3,}|~{3,})(?P<language>.*)$")
PROMPT = "lua> "


class DocumentError(Exception):
    """The file's blocks cannot be told apart."""


@dataclasses.dataclass
class Block:
    document: str
    first_line: int  # of the code
    language: str
    code: str

    def place(self):
        return f"{self.document}:{self.first_line}"


def find_blocks(text, document):
    """The fenced blocks of a Markdown file."""
    blocks = []
    opened = None
    for number, line in enumerate(text.split("\n"), start=1):
        fence = FENCE.match(line)
        if opened is None:
            if fence:
                opened = fence
                blocks.append(Block(document, number + 1, fence["language"].strip(), ""))
        elif fence and fence["marks"] == opened["marks"] and not fence["language"].strip():
            opened = None
        else:
            indent = len(opened["indent"])
            blocks[-1].code += (line[indent:] if line[:indent].isspace() else line) + "\n"
    if opened is not None:
        raise DocumentError(f"{blocks[-1].place()}: the block has no end")
    return blocks


class Checker:
    """Checks blocks with one program."""

    def __init__(self, program, timeout=60.0, sanitized=False):
        self.program = os.path.abspath(program)
        self.timeout = timeout
        self.sanitized = sanitized

    def check_block(self, block):
        """The problems of a block, as text; empty if there are none."""
        if block.language in OTHER_LANGUAGES:
            return ""
        if block.language not in ("lua", "console"):
            return f"unknown language of the block: '{block.language}'"
        with tempfile.TemporaryDirectory(prefix="tarvellua-docs-") as folder:
            root = pathlib.Path(folder).resolve()
            return self.check_script(block, root) if block.language == "lua" else self.check_transcript(block, root)

    def check_script(self, block, root):
        file = root / SCRIPT_NAME
        file.write_text(block.code, encoding="utf-8")
        outcome = run_scripts.Runner(self.program, root, self.timeout, self.sanitized).run_file(file)
        if outcome.kind == "passed" or (outcome.kind == "skipped" and self.sanitized):
            return ""
        report = outcome.report if outcome.kind == "failed" else f"skipped: {outcome.report}"

        def in_document(match):
            return f"{block.document}:{block.first_line - 1 + int(match[1])}"

        return re.sub(re.escape(SCRIPT_NAME) + r":(\d+)", in_document, report)

    def check_transcript(self, block, root):
        script, expected = read_transcript(block.code)
        if not script:
            return "a transcript without a command"
        tools = root / ".tools"
        tools.mkdir()
        (tools / "tarvellua").symlink_to(self.program)
        setting = f"exec 2>&1\nPATH={shlex.quote(str(tools))}:$PATH\n"
        run = run_scripts.Runner("sh", root, self.timeout).execute(["-c", setting + script], "", cyclic=False)
        if run.status is None:
            return f"still running after {self.timeout:g} seconds"
        actual = run.stdout
        if actual == expected:
            return ""
        lines = difflib.unified_diff(expected.split("\n"), actual.split("\n"), "expected", "actual", lineterm="", n=2)
        return "\n".join(["the commands write something else", *("    " + line for line in lines)])


def read_transcript(code):
    """The commands of a transcript as a shell script, and what they must write: the typed text is not echoed."""
    commands = []
    expected = ""
    typed = []

    def end_dialogue():
        if typed:
            commands[-1] += " <<'END OF INPUT'\n" + "\n".join(typed) + "\nEND OF INPUT"
            typed.clear()

    for line in code.splitlines():
        if line.startswith("$ "):
            end_dialogue()
            commands.append(line[2:])
        elif commands and line.startswith(PROMPT):
            typed.append(line[len(PROMPT) :])
            expected += PROMPT
        else:
            expected += line + "\n"
    end_dialogue()
    return "\n".join(commands), expected


def check_documents(checker, files, root, jobs):
    """Prints what is wrong with the files' examples and returns the exit status."""
    blocks = []
    problems = []
    for file in files:
        document = os.path.relpath(file, root)
        try:
            blocks += find_blocks(file.read_text(encoding="utf-8"), document)
        except (OSError, UnicodeDecodeError, DocumentError) as error:
            problems.append(f"{document}: {error}")
    examples = sum(block.language not in OTHER_LANGUAGES for block in blocks)
    with concurrent.futures.ThreadPoolExecutor(max_workers=jobs) as pool:
        for block, problem in zip(blocks, pool.map(checker.check_block, blocks)):
            if problem:
                problems.append(f"{block.place()}: the example fails\n{textwrap.indent(problem, '  ')}")
    for problem in problems:
        print(run_scripts.printable(problem))
    print(f"{examples} examples, {len(problems)} failed")
    return 1 if problems or examples == 0 else 0


# ---- Tests of the checker itself -------------------------------------------------------------------------------------

# Does what the lines of a script after `--! ` say, as Python; with --repl it answers each line with the line.
FAKE_PROGRAM = """\
#!{python} -I
import sys
if sys.argv[1] == "--repl":
    for line in sys.stdin:
        print("lua> " + line, end="")
        if line == "exit\\n":
            sys.exit(0)
for line in open(sys.argv[1]):
    if line.startswith("--! "):
        exec(line[4:])
"""


class DocsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        program = pathlib.Path(folder.name) / "fake"
        program.write_text(FAKE_PROGRAM.format(python=sys.executable))
        program.chmod(program.stat().st_mode | stat.S_IXUSR)
        self.checker = Checker(str(program), timeout=5)

    def problems(self, text):
        return [self.checker.check_block(block) for block in find_blocks(textwrap.dedent(text), "page.md")]

    def assert_fails(self, text, *parts):
        report = "\n".join(self.problems(text))
        self.assertTrue(report, text)
        for part in parts:
            self.assertIn(part, report)

    def test_scripts(self):
        text = """\
            # Title
            ```lua
            --! print({written!r})
            x = 1  -- expect: one
            ```
            1. An item
               ```lua
               --! print("two")
               -- expect: two
               ```
            """
        self.assertEqual(self.problems(text.format(written="one")), ["", ""])
        self.assert_fails(text.format(written="other"), "differs from page.md:4", "-one", "+other")
        self.assert_fails(text.format(written="one\nmore"), "nothing expects line 2")

    def test_errors(self):
        text = """\
            ```lua

            --! sys.exit("tarvellua: example.lua:{line}: wrong")
            f()  -- expect error: wrong
            ```
            """
        self.assertEqual(self.problems(text.format(line=3)), [""])
        self.assert_fails(text.format(line=2), "page.md:4", "-tarvellua: page.md:4: wrong")
        front_end = '```lua\n--! sys.exit("tarvellua: example.lua:7:1: form")\n-- expect error 7:1: form\n```'
        self.assertEqual(self.problems(front_end), [""])

    def test_unchecked_examples(self):
        self.assert_fails("```lua\nprint(1)\n```", "expects nothing")
        self.assert_fails("```lua\nprint(1)  -- Expect: 1\n```", "page.md:2: looks like a directive")
        self.assert_fails("```lua\n-- expect: 1\n-- skip: later\n```", "skipped: later")
        self.assert_fails("```\nprint(1)\n```", "unknown language of the block: ''")
        self.assert_fails("```Lua\nprint(1)  -- expect: 1\n```", "unknown language of the block: 'Lua'")
        self.assert_fails("```console\nno command\n```", "without a command")
        self.assertEqual(self.problems("```text\nprint(1)\n```\n~~~sh\n```lua\n~~~"), ["", ""])
        with self.assertRaisesRegex(DocumentError, "page.md:3: .* no end"):
            self.problems("\n```lua\n-- expect: 1\n")

    def test_transcripts(self):
        text = """\
            ```console
            $ echo "--! print('made')" > f.lua
            $ tarvellua f.lua; echo $?
            {output}
            0
            $ tarvellua --repl
            lua> print(1)
            print(1)
            lua> exit
            exit
            ```
            """
        self.assertEqual(self.problems(text.format(output="made")), [""])
        self.assert_fails(text.format(output="other"), "-other", "+made")

    def test_documents(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder) / "page.md"
            for text, status in (
                ('```lua\n--! print("1")\n-- expect: 1\n```\n', 0),
                ('```lua\n--! print("2")\n-- expect: 1\n```\n', 1),
                ("no example at all\n", 1),
            ):
                page.write_text(text)
                run = subprocess.run(
                    [sys.executable, __file__, "--program", self.checker.program, str(page)],
                    capture_output=True,
                    text=True,
                    check=False,
                )
                self.assertEqual((run.returncode, run.stderr), (status, ""), run.stdout)


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter, usage=argparse.SUPPRESS
    )
    root = run_scripts.ROOT
    parser.add_argument("files", nargs="*", metavar="FILE", type=pathlib.Path, help="Markdown files")
    parser.add_argument("--program", default=str(root / "build" / "tarvellua"), help="default: build/tarvellua")
    parser.add_argument("--timeout", type=float, default=60.0, help="seconds for one example (60)")
    parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
    parser.add_argument("-j", "--jobs", type=int, default=os.cpu_count() or 1, help="examples at a time (processors)")
    parser.add_argument("--self-test", action="store_true", help="test this checker")
    options = parser.parse_args()
    sys.stdout.reconfigure(errors="backslashreplace")

    if options.self_test:
        unittest.main(argv=[sys.argv[0]])
    if not os.access(options.program, os.X_OK):
        parser.error(f"there is no program {options.program}; build it or name it with --program")
    files = options.files or [*sorted((root / "docs").glob("*.md")), root / "README.md"]
    checker = Checker(options.program, options.timeout, options.sanitized)
    return check_documents(checker, [file.resolve() for file in files], root, options.jobs)


if __name__ == "__main__":
    sys.exit(main())
