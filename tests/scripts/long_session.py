#!/usr/bin/python3
"""A long session: 1,000 drags of the curve's vertices on a study of 150 slices. Its dumps are complete, and the same to
the byte when it is played again on a fresh copy of the study.

usage: long_session.py VERTANA [--seconds LIMIT]

With a limit it prints what the faster play took, and fails where the processor was busy with it for longer. Time that
passed while other programs had the processor does not count; on a machine that has nothing else to do both are the
same, since the command neither waits nor uses a second processor.

The study has two sagittal series of 15 slices and three axial ones of 40. Curve, planes and the name of each axial
slice are worked out by the naming oracle from the places that the vertices were dragged to.
"""
import json
import math
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
import compare  # noqa: E402
import states  # noqa: E402
from phantoms import phantom  # noqa: E402
from states import naming  # noqa: E402

DRAGS = 1000
DRAGS_A_DUMP = 100
SAGITTAL, AXIAL = (1, 2), (3, 4, 5)
# Six discs of the lumbar phantom lie about so on the middle slice of its sagittal series.
DISCS = [(198, 45), (207, 90), (210, 136), (208, 182), (205, 228), (206, 272)]


def write_study(program, folder):
    """Made from the slices of a phantom; the axial series stand a little lower each."""
    import pydicom
    from pydicom.uid import generate_uid
    with tempfile.TemporaryDirectory(prefix="vertana-long-") as temporary:
        source = phantom(program, pathlib.Path(temporary) / "phantom", "--region", "lumbar")
        shutil.copytree(source / "SE01", folder / "SE01")
        shutil.copy(source / "truth.json", folder)
        for number in SAGITTAL[1:] + AXIAL:
            files = sorted((source / ("SE01" if number in SAGITTAL else "SE03")).iterdir())
            uid = generate_uid(entropy_srcs=["vertana long session", str(number)])
            (folder / f"SE{number:02}").mkdir()
            for index, file in enumerate(files if number in SAGITTAL else files[6:46]):
                image = pydicom.dcmread(file)
                image.SeriesInstanceUID, image.SeriesNumber, image.InstanceNumber = uid, number, index + 1
                image.SOPInstanceUID = image.file_meta.MediaStorageSOPInstanceUID = \
                    generate_uid(entropy_srcs=[uid, str(index)])
                if number in AXIAL:
                    image.ImagePositionPatient[2] -= 1.125 * (number - AXIAL[0])
                image.save_as(folder / f"SE{number:02}" / file.name)
    assert len(list(folder.rglob("IM*.dcm"))) == 150


def drags():
    """Each vertex in turn, up to seven pixels away from its disc."""
    for number in range(DRAGS):
        vertex = number % len(DISCS)
        x, y = DISCS[vertex]
        yield vertex, (x + round(8 * 7 * math.sin(0.7 * number)) / 8, y + round(8 * 7 * math.cos(1.3 * number)) / 8)


def script():
    """The steps, and the curve's vertices at each dump."""
    steps = [{"do": "openStudy", "path": "study"}, {"do": "menu", "viewer": 0, "title": "Labels"},
             {"do": "palette", "set": {"anatomicalRegion": 2, "drawMode": 1}},
             {"do": "draw", "viewer": 0, "slice": 7, "type": "polygon", "points": DISCS}]
    vertices, at_dumps = list(DISCS), []
    for number, (vertex, place) in enumerate(drags(), start=1):
        steps.append({"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": vertex, "to": place})
        vertices[vertex] = place
        if number % DRAGS_A_DUMP == 0:
            steps.append({"do": "dump", "name": f"after {number} drags"})
            at_dumps.append(list(vertices))
    return {"steps": steps}, at_dumps


