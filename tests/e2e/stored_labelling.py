#!/usr/bin/python3
"""A labelling lives in its study: stored by label, read by show in another process, kept by history and restore.

usage: stored_labelling.py VERTANA REGION [OPTION OF vertana phantom...]
"""
import csv
import io
import pathlib
import shutil
import sys
import tempfile

import pydicom

from program import Checks, Run, asked_of_oracle, contents, phantom

DESCRIPTION = "Pelmar Vertana Plugin Intervertebral Planes SR"
REGIONS = ["cervical", "thoracic", "lumbar"]


def reports(folder):
    found = []
    for path in sorted(folder.rglob("*.dcm")):
        data = pydicom.dcmread(path, stop_before_pixels=True)
        if data.Modality == "SR":
            found.append(data)
    return sorted(found, key=lambda data: (data.ContentDate, data.ContentTime))


def names(result):
    return [(one["sop"], one["frame"], one["name"]) for one in result["slices"]]


def check_reading(checks, program, folder, labelled):
    """show tells what label told, but for the curve, and changes nothing."""
    before = contents(folder)
    run = Run(program, ["show", folder, "--json"])
    checks.that(run.status == 0 and not run.messages, "show ends well", run)
    shown = run.json()
    checks.that(shown["curve"] is None, "no curve is stored", run)
    for key in ("study", "anatomicalRegion", "additionalVertebra", "vertical", "slices"):
        checks.that(shown[key] == labelled[key], f"show and label agree in {key}", run)
    checks.that([one["name"] for one in shown["intervertebralPlanes"]] ==
                [one["name"] for one in labelled["intervertebralPlanes"]], "the same discs", run)
    for mine, other in zip(shown["intervertebralPlanes"], labelled["intervertebralPlanes"]):
        checks.that(mine["point"] == other["point"] and mine["vector"] == other["vector"],
                    f"{mine['name']} has the same plane to the last bit", run)

    table = list(csv.DictReader(io.StringIO(Run(program, ["show", folder, "--csv"]).out)))
    checks.that([row["name"] for row in table if row["kind"] == "disc"] ==
                [one["name"] for one in labelled["intervertebralPlanes"]], "a row a disc")
    checks.that([(row["sop"], int(row["frame"]), row["name"] or None) for row in table if row["kind"] == "slice"] ==
                names(labelled), "a row a slice")
    text = Run(program, ["show", folder]).out
    checks.that(text.startswith(f"Stored: the {REGIONS[labelled['anatomicalRegion']]} spine"), "show is for people too")
    info = Run(program, ["info", folder, "--json"]).json()["stored"]
    checks.that(info["anatomicalRegion"] == labelled["anatomicalRegion"] and
                info["levels"] == len(labelled["intervertebralPlanes"]), "info tells what is stored")
    checks.that(contents(folder) == before, "reading leaves every file as it was and adds none")


def check_report(checks, report, labelled):
    """What any reader of structured reports finds."""
    checks.that(report.SeriesDescription == DESCRIPTION and report.SeriesNumber == 20170720, "the report's series")
    checks.that(report.SOPClassUID == "1.2.840.10008.5.1.4.1.1.88.34", "Comprehensive 3D SR")
    block = report.private_block(0x7321, "VERTANA")
    checks.that(bytes(block[0x03].value).startswith(b"bplist00"), "the archive lies in the private block")
    levels = {}

    def walk(item):
        parts = {}
        for child in item.get("ContentSequence", []):
            concept = child.get("ConceptNameCodeSequence")
            parts.setdefault(concept[0].CodeValue if concept else child.ValueType, []).append(child)
            walk(child)
        if "112039" in parts and "111030" in parts:  # Tracking Identifier, Image Region
            levels[parts["112039"][0].TextValue] = list(parts["111030"][0].GraphicData)

    walk(report)
    checks.that(sorted(levels) == sorted(one["name"] for one in labelled["intervertebralPlanes"]),
                f"every level has its measurement group: {sorted(levels)}")
    for plane in labelled["intervertebralPlanes"]:
        near = all(abs(a - b) < 1e-4 for a, b in zip(levels.get(plane["name"], [1e9] * 3), plane["point"]))
        checks.that(near, f"{plane['name']} lies where it was drawn")


