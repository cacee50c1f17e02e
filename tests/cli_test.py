#!/usr/bin/env python3
"""Tests of the program that no script can state: its usage and options, devices that are full, closed descriptors,
limits, terminals, files that are looked at after the program's end.

    tests/cli_test.py [--program FILE] [--sanitized] [--checked] [unittest option ...]
"""

import os
import pathlib
import pty
import resource
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

import run_scripts

parser = run_scripts.option_parser(__doc__)
parser.add_argument("--sanitized", action="store_true", help="the program is built with sanitizers")
parser.add_argument("--checked", action="store_true", help="the program counts its objects")
options, others = parser.parse_known_args()

STDOUT_FAILURE = "tarvellua: failed to write standard output\n"
SECONDS = 60  # that anything here may take


def address_space(mebibytes):
    """What a child process calls to live with so little, until it raises the limit."""
    most = resource.getrlimit(resource.RLIMIT_AS)[1]
    return lambda: resource.setrlimit(resource.RLIMIT_AS, (mebibytes << 20, most))


class ProgramTest(unittest.TestCase):
    def open_terminal(self):
        """Descriptors: what is written to the second can be read from the first."""
        try:
            controller, terminal = pty.openpty()
        except OSError as error:
            self.skipTest(f"no terminal to be had: {error}")
        self.addCleanup(os.close, controller)
        return controller, terminal

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tarvellua-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def path(self, name):
        return str(self.folder / name)

    def write(self, name, content):
        (self.folder / name).write_bytes(content if isinstance(content, bytes) else content.encode())
        return self.path(name)

    def content(self, name):
        return (self.folder / name).read_text()

    def check(self, *arguments, status=0, stdout="", stderr="", cyclic=False, stdin=b"", to=subprocess.PIPE, **more):
        """Runs the program and checks how it ends and what it writes; `to` takes its standard output."""
        process = subprocess.run(
            [options.program, *arguments],
            input=stdin,
            stdout=to,
            stderr=more.pop("errors_to", subprocess.PIPE),
            env={**run_scripts.environment(cyclic), **more.pop("variables", {})},
            timeout=SECONDS,
            restore_signals=False,
            **more,
        )
        written = run_scripts.decode(process.stdout or b""), run_scripts.decode(process.stderr or b"")
        self.assertEqual((process.returncode, *written), (status, stdout, stderr), arguments)

    def check_script(self, source, *arguments, **more):
        self.check(self.write("script.lua", source), *arguments, **more)

    def failure(self, line, message):
        return f"tarvellua: {self.path('script.lua')}:{line}: {message}\n"


