#!/usr/bin/python3
"""Measures `vertana show` of a study that holds many labellings, as a folder and as a database, against what is
promised. Prints what it finds and fails when the promise is broken.

The verdict is on the processor's time: time that passed while other programs had the processor does not count, and on
an idle machine both are the same, since the command waits for nothing.

usage: many_labellings.py VERTANA [COUNT]
"""
import json
import os
import pathlib
import resource
import statistics
import subprocess
import sys
import tempfile
import time

MOST_SECONDS = 0.1
TURNS = 15


def run(program, *arguments):
    done = subprocess.run([program, *map(str, arguments)], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          check=False)
    if done.returncode != 0:
        sys.exit(f"vertana {arguments[0]} ended with status {done.returncode}: {done.stderr}")
    return done.stdout


def processor_seconds():
    """Of the processes that have ended and were waited for."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def measure_show(program, where):
    """The processor's seconds from the command's start to its end, and those of the clock."""
    worked, started = processor_seconds(), time.monotonic()
    run(program, "show", *where)
    return processor_seconds() - worked, time.monotonic() - started


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 100
    failed = False
    with tempfile.TemporaryDirectory(prefix="vertana-labellings-") as temporary:
        top = pathlib.Path(temporary)
        os.environ["XDG_CONFIG_HOME"] = str(top / "settings")
        study, database = top / "study", top / "database"
        run(program, "phantom", "--region", "lumbar", "--out", study)
        for number in range(count):  # each a little elsewhere, for the same one again would say nothing new
            run(program, "label", study, "--line", f"{197 + number / 10},46,204,274")
        run(program, "import", study, "--database", database)
        uid = json.loads(run(program, "info", study, "--json"))["study"]
        stored = run(program, "history", study).count("lumbar, ")
        if stored != count:
            sys.exit(f"The study holds {stored} labellings and not {count}.")
        for name, where in (("folder", [study]), ("database", [uid, "--database", database])):
            worked, passed = map(statistics.median, zip(*(measure_show(program, where) for _ in range(TURNS))))
            print(f"show, {count} labellings in a {name}: {worked * 1000:.0f} ms of the processor, {passed * 1000:.0f} ms "
                  f"by the clock (limit {MOST_SECONDS * 1000:.0f})", flush=True)
            failed = failed or worked >= MOST_SECONDS
    sys.exit(1 if failed else 0)


main()
