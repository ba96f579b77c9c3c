#!/usr/bin/python3
"""What `vertana play` refuses: the exit status and the one line that tells why; nothing after it is done.

usage: refusals.py VERTANA
"""
import ctypes
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
    ([{"do": "openStudy", "path": "closed/lumbar"}], 3, 1, "closed/lumbar cannot be reached: Permission denied."),
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
    ([SHOW, {**LINE, "moves": 1000000000}], 2, 2, "\"moves\" must be at most 10000."),
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
    ([SHOW, {"do": "addReport", "path": "nowhere", "file": "report"}], 3, 2, "nowhere does not exist."),
    ([SHOW, {"do": "addReport", "path": "/proc", "file": "report"}], 1, 2,
     "report could not be copied to /proc/report: "),
    ([SHOW, {"do": "addReport", "path": "lumbar", "file": "neck"}], 3, 2,
     "neck is a folder: give the file of one report."),
    ([SHOW, {"do": "addReport", "path": "lumbar", "file": "/dev/null"}], 3, 2,
     "/dev/null is no report that can be added to a study: it is no ordinary file."),
    ([SHOW, {"do": "addReport", "path": "lumbar", "file": "text"}], 3, 2,
     "text is no report that can be added to a study: it is no DICOM file."),
    ([SHOW, {"do": "addReport", "path": "lumbar", "file": "neck/SE01/IM0001.dcm"}], 3, 2,
     "IM0001.dcm is no report that can be added to a study: it is not a structured report."),
    # The whole script is checked before its first step.
    ([{"do": "openStudy", "path": "nowhere"}, {"do": "dump"}, {"do": "zoom", "viewer": 0, "scale": "1"}], 2, 3,
     "\"scale\" must be a number."),
]


# Files that are no scripts, and what is told of them.
UNREADABLE = [
    ("absent", "The script absent cannot be read: check that there is such a file."),
    ("text/script", "The script text/script cannot be read: check that there is such a file."),
    ("lumbar", "The script lumbar cannot be read: it is a folder; give the file that holds the script."),
    ("locked", "The script locked cannot be read: you have no permission to; ask its owner for it."),
    ("/proc/self/mem", "The script /proc/self/mem cannot be read (Input/output error): check the disk or the medium it "
                       "is on and try again."),
    ("/dev/zero", "The script /dev/zero cannot be read: it is longer than 64 MB, as no script is."),
    ("text", "The script is not JSON: line 1, column 2 does not fit."),
]

LIBC = ctypes.CDLL(None)
PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH = 24, 1, 2


def obey_permissions():
    """Root may read anything, but not without these."""
    for capability in (CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH) if os.geteuid() == 0 else ():
        if LIBC.prctl(PR_CAPBSET_DROP, capability, 0, 0, 0) != 0:
            raise OSError("root's privileges cannot be dropped")


def play(program, folder, script, *options, out=subprocess.PIPE):
    return subprocess.run([program, "play", script, *options], cwd=folder, stdin=subprocess.DEVNULL, text=True,
                          stdout=out, stderr=subprocess.PIPE, timeout=300, check=False, preexec_fn=obey_permissions,
                          env=dict(os.environ, XDG_CONFIG_HOME=str(folder / "settings")))


def check(done, status, parts):
    lines = done.stderr.splitlines()
    if done.returncode == status and len(lines) == 1 and all(part in lines[0] for part in parts) and not done.stdout:
        return 0
    print(f"FAILED: {status}, {parts}: {done.returncode}, {lines}, {done.stdout[:200]}")
    return 1


def contents(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def make_report(program, folder):
    """The report of a labelling, in a file of its own."""
    (folder / "script").write_text(json.dumps({"steps": [SHOW, LABELS, LINE, {"do": "palette", "press": "close"}]}))
    before = set((folder / "lumbar").rglob("*.dcm"))
    done = play(program, folder, "script")
    new = set((folder / "lumbar").rglob("*.dcm")) - before
    if done.returncode != 0 or len(new) != 1:
        raise RuntimeError(f"no labelling was stored: {done.stderr}")
    new.pop().rename(folder / "report")
    (folder / "script").unlink()


def check_database(program, folder):
    """What another program cannot put into a database, nor put there again."""
    failed = 0
    add = {"do": "addReport", "path": "lumbar", "file": "report"}
    rows = [
        ([{**add, "file": "text"}], 3, "text is no report that can be added to a study: it is no DICOM file."),
        ([{**add, "path": "nowhere"}], 3, "nowhere does not exist."),
        ([add, add], 1, "report was not added: the database holds it already."),
        ([{**add, "file": "longer"}], 1, "longer was not added: its SOP Instance UID is that of "),
    ]
    for steps, status, part in rows:
        (folder / "longer").write_bytes((folder / "report").read_bytes() + b"\xfc\xff\xfc\xff\0\0\0\0")
        (folder / "script").write_text(json.dumps({"steps": steps}))
        failed += check(play(program, folder, "script", "--database", "base"), status,
                        [f"Step {len(steps)} of {len(steps)}", part])
    return failed


def check_full_disk(program, folder):
    """A dump that is lost ends the script: nothing is stored after it."""
    steps = [SHOW, {"do": "dump"}, LABELS, LINE, {"do": "palette", "press": "close"}]
    (folder / "script").write_text(json.dumps({"steps": steps}))
    before = contents(folder)
    with open("/dev/full", "w", encoding="utf-8") as full:
        done = play(program, folder, "script", out=full)
    failed = check(done, 1, ["Step 2 of 5, \"dump\": The dump could not be written to standard output."])
    if contents(folder) != before:
        print("FAILED: a labelling was stored after the dump that was lost")
        failed += 1
    return failed


def main():
    program = sys.argv[1]
    failed = 0
    with tempfile.TemporaryDirectory(prefix="vertana-refusals-") as temporary:
        folder = pathlib.Path(temporary)
        for name, options in (("lumbar", ["--region", "lumbar"]), ("neck", ["--region", "cervical", "--seed", "2"])):
            phantom(program, folder / name, *options)
        (folder / "empty").mkdir()
        (folder / "closed").mkdir(mode=0)
        (folder / "text").write_text("no DICOM\n")
        make_report(program, folder)
        before = contents(folder)
        for steps, status, step, part in ROWS:
            (folder / "script").write_text(json.dumps({"steps": steps + [{"do": "dump"}]}))
            failed += check(play(program, folder, "script"), status, [f"Step {step} of {len(steps) + 1}", part])
        (folder / "script").unlink()
        if contents(folder) != before:
            print("FAILED: what is refused changes nothing")
            failed += 1
        shutil.rmtree(folder / "neck")
        (folder / "locked").touch(mode=0)
        for name, sentence in UNREADABLE:
            failed += check(play(program, folder, name), 3, [f"vertana: {sentence}"])
        failed += check_database(program, folder)
        failed += check_full_disk(program, folder)
        (folder / "closed").chmod(0o700)
    print(f"{len(ROWS) + len(UNREADABLE) + 6} refusals, {failed} failed")
    sys.exit(1 if failed else 0)


main()
