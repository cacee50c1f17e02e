#!/usr/bin/env python3
"""Every benchmark program prints the same in TarvelLua and in Python, at its small size."""

import subprocess
import sys

import run_scripts

sys.path.insert(0, str(run_scripts.ROOT / "bench"))
from harness import programs


def output(command):
    run = subprocess.run(command, cwd=run_scripts.ROOT, capture_output=True, text=True, timeout=120)
    return run.stdout if run.returncode == 0 else run.stderr


def main():
    program = run_scripts.option_parser(__doc__).parse_args().program
    failed = 0
    for name in programs.names():
        size = programs.small_size(name)
        ours = output([program, f"bench/{name}.lua", size])
        theirs = output([sys.executable, "-S", "-B", f"bench/ports/{name}.py", size])
        if ours != theirs or not ours:
            print(f"bench/{name}.lua {size} prints\n{ours[:500]}\nbut the port in Python prints\n{theirs[:500]}")
            failed += 1
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
