#!/usr/bin/env python3
"""Tests of the program that no script can state: devices that are full, closed descriptors, limits, terminals, files
that are looked at after the program's end.

    tests/cli_test.py [--program FILE] [--sanitized] [unittest option ...]
"""

import argparse
import os
import pathlib
import pty
import resource
import select
import signal
import stat
import subprocess
import sys
import tempfile
import unittest

import run_scripts

options = argparse.Namespace(program=str(run_scripts.ROOT / "build" / "tarvellua"), sanitized=False)

STDOUT_FAILURE = "tarvellua: failed to write standard output\n"
SECONDS = 60  # that anything here may take
MEBIBYTE = 1 << 20


def limit(kind, value):
    """What a child process calls to live with a limit."""
    return lambda: resource.setrlimit(kind, (value, value))


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarvellua-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def path(self, name):
        return str(self.folder / name)

    def write(self, name, content):
        data = content if isinstance(content, bytes) else content.encode()
        (self.folder / name).write_bytes(data)
        return self.path(name)

    def run_program(self, *arguments, cyclic=False, stdin=b"", **more):
        """Runs the program with standard error, and usually standard output, as text."""
        process = subprocess.run(
            [options.program, *arguments],
            input=stdin,
            stdout=more.pop("stdout", subprocess.PIPE),
            stderr=more.pop("stderr", subprocess.PIPE),
            env=run_scripts.environment(cyclic),
            timeout=SECONDS,
            **more,
        )
        decode = run_scripts.decode
        return run_scripts.Run(process.returncode, decode(process.stdout or b""), decode(process.stderr or b""))

    def run_script(self, source, *arguments, **more):
        return self.run_program(self.write("script.lua", source), *arguments, **more)

    def check(self, run, status=0, stdout="", stderr=""):
        self.assertEqual((run.status, run.stdout, run.stderr), (status, stdout, stderr))


class StandardOutputTest(ProgramTest):
    def run_full(self, source, *arguments, **more):
        with open("/dev/full", "wb") as full:
            return self.run_script(source, *arguments, stdout=full, **more)

    def test_full_device(self):
        self.check(self.run_full('print("x")'), 1, stderr=STDOUT_FAILURE)
        self.check(self.run_full('io.write("x")'), 1, stderr=STDOUT_FAILURE)
        self.check(self.run_full("for i = 1, 100000 do print(i) end"), 1, stderr=STDOUT_FAILURE)
        self.check(self.run_full("local x = 1"), 0)

    def test_full_device_keeps_another_status(self):
        self.check(self.run_full('print("x") os.exit(3)'), 3, stderr=STDOUT_FAILURE)
        self.check(self.run_full('print("x") os.exit(0)'), 1, stderr=STDOUT_FAILURE)
        self.check(self.run_full('print("x") os.exit(256)'), 1, stderr=STDOUT_FAILURE)
        run = self.run_full('print("x") error("failed")')
        self.check(run, 1, stderr=f"tarvellua: {self.path('script.lua')}:1: failed\n" + STDOUT_FAILURE)

    def test_writing_more_than_the_buffer_holds_fails_at_once(self):
        failure = f"tarvellua: {self.path('script.lua')}:2: failed to write file\n"
        for write in ("io.write", "io.stdout.write"):
            first = "local out = io.stdout\n"
            receiver = "out, " if write == "io.stdout.write" else ""
            run = self.run_full(f'{first}{write}({receiver}string.rep("x", 1000000))')
            self.check(run, 1, stderr=failure + STDOUT_FAILURE)
        run = self.run_full('io.stderr:write(pcall(io.write, string.rep("x", 1000000)) == false, "\\n")')
        self.check(run, 1, stderr="true\n" + STDOUT_FAILURE)

    def test_closed(self):
        close = lambda: os.close(1)
        self.check(self.run_script('print("x")', preexec_fn=close), 1, stderr=STDOUT_FAILURE)
        self.check(self.run_script("local x = 1", preexec_fn=close), 0)

    def test_a_file_does_not_take_the_place_of_a_closed_descriptor(self):
        def close():
            for descriptor in (0, 1, 2):
                os.close(descriptor)

        source = """
            local file = io.open(arg[1], "w")
            print("printed")
            file:write("stored")
        """
        run = self.run_script(source, self.path("out"), preexec_fn=close)
        self.check(run, 1)
        self.assertEqual((self.folder / "out").read_text(), "stored")

    def test_interactive(self):
        with open("/dev/full", "wb") as full:
            run = self.run_program("--repl", stdin=b'x = 1\nio.stderr:write(x, "\\n")\n', stdout=full)
        self.check(run, 1, stderr="1\n" + STDOUT_FAILURE)
        self.check(self.run_program("--repl", preexec_fn=lambda: os.close(0)), 0, stdout="lua> ")

    def test_nothing_flushes_it_before_the_end(self):
        source = """
            print("one")
            io.stderr:write("two\\n")
            io.write("three\\n")
            os.execute("echo four")
            io.stdout:write("five\\n")
        """
        run = self.run_script(source, stderr=subprocess.STDOUT)
        self.check(run, 0, stdout="two\nfour\none\nthree\nfive\n")

    def test_a_terminal_gets_each_line_at_once(self):
        script = self.write("script.lua", 'print("ready") io.open(arg[1]):read() io.write("done\\n")')
        os.mkfifo(self.path("pipe"))
        controller, terminal = pty.openpty()
        self.addCleanup(os.close, controller)
        process = subprocess.Popen([options.program, script, self.path("pipe")], stdout=terminal)
        os.close(terminal)
        try:
            self.assertEqual(self.read_line(controller), b"ready\r\n")
            with open(self.path("pipe"), "w") as pipe:
                pipe.write("go on\n")
            self.assertEqual(self.read_line(controller), b"done\r\n")
            self.assertEqual(process.wait(SECONDS), 0)
        finally:
            process.kill()
            process.wait()

    def read_line(self, descriptor):
        line = b""
        while not line.endswith(b"\n"):
            if not select.select([descriptor], [], [], SECONDS)[0]:
                self.fail(f"nothing follows {line}")
            line += os.read(descriptor, 1)
        return line


