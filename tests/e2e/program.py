"""Runs the vertana command for the end-to-end tests, away from the person's own settings."""
import hashlib
import json
import os
import pathlib
import pty
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from checks import Checks, skip  # pylint: disable=wrong-import-position,unused-import
from phantoms import phantom  # pylint: disable=wrong-import-position,unused-import

ORACLE = pathlib.Path(__file__).parent / "oracle" / "naming.py"

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


def interrupted(program, arguments, begun):
    """Status, output and messages of a run that gets the interrupt key as soon as `begun`(process) says so."""
    with subprocess.Popen([program, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, text=True) as process:
        while not begun(process) and process.poll() is None:
            time.sleep(0.001)
        process.send_signal(signal.SIGINT)
        out, messages = process.communicate(timeout=300)
    return process.returncode, out, messages


def on_terminal(program, arguments, interrupt_at=None):
    """Status, output, and what a terminal shows of the messages, of a run that gets the interrupt key as soon as the
    terminal shows the bytes `interrupt_at`."""
    terminal, its_end = pty.openpty()
    seen = b""
    with tempfile.TemporaryFile() as out:
        with subprocess.Popen([program, *map(str, arguments)], env=dict(os.environ, XDG_CONFIG_HOME=_settings.name),
                              stdin=subprocess.DEVNULL, stdout=out, stderr=its_end) as process:
            os.close(its_end)
            while True:
                try:
                    piece = os.read(terminal, 4096)
                except OSError:  # a terminal ends so
                    break
                if not piece:
                    break
                seen += piece
                if interrupt_at and interrupt_at in seen:
                    process.send_signal(signal.SIGINT)
                    interrupt_at = None
        os.close(terminal)
        out.seek(0)
        return process.returncode, out.read().decode(), seen.decode()


def asked_of_oracle(*arguments):
    """What the naming oracle prints of a phantom."""
    return subprocess.run(["/usr/bin/python3", str(ORACLE), *map(str, arguments)], capture_output=True, text=True,
                          check=True).stdout.strip()


def check_with_oracle(checks, folder, printed, kind=""):
    """Every slice and every disc of a printed labelling is as the oracle says."""
    with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
        file.write(printed)
        file.flush()
        for task in ("check", "discs"):
            verdict = subprocess.run(["/usr/bin/python3", str(ORACLE), task, str(folder), file.name],
                                     capture_output=True, text=True, check=False)
            print(f"{kind}{verdict.stdout.strip()}")
            checks.that(verdict.returncode == 0, f"{kind}the oracle's {task} agrees: {verdict.stderr}")


def contents(folder):
    """A sum of each file, by its path in the folder."""
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in sorted(folder.rglob("*")) if path.is_file()}
