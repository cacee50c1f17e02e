"""What it takes to start an interpreter and run an empty script."""

import tempfile
from pathlib import Path

from .measuring import alternate


def run_startup(runners, options, failures):
    with tempfile.TemporaryDirectory() as folder:
        commands = {}
        for runner in runners:
            script = Path(folder, "empty" + runner.suffix)
            script.touch()
            commands[runner.name] = runner.command + [script]
        results = alternate(commands, options.runs * 4, options.timeout, lambda run: None,
                            lambda name, failure: failures.append(("start", name, str(failure))))
    return {"start": results}