def check_history(checks, program, folder, polygon, line, series, first):
    """A second labelling follows the first; the first is made to count again; nothing is ever taken away."""
    before = contents(folder)
    run = Run(program, ["label", folder, "--polygon", polygon, "--series", series, "--json"])
    checks.that(run.status == 0, "labelling the same again ends well", run)
    checks.that(len(reports(folder)) == 1, "a labelling that says the same is not stored again")

    run = Run(program, ["label", folder, "--line", line, "--series", series, "--json"])
    checks.that(run.status == 0, "another labelling is taken", run)
    second = run.json()
    run = Run(program, ["label", folder, "--line", line, "--series", series, "--json"])
    checks.that(run.status == 0 and run.json() == second, "drawing it once more answers the same", run)
    stored = reports(folder)
    checks.that(len(stored) == 2 and stored[0].SeriesInstanceUID == stored[1].SeriesInstanceUID,
                "it joins the first one's series")
    checks.that([report.InstanceNumber for report in stored] == [1, 2], "instance numbers count up")
    checks.that(names(Run(program, ["show", folder, "--json"]).json()) == names(second), "the newest counts")

    run = Run(program, ["history", folder, "--json"])
    entries = run.json()["labellings"]
    checks.that([entry["counts"] for entry in entries] == [False, True], "history tells which counts", run)
    checks.that([entry["object"] for entry in entries] == [report.SOPInstanceUID for report in stored],
                "history lists every object", run)

    run = Run(program, ["restore", folder, "--object", entries[0]["object"]])
    checks.that(run.status == 0, "restore ends well", run)
    checks.that(len(reports(folder)) == 3, "restore adds a new object")
    checks.that(names(Run(program, ["show", folder, "--json"]).json()) == names(first), "the first one counts again")
    run = Run(program, ["restore", folder, "--object", "1.2.3"])
    checks.that(run.status == 1 and "1.2.3" in run.messages[0], "an unknown object is refused by name", run)
    after = contents(folder)
    checks.that(all(after.get(name) == value for name, value in before.items() if "index" not in name),
                "no file was changed or taken away")


def slices_of(folder, series):
    """Position and normal of each slice, from right to left."""
    found = []
    for path in sorted(folder.rglob("*.dcm")):
        image = pydicom.dcmread(path, stop_before_pixels=True)
        if image.get("SeriesNumber") != int(series) or image.Modality == "SR":
            continue
        row, column = (list(map(float, image.ImageOrientationPatient[at:at + 3])) for at in (0, 3))
        normal = [row[1] * column[2] - row[2] * column[1], row[2] * column[0] - row[0] * column[2],
                  row[0] * column[1] - row[1] * column[0]]
        found.append((list(map(float, image.ImagePositionPatient)), normal))
    return sorted(found, key=lambda slice_: slice_[0][0])


def check_redrawn(checks, program, folder, line, series):
    """A study that holds a labelling is labelled on another slice: the discs lie where the person drew, not where the
    curve stood that was loaded; the same line again says the same."""
    slices = slices_of(folder, series)
    for number in (3, len(slices) - 4):
        command = ["label", folder, "--line", line, "--series", series, "--slice", number, "--json"]
        run = Run(program, command)
        checks.that(run.status == 0 and not run.messages, f"labelled on slice {number}", run)
        labelled = run.json()
        checks.that(labelled["vertical"]["slice"] == number, f"label tells slice {number}", run)
        position, normal = slices[number]
        distances = [sum((plane["point"][i] - position[i]) * normal[i] for i in range(3))
                     for plane in labelled["intervertebralPlanes"]]
        checks.that(distances and all(abs(distance) < 1e-3 for distance in distances),
                    f"every disc lies in slice {number}, millimetres from it: {distances}", run)
        shown = Run(program, ["show", folder, "--json"]).json()
        checks.that([plane["point"] for plane in shown["intervertebralPlanes"]] ==
                    [plane["point"] for plane in labelled["intervertebralPlanes"]], "show tells the same places")
        checks.that(shown["vertical"] == labelled["vertical"], "show tells the same slice")
        before = contents(folder)
        run = Run(program, command)
        checks.that(run.status == 0 and contents(folder) == before, f"the same line on slice {number} adds nothing", run)


