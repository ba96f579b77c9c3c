#!/usr/bin/python3
"""A folder with files that cannot be used: what is good is listed, each bad file is named with its reason.

usage: bad_files.py VERTANA
"""
import pathlib
import shutil
import sys
import tempfile

import pydicom

from program import Checks, Run, phantom


def spoil(source, target, change):
    header = pydicom.dcmread(source)
    header.SOPInstanceUID = header.file_meta.MediaStorageSOPInstanceUID = pydicom.uid.generate_uid()
    change(header)
    header.save_as(target)


def without(keyword):
    return lambda header: delattr(header, keyword)


def spacing_zero(header):
    header.PixelSpacing = [0, 0]


def write_bad_files(good, folder):
    """Writes the bad files; answers each one's name with a word that its reason must hold."""
    folder.mkdir()
    whole = good.read_bytes()
    (folder / "truncated.dcm").write_bytes(whole[:len(whole) // 2])
    (folder / "cut-in-header").write_bytes(whole[:300])
    (folder / "text.dcm").write_text("This is no image.\n" * 40)
    (folder / "empty").write_bytes(b"")
    spoil(good, folder / "no-pixels.dcm", without("PixelData"))
    spoil(good, folder / "no-orientation.dcm", without("ImageOrientationPatient"))
    spoil(good, folder / "spacing-zero.dcm", spacing_zero)
    return {"truncated.dcm": "truncated", "cut-in-header": "", "text.dcm": "DICOM", "empty": "empty",
            "no-pixels.dcm": "pixel data", "no-orientation.dcm": "Orientation", "spacing-zero.dcm": "Spacing"}


def check_mixed_folder(checks, program, study, bad):
    run = Run(program, ["info", study])
    checks.that(run.status == 0, "a folder with something good in it opens", run)
    checks.that("T2 sagittal" in run.out and "T2 axial" in run.out, "what is good is listed", run)
    for name, reason in bad.items():
        lines = [line for line in run.messages if f"/{name} " in line]
        checks.that(len(lines) == 1, f"{name} is named once", run)
        checks.that(lines and lines[0].endswith(".") and not lines[0].endswith(".."), f"{name}: a whole sentence", run)
        checks.that(lines and reason in lines[0].split(name, 1)[1], f"{name}: the reason speaks of '{reason}'", run)
    checks.that(len(run.messages) == len(bad), "nothing else is complained of", run)
    listed = {pathlib.Path(entry["file"]).name for entry in Run(program, ["info", study, "--json"]).json()["unreadable"]}
    shown = {"no-orientation.dcm", "spacing-zero.dcm"}
    checks.that(listed == set(bad) - shown, f"the JSON lists the files that cannot be shown: {sorted(listed)}")


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        study = phantom(program, pathlib.Path(temporary) / "study", "--region", "lumbar")
        bad = write_bad_files(study / "SE01" / "IM0001.dcm", study / "bad")
        (study / "notes.txt").write_text("not DICOM, and does not claim to be\n")
        check_mixed_folder(checks, program, study, bad)

        hopeless = pathlib.Path(temporary) / "hopeless"
        shutil.copytree(study / "bad", hopeless)
        for name in ("no-orientation.dcm", "spacing-zero.dcm"):
            (hopeless / name).unlink()
        run = Run(program, ["info", hopeless])
        checks.that(run.status == 3, "a folder with nothing good in it is unreadable", run)
        checks.that(run.out == "", "and nothing is listed", run)
        checks.that(len(run.messages) == 6, "each bad file is named, then the folder", run)

        for name in ("no-orientation.dcm", "spacing-zero.dcm"):
            lonely = pathlib.Path(temporary) / name
            lonely.mkdir()
            shutil.copy(study / "bad" / name, lonely)
            run = Run(program, ["label", lonely, "--line", "165,35,160,275"])
            checks.that(run.status == 1, f"{name} alone cannot be labelled", run)
    checks.finish()


main()