class StartTest(ProgramTest):
    USAGE = """\
Usage:
  {0} <script> [args...]
  {0} --compile <script> <output.bytecode>
  {0} --run-bytecode <input.bytecode> [args...]
  {0} --repl
"""

    def test_usage(self):
        script = self.write("script.lua", "x = 1")
        usage = self.USAGE.format(options.program)
        for arguments in ([], ["--compile", script], ["--compile", script, self.path("out"), "x"], ["--run-bytecode"]):
            self.check(*arguments, status=1, stderr=usage)
        for name in ("some name", ""):
            process = subprocess.run([name], executable=options.program, capture_output=True, timeout=SECONDS)
            self.assertEqual((process.returncode, process.stdout), (1, b""))
            self.assertEqual(process.stderr.decode(), self.USAGE.format(name))

    def test_files_that_cannot_be_used(self):
        missing, folder, script = self.path("missing"), str(self.folder), self.write("script.lua", "x = 1")
        memory = "/proc/self/mem"  # can be opened, and its first bytes cannot be read
        for *arguments, message in (
            # Every first argument that is no mode is a script's path, whatever it looks like.
            ("--help", "unable to open script file: --help"),
            (missing, "ignored", f"unable to open script file: {missing}"),
            (folder, f"unable to open script file: {folder}"),
            (memory, f"failed to read file: {memory}"),
            ("--compile", missing, self.path("out"), f"failed to open file: {missing}"),
            ("--compile", folder, self.path("out"), f"failed to open file: {folder}"),
            ("--compile", memory, self.path("out"), f"failed to read file: {memory}"),
            ("--compile", script, folder, f"failed to open file for writing: {folder}"),
            ("--compile", script, "/dev/full", "failed to write file: /dev/full"),
            ("--run-bytecode", missing, f"failed to open file: {missing}"),
            ("--run-bytecode", "/dev/stdin", "failed to size file: /dev/stdin"),
        ):
            self.check(*arguments, status=1, stderr=f"tarvellua: {message}\n")
        self.assertFalse((self.folder / "out").exists())
        self.assertTrue(pathlib.Path("/dev/full").is_char_device(), "half of a container is removed, a device is not")
        self.check_script("io.open(arg[1]):read()", memory, status=1, stderr=self.failure(1, "failed to read file"))

    def test_a_script_from_a_pipe(self):
        source = b"print(arg[0], arg[1], #arg)\n" + b"-- x\n" * 100000
        self.check("/dev/stdin", "a", stdin=source, stdout="/dev/stdin\ta\t1\n")

    def test_exit_status(self):
        # Only the lower 32 bits of a code count, and of these the lowest 8.
        for code, status in (("", 0), ("5.9", 5), ("261", 5), ("4294967299", 3), ('tonumber("1e300")', 255)):
            self.check_script(f"print(1) os.exit({code}) print(2)", stdout="1\n", status=status)
        self.check_script(";;;")

    def test_messages_with_zero_bytes(self):
        self.check_script('error("a\\0b")', status=1, stderr=self.failure(1, "a\0b"))
        self.check("--repl", stdin=b'error("a\\0b")', stdout="lua> lua> ", stderr="<repl>:1: a\0b\n")
        container = b"TLBC\1\0\0\0\3\0\0\0a\0b\1\0\0\0="
        stderr = "tarvellua: a\0b:1:1: expected expression\n"
        self.check("--run-bytecode", self.write("c", container), status=1, stderr=stderr)

    @unittest.skipIf(options.sanitized, "sanitizers make frames too large")
    def test_deep_recursion(self):
        source = """
            function depth(n) if n == 0 then return 0 end return 1 + depth(n - 1) end
            function protected(n)
              if n == 0 then return 0 end
              local ok, below = pcall(protected, n - 1)
              return below + 1
            end
            object = {}
            function object:depth(n) return n == 0 and 0 or 1 + self:depth(n - 1) end
            function shared(n)
              local m = n
              return (function() return m == 0 and 0 or 1 + shared(m - 1) end)()
            end
            print(depth(199999), protected(10000), object:depth(10000), shared(5000))"""
        self.check_script(source, stdout="199999\t10000\t10000\t5000\n")


@unittest.skipIf(options.sanitized, "sanitizers need more address space")
class MemoryTest(ProgramTest):
    """Scripts that want more memory than there is."""

    GREEDY = (
        "local s = 'x' while true do s = s .. s end",
        "local s = 'x' while true do local t = s .. s s = t end",
        "local t = {} local i = 0 while true do i = i + 1 t[i] = i end",
        "local t = {} local i = 0 while true do i = i + 1 t['key' .. i] = i end",
        "local t = {} while true do t = {x = t} end",
        "local f = 1 while true do f = around(f) end",
        # Memory that is not the script's own: what print, error, loops and functions hand on.
        "local a = {1} for i = 1, 40 do a = {a, a} end print(a)",
        "local a = {x = 1} for i = 1, 40 do a = {x = a, y = a} end print(a)",
        "local t, all = {}, {} for i = 1, 4000000 do t[i] = i end for i = 1, 9 do all[i] = pairs(t) end",
        "for a, b in string.gmatch(string.rep('x', 120000000), '((.+))') do end",
        *(f'io.open("/dev/zero"):{call}' for call in ('read("*a")', 'read("*l")', "read(9223372036854775807)")),
    )

    def test_running_out_is_an_error(self):
        for body in self.GREEDY:
            source = f"""
                function around(g) return function() return g end end
                local ok, message = pcall(function() {body} end)
                local t = {{}} for i = 1, 1000 do t[i] = {{'x' .. i}} end
                print(message, #t, t[1000][1])"""
            self.check_script(source, preexec_fn=address_space(400), stdout="not enough memory\t1000\tx1000\n")

    @unittest.skipIf(options.checked, "checked heaps leave it to the system")
    @unittest.skipUnless(shutil.which("prlimit"), "there is no prlimit")
    def test_its_own_count_is_a_bound_too(self):
        # What the system would grant later is not taken. What is free serves again: small blocks, then those of another
        # size with a few of the first kept, then large ones.
        source = """
            local all, few, n = {string.rep("x", 100000000)}, {}, 0
            os.execute("prlimit --pid $PPID --as=" .. 3000000000)
            pcall(function() while true do n = n + 1 all[n] = string.rep("x", 1000000) end end)
            print(n > 100, n < 600)
            all = {}
            pcall(function() while true do n = n + 1 all = {all, n} if n % 100000 == 0 then few = {few} end end end)
            all = nil
            local texts for i = 1, 400000 do texts = {texts, string.rep("x", 150)} end
            few, texts = nil for i = 1, 10 do string.rep("x", 150000000) end"""
        self.check_script(source, preexec_fn=address_space(600), stdout="true\ttrue\n")

    def test_little_is_enough_for_calls(self):
        source = "function depth(n) if n == 0 then return 0 end return 1 + depth(n - 1) end print(depth(10000))"
        for mebibytes in (200, 140, 100, 60, 40):
            self.check_script(source, preexec_fn=address_space(mebibytes), stdout="10000\n")
        # Comparators that call natives leave nothing on the stack.
        source = """
            local t = {} for i = 1, 30000 do t[i] = i * 7919 % 30011 end
            table.sort(t, function(a, b) return a ~= b and math.min(a, b) == a end) print(t[1], t[30000])"""
        self.check_script(source, preexec_fn=address_space(40), stdout="1\t30010\n")


