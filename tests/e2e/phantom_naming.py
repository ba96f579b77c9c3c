#!/usr/bin/python3
"""A polygon through the true disc centres of a phantom names every axial slice as the rules do, computed apart.

usage: phantom_naming.py VERTANA REGION SEED [OPTION OF vertana phantom...]
"""
import pathlib
import sys
import tempfile

from program import Checks, Run, asked_of_oracle, check_with_oracle, phantom



def main():
    program, region, seed, *options = sys.argv[1:]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        folder = phantom(program, pathlib.Path(temporary) / "study", "--region", region, "--seed", seed, *options)
        polygon = asked_of_oracle("polygon", folder)
        series = asked_of_oracle("series", folder)
        extra = ["--extra-vertebra"] if "--extra-vertebra" in options else []
        run = Run(program, ["label", folder, "--polygon", polygon, "--series", series, "--json", *extra])
        checks.that(run.status == 0, "label ends well", run)
        checks.that(not run.messages, "label has nothing to complain of", run)
        check_with_oracle(checks, folder, run.out)
    checks.finish()


main()
