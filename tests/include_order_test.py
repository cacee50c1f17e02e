#!/usr/bin/env python3
"""Checks that no source includes a file of a layer above its own.

The layers, from the bottom: lua/value, lua/frontend, lua/evaluator, lua/stdlib, the files directly in lua/, cli.
Two files stand outside the order. The public header is for everybody. lua/lua_vm_impl.h, with the interpreter's state,
is for the sources (not the headers) of any layer; since it thereby reaches all of them, it may itself include nothing
but lua/value and the public header.
"""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent
LAYERS = ("lua/value", "lua/frontend", "lua/evaluator", "lua/stdlib", "lua", "cli")
PUBLIC_FOLDER = "lua/include/"
SEAM = "lua/lua_vm_impl.h"
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def layer_of(path):
    """The layer's position from the bottom; None for a file that is in no layer."""
    folder = path.rpartition("/")[0]
    return LAYERS.index(folder) if folder in LAYERS else None


def included_files(text):
    """The project's own files that a source includes, as written."""
    for quoted, angled in INCLUDE.findall(text):
        if quoted or angled.startswith(("lua/", "cli/")):
            yield quoted or angled


def judge(path, included, sources):
    """What is wrong with the file `path` including the file `included`, or None."""
    if path.startswith(PUBLIC_FOLDER):
        return "the public header stands alone"
    if included.startswith(PUBLIC_FOLDER):
        return "the public header is included as <tarvel/lua/lua_vm.h>"
    if included not in sources:
        return "no such file, counted from the repository's root"
    if included == SEAM:
        return None if path.endswith(".cpp") else "a header must not depend on the interpreter's state"
    own = layer_of("lua/value/" if path == SEAM else path)
    other = layer_of(included)
    if own is None or other is None:
        return "outside the layers"
    if other > own:
        return f"points up, from {LAYERS[own]} to {LAYERS[other]}"
    return None


def find_violations(sources):
    """The offending includes among `sources`, which maps paths from the root to texts."""
    violations = []
    for path, text in sorted(sources.items()):
        for included in included_files(text):
            fault = judge(path, included, sources)
            if fault:
                violations.append(f"{path} includes {included}: {fault}")
    return violations


def read_sources():
    return {
        file.relative_to(ROOT).as_posix(): file.read_text(encoding="utf-8")
        for folder in ("lua", "cli")
        for file in (ROOT / folder).rglob("*")
        if file.is_file() and file.name != "CMakeLists.txt"
    }


class IncludeOrderTest(unittest.TestCase):
    def test_the_tree(self):
        sources = read_sources()
        for layer in LAYERS:
            self.assertTrue([path for path in sources if path.rpartition("/")[0] == layer], f"{layer} is empty")
        self.assertEqual(find_violations(sources), [])

    FILES = (
        "lua/include/tarvel/lua/lua_vm.h",
        "lua/value/value.h",
        "lua/frontend/token.h",
        "lua/evaluator/operators.h",
        "lua/stdlib/library.h",
        "lua/script_check.h",
        "lua/lua_vm_impl.h",
        "cli/script_container.h",
    )

    def violations(self, path, *includes):
        sources = dict.fromkeys(self.FILES, "#include <vector>\n#include <tarvel/lua/lua_vm.h>\n")
        sources["lua/include/tarvel/lua/lua_vm.h"] = "#include <string>\n"
        sources[path] = "".join(f"#include {include}\n" for include in includes)
        return find_violations(sources)

    def test_downward_and_sideways_is_fine(self):
        for path, *includes in (
            ("lua/value/table.cpp", '"lua/value/value.h"', '"lua/lua_vm_impl.h"', "<tarvel/lua/lua_vm.h>"),
            ("lua/frontend/lexer.h", '"lua/frontend/token.h"', '"lua/value/value.h"'),
            ("lua/stdlib/files.cpp", '"lua/evaluator/operators.h"', '"lua/lua_vm_impl.h"'),
            ("lua/lua_vm.cpp", '"lua/stdlib/library.h"', '"lua/lua_vm_impl.h"', '"lua/frontend/token.h"'),
            ("lua/lua_vm_impl.h", '"lua/value/value.h"', "<tarvel/lua/lua_vm.h>"),
            ("cli/main.cpp", '"cli/script_container.h"', '"lua/script_check.h"'),
        ):
            self.assertEqual(self.violations(path, *includes), [], path)

    def test_each_fault_is_found(self):
        for path, include, fault in (
            ("lua/value/value.cpp", '"lua/frontend/token.h"', "points up, from lua/value to lua/frontend"),
            ("lua/frontend/lexer.cpp", '"lua/evaluator/operators.h"', "points up"),
            ("lua/evaluator/calls.cpp", '"lua/stdlib/library.h"', "points up"),
            ("lua/evaluator/calls.cpp", "<lua/stdlib/library.h>", "points up"),
            ("lua/stdlib/files.cpp", '"lua/script_check.h"', "points up, from lua/stdlib to lua"),
            ("lua/lua_vm.cpp", '"cli/script_container.h"', "points up, from lua to cli"),
            ("lua/evaluator/operators.h", '"lua/lua_vm_impl.h"', "a header must not"),
            ("lua/script_check.h", '"lua/lua_vm_impl.h"', "a header must not"),
            ("lua/lua_vm_impl.h", '"lua/frontend/token.h"', "points up, from lua/value to lua/frontend"),
            ("lua/include/tarvel/lua/lua_vm.h", '"lua/value/value.h"', "stands alone"),
            ("lua/value/value.cpp", '"lua/include/tarvel/lua/lua_vm.h"', "is included as"),
            ("lua/value/value.cpp", '"value.h"', "no such file"),
            ("lua/value/extra/deep.h", '"lua/value/value.h"', "outside the layers"),
        ):
            found = self.violations(path, "<vector>", include)
            self.assertEqual(len(found), 1, (path, include, found))
            self.assertIn(fault, found[0])

    def test_unusual_spelling(self):
        self.assertEqual(len(self.violations("lua/value/value.cpp", ' "lua/frontend/token.h"  // why')), 1)
        self.assertEqual(list(included_files('  #  include"lua/a.h"\n// #include "lua/b.h"\n')), ["lua/a.h"])


if __name__ == "__main__":
    unittest.main()
