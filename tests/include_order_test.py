#!/usr/bin/env python3
"""Checks that no source includes a file of a layer above its own.

The layers, from the bottom: lua/value, lua/frontend, lua/evaluator, lua/stdlib, the files directly in lua/, cli.
The program (cli) sees only the public headers and lua/program_support.h; its hints also read scripts as tokens, in one
place. Some files stand outside the order. The public headers are for everybody. lua/lua_vm_impl.h, with the
interpreter's state, is for the sources of any layer and for headers directly in lua/; since it thereby reaches all of
them, it may itself include nothing but lua/value and the public headers.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LAYERS = ("lua/value", "lua/frontend", "lua/evaluator", "lua/stdlib", "lua", "cli")
PUBLIC_FOLDER = "lua/include/"
SEAM = "lua/lua_vm_impl.h"
FOR_THE_PROGRAM = "lua/program_support.h"
READS_TOKENS = "cli/hints/script_tokens."
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def layer_of(path):
    """The position from the bottom of a file's layer, which may have folders of its own; None outside of the layers."""
    folder = path.rpartition("/")[0]
    for layer in ("lua/stdlib", "cli"):
        if folder.startswith(layer + "/"):
            folder = layer
    return LAYERS.index(folder) if folder in LAYERS else None


def judge(path, included, sources):
    """What is wrong with the file `path` including the project's own file `included`, or None."""
    if path.startswith(PUBLIC_FOLDER):
        return "the public header stands alone"
    if included.startswith(PUBLIC_FOLDER):
        return "the public header is included as <tarvel/lua/lua_vm.h>"
    if included not in sources:
        return "no such file, counted from the repository's root"
    if included == SEAM:
        mayInclude = path.endswith(".cpp") or layer_of(path) == LAYERS.index("lua")
        return None if mayInclude else "a header must not depend on the interpreter's state"
    if path.startswith("cli/") and not included.startswith("cli/"):
        if path.startswith(READS_TOKENS) and included.startswith(("lua/frontend/", "lua/value/")):
            return None
        return None if included == FOR_THE_PROGRAM else f"the program may include only {FOR_THE_PROGRAM}"
    own = layer_of("lua/value/" if path == SEAM else path)
    other = layer_of(included)
    if own is None or other is None:
        return "outside the layers"
    return "points up" if other > own else None


def main():
    sources = {
        file.relative_to(ROOT).as_posix(): file.read_text(encoding="utf-8")
        for folder in ("lua", "cli")
        for file in (ROOT / folder).rglob("*")
        if file.suffix in (".cpp", ".h")
    }
    problems = []
    for path, text in sorted(sources.items()):
        for quoted, angled in INCLUDE.findall(text):
            if quoted or angled.startswith(("lua/", "cli/")):
                fault = judge(path, quoted or angled, sources)
                if fault:
                    problems.append(f"{path} includes {quoted or angled}: {fault}")
    print("\n".join(problems) or f"{len(sources)} files in order")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
