"""How long interpreters take to read generated scripts, and how much memory they need for it."""

import statistics
import tempfile
from pathlib import Path

from .measuring import Samples, alternate
from .sources import KINDS
from .startup import run_startup

SIZES = [10000, 40000]


class LineSamples(Samples):
    """Samples per line of a script, without the start of the interpreter."""

    def __init__(self, samples, start, lines):
        super().__init__()
        own_start = start.time(statistics.median)
        self.seconds = [max(seconds - own_start, 1e-6) / lines for seconds in samples.seconds]
        self.peak_kib = [max(peak - start.peak(), 1) / lines for peak in samples.peak_kib]


def run_parsing(runners, options, failures):
    """Rows are kinds of scripts and numbers of lines; values are per line."""
    start = run_startup(runners, options, failures)["start"]
    table = {}
    for kind, generate in KINDS.items():
        for lines in SIZES:
            row = f"{kind} {lines}"
            results = run_one(row, generate, lines, runners, options, failures)
            table[row] = {name: LineSamples(samples, start[name], lines)
                          for name, samples in results.items() if name in start}
    return table


def run_one(row, generate, lines, runners, options, failures):
    with tempfile.TemporaryDirectory() as folder:
        commands = {}
        for runner in runners:
            script = Path(folder, "generated" + runner.suffix)
            script.write_text(generate(runner.suffix, lines))
            commands[runner.name] = runner.command + [script]
        return alternate(commands, options.runs, options.timeout, lambda run: None,
                         lambda name, failure: failures.append((row, name, str(failure))))