def processor_seconds():
    """Of the programs that were run so far."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def play(program, folder):
    """What is printed, the seconds that the processor was busy with it, and those that passed."""
    began, busy = time.monotonic(), processor_seconds()
    done = subprocess.run([program, "play", "script.json"], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=600, check=False, env=dict(os.environ, XDG_CONFIG_HOME=str(folder / "settings")))
    seconds = processor_seconds() - busy, time.monotonic() - began
    if done.returncode != 0 or done.stderr:
        sys.exit(f"FAILED: status {done.returncode}: {done.stderr.decode()[:2000]}")
    return done.stdout, seconds


def axial_names(planes, spine, number):
    """The oracle's name of each slice of a series that has one, by the slice's index."""
    stack = sorted((s for s in spine.slices if s.series == number), key=lambda s: -s.position[2])
    names = [naming.name_of_slice(each.centre(), naming.vector32(each.normal), planes, spine.names)[0]
             for each in stack]
    return {index: name for index, name in enumerate(names) if name is not None}


def differences_of(dump, vertices, spine):
    """What of a dump is not as it must be, or not there."""
    yield from compare.misshapen(dump)
    where = dump["name"]
    sagittal = sorted((s for s in spine.slices if s.series == 1), key=lambda s: s.position[0])[7]
    planes = naming.planes_of(vertices, 6, sagittal.to_patient)
    comparison = compare.Comparison()
    comparison.compare(f"{where}: curve", [list(v) for v in vertices], dump["plugin"]["openPolygonROI"]["points"])
    records = [{"name": name, "point": list(point), "vector": list(vector)}
               for name, (point, vector) in zip(states.LUMBAR_DISCS, planes)]
    comparison.compare(f"{where}: planes", records, dump["plugin"]["intervertebralPlanes"])
    comparison.compare(f"{where}: viewers", [[1, 15], [2, 15], [3, 40], [4, 40], [5, 40]],
                       [[each["series"], each["slices"]] for each in dump["viewers"]])
    for viewer in dump["viewers"]:
        title = f"{where}: series {viewer['series']}"
        named = [(roi["slices"], roi["name"]) for roi in viewer["rois"] if "VertanaFilterAxialLabel" in roi["tags"]]
        labels = sorted(roi["name"] for roi in viewer["rois"] if "VertanaFilterLabel" in roi["tags"])
        if viewer["series"] in SAGITTAL:
            comparison.compare(f"{title}: labels", states.LUMBAR_VERTEBRAE, labels)
            continue
        found = {index: name for slices, name in named for index in slices}
        expected = axial_names(planes, spine, viewer["series"])
        if sum(len(slices) for slices, _ in named) != len(found) or len(expected) < 35:
            comparison.differ(title, "a name a slice", named)
        comparison.compare(title, [expected.get(i) for i in range(40)], [found.get(i) for i in range(40)])
    yield from comparison.differences


def main():
    program = os.path.abspath(sys.argv[1])
    limit = float(sys.argv[3]) if sys.argv[2:3] == ["--seconds"] else None
    steps, at_dumps = script()
    with tempfile.TemporaryDirectory(prefix="vertana-long-") as temporary:
        top = pathlib.Path(temporary)
        write_study(program, top / "study")
        spine = naming.Phantom(top / "study")
        printed, seconds = [], []
        for turn in ("first", "second"):
            (top / turn).mkdir()
            shutil.copytree(top / "study", top / turn / "study")
            (top / turn / "script.json").write_text(json.dumps(steps))
            out, took = play(program, top / turn)
            printed.append(out)
            seconds.append(took)
    lines = printed[0].decode().splitlines()
    problems = [] if len(lines) == len(at_dumps) else [f"{len(lines)} dumps, expected {len(at_dumps)}"]
    if printed[0] != printed[1]:
        problems.append("two plays print different bytes")
    for line, vertices in zip(lines, at_dumps):
        problems += differences_of(json.loads(line), vertices, spine)
    if limit is not None:
        busy, passed = min(seconds)
        print(f"{DRAGS} drags on 150 slices, {len(lines)} dumps: {busy:.2f} s of the processor (limit {limit:g} s), "
              f"{passed:.2f} s passed")
        if busy > limit:
            problems.append(f"the session takes longer than {limit:g} s")
    for problem in problems:
        print(f"FAILED: {problem}")
    print(f"{len(lines)} dumps of {DRAGS} drags, {len(problems)} problems")
    sys.exit(1 if problems else 0)


main()
