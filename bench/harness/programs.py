"""The benchmark programs: their names, their sizes and what they print."""

import hashlib

from .measuring import Failure, alternate
from .runners import BENCH_DIR

EXPECTED_LINE = "-- expect: "
EXPECTED_DIGEST = "-- expect sha256: "
SMALL_SIZE = "-- small: "


def names():
    return sorted(path.stem for path in BENCH_DIR.glob("*.lua"))


def remarks(benchmark, prefix):
    lines = (BENCH_DIR / (benchmark + ".lua")).read_text().splitlines()
    return [line[len(prefix):] for line in lines if line.startswith(prefix)]


def small_size(benchmark):
    """The argument for a run of a few milliseconds."""
    return remarks(benchmark, SMALL_SIZE)[0]


def digest(text):
    return hashlib.sha256(text.encode()).hexdigest()


def expected_digest(benchmark):
    """The SHA-256 sum of the output, by which long output is described."""
    digests = remarks(benchmark, EXPECTED_DIGEST)
    lines = remarks(benchmark, EXPECTED_LINE)
    return digests[0] if digests else digest("".join(line + "\n" for line in lines))


def run_benchmark(benchmark, runners, options, failures):
    """Returns {runner name: samples} without those that failed."""
    expected = expected_digest(benchmark)

    def check(run):
        if digest(run.output) != expected:
            raise Failure(f"printed something else than {benchmark}.lua expects: {run.output[:200]!r}")

    def report_failure(name, failure):
        failures.append((benchmark, name, str(failure)))

    commands = {runner.name: runner.command + [runner.script(benchmark)]
                for runner in runners if runner.script(benchmark).exists()}
    return alternate(commands, options.runs, options.timeout, check, report_failure)
