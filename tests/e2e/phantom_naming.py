#!/usr/bin/python3
"""A polygon through the true disc centres of a phantom names every axial slice as the rules do, computed apart.

usage: phantom_naming.py VERTANA REGION SEED [OPTION OF vertana phantom...]
"""
import pathlib
import subprocess
import sys
import tempfile

from program import Checks, Run, phantom

ORACLE = pathlib.Path(__file__).parent / "oracle" / "naming.py"


def oracle(*arguments):
    return subprocess.run(["/usr/bin/python3", str(ORACLE), *map(str, arguments)], capture_output=True, text=True,
                          check=False)


def main():
    program, region, seed, *options = sys.argv[1:]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        folder = phantom(program, pathlib.Path(temporary) / "study", "--region", region, "--seed", seed, *options)
        polygon = oracle("polygon", folder).stdout.strip()
        series = oracle("series", folder).stdout.strip()
        extra = ["--extra-vertebra"] if "--extra-vertebra" in options else []
        run = Run(program, ["label", folder, "--polygon", polygon, "--series", series, "--json", *extra])
        checks.that(run.status == 0, "label ends well", run)
        checks.that(not run.messages, "label has nothing to complain of", run)
        result = pathlib.Path(temporary) / "label.json"
        result.write_text(run.out)
        for task in ("check", "discs"):
            verdict = oracle(task, folder, result)
            print(verdict.stdout.strip())
            checks.that(verdict.returncode == 0, f"the oracle's {task} agrees: {verdict.stderr}")
    checks.finish()


main()
