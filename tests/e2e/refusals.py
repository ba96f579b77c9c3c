#!/usr/bin/python3
"""What the study, the drawing or the arguments do not allow: one clear line, the right status, nothing changed.

usage: refusals.py VERTANA
"""
import hashlib
import pathlib
import shutil
import sys
import tempfile

from program import Checks, Run, phantom


def fingerprint(folder):
    return {path.relative_to(folder): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        study = phantom(program, top / "study", "--region", "lumbar")
        axial = top / "axial"
        shutil.copytree(study / "SE03", axial / "SE03")
        two = top / "two"
        phantom(program, two / "a", "--region", "lumbar")
        phantom(program, two / "b", "--region", "cervical")
        before = fingerprint(study)
        good = "165,35,160,275"
        seven_points = "160,40,160,80,160,120,160,160,160,200,160,240,160,280"

        refusals = [
            ("a line under 7 cm", 1, ["label", study, "--line", "160,100,160,150"], "--line", "7 cm"),
            ("a polygon under 7 cm", 1, ["label", study, "--polygon", "160,100,160,120,160,150"], "--polygon", "7 cm"),
            ("more points than discs", 1, ["label", study, "--polygon", seven_points], "--polygon", "6 discs"),
            ("a series that does not exist", 1, ["label", study, "--line", good, "--series", 77], "--series 77", "no such"),
            ("an axial series to draw on", 1, ["label", study, "--line", good, "--series", 3], "--series 3", "Coronal"),
            ("a slice that does not exist", 1, ["label", study, "--line", good, "--slice", 15], "--slice 15", "15 slices"),
            ("a negative slice", 1, ["label", study, "--line", good, "--slice=-1"], "--slice -1", "15 slices"),
            ("a point outside the image", 1, ["label", study, "--line", "160,40,160,400"], "--line", "outside"),
            ("only axial series", 1, ["label", axial, "--line", good], str(axial), "Coronal or Sagittal series needed"),
            ("two studies in one folder", 1, ["label", two, "--line", good], str(two), "2 studies"),
            ("a folder that does not exist", 3, ["info", top / "nowhere"], "nowhere", "does not exist"),
            ("labelling a folder that does not exist", 3, ["label", top / "nowhere", "--line", good], "nowhere", ""),
            ("a phantom in a folder that is not empty", 1, ["phantom", "--region", "lumbar", "--out", study], str(study), ""),
            ("no command", 2, [], "", ""),
            ("an unknown command", 2, ["lable", study], "lable", ""),
            ("nothing drawn", 2, ["label", study], "--line", ""),
            ("three numbers", 2, ["label", study, "--line", "1,2,3"], "--line", ""),
            ("six numbers for a line", 2, ["label", study, "--line", "1,2,3,4,5,6"], "--line", "four numbers"),
            ("a word for a number", 2, ["label", study, "--line", "1,2,3,four"], "--line", "four"),
            ("a number that is not finite", 2, ["label", study, "--line", "1,2,3,nan"], "--line", "nan"),
            ("line and polygon", 2, ["label", study, "--line", good, "--polygon", good], "--polygon", ""),
            ("an unknown region", 2, ["label", study, "--line", good, "--region", "sacral"], "sacral", "lumbar"),
            ("a phantom without a folder", 2, ["phantom", "--region", "lumbar"], "--out", ""),
            ("a phantom of no region", 2, ["phantom", "--out", top / "x"], "--region", ""),
        ]
        for name, status, arguments, subject, reason in refusals:
            run = Run(program, arguments)
            checks.that(run.status == status, f"{name}: status {status}", run)
            checks.that(len(run.messages) == 1, f"{name}: one line on standard error", run)
            line = run.messages[0] if run.messages else ""
            checks.that(subject in line and reason in line, f"{name}: it names '{subject}' and says '{reason}'", run)
            checks.that(run.out == "", f"{name}: nothing on standard output", run)
        checks.that(fingerprint(study) == before, "the study is byte for byte as it was")

        run = Run(program, ["label", study, "--line", good])
        checks.that(run.status == 0 and not run.messages, "the good line is taken", run)
        checks.that("L4-L5" in run.out and "Axial series 3" in run.out, "and names the axial slices", run)
        for arguments in (["--help"], ["label", "--help"], ["info", "--help"], ["phantom", "--help"], ["demo", "--help"]):
            run = Run(program, arguments)
            checks.that(run.status == 0 and "Example:" in run.out and not run.messages, f"{arguments} helps", run)
            checks.that(len(run.out.splitlines()) <= 24, f"{arguments} fits a screen", run)
    checks.finish()


main()
