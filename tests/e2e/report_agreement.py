#!/usr/bin/python3
"""The archive and the standard content of a stored report say the same, and where one part is missing or damaged the
person is told.

usage: report_agreement.py VERTANA REGION [OPTION OF vertana phantom...]
"""
import pathlib
import resource
import shutil
import signal
import struct
import sys
import tempfile

import pydicom

from program import Checks, Run, asked_of_oracle, phantom
from reports import BLOCK_ARCHIVE, BLOCK_CREATOR, BLOCK_GROUP, archive_of, content_of, report_files, unarchived

TARGET_REGIONS = {-1: "Spine", 0: "Cervical spine", 1: "Thoracic spine", 2: "Lumbar spine"}


def single(numbers):
    return [struct.unpack("<f", struct.pack("<f", number))[0] for number in numbers]


def names(result):
    return {(one["sop"], one["frame"]): one["name"] for one in result["slices"]}


def check_agreement(checks, file, shown):
    """Archive, content and what `vertana show` prints."""
    report = pydicom.dcmread(file)
    state, said = unarchived(archive_of(report)), content_of(report)
    checks.that(set(state) == {"VertanaAnatomicalRegion", "kAdditionalVertebra", "intervertebralPlanes"},
                f"the archive has the three entries of a state: {sorted(state)}")
    checks.that(said["State of the spine labelling"] == "Labelled", "the content says that there is a labelling")
    checks.that(state["VertanaAnatomicalRegion"] == shown["anatomicalRegion"] and
                said["Target Region"] == TARGET_REGIONS[state["VertanaAnatomicalRegion"]],
                f"the region is the same: {state['VertanaAnatomicalRegion']}, {said['Target Region']}")
    checks.that(state["kAdditionalVertebra"] is shown["additionalVertebra"] and
                said["Additional vertebra in the region"] == ("Yes" if state["kAdditionalVertebra"] else "No"),
                "the extra vertebra is the same")
    planes = state["intervertebralPlanes"]
    checks.that([plane["name"] for plane in planes] == [plane["name"] for plane in said["planes"]] ==
                [plane["tracked"] for plane in said["planes"]] ==
                [plane["name"] for plane in shown["intervertebralPlanes"]], "the levels are the same, in one order")
    for mine, told, printed in zip(planes, said["planes"], shown["intervertebralPlanes"]):
        for part in ("point", "vector"):
            checks.that(single(mine[part]) == single(told[part]) == single(printed[part]),
                        f"the {part} of {mine['name']} is the same in single precision")
    named = {place: name for place, name in names(shown).items() if name}
    checks.that(named and said["slices"] == named, "the content names the slices as show does")


def check_stripped(checks, program, folder, file, shown):
    """A program that removes private attributes has been at the report."""
    whole = file.read_bytes()
    report = pydicom.dcmread(file)
    report.remove_private_tags()
    report.save_as(file)
    run = Run(program, ["show", folder, "--json"])
    checks.that(run.status == 0 and len(run.messages) == 1, "a report without its archive is shown", run)
    message = run.messages[0] if run.messages else ""
    checks.that(file.name in message and "archive" in message and "single precision" in message,
                "it is said that the numbers come from the content", run)
    told = run.json()
    checks.that(names(told) == names(shown), "the same slices have the same names", run)
    checks.that(all(single(mine[part]) == single(other[part]) for part in ("point", "vector")
                    for mine, other in zip(told["intervertebralPlanes"], shown["intervertebralPlanes"])),
                "the planes are the same in single precision", run)
    entry = Run(program, ["history", folder, "--json"]).json()["labellings"][-1]
    checks.that(entry["fromContent"] and entry["counts"], "history tells it too")
    checks.that("standard content" in Run(program, ["info", folder]).out, "and info")
    file.write_bytes(whole)


