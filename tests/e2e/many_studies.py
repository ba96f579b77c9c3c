#!/usr/bin/python3
"""show over many studies: one output in the order of the arguments whatever the number of processes, and a study that
cannot be shown is one line on standard error that keeps nothing back.

usage: many_studies.py VERTANA
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile

import pydicom

import program as e2e
from program import Checks, Run, asked_of_oracle, contents, on_terminal, phantom


class Study:
    """A small phantom, labelled unless said otherwise, and what show prints of it alone."""

    def __init__(self, program, folder, region, seed, labelled=True):
        self.folder = phantom(program, folder, "--region", region, "--seed", seed, "--image-size", 32)
        header = pydicom.dcmread(folder / "SE01" / "IM0001.dcm", stop_before_pixels=True)
        self.uid = header.StudyInstanceUID
        self.order = (header.StudyDate, self.uid)
        if not labelled:
            return
        run = Run(program, ["label", folder, "--polygon", asked_of_oracle("polygon", folder), "--series",
                            asked_of_oracle("series", folder)])
        if run.status != 0:
            print(run.describe())
            sys.exit(1)
        self.header, _, self.rows = Run(program, ["show", folder, "--csv"]).out.partition("\n")
        self.json = Run(program, ["show", folder, "--json"]).out
        self.text = Run(program, ["show", folder]).out


def csv_of(studies):
    return studies[0].header + "\n" + "".join(study.rows for study in studies)


def by_date(studies):
    return sorted(studies, key=lambda study: study.order)


def truncate_all(source, folder):
    for path in sorted(source.rglob("*.dcm")):
        copy = folder / path.relative_to(source)
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_bytes(path.read_bytes()[:400])


def check_folders(checks, program, top, lumbar, cervical, thoracic, plain):
    empty, missing, damaged, two = top / "empty", top / "missing", top / "damaged", top / "two"
    empty.mkdir()
    truncate_all(lumbar.folder, damaged)
    for study in (lumbar, cervical):
        shutil.copytree(study.folder, two / study.folder.name)
    given = [thoracic.folder, empty, lumbar.folder, missing, plain.folder, damaged, cervical.folder, two]
    shown = [thoracic, lumbar, cervical, *by_date([lumbar, cervical])]
    reasons = [(empty, "holds no DICOM image"), (missing, "does not exist"), (plain.folder, "holds no labelling"),
               (damaged, "holds no DICOM image")]
    before = contents(top)
    for jobs in ([], ["--jobs", 1], ["--jobs", 4], ["--jobs", 256]):
        run = Run(program, ["show", "--csv", *jobs, *given])
        checks.that(run.out == csv_of(shown), f"{jobs}: one table, in the order of the arguments", run)
        checks.that(run.status == 3, f"{jobs}: the highest status of all", run)
        checks.that(len(run.messages) == len(reasons) and
                    all(line.startswith("vertana: ") and str(folder) in line and reason in line
                        for line, (folder, reason) in zip(run.messages, reasons)),
                    f"{jobs}: a line for each study that cannot be shown, in order", run)
    checks.that(contents(top) == before, "looking leaves every file as it was and adds none")

    run = Run(program, ["show", "--csv", lumbar.folder, cervical.folder])
    checks.that(run.status == 0 and run.out == csv_of([lumbar, cervical]) and not run.messages, "all can be shown", run)
    run = Run(program, ["show", "--csv", lumbar.folder, plain.folder])
    checks.that(run.status == 1 and run.out == csv_of([lumbar]), "a study without a labelling counts as failed", run)
    run = Run(program, ["show", "--csv", plain.folder, empty])
    checks.that(run.status == 3 and run.out == lumbar.header + "\n", "nothing to show is a table without a row", run)
    run = Run(program, ["show", "--json", thoracic.folder, plain.folder, lumbar.folder])
    checks.that(run.out == thoracic.json + lumbar.json and len(run.out.splitlines()) == 2, "one JSON object a line", run)
    checks.that([json.loads(line)["study"] for line in run.out.splitlines()] == [thoracic.uid, lumbar.uid],
                "each names its study", run)
    run = Run(program, ["show", thoracic.folder, plain.folder, lumbar.folder])
    checks.that(run.out == f"Study {thoracic.uid} in {thoracic.folder}\n{thoracic.text}\n"
                           f"Study {lumbar.uid} in {lumbar.folder}\n{lumbar.text}", "each text under its title", run)
    check_several_in_one(checks, program, two, plain, lumbar, cervical)


def check_several_in_one(checks, program, two, plain, lumbar, cervical):
    """One folder with several studies: each is shown, by date."""
    first, second = by_date([lumbar, cervical])
    run = Run(program, ["show", two, "--csv"])
    checks.that(run.status == 0 and run.out == csv_of([first, second]), "a folder with two studies shows both", run)
    run = Run(program, ["show", two])
    checks.that(run.out == f"Study {first.uid} in {two}\n{first.text}\nStudy {second.uid} in {two}\n{second.text}",
                "each under its title", run)
    shutil.copytree(plain.folder, two / "plain")
    run = Run(program, ["show", two, "--csv"])
    checks.that(run.status == 1 and run.out == csv_of([first, second]) and len(run.messages) == 1 and
                plain.uid in run.messages[0], "the one without a labelling is named by its UID", run)


def check_database(checks, program, top, labelled, plain):
    database = top / "database"
    run = Run(program, ["import", *(study.folder for study in (*labelled, plain)), "--database", database])
    checks.that(run.status == 0, "import ends well", run)
    files = contents(database / "studies")
    for jobs in (1, 4):
        run = Run(program, ["show", "--csv", "--jobs", jobs, "--database", database])
        checks.that(run.out == csv_of(by_date(labelled)), f"{jobs}: all studies of a database, by date", run)
        checks.that(run.status == 1 and len(run.messages) == 1 and plain.uid in run.messages[0] and
                    str(database) in run.messages[0], f"{jobs}: the one without a labelling is named", run)
    chosen = [labelled[2], labelled[0]]
    run = Run(program, ["show", "--csv", *(study.uid for study in chosen), "--database", database])
    checks.that(run.status == 0 and run.out == csv_of(chosen) and not run.messages, "chosen studies in their order", run)
    run = Run(program, ["show", "--csv", chosen[0].uid, "1.2.3", chosen[1].uid, "--database", database])
    checks.that(run.status == 1 and run.out == csv_of(chosen) and len(run.messages) == 1 and
                "holds no study 1.2.3" in run.messages[0], "a study that is not there keeps nothing back", run)
    checks.that(contents(database / "studies") == files, "looking leaves every file as it was and adds none")
    checks.that(not list(database.glob("index.sqlite-*")), "and the index is closed as it should be")

    (database / "index.sqlite").write_bytes(b"no index" * 1000)
    run = Run(program, ["show", "--csv", "--jobs", 4, *(study.uid for study in chosen), "--database", database])
    checks.that(run.status == 0 and run.out == csv_of(chosen), "a damaged index is built again", run)
    checks.that(len(run.messages) == 1 and "index.sqlite" in run.messages[0], "which is told once", run)

    run = Run(program, ["show", "--database", top / "nowhere"])
    checks.that(run.status == 3 and run.out == "" and len(run.messages) == 1 and "nowhere" in run.messages[0],
                "a database that does not exist is refused", run)
    (top / "bare").mkdir()
    run = Run(program, ["show", "--database", top / "bare", "--csv"])
    checks.that(run.status == 3 and run.out == "" and len(run.messages) == 1 and not list((top / "bare").iterdir()),
                "a folder that is no database is refused, and nothing is written", run)
    Run(program, ["import", top / "bare", "--database", top / "new"])
    run = Run(program, ["show", "--database", top / "new", "--csv"])
    checks.that(run.status == 1 and run.out == "" and len(run.messages) == 1 and "holds no study: import some with vertana import." in run.messages[0],
                "a database without a study says so", run)
    report = [path for path in labelled[0].folder.glob("SE*/vertana-*.dcm")] + \
        [path for path in labelled[0].folder.glob("vertana-*.dcm")]
    run = Run(program, ["import", report[0], "--database", top / "reports"])
    checks.that(run.status == 0, "a report alone can be imported", run)
    run = Run(program, ["show", "--database", top / "reports"])
    checks.that(run.status == 1 and len(run.messages) == 1 and "no image of the study " + labelled[0].uid in
                run.messages[0], "a study without an image says so", run)


def check_said_once(checks, program, studies):
    """What concerns no study in particular is not said for each of them."""
    defaults = pathlib.Path(e2e._settings.name) / "vertana" / "defaults.json"  # pylint: disable=protected-access
    defaults.parent.mkdir(exist_ok=True)
    kept = defaults.read_bytes() if defaults.exists() else None
    defaults.write_text("no JSON")
    run = Run(program, ["show", "--csv", "--jobs", 2, *(study.folder for study in studies)])
    checks.that(run.status == 0 and run.out == csv_of(studies), "settings that cannot be read stop nothing", run)
    checks.that(len(run.messages) == 1 and "defaults.json" in run.messages[0], "and are told of once", run)
    defaults.unlink()
    if kept is not None:
        defaults.write_bytes(kept)


def start(program, arguments, **streams):
    environment = dict(os.environ, XDG_CONFIG_HOME=e2e._settings.name)  # pylint: disable=protected-access
    return subprocess.Popen([program, *map(str, arguments)], env=environment, stdin=subprocess.DEVNULL, **streams)


def check_interrupt(checks, program, studies):
    """The reader waits after the first line, so that the command cannot be done when the interrupt comes."""
    arguments = ["show", "--csv", "--jobs", 2, *(study.folder for study in studies * 60)]
    process = start(program, arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    out = process.stdout.readline()
    children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children")
    workers = children.read_text().split() if children.exists() else []
    process.send_signal(signal.SIGINT)
    rest, messages = process.communicate(timeout=60)
    out = (out + rest).decode()
    whole = csv_of(studies * 60)
    checks.that(process.returncode == 1, f"an interrupt ends with 1, not {process.returncode}")
    checks.that(whole.startswith(out) and len(out) < len(whole), "what was printed is the beginning of all")
    rows = out.partition("\n")[2]
    ends, length = {0}, 0
    for study in studies * 60:
        length += len(study.rows)
        ends.add(length)
    checks.that(len(rows) in ends, "it ends after a whole study")
    lines = messages.decode().splitlines()
    checks.that(len(lines) == 1 and lines[0].startswith("vertana: Interrupted: ") and " of 180 studies are done." in lines[0],
                f"the person is told: {lines}")
    checks.that(not [one for one in workers if pathlib.Path(f"/proc/{one}").exists()], "no process is left")


def check_progress(checks, program, studies):
    """Progress goes to a terminal; nothing of it stays, and messages stand in lines of their own."""
    _, out, text = on_terminal(program, ["show", "--csv", *(study.folder for study in studies), "/nowhere"])
    checks.that(out == csv_of(studies), "the table does not notice the terminal")
    checks.that(f"Reading studies 50 % (2 of {len(studies) + 1})" in text, f"progress is shown: {text!r}")
    checks.that("\r\x1b[Kvertana: /nowhere does not exist" in text, f"a message has its own line: {text!r}")
    checks.that(text.endswith("\r\x1b[K"), f"the progress goes away: {text!r}")


def check_full_disk(checks, program, studies):
    with open("/dev/full", "wb") as full:
        process = start(program, ["show", "--csv", *(study.folder for study in studies)], stdout=full,
                        stderr=subprocess.PIPE)
        _, messages = process.communicate(timeout=60)
    checks.that(process.returncode == 1 and
                messages == b"vertana: The result could not be written to standard output.\n",
                f"a full disk is told: {messages}")


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        made = top / "made"
        lumbar = Study(program, made / "lumbar", "lumbar", 1)
        cervical = Study(program, made / "cervical", "cervical", 2)
        thoracic = Study(program, made / "thoracic", "thoracic", 3)
        plain = Study(program, made / "plain", "lumbar", 4, labelled=False)
        labelled = [lumbar, cervical, thoracic]
        check_folders(checks, program, made, lumbar, cervical, thoracic, plain)
        check_database(checks, program, top, labelled, plain)
        check_said_once(checks, program, labelled)
        check_interrupt(checks, program, labelled)
        check_progress(checks, program, labelled)
        check_full_disk(checks, program, labelled)
    checks.finish()


main()
