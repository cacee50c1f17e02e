"""How the time of single operations grows when their size doubles three times."""

import math
import statistics

from .measuring import alternate, measure
from .runners import BENCH_DIR

OPERATIONS = BENCH_DIR / "growth" / "operations.lua"
FACTORS = [1, 2, 4, 8]
# Points below this many seconds are too short to tell anything about growth.
SHORTEST = 0.002
QUADRATIC = 1.6


def operations(runner, options):
    """Name and size of every operation; the script lists them when it is run without arguments."""
    listing = measure(runner.command + [OPERATIONS], options.timeout).output
    return [(name, int(size)) for name, size in (line.split() for line in listing.splitlines())]


def run_growth(runner, options, failures):
    """Returns rows of (operation, size, seconds at every factor, last exponent, fitted exponent)."""
    listed = operations(runner, options)
    rows = []
    for name, size in listed:
        if options.names and name not in options.names:
            continue
        commands = {factor: runner.command + [OPERATIONS, name, str(size * factor)] for factor in FACTORS}
        commands["nothing"] = runner.command + [OPERATIONS, "nothing", "1"]
        results = alternate(commands, options.runs, options.timeout, lambda run: None,
                            lambda factor, failure: failures.append((name, str(factor), str(failure))))
        if len(results) < len(commands):
            continue
        start = results["nothing"].time(min)
        seconds = [max(results[factor].time(min) - start, 1e-6) for factor in FACTORS]
        rows.append((name, size, seconds, last_exponent(seconds), fitted_exponent(seconds)))
    return rows


def last_exponent(seconds):
    return math.log2(seconds[-1] / seconds[-2]) if seconds[-1] >= SHORTEST else None


def fitted_exponent(seconds):
    """The slope of the line through the points, both axes logarithmic."""
    points = [(math.log2(factor), math.log2(time)) for factor, time in zip(FACTORS, seconds) if time >= SHORTEST]
    if len(points) < 2:
        return None
    mean_x = statistics.fmean(x for x, _ in points)
    mean_y = statistics.fmean(y for _, y in points)
    return (sum((x - mean_x) * (y - mean_y) for x, y in points)
            / sum((x - mean_x) ** 2 for x, _ in points))


def growth_rows(rows):
    table = [["operation", "n", "ms at n, 2n, 4n, 8n", "last doubling", "fitted", ""]]
    for name, size, seconds, last, fitted in rows:
        times = " ".join(f"{each * 1000:.1f}" for each in seconds)
        exponents = ["-" if each is None else f"{each:.2f}" for each in (last, fitted)]
        remark = "quadratic" if (last or 0) > QUADRATIC else ""
        table.append([name, str(size), times] + exponents + [remark])
    return table
