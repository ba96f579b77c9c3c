#!/usr/bin/python3
"""What `vertana play` refuses: the exit status and the one line that tells why; nothing after it is done.

usage: refusals.py VERTANA
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "support"))
from phantoms import phantom  # noqa: E402

OPEN = {"do": "openStudy", "path": "lumbar"}
SHOW = {"do": "openViewer", "path": "lumbar", "series": 1}
LABELS = {"do": "menu", "viewer": 0, "title": "Labels"}
LINE = {"do": "draw", "viewer": 0, "slice": 7, "type": "line", "points": [[160, 40], [160, 290]]}
POLYGON = {**LINE, "type": "polygon", "points": [[160, 40], [160, 165], [160, 290]], "release": False}
DRAG = {"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 0, "to": [1, 1]}
# Steps, exit status, the step that is refused (from 1) and a part of the sentence.
ROWS = [
    ([{"do": "openStudy", "path": "nowhere"}], 3, 1, "nowhere does not exist."),
    ([{"do": "openStudy", "path": ""}], 3, 1, "A path without a name does not exist."),
    ([{"do": "openStudy", "path": "empty"}], 3, 1, "empty holds no DICOM image that can be shown."),
    ([{"do": "openStudy", "study": "1.2.3"}], 1, 1, "The study 1.2.3 is not in the database, nor in a folder opened"),
    ([{**SHOW, "series": 9}], 1, 1, "has no stack 0 in a series with the number 9."),
    ([{**SHOW, "stack": -1}], 1, 1, "has no stack -1 in a series with the number 1."),
    ([{**SHOW, "path": "."}], 1, 1, ". holds 2 studies: open it with \"openStudy\""),
    ([SHOW, {"do": "switchSeries", "viewer": 0, "series": 1, "stack": 1}], 1, 2, "has no stack 1 in a series"),
    ([SHOW, {"do": "switchSeries", "viewer": 1, "series": 1}], 1, 2, "No viewer with the number 1 is open."),
    ([SHOW, {"do": "closeViewer", "viewer": -1}], 1, 2, "No viewer with the number -1 is open."),
    ([SHOW, {"do": "draw", "viewer": 3, "type": "line", "points": [[1, 1], [2, 2]]}], 1, 2, "No viewer with the number"),
    ([SHOW, {"do": "scroll", "viewer": 0, "slice": 15}], 1, 2, "its slices are 0 to 14."),
    ([SHOW, {"do": "tool", "viewer": 0, "roi": 7}], 1, 2,
     "There is no annotation tool 7: choose 5 (length line), 10 (open polygon), 13 (text), 14 (arrow) or 19 (point)."),
    ([SHOW, {"do": "zoom", "viewer": 0, "scale": 0}], 1, 2, "The zoom of viewer 0 must be a finite number above 0."),
    ([SHOW, LABELS, LINE, {**DRAG, "vertex": 6}], 1, 4, " has no vertex 6: it has 6, counted from 0."),
    ([SHOW, LABELS, {"do": "palette", "set": {"drawMode": 1}}, POLYGON, {**DRAG, "roi": "input"}], 1, 5,
     " is still being drawn: end the drawing first."),
    ([SHOW, {"do": "release", "viewer": 0}], 1, 2, "Nothing is being drawn in viewer 0."),
    ([SHOW, DRAG], 1, 2, "The plug-in has no curve."),
    ([SHOW, {"do": "deleteROI", "viewer": 0, "roi": "input"}], 1, 2, "The plug-in takes no annotation as input."),
    ([SHOW, {"do": "deleteROI", "viewer": 0, "id": 5}], 1, 2, "Viewer 0 holds no annotation with the id 5."),
    ([SHOW, {"do": "palette", "press": "close"}], 1, 2, "No palette is open"),
    ([SHOW, {"do": "palette", "press": "reset"}], 1, 2, "No palette is open"),
    ([SHOW, {"do": "palette", "set": {"drawMode": 1}}], 1, 2, "No palette is open"),
    ([SHOW, {"do": "undo"}], 1, 2, "There is nothing to undo."),
    ([SHOW, {"do": "addReport", "path": "lumbar", "file": "none.dcm"}], 3, 2, "none.dcm does not exist."),
    ([SHOW, {"do": "addReport", "path": "nowhere", "file": "text"}], 3, 2, "nowhere does not exist."),
    ([SHOW, {"do": "addReport", "path": "/proc", "file": "text"}], 1, 2, "text could not be copied to /proc/text: "),
    # The whole script is checked before its first step.
    ([{"do": "openStudy", "path": "nowhere"}, {"do": "dump"}, {"do": "zoom", "viewer": 0, "scale": "1"}], 2, 3,
     "\"scale\" must be a number."),
]


def play(program, folder, script, *options):
    return subprocess.run([program, "play", script, *options], cwd=folder, stdin=subprocess.DEVNULL, text=True,
                          capture_output=True, timeout=300, check=False,
                          env=dict(os.environ, XDG_CONFIG_HOME=str(folder / "settings")))


def check(done, status, parts):
    lines = done.stderr.splitlines()
    if done.returncode == status and len(lines) == 1 and all(part in lines[0] for part in parts) and not done.stdout:
        return 0
    print(f"FAILED: {status}, {parts}: {done.returncode}, {lines}, {done.stdout[:200]}")
    return 1


def main():
    program = sys.argv[1]
    failed = 0
    with tempfile.TemporaryDirectory(prefix="vertana-refusals-") as temporary:
        folder = pathlib.Path(temporary)
        for name, options in (("lumbar", ["--region", "lumbar"]), ("neck", ["--region", "cervical", "--seed", "2"])):
            phantom(program, folder / name, *options)
        (folder / "empty").mkdir()
        (folder / "text").write_text("no DICOM\n")
        for steps, status, step, part in ROWS:
            (folder / "script").write_text(json.dumps({"steps": steps + [{"do": "dump"}]}))
            failed += check(play(program, folder, "script"), status, [f"Step {step} of {len(steps) + 1}", part])
        shutil.rmtree(folder / "neck")
        failed += check(play(program, folder, "absent"), 3, ["The script absent cannot be read: check that there is such a file."])
        failed += check(play(program, folder, "text"), 3, ["The script is not JSON"])
        (folder / "script").write_text(json.dumps({"steps": [{"do": "addReport", "path": "lumbar", "file": "text"}]}))
        failed += check(play(program, folder, "script", "--database", "base"), 1,
                        ["text was not added: it is no DICOM object, or the database holds it already."])
    print(f"{len(ROWS) + 3} refusals, {failed} failed")
    sys.exit(1 if failed else 0)


main()