class FilesTest(ProgramTest):
    def test_what_a_run_leaves_in_its_files(self):
        keep = 'f = io.open(arg[1], "w") f:write("text") '
        for source, status in (
            (keep, 0),
            (keep + "os.exit(3)", 3),
            (keep + "pcall(os.exit, 4)", 4),
            (keep + "return f.x", 0),
            ("function g() local " + keep + "os.exit(5) end g()", 5),
        ):
            run = self.run_script(source, self.path("out"))
            self.check(run, status)
            self.assertEqual((self.folder / "out").read_text(), "text", source)
        self.assertEqual(self.run_script(keep + 'error("x")', self.path("out")).status, 1)
        self.assertEqual((self.folder / "out").read_text(), "text")

    def test_a_file_in_a_cycle_is_never_stored(self):
        source = 't = {file = io.open(arg[1], "w")} t.self = t t.file:write("lost")'
        self.check(self.run_script(source, self.path("out"), cyclic=True))
        self.assertEqual((self.folder / "out").read_text(), "")

    def test_a_limit_on_sizes(self):
        source = """
            local f = io.open(arg[1], "w")
            print(f:write("12345678") == f, pcall(f.seek, f))
            print(f:write("90") == f, pcall(f.close, f))
            print(pcall(f.close, f))
        """

        def restrict():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (5, 5))

        run = self.run_script(source, self.path("out"), preexec_fn=restrict, restore_signals=False)
        expected = "true\tfalse\tfailed to write file\n" * 2 + "false\tfile is not open\n"
        self.check(run, 0, stdout=expected)
        self.assertEqual((self.folder / "out").read_text(), "12345")

    def test_too_many_open_files(self):
        if options.sanitized:
            self.skipTest("sanitizers need descriptors of their own")
        source = """
            local files, reason = {}
            while true do
              files[#files + 1], reason = io.open(arg[1])
              if reason then break end
            end
            print(#files > 5, reason == "failed to open file: " .. arg[1])
        """
        run = self.run_script(source, "/dev/null", preexec_fn=limit(resource.RLIMIT_NOFILE, 20))
        self.check(run, 0, stdout="true\ttrue\n")

    def test_endless_input(self):
        if options.sanitized:
            self.skipTest("sanitizers need more memory than the limit leaves")
        for call in ('read("*a")', 'read("*l")', "read(9223372036854775807)"):
            source = f'print(pcall(function() return io.open("/dev/zero"):{call} end))'
            run = self.run_script(source, preexec_fn=limit(resource.RLIMIT_AS, 1024 * MEBIBYTE))
            self.check(run, 0, stdout="false\tnot enough memory\n")

    def test_a_script_that_cannot_be_read_to_its_end(self):
        memory = "/proc/self/mem"  # can be opened, and its first bytes cannot be read
        failure = f"tarvellua: failed to read file: {memory}\n"
        self.check(self.run_program(memory), 1, stderr=failure)
        self.check(self.run_program("--compile", memory, self.path("out")), 1, stderr=failure)
        self.assertFalse((self.folder / "out").exists())
        run = self.run_script("io.open(arg[1]):read()", memory)
        self.check(run, 1, stderr=f"tarvellua: {self.path('script.lua')}:1: failed to read file\n")

    def test_a_script_from_a_pipe(self):
        run = self.run_program("/dev/stdin", "a", stdin=b"print(arg[0], arg[1])\n" + b"-- x\n" * 100000)
        self.check(run, 0, stdout="/dev/stdin\ta\n")


