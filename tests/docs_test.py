#!/usr/bin/env python3
"""Runs the examples of docs/*.md and README.md with tarvellua and checks what they promise.

    tests/docs_test.py [--program PATH] [--sanitized]

A block fenced as ```lua is a whole script, with the directives of run_scripts.py. One fenced as ```console is a
transcript: lines that begin with `$ ` are commands for sh, which finds the program as `tarvellua`; the lines that
begin with `lua> ` after a `tarvellua --repl` are typed into it; all others are what comes out. Each block has a fresh
folder of its own. Other code has to be fenced with a language that is not checked here (OTHER_LANGUAGES), so that no
example goes unchecked by a slip.

The exit status is 0 if all examples passed, 1 if one failed, 2 for wrong usage.
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
FENCE = re.compile(r"```(.*)$")
PROMPT = "lua> "


def find_blocks(text):
    """The fenced blocks of a Markdown file, as pairs of a language and code."""
    blocks = []
    is_open = False
    for line in text.split("\n"):
        fence = FENCE.match(line)
        if fence and not is_open:
            is_open = True
            blocks.append([fence[1].strip(), ""])
        elif fence and not fence[1].strip():
            is_open = False
        elif is_open:
            blocks[-1][1] += line + "\n"
    if is_open:
        blocks.append(["block without an end", ""])
    return blocks


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


def check_script(code, root, options):
    file = root / "example.lua"
    file.write_text(code, encoding="utf-8")
    outcome = run_scripts.Runner(options.program, root, sanitized=options.sanitized).run_file(file)
    return outcome.report if outcome.kind == "failed" else ""


def check_transcript(code, root, options):
    script, expected = read_transcript(code)
    if not script:
        return "a transcript without a command"
    tools = root / ".tools"
    tools.mkdir()
    (tools / "tarvellua").symlink_to(options.program)
    setting = f"exec 2>&1\nPATH={shlex.quote(str(tools))}:$PATH\n"
    run = run_scripts.Runner("sh", root).execute(["-c", setting + script], "", cyclic=False)
    if run.status is not None and run.stdout == expected:
        return ""
    return "\n".join(run_scripts.report_difference("the commands' output", expected, run.stdout))


def check_block(language, code, options):
    """The problems of a block, as text; empty if there are none."""
    checks = {"lua": check_script, "console": check_transcript}
    if language not in checks:
        return "" if language in OTHER_LANGUAGES else f"unknown language of the block: '{language}'"
    with tempfile.TemporaryDirectory(prefix="tarvellua-docs-") as folder:
        return checks[language](code, pathlib.Path(folder).resolve(), options)


def main():
    options = run_scripts.parse_options(__doc__)
    root = run_scripts.ROOT
    files = [*sorted((root / "docs").glob("*.md")), root / "README.md"]
    blocks = [(file, *block) for file in files for block in find_blocks(file.read_text(encoding="utf-8"))]
    failures = 0
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
        for block, problem in zip(blocks, pool.map(lambda block: check_block(*block[1:], options), blocks)):
            if problem:
                failures += 1
                print(f"{block[0]}: an example fails\n{textwrap.indent(block[2] + problem, '  ')}")
    print(f"{len(blocks)} blocks, {failures} failed")
    return 1 if failures or not blocks else 0


if __name__ == "__main__":
    sys.exit(main())