class OutputTest(ProgramTest):
    def test_lines_of_every_length(self):
        script = self.write("script.lua", """
            for n = 90, 260 do
              print(("x"):rep(n), -n, n / 4, "")
              print("", ("y"):rep(n))
              io.write(("z"):rep(n), n, "\\n")
            end""")
        lines = []
        for n in range(90, 261):
            lines.append(f"{'x' * n}\t{-n}\t{n / 4:g}\t\n\t{'y' * n}\n{'z' * n}{n}\n")
        self.check(script, stdout="".join(lines))

    def test_full_device(self):
        error = self.failure(1, "failed")
        at_once = self.failure(1, "failed to write file")
        lost = "tarvellua: failed to write file\n"
        keep = 'f = io.open("/dev/full", "w") f:write("text") '
        with open("/dev/full", "wb") as full:
            for source, status, stderr in (
                ('print("x")', 1, STDOUT_FAILURE),
                ("for i = 1, 100000 do print(i) end", 1, STDOUT_FAILURE),
                ("local x = 1", 0, ""),
                # Another status is kept.
                ('io.write("x") os.exit(3)', 3, STDOUT_FAILURE),
                ('print("x") error("failed")', 1, error + STDOUT_FAILURE),
                # Writing more than the buffer holds fails at once.
                ('io.write(string.rep("x", 1000000))', 1, at_once + STDOUT_FAILURE),
                # Files that are still open, or no longer used.
                (keep, 1, lost),
                (keep + "os.exit(5)", 5, lost),
                ('io.open("/dev/full", "w"):write("text") x = 1', 1, lost),
                (keep + "pcall(f.close, f)", 0, ""),
            ):
                self.check_script(source, to=full, status=status, stderr=stderr)
            dialogue = b'x = 1\nio.stderr:write(x, "\\n")\n'
            self.check("--repl", stdin=dialogue, to=full, status=1, stderr="1\n" + STDOUT_FAILURE)

    def test_closed_descriptors(self):
        def close_all():
            for descriptor in (0, 1, 2):
                os.close(descriptor)

        self.check_script('print("x")', preexec_fn=lambda: os.close(1), status=1, stderr=STDOUT_FAILURE)
        self.check_script("local x = 1", preexec_fn=lambda: os.close(1))
        self.check("--repl", preexec_fn=lambda: os.close(0), stdout="lua> ")
        # A file does not take the place of a closed descriptor.
        source = 'local file = io.open(arg[1], "w") print("printed") file:write("stored")'
        self.check_script(source, self.path("out"), preexec_fn=close_all, status=1)
        self.assertEqual(self.content("out"), "stored")

    def test_nothing_flushes_it_before_the_end(self):
        source = 'print("one") io.stderr:write("two\\n") os.execute("echo three") io.stdout:write("four\\n")'
        self.check_script(source, errors_to=subprocess.STDOUT, stdout="two\nthree\none\nfour\n")

    def test_a_terminal_gets_each_line_at_once(self):
        script = self.write("script.lua", 'print("ready") io.open(arg[1]):read() io.write("done\\n")')
        os.mkfifo(self.path("pipe"))
        controller, terminal = self.open_terminal()
        process = subprocess.Popen([options.program, script, self.path("pipe")], stdout=terminal)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        os.close(terminal)
        self.assertTrue(select.select([controller], [], [], SECONDS)[0], "nothing comes out")
        self.assertEqual(os.read(controller, 100), b"ready\r\n")
        self.write("pipe", "go on\n")
        self.assertEqual(process.wait(SECONDS), 0)
        self.assertEqual(os.read(controller, 100), b"done\r\n")

    def test_what_a_run_leaves_in_its_files(self):
        # The end closes what circles still hold, in the order of opening.
        source = """
            for i = 1, 3 do
              local t = {file = io.open(arg[1], i == 1 and "w" or "a")}
              t.self = t
              t.file:write(i)
            end
            if arg[2] == "fail" then error("x") end
            os.exit(7)
        """
        for arguments, status, stderr in (([], 7, ""), (["fail"], 1, self.failure(7, "x"))):
            self.check_script(source, self.path("out"), *arguments, status=status, stderr=stderr, cyclic=True)
            self.assertEqual(self.content("out"), "123")