class ContainerTest(ProgramTest):
    SOURCE = b'print(arg[0], arg[1], #"\xff\x00\r")\r\n-- \xc3\xa4 \x80\xfe'

    def container(self, name, source, version=1):
        parts = [b"TLBC", version.to_bytes(4, "little")]
        for text in (name, source):
            parts += [len(text).to_bytes(4, "little"), text]
        return b"".join(parts)

    def test_bytes(self):
        script = self.write("script.lua", self.SOURCE)
        out = self.path("out")
        self.check(self.run_program("--compile", script, out))
        self.assertEqual((self.folder / "out").read_bytes(), self.container(script.encode(), self.SOURCE))
        self.check(self.run_program("--run-bytecode", out, "x"), stdout=f"{out}\tx\t3\n")

    def test_names_in_messages(self):
        for name, source, message in (
            (b"any name", b"local x = 1\nerror('failed')", "any name:2: failed"),
            (b"", b"error('failed')", ":1: failed"),
            (b"n", b"x = = 1", "n:1:5: expected expression"),
        ):
            container = self.write("c", self.container(name, source))
            run = self.run_program("--run-bytecode", container)
            self.check(run, 1, stderr=f"tarvellua: {message}\n")
        self.check(self.run_program("--run-bytecode", self.write("c", self.container(b"n", b""))))
        self.check(self.run_program("--run-bytecode", self.write("c", self.container(b"n", b"") + b"more")))

    def test_refusals(self):
        whole = self.container(b"n", b"print(1)")
        for data, message in (
            (whole[:7], "bytecode file is too small"),
            (b"XXXX" + whole[4:], "invalid TarvelLua bytecode header"),
            (self.container(b"n", b"", version=2), "unsupported TarvelLua bytecode version"),
            (whole[:8], "bytecode is truncated"),
            (whole[:-1], "bytecode string exceeds file size"),
        ):
            run = self.run_program("--run-bytecode", self.write("c", data))
            self.check(run, 1, stderr=f"tarvellua: {message}\n")

    def test_what_has_no_size(self):
        run = self.run_program("--run-bytecode", "/dev/stdin", stdin=self.container(b"n", b""))
        self.check(run, 1, stderr="tarvellua: failed to size file: /dev/stdin\n")

    def test_what_is_shorter_than_its_size(self):
        short = "/sys/kernel/mm/transparent_hugepage/enabled"
        if not os.path.exists(short) or os.path.getsize(short) <= len(pathlib.Path(short).read_bytes()):
            self.skipTest("this system has no such file")
        run = self.run_program("--run-bytecode", short)
        self.check(run, 1, stderr=f"tarvellua: failed to read file: {short}\n")

    def test_a_syntax_error_leaves_the_output_as_it_was(self):
        script = self.write("script.lua", "x = = 1")
        failure = f"tarvellua: {script}:1:5: expected expression\n"
        self.check(self.run_program("--compile", script, self.path("out")), 1, stderr=failure)
        self.assertFalse((self.folder / "out").exists())
        out = self.write("out", "old")
        self.check(self.run_program("--compile", script, out), 1, stderr=failure)
        self.assertEqual((self.folder / "out").read_text(), "old")

    def compile_without_room(self, out):
        def restrict():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (20, 20))

        script = self.write("script.lua", "-- long enough\n" * 5000)
        run = self.run_program("--compile", script, out, preexec_fn=restrict, restore_signals=False)
        self.check(run, 1, stderr=f"tarvellua: failed to write file: {out}\n")

    def test_no_room_leaves_no_half_of_a_container(self):
        out = self.folder / "out"
        self.compile_without_room(str(out))
        self.assertFalse(out.exists())
        out.write_text("old")
        self.compile_without_room(str(out))
        self.assertFalse(out.exists())
        link = self.folder / "link"
        link.symlink_to(out)
        self.compile_without_room(str(link))
        self.assertFalse(out.exists())

    def test_a_full_device_stays(self):
        device = self.path("full")
        try:
            os.mknod(device, stat.S_IFCHR | 0o666, os.makedev(1, 7))
            with open(device, "w"):
                pass
        except OSError:
            self.skipTest("needs the right to make a device")
        run = self.run_program("--compile", self.write("script.lua", "x = 1"), device)
        self.check(run, 1, stderr=f"tarvellua: failed to write file: {device}\n")
        self.assertTrue(stat.S_ISCHR(os.stat(device).st_mode))


class StartTest(ProgramTest):
    USAGE = "Usage:\n" + "".join(
        f"  {{0}} {form}\n"
        for form in (
            "<script> [args...]",
            "--compile <script> <output.bytecode>",
            "--run-bytecode <input.bytecode> [args...]",
            "--repl",
        )
    )

    def test_usage_shows_the_name_as_given(self):
        for name in ("some name", ""):
            process = subprocess.run([name], executable=options.program, capture_output=True, timeout=SECONDS)
            self.assertEqual((process.returncode, process.stdout), (1, b""))
            self.assertEqual(process.stderr.decode(), self.USAGE.format(name))

    def test_little_address_space(self):
        if options.sanitized:
            self.skipTest("sanitizers need more address space")
        source = "function depth(n) if n == 0 then return 0 end return 1 + depth(n - 1) end print(depth(10000))"
        for mebibytes in (200, 100, 60):
            run = self.run_script(source, preexec_fn=limit(resource.RLIMIT_AS, mebibytes * MEBIBYTE))
            self.check(run, 0, stdout="10000\n")


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", default=options.program, help="default: build/tarvellua")
    parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
    options, others = parser.parse_known_args()
    options.program = os.path.abspath(options.program)
    unittest.main(argv=[sys.argv[0], *others])
