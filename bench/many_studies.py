#!/usr/bin/python3
"""Measures `vertana show --csv --jobs 2` over many labelled studies of small images, as folders and as one database:
time and memory, against what is promised. Prints what it finds and fails when a promise is broken.

usage: many_studies.py VERTANA [COUNT]
"""
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import time

import pydicom

from processes import highest_memory

MOST_SECONDS = 20
MOST_BYTES = 300 * 10**6
FEW = 100  # memory is compared with that for so many
MOST_GROWTH_BYTES = 8 * 10**6
LINE = "19.7,4.6,20.4,27.4"  # along the spine of the lumbar phantom, seed 1, in images of 32 x 32 pixels


class Template:
    """A labelled study as bytes, with the places of its UIDs."""

    def __init__(self, folder):
        self.files = {path.relative_to(folder): path.read_bytes() for path in sorted(folder.rglob("*.dcm"))}
        uids = set()
        for path in self.files:
            header = pydicom.dcmread(folder / path, stop_before_pixels=True)
            uids.update([header.StudyInstanceUID, header.SeriesInstanceUID, header.SOPInstanceUID])
            uids.add(header.get("FrameOfReferenceUID", header.SOPInstanceUID))
        self.places = {path: self.places_in(data, uids) for path, data in self.files.items()}
        self.uids = uids

    @staticmethod
    def places_in(data, uids):
        """The ends of all UIDs of the study in a file, references in reports included."""
        ends = set()
        for uid in uids:
            at = data.find(uid.encode())
            while at >= 0:
                ends.add(at + len(uid))
                at = data.find(uid.encode(), at + 1)
        return sorted(ends)

    def write(self, number, folder):
        """A copy under other UIDs of the same length: the last six digits of each are replaced."""
        for path, data in self.files.items():
            copy = bytearray(data)
            for end in self.places[path]:
                copy[end - 6:end] = f"{(int(data[end - 6:end]) + number * 811) % 1000000:06}".encode()
            target = folder / path
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(copy)


def run(command, **options):
    done = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, check=False, text=True, **options)
    if done.returncode != 0:
        sys.exit(f"{command[1]} ended with status {done.returncode}.")
    return done


def make_database(program, folders, database):
    """A database with the studies of these folders, and its index. To import them would be to wait for the disk."""
    for folder in folders:
        shutil.copytree(folder, database / "studies" / folder.name, copy_function=os.link)
    started = time.monotonic()
    run([program, "show", "--csv", "--database", database], capture_output=True)
    print(f"The index of {len(folders)} was made in {time.monotonic() - started:.0f} s.", flush=True)


def processes_of(parent):
    """The process and its children."""
    yield parent
    try:
        yield from map(int, pathlib.Path(f"/proc/{parent}/task/{parent}/children").read_text().split())
    except OSError:  # it has just ended
        return


def processor_seconds():
    """Of the processes that have ended and were waited for, theirs included."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def measure(command, out):
    """Seconds, seconds of processors, and the most bytes of all processes together, each at its own highest."""
    processors = sorted(os.sched_getaffinity(0))[:2]
    worked = processor_seconds()
    started = time.monotonic()
    with open(out, "wb") as file:
        process = subprocess.Popen([str(word) for word in command], stdout=file, stdin=subprocess.DEVNULL,
                                   preexec_fn=lambda: os.sched_setaffinity(0, processors))
        most = 0
        while process.poll() is None:
            most = max(most, sum(highest_memory(one) for one in processes_of(process.pid)))
            time.sleep(0.02)
    return time.monotonic() - started, processor_seconds() - worked, most, process.returncode


class Verdict:
    def __init__(self):
        self.failed = False

    def that(self, holds, sentence):
        if not holds:
            self.failed = True
            print(f"FAILED: {sentence}")

    def show(self, name, program, arguments, count, out):
        seconds, worked, most, status = measure([program, "show", "--csv", "--jobs", 2, *arguments], out)
        rows = out.read_text().splitlines()
        studies = {row.split(",", 1)[0] for row in rows[1:]}
        print(f"{name}: {count} studies, {len(rows) - 1} rows, {seconds:.1f} s "
              f"({worked:.1f} s of processors), {most / 1e6:.0f} MB", flush=True)
        self.that(status == 0 and len(studies) == count and (len(rows) - 1) % count == 0,
                  f"{name}: every study is shown whole (status {status}, {len(studies)} studies)")
        return seconds, most

    def judge(self, name, program, few, many, count, out):
        _, least = self.show(name, program, few, FEW, out)
        seconds, most = self.show(name, program, many, count, out)
        self.that(seconds < MOST_SECONDS, f"{name}: {seconds:.1f} s are more than {MOST_SECONDS} s")
        self.that(most < MOST_BYTES, f"{name}: {most / 1e6:.0f} MB are more than {MOST_BYTES / 1e6:.0f} MB")
        self.that(most - least < MOST_GROWTH_BYTES,
                  f"{name}: memory grows by {(most - least) / 1e6:.1f} MB from {FEW} to {count} studies")


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 1000
    verdict = Verdict()
    with tempfile.TemporaryDirectory(prefix="vertana-many-") as temporary:
        top = pathlib.Path(temporary)
        os.environ["XDG_CONFIG_HOME"] = str(top / "settings")
        run([program, "phantom", "--region", "lumbar", "--image-size", 32, "--out", top / "one"], capture_output=True)
        run([program, "label", top / "one", "--line", LINE], capture_output=True)
        template = Template(top / "one")
        folders = [top / "studies" / f"{number:05}" for number in range(1, count + 1)]
        for number, folder in enumerate(folders, 1):
            template.write(number, folder)
        print(f"{count} studies of {len(template.files)} files were written.", flush=True)
        databases = {number: top / f"database-{number}" for number in (FEW, count)}
        for number, database in databases.items():
            make_database(program, folders[:number], database)
        out = top / "table.csv"
        verdict.judge("Folders", program, folders[:FEW], folders, count, out)
        verdict.judge("Database", program, ["--database", databases[FEW]], ["--database", databases[count]], count, out)
        shutil.rmtree(top / "studies")
    sys.exit(1 if verdict.failed else 0)


main()
