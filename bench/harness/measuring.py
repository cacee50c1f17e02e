"""Starts programs and takes CPU time and peak memory from the kernel's account of them."""

import ctypes
import os
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
from pathlib import Path

PROJECT_DIR = Path(__file__).resolve().parents[2]

# A shell script with the arguments OUTPUT ERRORS COMMAND...: forks a process that waits for a line
# and then becomes the command, prints its id and ends. See measure().
LAUNCHER = ["/bin/sh", "-c",
            'o=$1 e=$2; shift 2; exec 3<&0; '
            '{ read -r go <&3; exec "$@" 3<&- </dev/null >"$o" 2>"$e"; } >/dev/null & echo $!',
            "sh"]
PR_SET_CHILD_SUBREAPER = 36

# Interpreters read variables with these beginnings, such as one that turns buffering off.
INTERPRETER_VARIABLES = ("PYTHON", "NODE", "PERL", "RUBY", "JSC_", "TARVELLUA_")


class Failure(Exception):
    """A run whose time must not be believed."""


class Run:
    def __init__(self, output, errors, status, usage):
        self.output = output
        self.errors = errors
        self.status = status
        self.seconds = usage.ru_utime + usage.ru_stime
        self.peak_kib = usage.ru_maxrss


class Samples:
    """What several runs of one program took."""

    def __init__(self):
        self.seconds = []
        self.peak_kib = []

    def add(self, run):
        self.seconds.append(run.seconds)
        self.peak_kib.append(run.peak_kib)

    def time(self, statistic):
        # A time below the clock's resolution is not nothing: ratios are made of it.
        return max(statistic(self.seconds), 1e-9)

    def peak(self):
        return statistics.median(self.peak_kib)

    @classmethod
    def from_json(cls, saved):
        samples = cls()
        samples.seconds, samples.peak_kib = saved["seconds"], saved["peakKiB"]
        return samples

    def as_json(self):
        return {"seconds": self.seconds, "peakKiB": self.peak_kib}


def become_reaper_of_orphans():
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        sys.exit("bench: cannot become the reaper of the programs it starts")


def plain_environment():
    return {name: value for name, value in os.environ.items()
            if not name.startswith(INTERPRETER_VARIABLES)}


def measure(command, timeout):
    """Runs the command to its end, in the project's folder.

    The peak that the kernel reports for a process includes the memory of whoever forked it, which
    for a child of this program would be Python's own. So a small shell forks it and ends; being
    the reaper of its orphans, this program then still gets the resource usage."""
    with tempfile.TemporaryDirectory() as folder:
        streams = [Path(folder, "output"), Path(folder, "errors")]
        with subprocess.Popen(LAUNCHER + [str(part) for part in streams + command],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=PROJECT_DIR,
                              env=plain_environment(), start_new_session=True) as launcher:
            pid = int(launcher.stdout.readline())
            launcher.wait()
            # Not before the shell has ended: it would take the account of a command that is quicker.
            launcher.stdin.write(b"go\n")
        watchdog = Watchdog(launcher.pid, timeout)
        _, status, usage = os.wait4(pid, 0)
        watchdog.stop()
        output, errors = (stream.read_text(errors="replace") for stream in streams)
    if watchdog.has_bitten:
        raise Failure(f"did not end within {timeout:g} s")
    return Run(output, errors, os.waitstatus_to_exitcode(status), usage)


class Watchdog:
    """Kills a process group at the end of the time, unless it is stopped before."""

    def __init__(self, group, timeout):
        self.group = group
        self.has_bitten = False
        self.timer = threading.Timer(timeout, self.bite)
        self.timer.start()

    def bite(self):
        try:
            os.killpg(self.group, signal.SIGKILL)
            self.has_bitten = True
        except ProcessLookupError:
            pass

    def stop(self):
        self.timer.cancel()
        self.timer.join()


def alternate(commands, runs, timeout, check, report_failure):
    """Runs every command once per round, so that a drift of the machine's speed hits all alike.

    `commands` maps a subject's name to its command. A subject of which `check(run)` or the run
    itself fails is left out of the result, which maps the other names to their samples."""
    results = {name: Samples() for name in commands}
    for _ in range(runs):
        for name in list(results):
            try:
                run = measure(commands[name], timeout)
                if run.status != 0:
                    raise Failure(f"exit status {run.status}: {run.errors.strip()[-300:]}")
                check(run)
                results[name].add(run)
            except Failure as failure:
                report_failure(name, failure)
                del results[name]
    return results
