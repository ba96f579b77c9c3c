#!/usr/bin/python3
"""What the command says of folders with other things in them, of the past of a study, and when it is interrupted; each
in whole sentences. What it refuses is in refusals.py.

usage: messages.py VERTANA
"""
import fcntl
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile

import pydicom

from program import Checks, Run, interrupted, on_terminal, phantom
from reports import BLOCK_ARCHIVE, BLOCK_CREATOR, BLOCK_GROUP, archive_of, report_files

LINE = ["--line", "165,35,160,275"]


def told(checks, run, status, *sentences):
    """Each is a line, or the end of one, of what the run prints."""
    checks.that(run.status == status, f"status {status}", run)
    lines = run.out.splitlines() + run.messages
    for sentence in sentences:
        checks.that(any(line.endswith(sentence) for line in lines), f"it says: {sentence}", run)


def is_whole(run, beginning):
    """Whether one message begins so, goes on, and ends as a sentence does."""
    lines = [line for line in run.messages if line.startswith(f"vertana: {beginning}")]
    return len(lines) == 1 and re.fullmatch(r".*[^.: ]\.", lines[0]) is not None


def another_object(image, target):
    """A DICOM object that is no image."""
    header = pydicom.dcmread(image)
    del header.PixelData
    header.SOPClassUID = header.file_meta.MediaStorageSOPClassUID = "1.2.840.10008.5.1.4.1.1.66"  # Raw Data Storage
    header.SOPInstanceUID = header.file_meta.MediaStorageSOPInstanceUID = pydicom.uid.generate_uid()
    header.save_as(target)


def check_without_images(checks, program, image, top):
    """A folder without one image: what it does hold is counted."""
    nothing = " holds no DICOM image that can be shown: "
    for count, sentence in ((1, "1 file is not DICOM."), (2, "2 files are not DICOM.")):
        folder = top / f"texts-{count}"
        folder.mkdir()
        for number in range(count):
            (folder / f"{number}.txt").write_text("no DICOM\n")
        told(checks, Run(program, ["info", folder]), 3, f"{folder}{nothing}{sentence}")
    for count, sentence in ((1, "1 DICOM object is no image."), (2, "2 DICOM objects are no images.")):
        folder = top / f"objects-{count}"
        folder.mkdir()
        for number in range(count):
            another_object(image, folder / f"{number}.dcm")
        told(checks, Run(program, ["info", folder]), 3, f"{folder}{nothing}{sentence}")
    for count, sentence in ((1, "1 file cannot be used, 1 file is not DICOM."),
                            (2, "2 files cannot be used, 1 file is not DICOM.")):
        folder = top / f"broken-{count}"
        folder.mkdir()
        (folder / "notes.txt").write_text("no DICOM\n")
        for number in range(count):
            (folder / f"{number}.dcm").write_bytes(image.read_bytes()[:3000])
        run = Run(program, ["info", folder])
        told(checks, run, 3, f"{folder}{nothing}{sentence}")
        checks.that(is_whole(run, f"{folder}/0.dcm cannot be used: "), "it is named", run)


def check_left_out(checks, program, study, folder):
    """A folder with an image and other things: they are told of below the series."""
    folder.mkdir()
    image = study / "SE01" / "IM0001.dcm"
    shutil.copy(image, folder / "a.dcm")
    for count, objects, copies, shown in (
            (1, "1 file that is not DICOM, 1 DICOM object that is no image, 1 copy of an image above",
             "1 file holds an image that another file of the study holds too and is not shown twice: ", "b-1.dcm"),
            (2, "2 files that are not DICOM, 2 DICOM objects that are no images, 2 copies of images above",
             "2 files hold images that another file of the study holds too and are not shown twice: the first is ",
             "b-1.dcm")):
        shutil.copy(image, folder / f"b-{count}.dcm")
        (folder / f"{count}.txt").write_text("no DICOM\n")
        another_object(image, folder / f"object-{count}.dcm")
        told(checks, Run(program, ["info", folder]), 0, f"Left out: {objects}.",
             f"{copies}{folder}/{shown}, a copy of {folder}/a.dcm.")
    broken = folder / "no-place.dcm"
    header = pydicom.dcmread(study / "SE01" / "IM0002.dcm")
    del header.ImagePositionPatient
    header.save_as(broken)
    run = Run(program, ["import", folder, "--database", folder.parent / "mixed database"])
    checks.that(run.status == 0, "what is good of it is imported", run)
    (folder / "broken.dcm").write_bytes(image.read_bytes()[:3000])
    run = Run(program, ["import", folder, "--database", folder.parent / "mixed database"])
    checks.that(is_whole(run, f"{folder}/broken.dcm cannot be imported: "), "bad ones not", run)
    run = Run(program, ["info", folder])
    checks.that(is_whole(run, f"{broken} is shown but cannot be labelled: "), "it is shown", run)


