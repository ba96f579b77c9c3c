#!/usr/bin/python3
"""A stored labelling as a file for other programs, each read back by a reader that is not ours.

The discs' places come from the phantom's truth, the grid from the DICOM files, the rest from `show`.
usage: exports.py VERTANA LABELLING_SCHEMA                 phantoms
       exports.py VERTANA LABELLING_SCHEMA SHARED_DATA     a real study, whose slices are oblique
"""
import csv
import gzip
import json
import os
import pathlib
import shutil
import sys
import tempfile

import pydicom

from program import Checks, Run, contents, phantom, shared_data, skip

try:
    import jsonschema
    import nibabel
    import numpy as np
except ImportError as missing:
    skip(f"{missing} (Debian packages python3-nibabel, python3-jsonschema)")

# Disc labels of the Spinal Cord Toolbox.
SCT_NUMBERS = {"C2-C3": 3, "C3-C4": 4, "C4-C5": 5, "C5-C6": 6, "C6-C7": 7, "C7-T1": 8, "T1-T2": 9, "T2-T3": 10,
               "T3-T4": 11, "T4-T5": 12, "T5-T6": 13, "T6-T7": 14, "T7-T8": 15, "T8-T9": 16, "T9-T10": 17,
               "T10-T11": 18, "T11-T12": 19, "T12-L1": 20, "L1-L2": 21, "L2-L3": 22, "L3-L4": 23, "L4-L5": 24,
               "L5-S1": 25}


def numbers(count):
    return {"type": "array", "items": {"type": "number"}, "minItems": count, "maxItems": count}


CONTROL_POINT = {
    "type": "object", "required": ["id", "label", "position", "orientation", "positionStatus"],
    "properties": {"id": {"type": "string"}, "label": {"type": "string"}, "description": {"type": "string"},
                   "associatedNodeID": {"type": "string"}, "position": numbers(3), "orientation": numbers(9),
                   "selected": {"type": "boolean"}, "locked": {"type": "boolean"}, "visibility": {"type": "boolean"},
                   "positionStatus": {"enum": ["undefined", "preview", "defined", "missing"]}},
    "additionalProperties": False}
MARKUPS = {
    "type": "object", "required": ["@schema", "markups"], "additionalProperties": False,
    "properties": {
        "@schema": {"pattern": r"^https://raw\.githubusercontent\.com/slicer/slicer/master/Modules/Loadable/Markups/"
                               r"Resources/Schema/markups-schema-v1\.[0-9]+\.[0-9]+\.json#$"},
        "markups": {"type": "array", "minItems": 1, "items": {
            "type": "object", "required": ["type", "coordinateSystem", "coordinateUnits", "controlPoints"],
            "additionalProperties": False,
            "properties": {
                "type": {"enum": ["Fiducial", "Plane"]}, "name": {"type": "string"}, "coordinateSystem": {"const": "LPS"},
                "coordinateUnits": {"const": "mm"}, "locked": {"type": "boolean"},
                "fixedNumberOfControlPoints": {"type": "boolean"}, "labelFormat": {"type": "string"},
                "lastUsedControlPointNumber": {"type": "integer"}, "planeType": {"const": "pointNormal"},
                "sizeMode": {"enum": ["auto", "absolute"]}, "autoScalingSizeFactor": {"type": "number"},
                "center": numbers(3), "normal": numbers(3), "objectToBase": numbers(16), "baseToNode": numbers(16),
                "orientation": numbers(9), "size": numbers(2), "planeBounds": numbers(4),
                "controlPoints": {"type": "array", "minItems": 1, "items": CONTROL_POINT}},
            "if": {"properties": {"type": {"const": "Plane"}}},
            "then": {"required": ["planeType", "center", "normal", "objectToBase", "baseToNode", "size", "planeBounds"],
                     "properties": {"controlPoints": {"maxItems": 1}}}}}}}


def images(folder, axis):
    """The images of a series by their place along the patient axis (0 to the left, 1 to the back)."""
    found = [pydicom.dcmread(path, stop_before_pixels=True) for path in folder.iterdir()]
    return sorted((image for image in found if image.Modality != "SR"), key=lambda image: image.ImagePositionPatient[axis])


