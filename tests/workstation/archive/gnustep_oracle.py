#!/usr/bin/python3
"""Our archives as GNUstep's unarchiver sees them, and archives of GNUstep's archiver as we see them.

usage: gnustep_oracle.py ARCHIVE_TOOL FOLDER
The folder holds the sources of mkarchive and rdarchive, which are built into a folder of the test's own.
"""
import math
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from archive_oracles import LEVELS, POINT, Checks, Tool, labelling, skip, values

NUMBER = re.compile(r"(\S+) \(\w+ objCType=(\w)\)$")
TEXT = re.compile(r'"(.*)" \(\w+\)$')
POINT_LINE = re.compile(r"Point3D\((\S+), (\S+), (\S+)\) \(\w+\)$")


def build(sources, folder):
    for package, command in (("gobjc", ["gcc", "-print-prog-name=cc1obj"]), ("gnustep-make", ["gnustep-config", "--base-libs"])):
        found = shutil.which(command[0]) and subprocess.run(command, capture_output=True, text=True, check=False)
        if not found or found.returncode or (package == "gobjc" and not pathlib.Path(found.stdout.strip()).is_absolute()):
            skip(f"the package {package} is not installed")
    if not sources.is_dir():
        skip(f"there is no folder {sources}")
    for file in sources.iterdir():
        if file.is_file():
            shutil.copy(file, folder)
    done = subprocess.run(["bash", "build.sh"], cwd=folder, capture_output=True, text=True, check=False)
    if done.returncode:
        if "Foundation/Foundation.h" in done.stderr:
            skip("the package libgnustep-base-dev is not installed")
        print(done.stdout + done.stderr)
        sys.exit(1)


def parsed(lines):
    """The value that rdarchive printed, taken from the front of the lines."""
    line = lines.pop(0).strip()
    if line.startswith("{ "):
        entries = {}
        while lines[0].strip() != "}":
            key, lines[0] = lines[0].strip().split(" = ", 1)
            entries[key] = parsed(lines)
        lines.pop(0)
        return entries
    if counted := re.match(r"\[ (\d+) items", line):
        elements = [parsed(lines) for _ in range(int(counted[1]))]
        if lines.pop(0).strip() != "]":
            raise ValueError("an array does not end")
        return elements
    if number := NUMBER.match(line):
        text, kind = number.groups()
        if kind in "cC":
            return text == "1"
        return float(text) if kind in "df" else int(text)
    if point := POINT_LINE.match(line):
        return {POINT: [float(coordinate) for coordinate in point.groups()]}
    return TEXT.match(line)[1]


def near(one, other, tolerance=1e-15):
    """Equal, reals to within what is printed of them."""
    if isinstance(one, bool) or isinstance(other, bool) or isinstance(one, str):
        return one is other or one == other and type(one) is type(other)
    if isinstance(one, dict):
        return isinstance(other, dict) and one.keys() == other.keys() and \
            all(near(one[key], other[key], tolerance) for key in one)
    if isinstance(one, list):
        return isinstance(other, list) and len(one) == len(other) and \
            all(near(a, b, tolerance) for a, b in zip(one, other))
    return type(one) is type(other) and math.isclose(one, other, rel_tol=tolerance, abs_tol=tolerance)


def check_ours(checks, tool, folder):
    file = folder / "ours.plist"
    for name, value in values():
        if not fits(value):
            continue
        checks.that(not tool.write(value, file), f"{name} is written")
        done = subprocess.run([folder / "rdarchive", file], capture_output=True, text=True, timeout=60, check=False)
        if done.returncode:
            checks.that(False, f"GNUstep reads {name}: {done.stdout}")
            continue
        read = parsed(done.stdout.splitlines())
        # States hold no reals but coordinates, which are printed with all their digits.
        tolerance = 1e-14 if name.startswith("seed") else 0
        checks.that(near(read, value, tolerance), f"GNUstep reads what was written of {name}:\n{read}\n{value}")


def fits(value):
    """Whether what is printed of a value can be told apart: an entry's line begins with its key."""
    if isinstance(value, dict):
        return all(key == key.strip() and key for key in value) and all(map(fits, value.values()))
    return not isinstance(value, list) or all(map(fits, value))


def check_theirs(checks, tool, folder):
    file = folder / "theirs.plist"
    for precision, tolerance in (("double", 1e-14), ("float", 1e-6)):
        for form in ("binary", "xml"):
            for kind in ("immutable", "mutable"):
                name = f"{precision} {form} {kind}"
                subprocess.run([folder / "mkarchive", file, precision, form, kind], stdout=subprocess.DEVNULL, check=True)
                read, problem = tool.read(file)
                checks.that(near(read, labelling(LEVELS), tolerance), f"{name} is read: {problem}{read}")


def main():
    tool, checks = Tool(sys.argv[1]), Checks()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        build(pathlib.Path(sys.argv[2]), folder)
        check_ours(checks, tool, folder)
        check_theirs(checks, tool, folder)
    checks.finish()


main()
