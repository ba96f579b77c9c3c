#!/usr/bin/python3
"""What `cmake --install` puts into a folder works there, away from the build.

usage: installed.py VERTANA CMAKE BUILD_FOLDER SOURCE_FOLDER
"""
import configparser
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from program import Checks, Run

COMMAND = ["bin/vertana", "lib/Vertana.plugin/Resources/VertanaWindowController.json", "lib/Vertana.plugin/Vertana.so",
           "lib/Vertana.plugin/manifest.json", "share/bash-completion/completions/vertana", "share/man/man1/vertana.1"]
PAINTING = ["lib/libvertana_render.so"]
WINDOW = ["bin/vertana-workstation", "share/applications/vertana-workstation.desktop"]
MANUAL = "share/doc/vertana/manual"


def wanted_files(source, build):
    """What is installed of what could be built here."""
    wanted = list(COMMAND)
    if (build / "lib" / "libvertana_render.so").exists():
        wanted += PAINTING
    if (build / "bin" / "vertana-workstation").exists():
        pages = source / "docs" / "manual"
        wanted += WINDOW + [f"{MANUAL}/{path.relative_to(pages)}" for path in pages.rglob("*") if path.is_file()]
    return sorted(wanted)


def libraries_needed(file):
    """The names of the libraries that the system loads with a program, as its dynamic section lists them."""
    done = subprocess.run(["readelf", "--dynamic", "--wide", file], env=dict(os.environ, LC_ALL="C"), check=True,
                          capture_output=True, text=True)
    return re.findall(r"\(NEEDED\)\s+Shared library: \[(.*)\]", done.stdout)


def check_libraries(checks, prefix, files):
    """A server without a desktop has no Qt: the command, and the plug-in that it loads, do without."""
    for file in ("bin/vertana", "lib/Vertana.plugin/Vertana.so"):
        needed = libraries_needed(prefix / file)
        checks.that(any(name.startswith("libstdc++") for name in needed), f"{file} is linked to something: {needed}")
        checks.that(not [name for name in needed if "qt" in name.lower()], f"{file} needs no Qt: {needed}")
        done = subprocess.run(["ldd", prefix / file], check=True, capture_output=True, text=True)
        checks.that("libQt" not in done.stdout, f"nor does what {file} needs: {done.stdout}")
    if WINDOW[0] in files:
        needed = libraries_needed(prefix / WINDOW[0])
        checks.that([name for name in needed if "qt" in name.lower()], f"the window does: {needed}")


def check_window(checks, prefix):
    program = prefix / "bin" / "vertana-workstation"
    done = subprocess.run([program, "--manual"], env=dict(os.environ, QT_QPA_PLATFORM="offscreen"), text=True,
                          capture_output=True, check=False)
    checks.that(done.stdout == f"{prefix / MANUAL / 'index.html'}\n", f"the window finds the manual: {done}")
    entry = configparser.ConfigParser(interpolation=None)
    entry.read(prefix / WINDOW[1])
    desktop = entry["Desktop Entry"]
    checks.that(desktop["Type"] == "Application" and desktop["Name"], "the desktop's menu has an entry")
    checks.that(desktop["Exec"] == f"{program.name} %F", "which starts the window with what is dropped on it")


def main():
    cmake = sys.argv[2]
    build, source = map(pathlib.Path, sys.argv[3:])
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        prefix = top / "prefix"
        done = subprocess.run([cmake, "--install", build, "--prefix", prefix], capture_output=True, text=True,
                              check=False)
        checks.that(done.returncode == 0, f"it is installed: {done.stderr}")
        files = sorted(str(path.relative_to(prefix)) for path in prefix.rglob("*") if path.is_file())
        checks.that(files == wanted_files(source, build), f"these files: {files}")
        check_libraries(checks, prefix, files)
        program = str(prefix / "bin" / "vertana")
        study = top / "study"
        run = Run(program, ["phantom", "--out", study, "--region", "lumbar"])
        checks.that(run.status == 0, "it makes a phantom", run)
        run = Run(program, ["label", study, "--line", "165,35,160,275"])
        checks.that(run.status == 0 and "L4-L5" in run.out and not run.messages, "it finds the plug-in", run)
        if PAINTING[0] in files:
            run = Run(program, ["render", study, "--out", top / "pictures"])
            checks.that(run.status == 0 and len(run.out.splitlines()) == 3, "and the painting", run)
        if WINDOW[0] in files:
            check_window(checks, prefix)
    checks.finish()


main()