def check_past(checks, program, study, top):
    """What a history and the summary say of labellings of every kind."""
    folder = shutil.copytree(study, top / "past")
    run = Run(program, ["label", folder, *LINE, "--extra-vertebra"])
    checks.that(run.status == 0, "the study is labelled", run)
    told(checks, Run(program, ["history", folder]), 0, "lumbar with an extra vertebra, T12-L1 to L6-S1",
         "* counts. To make another one count: vertana restore STUDY --object NUMBER")
    told(checks, Run(program, ["restore", folder, "--object", "2"]), 1,
         "--object 2: the study's history holds 1 labelling, counted from 1.")

    steps = [{"do": "openStudy", "path": str(folder)}, {"do": "menu", "viewer": 0, "title": "Labels"},
             {"do": "palette", "press": "reset"}, {"do": "palette", "press": "close"}]
    (top / "reset.json").write_text(json.dumps({"steps": steps}))
    told(checks, Run(program, ["play", top / "reset.json"]), 0)
    told(checks, Run(program, ["history", folder]), 0, "no labelling (reset)")
    told(checks, Run(program, ["info", folder]), 0, "Labels   none stored (reset)")
    told(checks, Run(program, ["show", folder]), 1,
         f"The study in {folder} holds no labelling any more (it was reset): draw one with vertana label.")
    run = Run(program, ["restore", folder, "--object", "1"])
    first = pydicom.dcmread(report_files(folder)[0]).SOPInstanceUID
    told(checks, run, 0, f"The labelling of {first} counts again, as a new object.")
    told(checks, Run(program, ["show", folder]), 0,
         "Stored: the lumbar spine with an extra vertebra, drawn on series 1, slice 7 of 0-14.")
    checks.that(len(report_files(folder)) == 3, "an earlier one counts again, as a new object")

    newest = report_files(folder)[-1]
    report = pydicom.dcmread(newest)
    archive = archive_of(report)
    report.private_block(BLOCK_GROUP, BLOCK_CREATOR)[BLOCK_ARCHIVE].value = archive[:len(archive) // 4 * 2]
    report.save_as(newest)
    run = Run(program, ["info", folder])
    checks.that(is_whole(run, f"{newest} does not count as a labelling: "), "it is named", run)
    run = Run(program, ["history", folder])
    checks.that(re.search(r"^ +3   \S+ \S+  cannot be read: (?!The archive)\w", run.out, re.MULTILINE),
                "history tells why", run)
    report = pydicom.dcmread(newest)
    report.remove_private_tags()
    report.save_as(newest)
    for command in ("history", "info"):
        run = Run(program, [command, folder])
        checks.that(" (read from its standard content)" in run.out, f"{command} tells of a report without archive", run)
    del report.ContentTime
    report.save_as(newest)
    run = Run(program, ["history", folder])
    checks.that("(no time)" in run.out, "history shows a report without a time", run)
    told(checks, Run(program, ["info", study]), 0, "Labels   none stored")
    before = Run(program, ["history", folder, "--json"]).json()["labellings"]
    for length in (newest.stat().st_size - 1, 3000):  # the whole header is in it
        newest.write_bytes(newest.read_bytes()[:length])
        # UIDs are not equally long each time, so the end lies in an element or between two.
        run = Run(program, ["info", folder])
        found = re.search(re.escape(str(newest)) + r" does not count as a labelling: "
                          r"(it is truncated or damaged: it ends in the middle of an element|"
                          r"its structure is damaged \([A-Z][A-Za-z ]+\))\.$", "\n".join(run.messages), re.MULTILINE)
        checks.that(run.status == 0 and found, f"{length} bytes: info says why it does not count", run)
        damage = found[1] if found else "?"
        run = Run(program, ["history", folder])
        told(checks, run, 0, f"cannot be read: {damage}")
        after = Run(program, ["history", folder, "--json"]).json()["labellings"]
        checks.that([each["object"] for each in after] == [each["object"] for each in before],
                    f"{length} bytes: each labelling keeps its number", run)
    told(checks, Run(program, ["show", folder]), 1,
         f"The stored labelling {newest} does not count, for it cannot be read: {damage}.")


def listens(process):
    """Whether it catches the interrupt key by now."""
    try:
        text = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    except OSError:
        return True
    caught = [line.split()[1] for line in text.splitlines() if line.startswith("SigCgt:")]
    return bool(caught) and int(caught[0], 16) >> (signal.SIGINT - 1) & 1 == 1


def check_interrupts(checks, program, study, top):
    """Each kind of long work, begun on a study that takes a while."""
    long = top / "base" / "studies"  # which is also what a database folder without an index holds
    for number in range(20):
        shutil.copytree(study, long / str(number), copy_function=os.link)
    database = top / "database"
    cases = [
        (["info", long], listens, f"Interrupted while reading {long}; nothing was changed."),
        (["import", long, "--database", database], listens,
         f"Interrupted: the database {database} is as it was before."),
        (["phantom", "--region", "lumbar", "--ct", "--out", top / "new"], lambda _: list((top / "new").glob("*/*")),
         f"Interrupted; nothing was left in {top / 'new'}."),
    ]
    for arguments, begun, sentence in cases:
        status, _, messages = interrupted(program, arguments, begun)
        checks.that(status == 1 and messages == f"vertana: {sentence}\n", f"{arguments}: {status}, {messages}")
    check_reading(checks, program, long, top)
    pictures = top / "pictures"
    if Run(program, ["render", study, "--out", top / "all pictures"]).status == 0:  # the painting module is built
        arguments = ["render", study, "--out", pictures]
        status, _, messages = interrupted(program, arguments, lambda _: list(pictures.glob("*.png")))
        checks.that(status == 1 and messages == "vertana: Interrupted while painting.\n", f"{status}, {messages}")

    script = top / "script"
    os.mkfifo(script)
    (top / "play.json").write_text('{"steps": [{"do": "dump"}]}')
    with subprocess.Popen([program, "play", str(script)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          text=True) as process:
        with open(script, "w", encoding="utf-8") as pipe:  # which waits for the other end
            process.send_signal(signal.SIGINT)
            pipe.write('{"steps": [{"do": "dump"}]}')
        out, messages = process.communicate(timeout=300)
    checks.that(process.returncode == 1 and out == "" and messages ==
                'vertana: Step 1 of 1, "dump": Interrupted before it.\n', f"a script: {out}, {messages}")


def check_reading(checks, program, long, top):
    """A study that takes a while is read with progress on a terminal, and no longer than until the interrupt key."""
    (top / "open.json").write_text(json.dumps({"steps": [{"do": "openStudy", "path": str(long)}]}))
    play, database, base = ["play", top / "open.json"], top / "played", long.parent
    import_one = ["import", long / "0" / "SE01" / "IM0001.dcm", "--database"]
    as_it_was = "Interrupted: the database {} is as it was before."
    step = 'Step 1 of 1, "openStudy": '
    cases = [(play, "Reading the study", f"{step}Interrupted while reading {long}."),
             ([*play, "--database", database], "Importing", step + as_it_was.format(database)),
             ([*play, "--database", base], "Reading the study", f"Interrupted while reading {base}."),
             ([*import_one, base], "Reading the study", as_it_was.format(base))]
    for arguments, what, sentence in cases:
        status, out, shown = on_terminal(program, arguments, what.encode())
        wanted = rf"(\r{what} \d+ % \(\d+ of (\d+)\)\x1b\[K)+\r\x1b\[Kvertana: {re.escape(sentence)}\r\n"
        checks.that(status == 1 and out == "" and re.fullmatch(wanted, shown) and " 100 %" not in shown,
                    f"{arguments}: {status}, {shown!r}")
    busy = top / "busy"
    busy.mkdir()
    with open(busy / "import.lock", "wb") as lock:  # as another import does
        fcntl.flock(lock, fcntl.LOCK_EX)
        status, out, shown = on_terminal(program, [*import_one, busy], b"waiting")
    wanted = (f"\rImporting: waiting for another import into {busy}\x1b[K\r\x1b[K"
              f"vertana: {as_it_was.format(busy)}\r\n")
    checks.that(status == 1 and out == "" and shown == wanted, f"an import waits for another: {status}, {shown!r}")


def check_without_plugin(checks, program, study):
    """What needs no plug-in goes on, and says why it is without."""
    os.environ["VERTANA_PLUGIN"] = "/nowhere/Vertana.plugin"
    sentence = "vertana: The plug-in /nowhere/Vertana.plugin cannot be loaded: there is no such folder."
    for command, status in ((["info", study], 0), (["history", study], 0), (["restore", study, "--object", 1], 0),
                            (["show", study], 3), (["label", study, *LINE], 3)):
        run = Run(program, command)
        checks.that(run.status == status and run.messages == [sentence] and bool(run.out) == (status == 0),
                    f"{command[0]} without the plug-in: status {status}", run)
    del os.environ["VERTANA_PLUGIN"]


def check_demo(checks, program):
    for folder in ("/proc", "/nowhere at all"):
        done = subprocess.run([program, "demo"], env=dict(os.environ, TMPDIR=folder), capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, check=False)
        checks.that(done.returncode == 1 and done.stdout == "" and done.stderr ==
                    "vertana: The temporary folder cannot be written to: give --out DIR.\n", f"{folder}: {done}")


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        study = phantom(program, top / "study", "--region", "lumbar", "--angled-axials")
        check_without_images(checks, program, study / "SE01" / "IM0001.dcm", top)
        check_left_out(checks, program, study, top / "mixed")
        check_past(checks, program, study, top)
        check_interrupts(checks, program, study, top)
        check_demo(checks, program)
        for line in (LINE, ["--line", "167,35,162,275"]):
            Run(program, ["label", study, *line])
        check_without_plugin(checks, program, study)
    checks.finish()


main()
