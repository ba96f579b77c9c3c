#!/usr/bin/python3
"""A real lumbar study: a polygon through the discs read by eye gives each axial slice that cuts a disc its name.

usage: real_study.py VERTANA SHARED_DATA
"""
import json
import pathlib
import shutil
import sys
import tempfile

import pydicom

from program import Checks, Run, shared_data


def headers(folder):
    return [pydicom.dcmread(path, stop_before_pixels=True) for path in sorted(folder.iterdir())]


def normal(header):
    row, column = header.ImageOrientationPatient[:3], header.ImageOrientationPatient[3:]
    return [row[1] * column[2] - row[2] * column[1], row[2] * column[0] - row[0] * column[2],
            row[0] * column[1] - row[1] * column[0]]


def distance(header, point):
    offset = [p - q for p, q in zip(point, header.ImagePositionPatient)]
    return abs(sum(a * b for a, b in zip(offset, normal(header))))


def writable_copy(folder, target):
    shutil.copytree(folder, target, copy_function=shutil.copyfile)
    for path in [target, *target.rglob("*")]:
        if path.is_dir():
            path.chmod(0o755)
    return target


def check(program, data, checks):
    reference = json.loads((data / "reference_discs.json").read_text())

    info = Run(program, ["info", data, "--json"])
    checks.that(info.status == 0 and len(info.json()["series"]) == 5, "five series open, a viewer each", info)

    # Sagittal slices are shown from the patient's right to the left: x grows in LPS.
    sagittal = sorted(headers(data / reference["sagittal_series"]), key=lambda h: h.ImagePositionPatient[0])
    slice_index = [h.SOPInstanceUID for h in sagittal].index(reference["sagittal_sop"])
    discs = [disc for disc in reference["discs"] if disc["level"] != "T11/T12"]
    polygon = ",".join(str(number) for disc in discs for number in disc["pixel"])
    label = Run(program, ["label", data, "--polygon", polygon, "--series", sagittal[0].SeriesNumber, "--slice",
                          slice_index, "--region", "lumbar", "--json"])
    checks.that(label.status == 0, "label ends well", label)
    result = label.json()
    names = {entry["sop"]: entry["name"] for entry in result["slices"]}
    checks.that([plane["name"] for plane in result["intervertebralPlanes"]] ==
                [disc["level"].replace("/", "-") for disc in discs], "the planes carry the discs' names", label)
    checks.that(len(names) == 34, "both axial series are listed, 17 slices each", label)

    for series in ("SE08T2AX", "SE09T1AX"):
        axial = headers(data / series)
        for disc in discs:
            if "nearest_axial_instance" not in disc:
                continue
            if series == reference["axial_series"]:
                chosen = next(h for h in axial if h.InstanceNumber == disc["nearest_axial_instance"])
            else:
                chosen = min(axial, key=lambda h: distance(h, disc["patient"]))
            checks.that(names[chosen.SOPInstanceUID] == disc["level"].replace("/", "-"),
                        f"{series} instance {chosen.InstanceNumber} is {disc['level']}, not "
                        f"{names[chosen.SOPInstanceUID]}")


def main():
    program, shared = sys.argv[1], shared_data(sys.argv[2], "lspine_mr_a")
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        # Labelling stores a report in the study: in a copy, never in the data that all tests share.
        check(program, writable_copy(shared, pathlib.Path(temporary) / "study"), checks)
    checks.finish()


main()
