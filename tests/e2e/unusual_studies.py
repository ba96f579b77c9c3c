#!/usr/bin/python3
"""Studies as they also come: copied files, several frames of reference, enhanced images, localizers, odd names.

Each is made of a phantom, whose levels are known from the plain study; the way of storing it must not change them.
usage: unusual_studies.py VERTANA
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from pydicom.uid import generate_uid

from dicom_files import ENHANCED_MR, enhanced, headers, save
from program import Checks, Run, interrupted, phantom

LINE = ["--line", "197,46,204,274"]


def save_changed(source, target, change):
    for number, header in enumerate(headers(source)):
        change(header)
        save(header, target / f"{number}")


def names(run):
    return [entry["name"] for entry in run.json()["slices"]]


def listed(run):
    """Series number, stack, plane (0 sagittal, 1 coronal, 2 axial) and slices of each stack."""
    return [(row["series"], row["stack"], row["orientation"] // 2, row["slices"]) for row in run.json()["series"]]


def check_copies(checks, program, plain, expected, folder):
    shutil.copytree(plain / "SE01", folder / "SE01")
    shutil.copytree(plain / "SE03", folder / "SE03")
    shutil.copytree(plain / "SE03", folder / "again")
    run = Run(program, ["label", folder, *LINE, "--json"])
    checks.that(names(run) == expected, "a copied series is not shown twice", run)
    checks.that(len(run.messages) == 1 and "52 files" in run.messages[0] and "SE03/IM0001.dcm" in run.messages[0],
                "and the person is told of the copies", run)


def check_other_frame(checks, program, plain, folder):
    other = generate_uid()
    shutil.copytree(plain / "SE01", folder / "SE01")
    shutil.copytree(plain / "SE03", folder / "SE03")
    save_changed(plain / "SE04", folder / "SE04", lambda header: setattr(header, "FrameOfReferenceUID", other))
    run = Run(program, ["label", folder, *LINE, "--json"])
    same = {3: set(), 4: set()}
    for entry in run.json()["slices"]:
        same[entry["series"]].add(entry["sameFrameOfReference"])
    checks.that(same == {3: {True}, 4: {False}}, "slices in another frame of reference are marked", run)
    checks.that(len(run.messages) == 1 and "frame of reference" in run.messages[0], "and the person is warned", run)
    run = Run(program, ["label", folder, *LINE])
    checks.that(run.out.count("CAUTION") == 1 and run.out.index("CAUTION") > run.out.index("Axial series 4"),
                "and warned at the series that it concerns", run)


def check_enhanced(checks, program, plain, expected, folder):
    sagittal, axial = (enhanced(headers(plain / series), ENHANCED_MR) for series in ("SE01", "SE03"))
    save(sagittal, folder / "sagittal")
    save(axial, folder / "axial")
    run = Run(program, ["info", folder, "--json"])
    checks.that(listed(run) == [(1, 0, 0, 15), (3, 0, 2, 52)], "enhanced images count a slice a frame", run)
    run = Run(program, ["label", folder, *LINE, "--json"])
    checks.that(names(run) == expected, "enhanced images get the levels of single ones", run)
    frames = [(entry["sop"], entry["frame"]) for entry in run.json()["slices"]]
    checks.that(frames == [(axial.SOPInstanceUID, number) for number in range(1, 53)], "each slice names its frame", run)


def check_localizer(checks, program, plain, expected, folder):
    series, number = generate_uid(), 0
    for source in ("SE01", "SE02", "SE03"):
        for header in headers(plain / source)[5:8]:
            number += 1
            header.SeriesInstanceUID, header.SeriesNumber, header.InstanceNumber = series, 9, number
            header.SOPInstanceUID = header.file_meta.MediaStorageSOPInstanceUID = generate_uid()
            header.ImageType = ["ORIGINAL", "PRIMARY", "LOCALIZER"]
            save(header, folder / "localizer" / str(number))
    shutil.copytree(plain / "SE01", folder / "SE01")
    shutil.copytree(plain / "SE03", folder / "SE03")
    run = Run(program, ["info", folder, "--json"])
    checks.that(listed(run) == [(1, 0, 0, 15), (3, 0, 2, 52), (9, 0, 0, 3), (9, 1, 1, 3), (9, 2, 2, 3)],
                "a localizer with three planes is three stacks", run)
    run = Run(program, ["label", folder, *LINE, "--json"])
    checks.that(run.json()["vertical"] == {"series": 1, "stack": 0, "slice": 7},
                "the first sagittal series is drawn on where none is in front", run)
    checks.that(names(run) == expected + expected[5:8], "and the localizer's axial slices are named like the others", run)


def check_without_geometry(checks, program, plain, expected, folder):
    shutil.copytree(plain / "SE01", folder / "SE01")
    shutil.copytree(plain / "SE03", folder / "SE03")
    save_changed(plain / "SE04", folder / "SE04", lambda header: delattr(header, "ImagePositionPatient"))
    run = Run(program, ["info", folder, "--json"])
    checks.that([(row["series"], row["orientation"], row["slices"]) for row in run.json()["series"]] ==
                [(1, 0, 15), (3, 4, 52), (4, -1, 25)], "a series without positions has no orientation", run)
    run = Run(program, ["label", folder, *LINE, "--json"])
    checks.that(names(run) == expected, "and is never labelled", run)
    run = Run(program, ["label", folder, *LINE, "--series", 4])
    checks.that(run.status == 1 and run.out == "" and "--series 4" in run.messages[-1], "nor drawn on", run)


def check_front(checks, program, plain, folder):
    shutil.copytree(plain / "SE01", folder / "SE01")
    last = generate_uid()

    def copy(header):
        header.SeriesInstanceUID, header.SeriesNumber = last, 12
        header.SOPInstanceUID = header.file_meta.MediaStorageSOPInstanceUID = generate_uid()

    save_changed(plain / "SE01", folder / "last", copy)
    run = Run(program, ["label", folder, *LINE, "--json"])
    checks.that(run.json()["vertical"]["series"] == 12, "a sagittal series that opened in front is drawn on", run)
    checks.that(run.json()["slices"] == [], "without axial series no slice is listed", run)


def check_odd_names(checks, program, plain, expected, folder):
    def rename(header):
        header.SpecificCharacterSet = "ISO_IR 192"
        header.SeriesDescription = "脊椎 \x1b[31mred\x07"
        header.Modality = "LONGMODALITY"
        header.PatientName = "山田^太郎"

    odd = folder / "my späne\n脊椎"
    for series in ("SE01", "SE03"):
        save_changed(plain / series, odd / series, rename)
    (odd / "bad.dcm").write_bytes(b"")
    run = Run(program, ["info", odd])
    checks.that(run.status == 0 and "山田^太郎" in run.out and "脊椎" in run.out, "letters of all scripts are shown", run)
    text = run.out + "\n".join(run.messages)
    checks.that(all(char.isprintable() or char == "\n" for char in text), "what a terminal would obey is not", run)
    checks.that(len(run.messages) == 1, "a line feed in a name does not break the message", run)
    rows = [line for line in run.out.splitlines() if "LONGMODALITY" in line or "description" in line]
    checks.that(len({row.index(word) for row, word in zip(rows, ("kind", "LONGMOD", "LONGMOD"))}) == 1 and len(rows) == 3,
                "the columns are aligned", run)
    run = Run(program, ["label", odd, *LINE, "--json"])
    checks.that(names(run) == expected, "a folder's name does not matter", run)


def check_output(checks, program, plain, folder):
    if os.path.exists("/dev/full"):
        with open("/dev/full", "w") as full:
            done = subprocess.run([program, "info", str(plain)], stdout=full, stderr=subprocess.PIPE, text=True, check=False)
        checks.that(done.returncode == 1 and
                    done.stderr == "vertana: The result could not be written to standard output.\n",
                    f"a full disk is told of: {done.stderr}")
    run = Run(program, ["phantom", "--region", "lumbar", "--out", "/proc/vertana/x"])
    checks.that(run.status == 1 and len(run.messages) == 1 and "/proc/vertana" in run.messages[0],
                "a folder that cannot be made is named", run)
    target = folder / "interrupted"
    arguments = ["phantom", "--region", "lumbar", "--ct", "--out", target]
    status, out, err = interrupted(program, arguments, lambda _: list(target.glob("*/*")))
    checks.that(status == 1 and out == "" and "Interrupted" in err, f"an interrupt is told of: {err}")
    checks.that(not target.exists(), "and leaves nothing behind")


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        plain = phantom(program, top / "plain", "--region", "lumbar", "--angled-axials")
        # What is stored goes into the study, so a copy is labelled.
        run = Run(program, ["label", shutil.copytree(plain, top / "labelled"), *LINE, "--json"])
        expected = [entry["name"] for entry in run.json()["slices"] if entry["series"] == 3]
        checks.that(len(expected) == 52 and {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"} <= set(expected),
                    "the plain study has its levels", run)
        check_copies(checks, program, plain, expected, top / "copies")
        check_other_frame(checks, program, plain, top / "other-frame")
        check_enhanced(checks, program, plain, expected, top / "enhanced")
        check_localizer(checks, program, plain, expected, top / "localizer")
        check_without_geometry(checks, program, plain, expected, top / "without-geometry")
        check_front(checks, program, plain, top / "front")
        check_odd_names(checks, program, plain, expected, top / "odd")
        check_output(checks, program, plain, top)
    checks.finish()


main()