class HelpTest(ProgramTest):
    """What follows the message of a failed script: a trace where it is asked for, a hint on a terminal."""

    SCRIPT = "function total(list)\n  return list.sum + 1\nend\nprint(total({sum = math.pi}))\n"
    MESSAGE = "operator '+' expects numbers"
    HINT = "hint: 'list.sum' is no number here; a string needs tonumber(s)\n"

    def on_terminal(self, *arguments, stdin=b"", variables={}):
        """What the program writes to standard error where that is a terminal."""
        controller, terminal = self.open_terminal()
        subprocess.run(
            [options.program, *arguments],
            input=stdin,
            stdout=subprocess.DEVNULL,
            stderr=terminal,
            env={**run_scripts.environment(cyclic=False), **variables},
            timeout=SECONDS,
        )
        os.write(terminal, b"end")
        os.close(terminal)
        written = b""
        while not written.endswith(b"end"):
            written += os.read(controller, 1000)
        return run_scripts.decode(written).removesuffix("end").replace("\r\n", "\n")

    def test_hints_of_what_does_not_run(self):
        out = self.path("out")
        self.assertEqual(self.on_terminal(self.write("script.lua", "error('x')")), self.failure(1, "x"))
        script, message = self.write("script.lua", "print 'x'"), self.failure("1:7", "expected function call")
        self.check("--compile", script, out, status=1, stderr=message)
        hint = 'hint: a call needs parentheses: print("x")\n'
        self.assertEqual(self.on_terminal("--compile", script, out), message + hint)
        # What is no failure of a script has no hint.
        missing = self.path("missing")
        self.assertEqual(self.on_terminal(missing), f"tarvellua: unable to open script file: {missing}\n")

    def test_hints_on_lines(self):
        lines = b"x = = 1\nfunction f(t) return t.list[1] end\n  t = {}\nf(t)\nx = 2 ^ 3\n"
        stderr = (
            "<repl>:1:5: expected expression\n"
            "<repl>:1: attempt to index a nil value\n"
            "hint: 't' or 't.list' is nil here\n"
            "<repl>:1:7: unexpected character '^'\n"
            "hint: there is no operator ^: write x * x\n"
        )
        self.assertEqual(self.on_terminal("--repl", stdin=lines), stderr)
        plain = "".join(line + "\n" for line in stderr.splitlines() if not line.startswith("hint: "))
        self.check("--repl", stdin=lines, stdout="lua> " * 6, stderr=plain)

    def test_hints_and_traces_of_a_script(self):
        script, out = self.write("script.lua", self.SCRIPT), self.path("out")
        self.check("--compile", script, out)
        trace = f"  in total ({script}:2)\n  in <chunk> ({script}:4)\n"
        dialogue = {"stdin": b"function f() error('x') end\nf()\n", "stdout": "lua> " * 3}
        frames = "  in error\n  in f (<repl>:1)\n  in <chunk> (<repl>:1)\n"
        for value in ("1", "", "0", "11"):
            variables = {"TARVELLUA_TRACE": value}
            stderr = self.failure(2, self.MESSAGE) + (trace if value == "1" else "")
            for arguments in ([script], ["--run-bytecode", out]):
                self.check(*arguments, status=1, stderr=stderr, variables=variables)
                self.assertEqual(self.on_terminal(*arguments, variables=variables), stderr + self.HINT)
            stderr = "<repl>:1: x\n" + (frames if value == "1" else "")
            self.check("--repl", **dialogue, stderr=stderr, variables=variables)
            self.assertEqual(self.on_terminal("--repl", stdin=dialogue["stdin"], variables=variables), stderr)


