#!/usr/bin/python3
"""A CT of thin slices with its reformats, and the same study as enhanced CT images, against the phantom's truth.

The sagittal series that is drawn on and the axial series along the discs are reformats (Image Type DERIVED); they
count as any other series. In the enhanced images the frames are stored in no order, and those along the discs each
have a direction of their own.
usage: ct_study.py VERTANA
"""
import json
import pathlib
import random
import sys
import tempfile

from dicom_files import ENHANCED_CT, enhanced, headers, save
from program import Checks, Run, asked_of_oracle, check_with_oracle, phantom

SERIES = {1: "SE01", 3: "SE03", 4: "SE04"}  # sagittal, axial, axial along the discs


def listed(run):
    """Series number, plane (0 sagittal, 1 coronal, 2 axial) and slices of each stack."""
    return [(row["series"], row["orientation"] // 2, row["slices"]) for row in run.json()["series"]]


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        plain = phantom(program, pathlib.Path(temporary) / "plain", "--region", "lumbar", "--ct", "--angled-axials")
        drawing = ["--polygon", asked_of_oracle("polygon", plain), "--series", 1, "--json"]
        # Before the plain study is labelled: what is stored goes into its folders.
        folder, sources = pathlib.Path(temporary) / "enhanced", {}
        for number, name in SERIES.items():
            slices = headers(plain / name)
            checks.that(slices[0].ImageType[0] == ("ORIGINAL" if number == 3 else "DERIVED"), f"{name} is what it says")
            random.Random(number).shuffle(slices)
            image = enhanced(slices, ENHANCED_CT)
            save(image, folder / name)
            for frame, source in enumerate(slices, 1):
                sources[image.SOPInstanceUID, frame] = source.SOPInstanceUID

        run = Run(program, ["label", plain, *drawing])
        checks.that(run.status == 0 and not run.messages, "a CT is labelled on its sagittal reformats", run)
        check_with_oracle(checks, plain, run.out, "single slices: ")

        run = Run(program, ["info", folder, "--json"])
        checks.that(listed(run) == [(1, 0, 15), (3, 2, 512), (4, 2, 25)], "enhanced CT images count a slice a frame", run)
        run = Run(program, ["label", folder, *drawing])
        checks.that(run.status == 0 and not run.messages, "enhanced CT images are labelled", run)
        label = run.json()
        for entry in label["slices"]:
            entry["sop"] = sources[entry["sop"], entry["frame"]]
        # The oracle knows the slices by the SOP Instance UIDs of the plain study.
        check_with_oracle(checks, plain, json.dumps(label), "enhanced images: ")
    checks.finish()


main()
