#!/usr/bin/python3
"""Plays a session script and compares each of its dumps with the expected one beside it, field by field.

usage: play_script.py VERTANA NAME [--once]      else in two runs, which must print the same

NAME.json is the script. NAME.expected.json holds {"before": [...], "status": 0, "messages": [...], "dumps": [...]}:
what is made in the working folder before, the exit status (0 where absent), a part of each line on standard error
(none where absent), "untouched" folders that the script must leave as they were, and a dump for each that the script
prints. Before a script these can be done:
  {"phantom": FOLDER, "options": [...]}      a phantom study
  {"copy": FOLDER, "to": FOLDER}             a copy of a folder or file
  {"play": NAME}                             another script of this folder
  {"takeReport": FOLDER, "as": FILE}         moves the newest labelling report out of a folder
  {"moveReport": FILE, "days": N}            makes a report so many days younger, with a UID of its own
  {"spoilReport": FILE}                      makes a report's labelling unreadable
"""
import datetime
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).parent
sys.path.insert(0, str(HERE.parent / "support"))
import compare  # noqa: E402
from phantoms import phantom  # noqa: E402


def play(program, folder, name, database=None):
    environment = dict(os.environ, XDG_CONFIG_HOME=str(folder / "settings"))
    command = [program, "play", str(HERE / f"{name}.json")] + (["--database", database] if database else [])
    return subprocess.run(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                          text=True, timeout=300, check=False)


def reports_in(folder):
    import pydicom
    found = []
    for path in sorted(folder.rglob("*.dcm")):
        data = pydicom.dcmread(path, stop_before_pixels=True)
        if data.SOPClassUID.startswith("1.2.840.10008.5.1.4.1.1.88."):
            found.append((str(data.ContentDate) + str(data.ContentTime), path))
    return [path for _, path in sorted(found)]


def change_report(file, change):
    import pydicom
    data = pydicom.dcmread(file)
    change(data)
    data.save_as(file)


def make_younger(data, days):
    import pydicom.uid
    day = datetime.datetime.strptime(data.ContentDate, "%Y%m%d") + datetime.timedelta(days=days)
    data.ContentDate = day.strftime("%Y%m%d")
    data.SOPInstanceUID = data.file_meta.MediaStorageSOPInstanceUID = pydicom.uid.generate_uid()


def spoil(data):
    """Neither archive nor content says anything any more."""
    for element in list(data):
        if element.tag.is_private:
            del data[element.tag]
    data.ContentSequence = []


def prepare(program, folder, action):
    if "phantom" in action:
        phantom(program, folder / action["phantom"], *action.get("options", []))
    elif "copy" in action:
        source = folder / action["copy"]
        (shutil.copytree if source.is_dir() else shutil.copy)(source, folder / action["to"])
    elif "play" in action:
        done = play(program, folder, action["play"])
        if done.returncode != 0:
            raise RuntimeError(f"{action['play']}: {done.stderr}")
    elif "takeReport" in action:
        shutil.move(reports_in(folder / action["takeReport"])[-1], folder / action["as"])
    elif "moveReport" in action:
        change_report(folder / action["moveReport"], lambda data: make_younger(data, action["days"]))
    elif "spoilReport" in action:
        change_report(folder / action["spoilReport"], spoil)
    else:
        raise ValueError(f"nothing is known of {action}")


def contents(folder):
    return {path: path.read_bytes() for path in sorted(folder.rglob("*")) if path.is_file()}


def without_uids(lines, expected):
    """Reports get a UID that nothing else has: where one is printed is all that two runs may differ in."""
    text = "\n".join(lines)
    for value in sorted({v for v in expected.values() if isinstance(v, str)}):
        text = text.replace(value, "UID")
    return text


def run(program, name, folder, expected):
    """The differences of one run, its dumps as printed, and the values of names."""
    for action in expected.get("before", []):
        prepare(program, folder, action)
    before = {each: contents(folder / each) for each in expected.get("untouched", [])}
    done = play(program, folder, name)
    comparison = compare.Comparison()
    comparison.compare("exit status", expected.get("status", 0), done.returncode)
    for each, held in before.items():
        if contents(folder / each) != held:
            comparison.differ(each, "as it was", "changed")
    messages, wanted = done.stderr.splitlines(), expected.get("messages", [])
    if len(messages) != len(wanted) or any(part not in line for part, line in zip(wanted, messages)):
        comparison.differ("messages", wanted, messages)
    lines = done.stdout.splitlines()
    if len(lines) != len(expected["dumps"]):
        comparison.differ("number of dumps", len(expected["dumps"]), len(lines))
    for index, (one, line) in enumerate(zip(expected["dumps"], lines)):
        dump = json.loads(line)
        where = f"{name}.json, dump {index} ({dump['name']})"
        comparison.differences += [f"{where}: {each}" for each in compare.misshapen(dump)]
        comparison.compare(where, one, dump)
    return comparison, lines


def main():
    program, name = sys.argv[1:3]
    expected = json.loads((HERE / f"{name}.expected.json").read_text(encoding="utf-8"))
    printed = []
    failed = False
    for turn in ("first",) if "--once" in sys.argv else ("first", "second"):
        with tempfile.TemporaryDirectory(prefix="vertana-script-") as temporary:
            comparison, lines = run(program, name, pathlib.Path(temporary), expected)
            for difference in comparison.differences:
                print(f"FAILED in the {turn} run: {difference}")
                failed = True
            printed.append(without_uids(lines, comparison.bound))
    if printed[0] != printed[-1]:
        failed = True
        print("FAILED: two runs print different bytes")
    dumps = len(expected["dumps"])
    print(f"{name}: {dumps} dumps {'do not agree' if failed else 'agree'}")
    sys.exit(1 if failed else 0)


main()