class ContainerTest(ProgramTest):
    def test_bytes(self):
        source = b'print(arg[0], arg[1], #"\xff\x00\r")\r\n-- \xc3\xa4 \x80\xfe\nx = arg[1] + 1'
        script, out = self.write("script.lua", source), self.path("out")
        self.check("--compile", script, out)
        whole = b"TLBC\1\0\0\0" + b"".join(len(part).to_bytes(4, "little") + part for part in (script.encode(), source))
        self.assertEqual((self.folder / "out").read_bytes(), whole)
        # The arguments are the container's, the errors name the script.
        stderr = self.failure(3, "operator '+' expects numbers")
        self.check("--run-bytecode", out, "--repl", status=1, stdout=f"{out}\t--repl\t3\n", stderr=stderr)
        more = self.write("c", whole + b"more")
        self.check("--run-bytecode", more, status=1, stdout=f"{more}\tnil\t3\n", stderr=stderr)

    def test_what_is_no_container(self):
        whole = b"TLBC\1\0\0\0\1\0\0\0n\10\0\0\0print(1)"
        self.check("--run-bytecode", self.write("c", whole), stdout="1\n")
        truncated, exceeds = "bytecode is truncated", "bytecode string exceeds file size"
        parts = (8, "bytecode file is too small"), (12, truncated), (13, exceeds), (17, truncated), (25, exceeds)
        for size in range(len(whole)):
            message = next(message for end, message in parts if size < end)
            self.check("--run-bytecode", self.write("c", whole[:size]), status=1, stderr=f"tarvellua: {message}\n")
        for offset, message in (
            *((offset, "invalid TarvelLua bytecode header") for offset in range(4)),
            *((offset, "unsupported TarvelLua bytecode version") for offset in range(4, 8)),
            *((offset, exceeds) for offset in (9, 10, 11, 14, 15, 16)),
        ):
            wrong = whole[:offset] + bytes([whole[offset] ^ 0x81]) + whole[offset + 1 :]
            self.check("--run-bytecode", self.write("c", wrong), status=1, stderr=f"tarvellua: {message}\n")

    def test_a_syntax_error_leaves_the_output_as_it_was(self):
        script, out = self.write("script.lua", "x = = 1"), self.write("out", "old")
        self.check("--compile", script, out, status=1, stderr=self.failure("1:5", "expected expression"))
        self.assertEqual(self.content("out"), "old")

    def test_a_file_that_may_not_grow_is_a_failed_write(self):
        def restrict():
            signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        out, link = self.path("out"), self.path("link")
        os.symlink(out, link)
        script = self.write("long.lua", "-- long enough\n" * 5000)
        for target, before in ((out, None), (out, "old"), (link, "old")):
            if before:
                self.write("out", before)
            stderr = f"tarvellua: failed to write file: {target}\n"
            self.check("--compile", script, target, preexec_fn=restrict, status=1, stderr=stderr)
            self.assertFalse(os.path.exists(out), "half of a container")
        source = 'print(pcall(function() io.open(arg[1], "w"):write(string.rep("x", 100000)) end))'
        self.check_script(source, out, preexec_fn=restrict, stdout="false\tfailed to write file\n")
        # What a script starts ends as it always does.
        source = 'print(os.execute("exec 2> /dev/null; head -c 100000 /dev/zero > " .. arg[1] .. "; kill -l $?"))'
        self.check_script(source, out, preexec_fn=restrict, stdout="XFSZ\n0\n")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *others])
