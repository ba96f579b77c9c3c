#!/usr/bin/python3
"""Every folder of the shared data opens, or is refused with a reason; nothing crashes or hangs.

usage: shared_folders.py VERTANA SHARED_DATA
"""
import sys

from program import Checks, Run, shared_data


def main():
    program, data = sys.argv[1], shared_data(sys.argv[2])
    checks = Checks()
    folders = [folder for folder in sorted(data.rglob("*")) if folder.is_dir()]
    checks.that(len(folders) > 10, "the shared data have more than ten folders")
    for folder in folders:
        run = Run(program, ["info", folder], timeout=600)
        checks.that(run.status in (0, 3), f"{folder} opens or is refused", run)
        checks.that(run.status == 0 or run.messages, f"{folder} is refused with a reason", run)
        checks.that(run.status == 3 or "Study " in run.out, f"{folder} lists its studies", run)
    checks.finish()


main()
