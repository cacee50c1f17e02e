#!/usr/bin/env python3
"""Runs the examples of docs/*.md and README.md with tarvellua and checks what they promise.

    tests/docs_test.py [--program PATH]

A block fenced as ```lua is a whole script, with the directives of run_scripts.py. One fenced as ```console is a
transcript: lines that begin with `$ ` are commands for sh, which finds the program as `tarvellua`; the lines that
begin with `lua> ` after a `tarvellua --repl` are typed into it; all others are what comes out. Each block has a fresh
folder of its own. Other code has to be fenced with a language that is not checked here (OTHER_LANGUAGES), so that no
example goes unchecked by a slip.

The exit status is 0 if all examples passed, else 1.
"""

import concurrent.futures
import os
import pathlib
import re
import shlex
import sys
import tempfile
import textwrap

import run_scripts

OTHER_LANGUAGES = ("text", "sh", "cmake", "cpp")
PROMPT = "lua> "


def find_blocks(text):
    """The fenced blocks of a Markdown file, as pairs of a language and code."""
    parts = re.split(r"^```", text, flags=re.MULTILINE)
    blocks = [part.partition("\n")[::2] for part in parts[1::2]]
    return blocks if len(parts) % 2 == 1 else [*blocks, ("block without an end", "")]


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


def check_script(code, root, program):
    file = root / "example.lua"
    file.write_text(code, encoding="utf-8")
    return run_scripts.run_file(program, file, root)


def check_transcript(code, root, program):
    script, expected = read_transcript(code)
    tools = root / ".tools"
    tools.mkdir()
    (tools / "tarvellua").symlink_to(program)
    setting = f"exec 2>&1\nPATH={shlex.quote(str(tools))}:$PATH\n"
    command = ["sh", "-c", setting + script]
    status, output, _ = run_scripts.execute(command, root, "", run_scripts.environment())
    is_right = script and status is not None and output == expected
    return [] if is_right else run_scripts.report_difference("the commands' output", expected, output)


def check_block(language, code, program):
    """The problems of a block, as lines."""
    checks = {"lua": check_script, "console": check_transcript}
    if language not in checks:
        return [] if language in OTHER_LANGUAGES else [f"unknown language of the block: '{language}'"]
    with tempfile.TemporaryDirectory(prefix="tarvellua-docs-") as folder:
        return checks[language](code, pathlib.Path(folder).resolve(), program)


def main():
    program = run_scripts.option_parser(__doc__).parse_args().program
    root = run_scripts.ROOT
    files = [*sorted((root / "docs").glob("*.md")), root / "README.md"]
    blocks = [(file, *block) for file in files for block in find_blocks(file.read_text(encoding="utf-8"))]
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        for block, problems in zip(blocks, pool.map(lambda block: check_block(*block[1:], program), blocks)):
            if problems:
                failures += 1
                report = "\n".join([block[2], *problems])
                print(f"{block[0]}: an example fails\n{textwrap.indent(report, '  ')}")
    print(f"{len(blocks)} blocks, {failures} failed")
    return 1 if failures or not blocks else 0


if __name__ == "__main__":
    sys.exit(main())
