#!/usr/bin/python3
"""Formatters of man pages take the page without a warning.

usage: man_page.py VERTANA SHARE_FOLDER
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

from program import Checks, skip


def main():
    page = str(pathlib.Path(sys.argv[2]) / "man" / "man1" / "vertana.1")
    formatters = {
        "groff": ["groff", "-man", "-Tutf8", "-ww", "-rLL=80n", page],
        "man": ["man", "--warnings", "-l", page],
        "mandoc": ["mandoc", "-Tlint", "-Wwarning", page],
    }
    lacking = [name for name in formatters if not shutil.which(name)]
    checks = Checks()
    environment = dict(os.environ, MANWIDTH="80", LC_ALL="C.UTF-8")
    for name, command in formatters.items():
        if name in lacking:
            print(f"SKIPPED: {name} is not installed")
            continue
        done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=60, check=False)
        complaints = done.stderr + (done.stdout if name == "mandoc" else "")
        checks.that(done.returncode == 0 and not complaints, f"{name} has nothing to complain of: {complaints}")
        if name != "mandoc":
            text = re.sub(r".\x08|\x1b\[[0-9;]*m", "", done.stdout)  # bold, as a printer or a terminal has it
            checks.that("EXIT STATUS" in text and "--angled-axials" in text, f"{name} shows the page")
    if len(lacking) == len(formatters) or "VERTANA_SKIP_NOTHING" in os.environ and lacking:
        skip(f"there is no {' and no '.join(lacking)}")
    checks.finish()


main()
