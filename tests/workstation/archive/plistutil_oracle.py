#!/usr/bin/python3
"""Our archives turned into XML and back by libplist's plistutil, and read in both forms.

usage: plistutil_oracle.py ARCHIVE_TOOL
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

from archive_oracles import Checks, Tool, labelling, same, skip, values


def main():
    if not shutil.which("plistutil"):
        skip("plistutil (package libplist-utils) is not installed")
    tool, checks = Tool(sys.argv[1]), Checks()
    with tempfile.TemporaryDirectory() as folder:
        ours, xml, binary = (pathlib.Path(folder) / name for name in ("ours.plist", "xml.plist", "binary.plist"))
        cases = [case for case in values() if not case[0].startswith("seed")]
        for name, value in [*cases, ("60 levels", labelling([str(number) for number in range(60)]))]:
            checks.that(not tool.write(value, ours), f"{name} is written")
            for source, target, form in ((ours, xml, "xml"), (xml, binary, "bin")):
                subprocess.run(["plistutil", "-i", source, "-o", target, "-f", form], check=True, timeout=60)
                read, problem = tool.read(target)
                checks.that(same(read, value), f"{name} through plistutil, {form}, is read: {problem}{read}")
    checks.finish()


main()