def discs_drawn_on(image, truth):
    """The true disc centres as a polygon on this image."""
    row, column = np.split(np.array(image.ImageOrientationPatient, float), 2)
    spacing_y, spacing_x = map(float, image.PixelSpacing)
    points = []
    for disc in truth["discs"]:
        aside = np.array(disc["centre"]) - np.array(image.ImagePositionPatient, float)
        points += [aside @ row / spacing_x, aside @ column / spacing_y]
    return ",".join(f"{number:.3f}" for number in points)


def labelled(program, folder, series, axis, *options):
    """Draws the truth on the middle slice of a series."""
    truth = json.loads((folder / "truth.json").read_text())
    stack = images(folder / f"SE{series:02}", axis)
    run = Run(program, ["label", folder, "--series", series, "--polygon", discs_drawn_on(stack[len(stack) // 2], truth),
                        *options])
    if run.status != 0:
        print(run.describe())
        sys.exit(1)
    return truth


def export(program, folder, kind, file):
    return Run(program, ["export", folder, "--format", kind, "--out", file])


def check_json(checks, program, folder, shown, schema, file):
    run = export(program, folder, "json", file)
    checks.that(run.status == 0 and not run.messages and str(file) in run.out, "json is written", run)
    told = json.loads(file.read_text(encoding="utf-8"))
    checks.that(told == shown, "and holds what show prints")
    problems = [error.message for error in jsonschema.Draft202012Validator(schema).iter_errors(told)]
    checks.that(problems == [], f"and agrees with its schema: {problems}")
    for key in ("study", "slices"):
        broken = {**told, key: None}
        checks.that(not jsonschema.Draft202012Validator(schema).is_valid(broken), f"which wants {key}")


def check_csv(checks, program, folder, shown, file):
    run = export(program, folder, "csv", file)
    checks.that(run.status == 0 and not run.messages, "csv is written", run)
    with open(file, encoding="utf-8", newline="") as table:
        rows = list(csv.DictReader(table))
    discs = [(row["name"], [float(row[key]) for key in ("x", "y", "z")], [float(row[key]) for key in ("nx", "ny", "nz")])
             for row in rows if row["kind"] == "disc"]
    checks.that(discs == [(plane["name"], plane["point"], plane["vector"]) for plane in shown["intervertebralPlanes"]],
                "a row a disc")
    slices = [(int(row["series"]), int(row["stack"]), int(row["slice"]), row["sop"], int(row["frame"]),
               row["name"] or None, row["sameFrameOfReference"] == "true") for row in rows if row["kind"] == "slice"]
    checks.that(slices == [tuple(one[key] for key in ("series", "stack", "slice", "sop", "frame", "name",
                                                      "sameFrameOfReference")) for one in shown["slices"]],
                "a row a slice")
    checks.that(len(rows) == len(discs) + len(slices) and {row["study"] for row in rows} == {shown["study"]},
                "and no other row")


def check_slicer(checks, program, folder, shown, truth, axis, file):
    run = export(program, folder, "slicer", file)
    checks.that(run.status == 0 and not run.messages, "markups are written", run)
    told = json.loads(file.read_text(encoding="utf-8"))
    problems = [error.message for error in jsonschema.Draft202012Validator(MARKUPS).iter_errors(told)]
    checks.that(problems == [], f"with the fields that Slicer documents: {problems}")
    points, *planes = told["markups"]
    expected = shown["intervertebralPlanes"]
    checks.that(points["type"] == "Fiducial" and
                [(point["label"], point["position"]) for point in points["controlPoints"]] ==
                [(plane["name"], plane["point"]) for plane in expected], "a point a disc, with its name")
    checks.that([(plane["type"], plane["name"], plane["controlPoints"][0]["label"]) for plane in planes] ==
                [("Plane", plane["name"], plane["name"]) for plane in expected], "a plane a disc, with its name")
    for plane, source, disc in zip(planes, expected, truth["discs"]):
        placement = np.array(plane["baseToNode"]).reshape(4, 4)
        axes = placement[:3, :3]
        checks.that(np.allclose(axes.T @ axes, np.eye(3), atol=1e-6) and np.isclose(np.linalg.det(axes), 1),
                    f"{plane['name']}: right-handed axes at right angles")
        checks.that(np.allclose(axes[:, 2], source["vector"], atol=1e-6) and
                    np.allclose(plane["normal"], source["vector"], atol=1e-6), f"{plane['name']}: across its normal")
        checks.that(np.allclose(placement[:3, 3], source["point"]) and plane["center"] == source["point"] and
                    plane["controlPoints"][0]["position"] == source["point"], f"{plane['name']}: through its point")
        # The curve was drawn in one slice, so it can follow the truth in that slice only; and it is smooth, so it need
        # not meet each disc at a right angle.
        in_slice = np.delete(np.eye(3), axis, axis=0)
        normal, true_normal = in_slice @ axes[:, 2], in_slice @ disc["normal"]
        cosine = abs(normal @ true_normal) / np.linalg.norm(normal) / np.linalg.norm(true_normal)
        angle = np.degrees(np.arccos(min(1, cosine)))
        checks.that(plane["name"] == disc["name"] and angle < 15,
                    f"{plane['name']}: {angle:.1f} degrees from the disc's true normal")
        # The plane's point is the sample of the curve before the vertex that was drawn on the centre.
        checks.that(np.linalg.norm(in_slice @ (placement[:3, 3] - disc["centre"])) < 1, f"{plane['name']}: on its centre")


def check_volume(checks, volume, shown, stack):
    """The labels lie where the planes are, on the voxels of the series."""
    data, affine = np.asanyarray(volume.dataobj), volume.affine
    checks.that(data.dtype == np.uint8 and data.shape == (stack[0].Columns, stack[0].Rows, len(stack)),
                f"the series' own voxels: {data.shape}")
    checks.that(volume.get_sform(coded=True)[1] == 1 and volume.get_qform(coded=True)[1] == 1 and
                np.allclose(volume.get_qform(), volume.get_sform(), atol=1e-5), "sform and qform agree")
    checks.that(volume.header.get_xyzt_units()[0] == "mm", "in millimetres")
    to_lps = np.diag([-1, -1, 1, 1]) @ affine
    for k, image in enumerate(stack):
        row, column = np.split(np.array(image.ImageOrientationPatient, float), 2)
        spacing_y, spacing_x = map(float, image.PixelSpacing)
        far = (np.array(image.ImagePositionPatient, float) + (image.Columns - 1) * spacing_x * row +
               (image.Rows - 1) * spacing_y * column)
        checks.that(np.allclose((to_lps @ [0, 0, k, 1])[:3], np.array(image.ImagePositionPatient, float), atol=1e-3) and
                    np.allclose((to_lps @ [image.Columns - 1, image.Rows - 1, k, 1])[:3], far, atol=1e-2),
                    f"slice {k} lies where its image does")
    expected = {SCT_NUMBERS[plane["name"]]: plane for plane in shown["intervertebralPlanes"] if plane["name"] != "C0-C1"}
    voxels = {int(data[tuple(voxel)]): voxel for voxel in np.argwhere(data)}
    checks.that(sorted(voxels) == sorted(expected) and np.count_nonzero(data) == len(expected),
                f"one voxel a disc: {sorted(voxels)}")
    for number, plane in expected.items():
        aside = (to_lps @ [*voxels.get(number, [0, 0, 0]), 1])[:3] - plane["point"]
        parts = np.abs(np.linalg.inv(affine[:3, :3]) @ np.diag([-1, -1, 1]) @ aside)
        checks.that(np.all(parts <= 0.5 + 1e-4), f"{plane['name']}: within half a voxel of its point, {parts}")


def check_sct(checks, program, folder, shown, stack, file):
    run = export(program, folder, "sct", file)
    cervical = shown["anatomicalRegion"] == 0
    checks.that(run.status == 0 and len(run.messages) == int(cervical), "disc labels are written", run)
    checks.that(not cervical or "C0-C1 was left out" in run.messages[0], "and the joint that is no disc is named", run)
    check_volume(checks, nibabel.load(file), shown, stack)
    packed = file.with_suffix(".nii.gz")
    run = export(program, folder, "sct", packed)
    checks.that(run.status == 0 and gzip.decompress(packed.read_bytes()) == file.read_bytes(), "packed, too", run)
    checks.that(np.array_equal(nibabel.load(packed).dataobj, nibabel.load(file).dataobj), "which readers unpack")


def check_study(checks, program, top, schema, region, series, axis):
    folder = phantom(program, top / f"{region}-{series}", "--region", region, "--angled-axials")
    truth = labelled(program, folder, series, axis, "--region", region)
    before = contents(folder)
    shown = Run(program, ["show", folder, "--json"]).json()
    checks.that(shown["vertical"]["series"] == series and len(shown["intervertebralPlanes"]) == len(truth["discs"]),
                f"{region}: drawn on series {series}")
    out = top / f"out-{region}-{series}"
    out.mkdir()
    check_json(checks, program, folder, shown, schema, out / "levels.json")
    check_csv(checks, program, folder, shown, out / "levels.csv")
    check_slicer(checks, program, folder, shown, truth, axis, out / "discs.mrk.json")
    check_sct(checks, program, folder, shown, images(folder / f"SE{series:02}", axis), out / "discs.nii")
    checks.that(contents(folder) == before, f"{region}: the study is byte for byte as it was")
    checks.that(sorted(path.name for path in out.iterdir()) ==
                ["discs.mrk.json", "discs.nii", "discs.nii.gz", "levels.csv", "levels.json"], "nothing is left over")
    return folder


def refused(checks, run, status, words, file):
    checks.that(run.status == status and len(run.messages) == 1 and run.out == "" and words in run.messages[0],
                f"refused with status {status}, saying '{words}'", run)
    checks.that(not os.path.lexists(file), "and nothing is written", run)


def check_extra_vertebra(checks, program, top, schema, region, disc):
    folder = phantom(program, top / f"extra-{region}", "--region", region, "--extra-vertebra")
    labelled(program, folder, 1, 0, "--region", region, "--extra-vertebra")
    file = top / f"extra-{region}.nii"
    refused(checks, export(program, folder, "sct", file), 1, f"no number for {disc}", file)
    shown = Run(program, ["show", folder, "--json"]).json()
    check_json(checks, program, folder, shown, schema, top / f"extra-{region}.json")


def check_refusals(checks, program, top, study):
    """What keeps a labelling from being written, on copies of a labelled study."""
    file = top / "refused.nii"
    missing = shutil.copytree(study, top / "missing-slice")
    (missing / "SE01" / "IM0004.dcm").unlink()
    refused(checks, export(program, missing, "sct", file), 1, "not evenly spaced", file)
    gone = shutil.copytree(study, top / "missing-series")
    for path in (gone / "SE01").glob("IM*.dcm"):
        path.unlink()
    refused(checks, export(program, gone, "sct", file), 1, "does not hold the series", file)
    plain = phantom(program, top / "plain", "--region", "lumbar")
    refused(checks, export(program, plain, "json", file), 1, "holds no labelling", file)
    refused(checks, export(program, top / "nowhere", "json", file), 3, "does not exist", file)
    refused(checks, export(program, study, "xml", file), 2, "'xml' is no format", file)
    refused(checks, export(program, study, "sct", top / "discs.txt"), 2, "must end in .nii", top / "discs.txt")
    refused(checks, Run(program, ["export", study, "--format", "csv"]), 2, "--out", file)
    refused(checks, Run(program, ["export", study, "--out", file]), 2, "--format", file)
    beyond = top / "no-folder" / "levels.csv"
    refused(checks, export(program, study, "csv", beyond), 1, str(beyond), beyond)


def check_target(checks, program, top, study):
    """What may stand in the place of the file."""
    before = contents(study)
    file = study / "SE01" / "IM0001.dcm"
    run = export(program, study, "json", file)
    checks.that(run.status == 1 and len(run.messages) == 1 and "is a DICOM file" in run.messages[0] and run.out == "",
                "an image is never replaced", run)
    run = export(program, study, "json", study)
    checks.that(run.status == 1 and len(run.messages) == 1 and "is a folder" in run.messages[0], "nor a folder", run)
    run = export(program, study, "json", "/dev/null")
    checks.that(run.status == 1 and len(run.messages) == 1 and "no ordinary file" in run.messages[0], "nor a device", run)
    checks.that(contents(study) == before, "and all is as it was")

    file = top / "again.csv"
    file.write_text("an earlier text, " * 10000)
    run = export(program, study, "csv", file)
    checks.that(run.status == 0 and file.read_text().startswith("study,kind,") and "earlier" not in file.read_text(),
                "an earlier file is replaced whole", run)

    shown = Run(program, ["show", study, "--json"])
    run = export(program, study, "csv", study / "levels.csv")
    checks.that(run.status == 0, "a file may go into the study's folder", run)
    again = Run(program, ["show", study, "--json"])
    checks.that(again.status == 0 and again.out == shown.out and again.messages == [], "and does not disturb the study")


def check_other_frame(checks, program, top, study):
    """Slices in another frame of reference are told of where slices are listed."""
    folder = shutil.copytree(study, top / "other-frame")
    for path in (folder / "SE03").iterdir():
        image = pydicom.dcmread(path)
        image.FrameOfReferenceUID = "1.2.3.4"
        image.save_as(path)
    for kind, told in (("csv", 1), ("json", 1), ("slicer", 0), ("sct", 0)):
        run = export(program, folder, kind, top / "other-frame.nii")
        checks.that(run.status == 0 and len(run.messages) == told and
                    all("frame of reference" in line for line in run.messages), f"{kind}: {told} warning", run)


def check_database(checks, program, top, study):
    database = top / "database"
    uid = Run(program, ["show", study, "--json"]).json()["study"]
    run = Run(program, ["import", study, "--database", database])
    checks.that(run.status == 0, "import ends well", run)
    file = top / "database.json"
    run = Run(program, ["export", uid, "--database", database, "--format", "json", "--out", file])
    checks.that(run.status == 0 and json.loads(file.read_text())["study"] == uid, "a study of a database is exported", run)


def check_real_study(checks, program, top, schema, data):
    """The discs that were read by eye lie in the patient where the volume says."""
    folder = shutil.copytree(data, top / "real")
    reference = json.loads((folder / "reference_discs.json").read_text())
    discs = {disc["level"].replace("/", "-"): disc for disc in reference["discs"] if disc["level"] != "T11/T12"}
    stack = images(folder / reference["sagittal_series"], 0)
    drawn = [image.SOPInstanceUID for image in stack].index(reference["sagittal_sop"])
    polygon = ",".join(str(number) for disc in discs.values() for number in disc["pixel"])
    run = Run(program, ["label", folder, "--series", stack[0].SeriesNumber, "--slice", drawn, "--polygon", polygon,
                        "--region", "lumbar"])
    checks.that(run.status == 0, "the real study is labelled", run)
    shown = Run(program, ["show", folder, "--json"]).json()
    check_json(checks, program, folder, shown, schema, top / "real.json")
    check_sct(checks, program, folder, shown, stack, top / "real.nii")
    volume = nibabel.load(top / "real.nii")
    for voxel in np.argwhere(volume.dataobj):
        name = next(name for name, number in SCT_NUMBERS.items() if number == volume.dataobj[tuple(voxel)])
        checks.that(voxel[2] == drawn and np.all(np.abs(voxel[:2] - discs[name]["pixel"]) <= 1),
                    f"{name}: at the pixel that was drawn, {voxel}")
        place = np.diag([-1, -1, 1]) @ (volume.affine @ [*voxel, 1])[:3]
        checks.that(np.linalg.norm(place - discs[name]["patient"]) < 1, f"{name}: where it lies in the patient, {place}")


def check_phantoms(checks, program, top, schema):
    study = check_study(checks, program, top, schema, "lumbar", 1, 0)
    check_study(checks, program, top, schema, "cervical", 1, 0)
    check_study(checks, program, top, schema, "thoracic", 2, 1)
    for region, disc in (("cervical", "C7-C8"), ("thoracic", "T12-T13"), ("lumbar", "L5-L6")):
        check_extra_vertebra(checks, program, top, schema, region, disc)
    check_refusals(checks, program, top, study)
    check_other_frame(checks, program, top, study)
    check_database(checks, program, top, study)
    check_target(checks, program, top, study)
    run = Run(program, ["export", "--help"])
    checks.that(run.status == 0 and "Example:" in run.out and len(run.out.splitlines()) <= 24 and
                all(len(line) <= 80 for line in run.out.splitlines()), "the help fits a screen", run)


def main():
    program, schema_file, *data = sys.argv[1:]
    schema = json.loads(pathlib.Path(schema_file).read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        if data:
            check_real_study(checks, program, top, schema, shared_data(data[0], "lspine_mr_a"))
        else:
            check_phantoms(checks, program, top, schema)
    checks.finish()


main()