def spoil(file):
    """Cuts the archive in half; the content stays whole."""
    report = pydicom.dcmread(file)
    block = report.private_block(BLOCK_GROUP, BLOCK_CREATOR)
    archive = archive_of(report)
    block[BLOCK_ARCHIVE].value = archive[:len(archive) // 4 * 2]
    report.save_as(file)


def check_unreadable(checks, program, folder, drawing, first):
    """The newest report cannot be read, then none can."""
    run = Run(program, ["label", folder, *drawing, "--json"])
    checks.that(run.status == 0, "another labelling is taken", run)
    files = report_files(folder)
    checks.that(len(files) == 2 and names(run.json()) != names(first), "it is another one", run)
    spoil(files[1])
    run = Run(program, ["show", folder, "--json"])
    checks.that(run.status == 0 and names(run.json()) == names(first), "the earlier one counts", run)
    checks.that(len(run.messages) == 1 and files[1].name in run.messages[0] and "does not count" in run.messages[0],
                "the unreadable one is named", run)
    checks.that([entry["counts"] for entry in Run(program, ["history", folder, "--json"]).json()["labellings"]] ==
                [True, False], "history tells which counts")
    spoil(files[0])
    run = Run(program, ["show", folder])
    checks.that(run.status == 1 and "no labelling" in run.messages[-1], "where none can be read there is none", run)
    for file in files:
        checks.that(sum(file.name in message for message in run.messages) == 1, f"{file.name} is named once", run)


def check_foreign(checks, program, folder, drawing, shown):
    """A report of another program: the archive as an encapsulated document, nothing that tells where its levels lie."""
    file = report_files(folder)[0]
    report = pydicom.dcmread(file)
    archive = archive_of(report)
    report.remove_private_tags()
    report.ContentSequence = []
    report.EncapsulatedDocument = archive
    report.save_as(file)
    run = Run(program, ["show", folder, "--json"])
    checks.that(run.status == 0 and not run.messages and names(run.json()) == names(shown),
                "a report of another program is read", run)
    run = Run(program, ["label", folder, *drawing])
    checks.that(run.status == 0, "another labelling is taken", run)
    run = Run(program, ["restore", folder, "--object", report.SOPInstanceUID])
    checks.that(run.status == 0 and not run.messages, "it can be restored", run)
    checks.that(len(report_files(folder)) == 3 and
                archive_of(pydicom.dcmread(report_files(folder)[-1])) == archive, "with the same archive")
    run = Run(program, ["show", folder, "--json"])
    checks.that(run.status == 0 and names(run.json()) == names(shown), "and counts again", run)


def write_nothing():
    """As on a full disk: no byte goes into any file, whoever the user is."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))


def check_full_disk(checks, program, folder, drawing):
    before = {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}
    run = Run(program, ["label", folder, *drawing, "--json"], prepare=write_nothing)
    checks.that(run.status == 1 and not run.out, "label fails where nothing can be written", run)
    failures = [message for message in run.messages if str(folder) in message]
    checks.that(len(failures) == 1 and "could not be stored" in failures[0] and "File too large" in failures[0],
                "one line says so, with the file and the reason", run)
    checks.that({path: path.read_bytes() for path in folder.rglob("*") if path.is_file()} == before,
                "the study is as it was")


def main():
    program, region, *options = sys.argv[1:]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        folder = phantom(program, pathlib.Path(temporary) / "study", "--region", region, *options)
        polygon, series = asked_of_oracle("polygon", folder), asked_of_oracle("series", folder)
        extra = ["--extra-vertebra"] if "--extra-vertebra" in options else []
        drawing = ["--polygon", polygon, "--series", series, *extra]
        check_full_disk(checks, program, folder, drawing)
        run = Run(program, ["label", folder, *drawing])
        checks.that(run.status == 0, "label ends well", run)
        files = report_files(folder)
        checks.that(len(files) == 1, "one report is in the study")
        run = Run(program, ["show", folder, "--json"])
        checks.that(run.status == 0 and not run.messages, "show ends well", run)
        shown = run.json()
        check_agreement(checks, files[0], shown)
        check_stripped(checks, program, folder, files[0], shown)
        points = polygon.split(",")
        shorter = ["--polygon", ",".join(points[:-2]), "--series", series, *extra]
        foreign = shutil.copytree(folder, folder.parent / "foreign")
        check_foreign(checks, program, foreign, shorter, shown)
        check_unreadable(checks, program, folder, shorter, shown)
    checks.finish()


main()
