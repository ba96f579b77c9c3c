#!/usr/bin/python3
"""What `cmake --install` puts into a folder works there, away from the build.

usage: installed.py VERTANA CMAKE BUILD_FOLDER
"""
import pathlib
import subprocess
import sys
import tempfile

from program import Checks, Run, phantom


def main():
    cmake, build = sys.argv[2:]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        top = pathlib.Path(temporary)
        done = subprocess.run([cmake, "--install", build, "--prefix", top / "prefix"], capture_output=True, text=True,
                              check=False)
        checks.that(done.returncode == 0, f"it is installed: {done.stderr}")
        files = sorted(str(path.relative_to(top / "prefix")) for path in (top / "prefix").rglob("*") if path.is_file())
        wanted = ["bin/vertana", "lib/Vertana.plugin/Resources/VertanaWindowController.json",
                  "lib/Vertana.plugin/Vertana.so", "lib/Vertana.plugin/manifest.json",
                  "share/bash-completion/completions/vertana", "share/man/man1/vertana.1"]
        checks.that([file for file in files if file != "lib/libvertana_render.so"] == wanted, f"these files: {files}")
        program = str(top / "prefix" / "bin" / "vertana")
        study = phantom(program, top / "study", "--region", "lumbar")
        run = Run(program, ["label", study, "--line", "165,35,160,275"])
        checks.that(run.status == 0 and "L4-L5" in run.out and not run.messages, "it finds the plug-in", run)
        if (pathlib.Path(build) / "lib" / "libvertana_render.so").exists():
            run = Run(program, ["render", study, "--out", top / "pictures"])
            checks.that(run.status == 0 and len(run.out.splitlines()) == 3, "and the painting", run)
    checks.finish()


main()
