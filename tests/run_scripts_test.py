#!/usr/bin/env python3
"""Tests of run_scripts.py: fake programs show that it fails when it must, and passes only then."""

import os
import pathlib
import stat
import subprocess
import sys
import tempfile
import textwrap
import unittest

import run_scripts

# A fake program does what the lines after `--! ` in its script say, as Python; so a case shows script and behaviour
# in one place. With --repl, or without a script, it takes them from the variable FAKE.
FAKE_PROGRAM = """\
#!{python} -I
import os, pathlib, sys

def behave(path):
    lines = pathlib.Path(path).read_text(encoding="latin-1").splitlines()
    return "\\n".join(line[4:] for line in lines if line.startswith("--! "))

def write(text):
    sys.stdout.write(text)
    sys.stdout.flush()

def fail(text, status=1):
    sys.stderr.write(text + "\\n")
    sys.exit(status)

first = sys.argv[1] if len(sys.argv) > 1 else ""
if first == "--compile":
    pathlib.Path(sys.argv[3]).write_text(pathlib.Path(sys.argv[2]).read_text(), encoding="latin-1")
    if "reject" in pathlib.Path(sys.argv[2]).name:
        fail("tarvellua: rejected")
    sys.exit(0)
if first == "--run-bytecode":
    first = sys.argv[2]
code = behave(first) if os.path.isfile(first) else os.environ["FAKE"]
exec(code)
"""


class RunScriptsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        self.program = self.root / "fake"
        self.program.write_text(FAKE_PROGRAM.format(python=sys.executable))
        self.program.chmod(self.program.stat().st_mode | stat.S_IXUSR)

    def run_script(self, source, name="tests/scripts/language/case.lua", **options):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(textwrap.dedent(source).encode("latin-1"))
        return run_scripts.Runner(str(self.program), self.root, **options).run_file(path)

    def assert_passes(self, source, **options):
        outcome = self.run_script(source, **options)
        self.assertEqual((outcome.kind, outcome.report), ("passed", ""))

    def assert_fails(self, source, *parts, **options):
        outcome = self.run_script(source, **options)
        self.assertEqual(outcome.kind, "failed", outcome)
        for part in parts:
            self.assertIn(part, outcome.report)

    def test_output(self):
        script = """\
            --! write({text!r})
            -- expect: one
            x = 2  -- expect:  two --
            -- expect:
            """
        good = "one\n two --\n\n"
        self.assert_passes(script.format(text=good))
        self.assert_fails(script.format(text="one\n two --\n"), "ends before", "case.lua:4")
        self.assert_fails(script.format(text=good + "more\n"), "nothing expects line 4", "+more")
        self.assert_fails(script.format(text=good + "\n"), "nothing expects line 4")
        self.assert_fails(script.format(text="one\ntwo --\n\n"), "line 2 differs from", "case.lua:3", "- two", "+two")
        self.assert_fails(script.format(text=" two --\none\n\n"), "line 1 differs")
        self.assert_fails(script.format(text=""), "ends before")

    def test_bytes_beyond_ascii(self):
        self.assert_passes("--! sys.stdout.buffer.write(b'\\xff\\x01\\n')\n-- expect: \xff\x01\n")
        self.assert_fails("--! sys.stdout.buffer.write(b'\\xfe\\n')\n-- expect: \xff\n", "-\\xff", "+\\xfe")

    def test_status_and_standard_error(self):
        self.assert_passes("--! sys.exit(3)\n-- expect exit: 3\n")
        self.assert_fails("--! sys.exit(4)\n-- expect exit: 3\n", "expected 3, got 4")
        self.assert_fails("--! write('a')\n--! sys.exit(1)\n-- expect: a\n", "expected 0, got 1")
        self.assert_fails("--! os.kill(os.getpid(), 11)\n-- expect exit: 0\n", "SIGSEGV")
        self.assert_passes("--! fail('note', 0)\n-- expect stderr: note\n")
        self.assert_fails("--! fail('note', 0)\n-- expect exit: 0\n", "standard error", "+note")
        self.assert_fails("--! write('')\n-- expect stderr: note\n", "standard error: ends before")

    def test_expected_errors(self):
        script = """\
            --! sys.stderr.write("{note}")
            --! fail("{text}", {status})
            -- expect stderr: note
            boom()  -- expect error: it broke
            """

        def with_error(text, status=1, note="note\\n"):
            return script.format(text=text, status=status, note=note)

        path = "tarvellua: tests/scripts/language/case.lua"
        self.assert_passes(with_error(f"{path}:4: it broke"))
        self.assert_fails(with_error(f"{path}:5: it broke"), "differs")
        self.assert_fails(with_error(f"{path}:4: it broke down"), "differs")
        self.assert_fails(with_error("tarvellua: other.lua:4: it broke"), "differs")
        self.assert_fails(with_error(f"{path}:4: it broke", status=0), "expected 1, got 0")
        self.assert_fails(with_error(f"{path}:4: it broke", note=""), "standard error")

    def test_errors_with_column_and_without_location(self):
        path = "tests/scripts/language/case.lua"
        self.assert_passes(f"--! fail('tarvellua: {path}:4:9: bad')\n-- expect error 4:9: bad\n")
        self.assert_fails(f"--! fail('tarvellua: {path}:4:8: bad')\n-- expect error 4:9: bad\n", "differs")
        self.assert_passes("--! fail('tarvellua: bad')\n-- expect error bare: bad\n")
        self.assert_fails(f"--! fail('tarvellua: {path}:2: bad')\n-- expect error bare: bad\n", "differs")

    def test_arguments_and_input(self):
        self.assert_passes(
            """\
            --! write("|".join(sys.argv[1:]) + "\\n")
            -- args: a "b c" ''
            -- args: d
            -- expect: tests/scripts/language/case.lua|a|b c||d
            """
        )
        self.assert_passes(
            """\
            --! write(repr(sys.stdin.read()))
            -- stdin: one
            -- stdin:
            -- stdin unterminated: two
            -- expect: 'one\\n\\ntwo'
            """
        )

    def test_temporary_folder_is_fresh_and_removed(self):
        script = """\
            --! tmp = pathlib.Path(sys.argv[1 + 1])
            --! write(str(list(tmp.iterdir())) + str(tmp))
            --! (tmp / "file").write_text("x")
            --! (pathlib.Path(sys.argv[0]).parent / "seen").write_text(str(tmp))
            -- args: {tmp}
            -- expect: []{tmp}
            """
        for _ in range(2):
            self.assert_passes(script)
            self.assertFalse(os.path.exists((self.root / "seen").read_text()))

    def test_working_directory_is_the_root(self):
        self.assert_passes("--! write(str(os.path.samefile('.', os.path.dirname(sys.argv[0]))))\n-- expect: True\n")

    def test_interactive_mode(self):
        script = """\
            -- mode: repl
            -- stdin: x
            -- expect: lua> 1
            -- expect: lua>
            """
        for behaviour, passes in (
            ("write('lua> 1\\nlua> ')", True),
            ("write('lua> 1\\nlua>')", True),
            ("write('lua> 1\\nlua> \\n')", False),
            ("write('lua> 1\\nlua>\\n')", False),
            ("write('lua> 1\\n')", False),
            ("write('1\\n')", False),
            ("assert sys.argv[1:] == ['--repl'] and sys.stdin.read() == 'x\\n'; write('lua> 1\\nlua>')", True),
        ):
            os.environ["FAKE"] = behaviour
            with self.subTest(behaviour):
                self.assertEqual(self.run_script(script).kind, "passed" if passes else "failed")

    def test_command_mode(self):
        os.environ["FAKE"] = "fail(sys.argv[0] + '|' + '|'.join(sys.argv[1:]))"
        self.assert_passes(
            """\
            -- mode: command
            -- args: --compile-nothing {script}
            -- expect stderr: {program}|--compile-nothing|tests/scripts/language/case.lua
            -- expect exit: 1
            """
        )

    def test_container_mode(self):
        script = """\
            --! write(sys.argv[1] + "|" + "|".join(sys.argv[3:]))
            -- mode: container
            -- args: a b
            -- expect: --run-bytecode|a|b
            """
        self.assert_passes(script)
        rejected = "-- mode: container\n-- expect error bare: rejected\n"
        self.assert_fails(rejected, "left a container behind", name="tests/scripts/cli/reject.lua")

    def test_cycles(self):
        counting = """\
            --! expected = "TARVELLUA_EXPECT_CYCLES" in os.environ
            --! assert expected == ("detect_leaks=0" in os.environ.get("ASAN_OPTIONS", ""))
            --! alive = {alive}
            --! if expected != (alive > 0): fail("tarvellua: %d objects still alive" % alive, 99)
            -- expect exit: 0
            {directive}
            """
        self.assert_passes(counting.format(alive=0, directive=""))
        self.assert_fails(counting.format(alive=2, directive=""), "got 99", "+tarvellua: 2 objects still alive")
        self.assert_passes(counting.format(alive=2, directive="-- cyclic:"))
        self.assert_fails(counting.format(alive=0, directive="-- cyclic:"), "got 99")
        self.assertEqual(
            run_scripts.environment(cyclic=True)["ASAN_OPTIONS"].split(":")[-1], "detect_leaks=0"
        )

    def test_skips(self):
        skipped = self.run_script("-- skip: no time\n-- expect: 1\n")
        self.assertEqual((skipped.kind, skipped.report), ("skipped", "no time"))
        large = "--! write('1')\n-- skip sanitized: too large\n-- expect: 1\n"
        self.assert_passes(large)
        self.assertEqual(self.run_script(large, sanitized=True).report, "too large")

    def test_time_limit(self):
        endless = "--! import time\n--! os.system('sleep 60')\n--! time.sleep(60)\n-- expect exit: 0\n"
        self.assert_fails(endless, "still running after 0.5 seconds", timeout=0.5)

    def test_scripts_that_are_no_test(self):
        for source in (
            "print(1)\n",
            "-- args: a\n",
            "--expect: 1\n",
            "-- expects: 1\n-- expect: 1\n",
            "-- expect : 1\n-- expect: 1\n",
            "-- expect eror: 1\n-- expect: 1\n",
            "-- expect:1\n-- expect: 1\n",
            "-- Expect: 1\n-- expect: 1\n",
            "-- mode: rpl\n-- expect: 1\n",
            "-- skip:\n-- expect: 1\n",
            "-- args: 'a\n-- expect: 1\n",
            "-- expect exit: x\n",
            "-- expect exit: 0\n-- expect exit: 0\n",
            "-- expect error: a\n-- expect error: b\n",
            "-- expect error: a\n-- expect exit: 2\n",
        ):
            with self.subTest(source):
                self.assertEqual(self.run_script(source).kind, "failed")

    def test_names(self):
        for path, name in (
            ("tests/scripts/library/table.sort.lua", "library/table.sort"),
            ("tests/scripts/language/for/step.lua", "language/for/step"),
            ("examples/hello.lua", "examples/hello"),
        ):
            self.assertEqual(run_scripts.test_name(path), name)

    def run_command(self, *arguments):
        command = [sys.executable, run_scripts.__file__, "--root", self.root, "--program", self.program, *arguments]
        return subprocess.run(command, capture_output=True, text=True, check=False)

    def test_command_line(self):
        self.assertEqual(self.run_command().returncode, 2)
        self.run_script("--! write('1')\n-- expect: 1\n", name="tests/scripts/language/good.lua")
        self.assertEqual(self.run_command().returncode, 0)
        self.run_script("-- skip: later\n-- expect: 1\n", name="examples/later.lua")
        self.run_script("--! write('2')\n-- expect: 1\n", name="tests/scripts/library/bad.lua")
        self.run_script("not a test", name="tests/scripts/other/helper.lua")

        everything = self.run_command("-j2")
        self.assertEqual(everything.returncode, 1)
        self.assertIn("failed: library/bad\n", everything.stdout)
        self.assertIn("skipped: examples/later: later\n", everything.stdout)
        self.assertTrue(everything.stdout.endswith("1 passed, 1 failed, 1 skipped\n"), everything.stdout)

        self.assertEqual(self.run_command("language/").returncode, 0)
        self.assertEqual(self.run_command("examples/later").returncode, run_scripts.SKIPPED_STATUS)
        self.assertEqual(self.run_command("no such test").returncode, 2)
        self.assertEqual(self.run_command("--list-skipped").stdout, "skipped: examples/later: later\n")


if __name__ == "__main__":
    unittest.main()
