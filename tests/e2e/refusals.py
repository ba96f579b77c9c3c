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

        empty = top / "empty"
        empty.mkdir()
        database = top / "database"
        Run(program, ["import", study, "--database", database])
        pairs = "--line takes pairs of numbers, at least two pairs, X0,Y0,X1,Y1: 3 numbers were given."
        lines = "--line takes numbers with commas between them, X0,Y0,X1,Y1: "
        short = " cm long on the patient, but a spine needs 7 cm: draw from one end of the region to the other."
        help_tells = " (vertana --help tells the usage)"
        refusals = [
            ("a line under 7 cm", 1, ["label", study, "--line", "160,100,160,150"], "--line is ", short),
            ("a polygon under 7 cm", 1, ["label", study, "--polygon", "160,100,160,120,160,150"], "--polygon is ", short),
            # A row of pixels is 0.71875 mm high: 97.3857 of them are 69.996 mm.
            ("a line just under 7 cm", 1, ["label", study, "--line", "160,100,160,197.3857"], "--line is 6.9996", short),
            ("more points than discs", 1, ["label", study, "--polygon", seven_points], "--polygon has ",
             " has 7 points, but the lumbar region has 6 discs: give at most one point a disc."),
            ("a series that does not exist", 1, ["label", study, "--line", good, "--series", 77], "--series 77",
             ": the study has no such series (vertana info lists them)."),
            ("an axial series to draw on", 1, ["label", study, "--line", good, "--series", 3], "--series 3",
             " is neither sagittal nor coronal: Coronal or Sagittal series needed."),
            ("a slice that does not exist", 1, ["label", study, "--line", good, "--slice", 15], "--slice 15",
             ": the series has 15 slices, counted from 0."),
            ("a negative slice", 1, ["label", study, "--line", good, "--slice=-1"], "--slice -1", "has 15 slices"),
            ("a point outside the image", 1, ["label", study, "--line", "160,40,160,400"], "--line: the point 160,400",
             " lies outside the image, which has 320 columns and 320 rows."),
            ("only axial series", 1, ["label", axial, "--line", good], f"The study in {axial}",
             " cannot be drawn on: Coronal or Sagittal series needed."),
            ("two studies in one folder", 1, ["label", two, "--line", good], str(two),
             " holds 2 studies: give a folder that holds one (vertana info lists them)."),
            ("a folder that does not exist", 3, ["info", top / "nowhere"], str(top / "nowhere"),
             " does not exist: give a folder of DICOM files."),
            ("labelling a folder that does not exist", 3, ["label", top / "nowhere", "--line", good], "nowhere", ""),
            ("a folder without a name", 3, ["info", ""], "A folder without a name", " does not exist: give a folder"),
            ("a folder without a file", 3, ["show", empty], str(empty),
             " holds no DICOM image that can be shown: it holds no file."),
            ("a database that does not exist", 3, ["show", "1.2", "--database", top / "nowhere"], str(top / "nowhere"),
             " does not exist: give a database folder."),
            *((f"{command[0]} of a folder that is no database", 3, [*command, "--database", empty], f"The folder {empty}",
               " is no database, for it holds neither index.sqlite nor studies: name another one, or import studies "
               "into it with vertana import.")
              for command in (["show", "1.2"], ["show"], ["history", "1.2"], ["info", "1.2"],
                              ["label", "1.2", "--line", good], ["restore", "1.2", "--object", "1"],
                              ["export", "1.2", "--format", "json", "--out", top / "x.json"],
                              ["render", "1.2", "--out", top / "x"])),
            ("a study that is not in the database", 1, ["show", "1.2", "--database", database],
             f"The database {database} holds no study 1.2",
             ": give the Study Instance UID of one that was imported."),
            ("a study without a labelling", 1, ["show", study], f"The study in {study}",
             " holds no labelling: draw one with vertana label."),
            ("a number that the history lacks", 1, ["restore", study, "--object", "1"], "--object 1",
             ": the study's history holds 0 labellings, counted from 1."),
            ("a number without bounds", 1, ["restore", study, "--object", "9" * 99], "9" * 99, "0 labellings"),
            ("an object that the study lacks", 1, ["restore", study, "--object", "2.25.1"], "2.25.1", "no labelling"),
            ("an import of nothing", 3, ["import", empty, "--database", database],
             f"Nothing was imported into {database}", f": no DICOM object was found in {empty}."),
            ("an import of nothing, twice", 3, ["import", empty, empty, "--database", database],
             f": no DICOM object was found in {empty}", " and the other paths."),
            ("a phantom in a folder that is not empty", 1, ["phantom", "--region", "lumbar", "--out", study], str(study),
             ""),
            ("pictures without a folder", 1, ["render", study, "--out", "/proc/vertana/x"], "/proc/vertana/x",
             " cannot be made: "),
            ("pictures in a folder without a name", 2, ["render", study, "--out", ""], "--out is empty: ",
             "give a folder or file to write to."),
            ("an object without a name", 2, ["restore", study, "--object", ""], "--object takes a labelling's number",
             " in the history, or its UID: '' is neither."),
            ("an object that cannot be", 2, ["restore", study, "--object", "-1"], "--object", "'-1' is neither."),
            ("no command", 2, [], "No command was given", "; there are demo, phantom, "),
            ("an unknown command", 2, ["lable", study], "'lable' is no command", help_tells),
            ("an unknown option", 2, ["info", study, "--jason"], "--jason", help_tells),
            ("an option twice", 2, ["label", study, "--line", good, "--line", good], "--line was given more than once",
             help_tells),
            ("a value where none belongs", 2, ["info", study, "--json=x"], "--json", ": this option takes no value"),
            ("a number that is none", 2, ["label", study, "--line", good, "--slice", "two"], "--slice",
             " takes a whole number from -2147483648 to 2147483647: 'two' is none."),
            ("nothing drawn", 2, ["label", study], "label needs --line X0,Y0,X1,Y1 or --polygon X0,Y0,X1,Y1,...",
             ": nothing was drawn."),
            ("three numbers", 2, ["label", study, "--line", "1,2,3"], "--line", pairs),
            ("six numbers for a line", 2, ["label", study, "--line", "1,2,3,4,5,6"], "--line",
             " needs four numbers, X0,Y0,X1,Y1: 1,2,3,4,5,6 has 6."),
            ("a word for a number", 2, ["label", study, "--line", "1,2,3,four"], lines, "'four' is not a number."),
            ("a number that is not finite", 2, ["label", study, "--line", "1,2,3,nan"], lines, "'nan' is not a number."),
            ("line and polygon", 2, ["label", study, "--line", good, "--polygon", good], "--line",
             " and --polygon cannot be drawn both: give one of them."),
            ("an unknown region", 2, ["label", study, "--line", good, "--region", "sacral"], "--region",
             "'sacral' is no region: give cervical, thoracic or lumbar"),
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
    checks.finish()


main()
