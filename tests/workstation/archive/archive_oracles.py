"""What the tests beside independent readers and writers share. Values are as archive_tool prints them."""
import json
import math
import pathlib
import random
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent.parent / "support"))
from checks import Checks, skip  # pylint: disable=wrong-import-position,unused-import

POINT = "point of"


class Tool:
    """Our own reader and writer."""

    def __init__(self, program):
        self.program = program

    def write(self, value, file):
        """Status 0, or the sentence that says why not."""
        done = subprocess.run([self.program, "write", file], input=json.dumps(value), capture_output=True, text=True,
                              timeout=60, check=False)
        return done.stderr if done.returncode else ""

    def read(self, file):
        """(value, "") or (None, the sentence that says why not)."""
        done = subprocess.run([self.program, "read", file], capture_output=True, text=True, timeout=60, check=False)
        if done.returncode == 1:
            return None, done.stderr
        if done.returncode:
            print(f"archive_tool ended with status {done.returncode}: {done.stderr}")
            sys.exit(1)
        return json.loads(done.stdout), ""


def same(one, other):
    """Equal and of the same kinds, so that True is not 1 and 1 is not 1.0."""
    if type(one) is not type(other):
        return False
    if isinstance(one, dict):
        return one.keys() == other.keys() and all(same(one[key], other[key]) for key in one)
    if isinstance(one, list):
        return len(one) == len(other) and all(map(same, one, other))
    return one == other


LEVELS = ["T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"]


def labelling(levels, region=2, extra=False):
    """An invented labelling; every coordinate needs double precision."""
    def plane(number, name):
        angle = 0.05 * (number - 2)
        return {"name": name, "point": {POINT: [1.25 + number, -10.1 + 0.1 * number, 120.0 - 35.5 * number]},
                "vector": {POINT: [0.0, math.sin(angle), math.cos(angle)]}}
    return {"VertanaAnatomicalRegion": region, "kAdditionalVertebra": extra,
            "intervertebralPlanes": [plane(number, name) for number, name in enumerate(levels)]}


def random_value(chance, levels):
    """Anything an archive can hold, all kinds about equally often."""
    kind = chance.randrange(8 if levels else 5)
    if kind == 0:
        return chance.random() < 0.5
    if kind == 1:
        edges = [0, 255, 256, 65535, 65536, 2**32 - 1, 2**32, 2**53 + 1, 2**63 - 1, -1, -256, -2**31, -2**63]
        return chance.choice(edges) if chance.random() < 0.5 else chance.randrange(-2**63, 2**63) >> chance.randrange(64)
    if kind == 2:
        return chance.choice([0.0, 0.1, -1e-300, 1e300, chance.uniform(-1000, 1000)])
    if kind == 3:
        return random_text(chance)
    if kind == 4:
        return {POINT: [chance.uniform(-500, 500) for _ in range(3)]}
    if kind == 5:
        return [random_value(chance, levels - 1) for _ in range(chance.randrange(20))]
    return {random_text(chance): random_value(chance, levels - 1) for _ in range(chance.randrange(6))}


def random_text(chance):
    return "".join(chance.choice(["L", "4-", "$", "é", "€", "𝔸", " ", "<&>"]) for _ in range(chance.randrange(12)))


def values():
    """Names and values: states, and values of all kinds each from its seed."""
    yield "empty state", {}
    for region in (-1, 0, 1, 2):
        for extra in (False, True):
            yield f"region {region}, extra {extra}", labelling(LEVELS, region, extra)
    yield "no levels", labelling([])
    yield "25 levels", labelling([f"level {number}" for number in range(25)])
    for seed in range(40):
        yield f"seed {seed}", {"value": random_value(random.Random(seed), 3)}


