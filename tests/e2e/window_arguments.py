#!/usr/bin/python3
"""The workstation started with --import copies a folder into a database, from which the command reads it.

usage: window_arguments.py VERTANA WORKSTATION
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import pydicom

from program import Checks, Run, contents, phantom


def images(folder):
    """A sum of each image, whatever its file is called."""
    return sorted(digest for name, digest in contents(folder).items() if name.endswith(".dcm"))


def main():
    program, workstation = sys.argv[1:3]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        study = phantom(program, top / "study", "--region", "lumbar", "--image-size", 32)
        uid = pydicom.dcmread(study / "SE01" / "IM0001.dcm", stop_before_pixels=True).StudyInstanceUID
        before, database = contents(study), top / "database"
        environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=str(top / "config"),
                           XDG_DATA_HOME=str(top / "data"))
        with subprocess.Popen([workstation, "--database", database, "--import", study], env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL) as window:
            wanted, end = images(study), time.monotonic() + 120
            found = None
            while time.monotonic() < end and window.poll() is None:
                if database.is_dir() and images(database) == wanted:
                    found = Run(program, ["info", uid, "--database", database, "--json"])
                    if found.status == 0:
                        break
                time.sleep(0.2)
            checks.that(found is not None and found.status == 0, "the study is in the database", found)
            checks.that(window.poll() is None, "and the window stays open")
            window.terminate()
        checks.that(found is not None and found.json()["study"] == uid and len(found.json()["series"]) == 3, "all of it")
        checks.that(contents(study) == before, "the folder is left as it was")
        checks.that(not (top / "data" / "vertana" / "database").exists(), "no other database is made")
    checks.finish()


main()
