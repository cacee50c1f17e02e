#!/usr/bin/env python3
"""Makes one program of the C++ in docs/embedding.md, and checks that it prints what the page says.

    tests/embedding_docs_test.py --write program.cpp   # for the build to compile
    tests/embedding_docs_test.py --program PATH        # runs it and compares

A block fenced as ```cpp that begins with a word of OUTSIDE stands at the top level of the program. Any other one is the
body of a function, or that function itself if it begins with `int main()`; all functions run in their order. A block
fenced as ```text right behind such a block is what it prints on standard output; without one it prints nothing.

The exit status is 0 if the page is right, 1 if it is not, 2 for wrong usage.
"""

import argparse
import difflib
import pathlib
import re
import subprocess
import sys

PAGE = pathlib.Path(__file__).resolve().parent.parent / "docs" / "embedding.md"
OUTSIDE = ("#include", "namespace", "struct", "class", "template")
BLOCK = re.compile(r"^```(.+)\n((?:(?!```).*\n)*)```$", re.MULTILINE)
END = "\x1e"  # printed after each function


def read_page():
    """The code for the top level and that of the functions, as pairs of a line of the page and code, and a list of what
    each function prints."""
    page = PAGE.read_text(encoding="utf-8")
    top_level, functions, outputs = [], [], []
    previous = ""
    for block in BLOCK.finditer(page):
        language, code = block.groups()
        place = page.count("\n", 0, block.start(2)) + 1, code
        if language == "cpp" and code.startswith(OUTSIDE):
            top_level.append(place)
        elif language == "cpp":
            functions.append(place)
            outputs.append("")
            language = "function"
        elif language == "text" and previous == "function":
            outputs[-1] = code
        previous = language
    return top_level, functions, outputs


def make_program():
    top_level, functions, _ = read_page()
    parts = list(top_level)
    calls = ""
    for line, code in functions:
        name = f"block{line}"
        if code.startswith("int main()"):
            parts.append((line, code.replace("int main()", f"static int {name}()", 1)))
        else:
            parts.append((line - 1, f"static void {name}() {{\n{code}}}\n"))
        calls += f"  {name}();\n  std::cout << '\\x{ord(END):x}';\n"
    # A compiler's messages name the page.
    text = "\n".join(f'#line {line} "docs/embedding.md"\n{code}' for line, code in parts)
    return f"{text}\nint main() {{\n{calls}}}\n"


def check_output(program):
    _, functions, expected = read_page()
    run = subprocess.run([program], stdout=subprocess.PIPE, encoding="utf-8", timeout=120, check=False)
    printed = run.stdout.split(END)[:-1]
    failures = 0
    for (line, _), expectation, output in zip(functions, expected, printed):
        if output != expectation:
            failures += 1
            print(f"{PAGE}:{line}: the block prints something else")
            print("\n".join(difflib.unified_diff(expectation.split("\n"), output.split("\n"), "page", "output", "", "")))
    if run.returncode != 0 or len(printed) != len(functions):
        failures += 1
        print(f"status {run.returncode} after {len(printed)} of {len(functions)} blocks")
    print(f"{len(functions)} blocks that run, {failures} failed")
    return 1 if failures or not functions else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    task = parser.add_mutually_exclusive_group(required=True)
    task.add_argument("--write", type=pathlib.Path)
    task.add_argument("--program")
    options = parser.parse_args()
    if options.write:
        options.write.write_text(make_program(), encoding="utf-8")
        return 0
    return check_output(options.program)


if __name__ == "__main__":
    sys.exit(main())
