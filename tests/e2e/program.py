"""Runs the vertana command for the end-to-end tests, away from the person's own settings."""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from checks import Checks, skip  # pylint: disable=wrong-import-position,unused-import

_settings = tempfile.TemporaryDirectory(prefix="vertana-settings-")


class Run:
    """What one run of the command gave. `prepare` is called in the new process before the command begins; `settings` is
    the folder of the person's settings, where it is not the one that all runs of a test share."""

    def __init__(self, program, arguments, timeout=300, prepare=None, settings=None):
        environment = dict(os.environ, XDG_CONFIG_HOME=str(settings or _settings.name))
        done = subprocess.run([program, *map(str, arguments)], env=environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=timeout, check=False, preexec_fn=prepare)
        self.command = " ".join(["vertana", *map(str, arguments)])
        self.status = done.returncode
        self.out = done.stdout
        self.messages = done.stderr.splitlines()

    def json(self):
        return json.loads(self.out)

    def describe(self):
        return f"{self.command}\nstatus {self.status}\n{self.out}\n" + "\n".join(self.messages)


def shared_data(root, *parts):
    """The folder of shared test data; the test is skipped, saying so, where there is none."""
    folder = pathlib.Path(root).joinpath(*parts)
    if not folder.is_dir():
        skip(f"there is no folder {folder}")
    return folder


def phantom(program, folder, *options):
    run = Run(program, ["phantom", "--out", folder, *options])
    if run.status != 0:
        print(run.describe())
        sys.exit(1)
    return folder
