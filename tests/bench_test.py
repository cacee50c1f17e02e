#!/usr/bin/env python3
"""Every benchmark program prints the same in TarvelLua and in Python, at its small size."""

import argparse
import subprocess
import sys
from pathlib import Path

PROJECT_DIR = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(PROJECT_DIR / "bench"))
from harness import programs


def output(command):
    run = subprocess.run(command, cwd=PROJECT_DIR, capture_output=True, text=True, timeout=120)
    return run.stdout if run.returncode == 0 else run.stderr


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="the tarvellua program")
    parser.add_argument("--sanitized", action="store_true", help="accepted; makes no difference here")
    options = parser.parse_args()
    failed = 0
    for name in programs.names():
        size = programs.small_size(name)
        ours = output([options.program, f"bench/{name}.lua", size])
        theirs = output([sys.executable, "-S", "-B", f"bench/ports/{name}.py", size])
        if ours != theirs or not ours:
            print(f"bench/{name}.lua {size} prints\n{ours[:500]}\nbut the port in Python prints\n{theirs[:500]}")
            failed += 1
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