def check_folder_as_database(checks, program, folder, labelled, line):
    """A folder of studies needs no import to be asked for one by its UID."""
    uid = labelled["study"]
    before = contents(folder.parent)
    run = Run(program, ["show", uid, "--database", folder.parent, "--json"])
    checks.that(run.status == 0 and names(run.json()) == names(labelled), "a folder of studies is a database too", run)
    run = Run(program, ["show", "--database", folder.parent, "--csv", "--jobs", 2])
    checks.that(run.status == 0 and {row["study"] for row in csv.DictReader(io.StringIO(run.out))} == {uid},
                "all its studies are shown", run)
    run = Run(program, ["show", "1.2.3", "--database", folder.parent])
    checks.that(run.status == 1 and "holds no study 1.2.3" in run.messages[-1], "another is not there", run)
    checks.that(contents(folder.parent) == before, "looking leaves every file as it was and adds none")
    run = Run(program, ["label", uid, "--database", folder.parent, "--line", line, "--json"])
    checks.that(run.status == 0 and len(reports(folder)) == 2, "what is stored goes beside the study's images", run)


def check_database(checks, program, folder, labelled, line):
    database = folder.parent / "database"
    run = Run(program, ["import", folder, "--database", database])
    checks.that(run.status == 0 and labelled["study"] in run.out, "import ends well", run)
    run = Run(program, ["show", labelled["study"], "--database", database, "--json"])
    checks.that(run.status == 0 and names(run.json()) == names(labelled), "an imported study keeps its labelling", run)
    before = contents(database / "studies")
    run = Run(program, ["import", folder, "--database", database])
    checks.that(run.status == 0 and contents(database / "studies") == before, "importing again adds nothing", run)

    originals, imported = contents(folder), reports(database)
    run = Run(program, ["label", labelled["study"], "--database", database, "--line", line, "--json"])
    checks.that(run.status == 0 and not run.messages, "a study of a database can be labelled", run)
    stored = reports(database)
    checks.that(len(stored) == len(imported) + 1 and pathlib.Path(stored[-1].filename).parent.parent ==
                database / "studies", "its report lies in the study's folder of the database")
    shown = Run(program, ["show", labelled["study"], "--database", database, "--json"])
    checks.that(shown.status == 0 and names(shown.json()) == names(run.json()), "and counts in another process", shown)
    history = Run(program, ["history", labelled["study"], "--database", database, "--json"]).json()["labellings"]
    checks.that([entry["object"] for entry in history] == [report.SOPInstanceUID for report in stored],
                "history lists what the database holds")
    checks.that(contents(folder) == originals, "the folder it was imported from stays as it was")

    run = Run(program, ["show", "1.2.3", "--database", database])
    checks.that(run.status == 1 and "1.2.3" in run.messages[-1], "a study that is not there is refused by name", run)

    damaged = pathlib.Path(stored[-1].filename)
    damaged.write_bytes(damaged.read_bytes()[:200])
    run = Run(program, ["show", labelled["study"], "--database", database, "--json"])
    checks.that(run.status == 0 and names(run.json()) == names(labelled) and
                any(str(damaged) in message for message in run.messages),
                "a report of which little is left is named, and the one before it counts", run)


def main():
    program, region, *options = sys.argv[1:]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        folder = phantom(program, pathlib.Path(temporary) / "study", "--region", region, *options)
        run = Run(program, ["show", folder])
        checks.that(run.status == 1 and "no labelling" in run.messages[-1], "a study without one says so", run)
        run = Run(program, ["history", folder])
        checks.that(run.status == 0 and "never" in run.out, "and its history is empty", run)
        checks.that(not (folder / ".vertana").exists(), "looking leaves nothing behind")

        polygon, series = asked_of_oracle("polygon", folder), asked_of_oracle("series", folder)
        line = ",".join(polygon.split(",")[:2] + polygon.split(",")[-2:])
        extra = ["--extra-vertebra"] if "--extra-vertebra" in options else []
        run = Run(program, ["label", folder, "--polygon", polygon, "--series", series, "--json", *extra])
        checks.that(run.status == 0 and not run.messages, "label ends well", run)
        labelled = run.json()
        stored = reports(folder)
        checks.that(len(stored) == 1, "one report is in the study")
        check_report(checks, stored[0], labelled)
        check_reading(checks, program, folder, labelled)
        place = pathlib.Path(temporary) / "in place"
        shutil.copytree(folder, place / "study")
        check_folder_as_database(checks, program, place / "study", labelled, line)
        check_redrawn(checks, program, shutil.copytree(folder, folder.parent / "redrawn"), line, series)
        if not extra:
            check_history(checks, program, folder, polygon, line, series, labelled)
        check_database(checks, program, folder, labelled, line)
    checks.finish()


main()
