#!/usr/bin/python3
"""The demonstration labels a phantom, stores the labelling, opens the study anew and finds the same names.

usage: demo.py VERTANA
"""
import json
import pathlib
import re
import sys
import tempfile

from program import Checks, Run
from reports import report_files


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        folder = pathlib.Path(temporary) / "demo"
        run = Run(program, ["demo", "--out", folder])
        checks.that(run.status == 0 and not run.messages, "the demonstration ends well", run)
        checks.that(len(report_files(folder)) == 1, "it has stored one report in the study")

        truth = json.loads((folder / "truth.json").read_text())
        discs = {disc["name"] for disc in truth["discs"]}
        cutting = {(one["sop"], one["frame"]): one["level"] for one in truth["slices"] if one["level"] in discs}
        run_show = Run(program, ["show", folder, "--json"])
        checks.that(run_show.status == 0, "another process reads it", run_show)
        shown = {(one["sop"], one["frame"]): one["name"] for one in run_show.json()["slices"]}
        checks.that(cutting and all(shown[place] == level for place, level in cutting.items()),
                    "every slice that cuts a disc has that disc's name in another process", run_show)
        checks.that(f"{len(cutting)} of the {len(cutting)} axial slices that cut a disc" in run.out,
                    "it says how many slices it named rightly", run)
        pictures = sorted(path.name for path in (folder / "pictures").glob("*.png"))
        if "None." in run.out:
            checks.that("libvertana_render" in run.out, "without painting it says what is missing", run)
        else:
            checks.that(len(pictures) == 4 and all(name in run.out for name in pictures),
                        f"it has painted each of the four series: {pictures}", run)
        same = re.search(r"All (\d+) axial slices carry the same names as before", run.out)
        checks.that(same is not None and int(same.group(1)) == len(shown),
                    "it says that all slices carry the same names after opening anew", run)
        for command in re.findall(r"^  vertana (\w+) (\S+)", run.out, re.MULTILINE):
            checks.that(pathlib.Path(command[1]) == folder, f"'{command[0]}' to try names the folder", run)
    checks.finish()


main()
