#!/usr/bin/env python3
"""Checks that nodes which are executed all the time have no frame of their own in the built program.

Such a function ends in a return or a jump on every path and saves no register. A change that looks
harmless, such as a variable of type Value in an inlined helper, brings the frame back without
changing any result. Fails with the functions that have one, and where a name matches no function.
"""

import argparse
import re
import shutil
import subprocess
import sys

PLACE = r"(Frame|Constant|<&try(Field|Element|ElementOfElement)>)"
BOTH = rf"<.*Left{PLACE}, .*(Right{PLACE}|Constant)>::run"
FRAMELESS = [
    rf"Arithmetic<Add, (AsValue|IntoLocal)>::Execute{BOTH}",
    rf"Arithmetic<Subtract, (AsValue|IntoLocal)>::Execute{BOTH}",
    rf"Arithmetic<Multiply, (AsValue|IntoLocal)>::Execute{BOTH}",
    rf"Comparison<OrderRule<Less> >::Condition{BOTH}",
    rf"Comparison<EqualityRule<true> >::Condition{BOTH}",
    r"storeInUnused<(LiteralSource|FrameSource|LeafSource<.*>) >",
    r"Update<(Add|Subtract), (Field|Element)Target>::run<(RightFrame|Constant)>",
    r"exchangeElements",
]
SAVES_REGISTER = re.compile(r"\t(push|sub +(\$\S+,%rsp|rsp,))")


def functions(program):
    """The demangled names of the program's functions and their instructions."""
    command = ["objdump", "-d", "-C", "--no-show-raw-insn", program]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    for part in re.split(r"\n(?=[0-9a-f]+ <.*>:\n)", text):
        head, _, body = part.partition(":\n")
        name = head.partition("<")[2].rpartition(">")[0]
        name = name.replace("tarvel::lua::internal::", "").replace("(anonymous namespace)::", "")
        yield name, body


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True)
    program = parser.parse_args().program
    if shutil.which("objdump") is None:
        return 77
    missing = set(FRAMELESS)
    framed = []
    for name, body in functions(program):
        if "[clone" in name:
            continue
        for pattern in FRAMELESS:
            if re.search(pattern.replace(" >", " ?>"), name):
                missing.discard(pattern)
                if SAVES_REGISTER.search(body):
                    framed.append(name)
    for pattern in sorted(missing):
        print("no function matches", pattern)
    for name in sorted(set(framed)):
        print("has a frame:", name)
    return 1 if missing or framed else 0


if __name__ == "__main__":
    sys.exit(main())
