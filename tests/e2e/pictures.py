#!/usr/bin/python3
"""What the pictures of vertana render warn of: axial slices in another frame of reference than the drawing.

usage: pictures.py VERTANA
"""
import pathlib
import sys
import tempfile

import pydicom

from program import Checks, Run, phantom
from checks import skip

try:
    from PIL import Image
except ImportError:
    skip("there is no python3-pil, so the warnings in pictures are NOT checked.")

AXIAL_ALONG_THE_DISCS = 4


def warned(picture):
    """Whether the strip of a warning, dark red from edge to edge, lies along the lower edge."""
    image = Image.open(picture).convert("RGB")
    corners = [image.getpixel((x, image.height - 3)) for x in (2, image.width - 3)]
    return all(red > 60 and red > 3 * max(green, blue, 1) for red, green, blue in corners)


def pictures(program, folder, out):
    run = Run(program, ["render", folder, "--out", out])
    if run.status == 1 and "libvertana_render" in run.messages[-1]:
        skip("painting is not built here, so the warnings in pictures are NOT checked.")
    return run, {path.name: warned(path) for path in out.glob("*.png")}


def main():
    program = sys.argv[1]
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        place = pathlib.Path(temporary)
        folder = phantom(program, place / "study", "--region", "lumbar", "--angled-axials")
        for file in folder.rglob("*.dcm"):
            image = pydicom.dcmread(file)
            if image.SeriesNumber == AXIAL_ALONG_THE_DISCS:
                image.FrameOfReferenceUID = "1.2.3.4.5"
                image.save_as(file)

        run, found = pictures(program, folder, place / "before")
        checks.that(run.status == 0 and len(found) == 4 and not any(found.values()),
                    f"without a labelling nothing is warned of: {found}", run)
        run = Run(program, ["label", folder, "--line", "197,46,204,274"])
        checks.that(run.status == 0 and "another frame of reference" in run.messages[-1], "label says so", run)
        run, found = pictures(program, folder, place / "after")
        checks.that({name for name, warns in found.items() if warns} ==
                    {f"series-{AXIAL_ALONG_THE_DISCS}-stack-0.png"},
                    f"the axial series of another frame of reference is warned of, and no other: {found}", run)
    checks.finish()


main()
