#!/usr/bin/python3
"""A person labels the phantom in the window with pointer and keys; a session script of the same steps agrees.

usage: window.py VERTANA WORKSTATION [FOLDER FOR SCREENSHOTS]
"""
import json
import math
import os
import pathlib
import shutil
import sys
import tempfile

import pydicom

from labelling_window import FRONT_FRAME, Image, is_label, points_between, quit_program
from program import Checks, Run, phantom, skip
from screen import Screen, missing_programs

LINE = [(170, 20), (196, 290)]  # pixels, along the spine
SLICE = 7


def play(program, folder, script):
    """Dumps of the script's run on the folder."""
    file = folder.with_suffix(".json")
    file.write_text(json.dumps(script))
    run = Run(program, ["play", file])
    return run, [json.loads(line) for line in run.out.splitlines()]


def scripted(program, study, line, moved_vertex=None):
    """The labelling that a session script makes, and the curve after its last step."""
    steps = [{"do": "openViewer", "path": str(study), "series": 1}, {"do": "scroll", "viewer": 0, "slice": SLICE},
             {"do": "menu", "viewer": 0, "title": "Labels"},
             {"do": "draw", "viewer": 0, "type": "line", "points": line}]
    if moved_vertex:
        steps.append({"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 2, "to": moved_vertex})
    steps.append({"do": "dump"})
    run, dumps = play(program, study, {"steps": steps})
    return run, dumps[0]["plugin"]["openPolygonROI"]["points"]


def distance_mm(a, b):
    return math.dist(a["point"], b["point"])


def check_with_script(checks, hand, script, pixel_mm):
    """Each plane and each axial slice has the same name; points lie within a pixel of each other."""
    names = [[plane["name"] for plane in each["intervertebralPlanes"]] for each in (hand, script)]
    checks.that(names[0] == names[1] and len(names[1]) == 6, f"the hand names the discs as the script does: {names}")
    levels = [[(one["sop"], one["frame"], one["name"]) for one in each["slices"]] for each in (hand, script)]
    differing = [pair for pair in zip(*levels) if pair[0] != pair[1]]
    checks.that(len(levels[0]) == len(levels[1]) > 0 and not differing, f"and the slices: {differing}")
    checks.that(len({level for _, _, level in levels[1]}) > 6, "which have many names")
    farthest = max(map(distance_mm, hand["intervertebralPlanes"], script["intervertebralPlanes"]))
    print(f"the planes' points lie at most {farthest:.2g} mm apart, {farthest / pixel_mm:.2g} pixels")
    checks.that(farthest <= pixel_mm, f"the planes lie within a pixel of each other, not {farthest} mm apart")


def label_by_hand(screen, checks, shots, vertex, target):
    """The same steps with pointer and keys; the line and the vertex's new place where the pointer really was."""
    frame = screen.until(lambda picture: picture.box_of(FRONT_FRAME))
    checks.that(frame is not None, "a viewer is in front once the study is open")
    frame = screen.settled().box_of(FRONT_FRAME)
    image = Image(frame)
    screen.settled().save(shots / "1-open.png")

    screen.do("mousemove", *image.on_screen((160, 300)), "click", 1)
    screen.do("key", "ctrl+l")
    palette = screen.until(lambda _: screen.window("Spine labels"))
    checks.that(palette is not None, "Ctrl+L opens the palette")
    screen.settled().save(shots / "2-palette.png")
    corner = image.on_screen((0, 0))
    checks.that(palette is not None and abs(palette[0] - max(corner[0], image.left)) <= 2
                and abs(palette[1] - max(corner[1], image.top)) <= 2,
                f"the palette {palette} lies on the image's first pixel {corner}")

    line = [image.on_screen(point) for point in LINE]
    screen.drag(points_between(*line))
    drawn = screen.settled()
    drawn.save(shots / "3-line.png")
    box = (image.left, image.top, image.left + image.width - 1, image.top + image.height - 1)
    checks.that(drawn.count(box, is_label) > 60, "labels stand beside the vertebrae")

    screen.drag(points_between(image.on_screen(vertex), image.on_screen(target), 4))
    screen.settled().save(shots / "4-vertex.png")

    beside = (frame[2] + 60, frame[1] + 60)
    screen.do("mousemove", *beside, "click", 5)
    axial = screen.settled()
    axial.save(shots / "5-axial.png")
    top_centre = (frame[2] + 4, frame[1] + 4, frame[2] + 460, frame[1] + 80)
    checks.that(axial.count(top_centre, is_label) > 40, "the axial slice carries its level at the top")

    screen.do("mousemove", palette[0] + palette[2] - 50, palette[1] + palette[3] - 24, "click", 1)
    checks.that(screen.until(lambda _: screen.window("Spine labels") is None), "Done closes the palette")
    screen.settled().save(shots / "6-done.png")
    quit_program(screen)
    return [image.pixel_at(point) for point in line], image.pixel_at(image.on_screen(target))


def check_recording(program, checks, session, study, copy, hand):
    """What was done by hand, played on the study as it was before, stores the same labelling to the last bit."""
    checks.that(session.is_file(), "quitting writes the recording")
    recorded = json.loads(session.read_text())
    done = {step["do"] for step in recorded["steps"]}
    checks.that({"openViewer", "menu", "draw", "dragVertex", "scroll", "palette", "dump"} <= done, f"it tells {done}")
    for step in recorded["steps"]:
        if "path" in step:
            checks.that(step["path"] == str(study.resolve()), f"it opens {step['path']}")
            step["path"] = str(copy)
    run, dumps = play(program, copy, recorded)
    checks.that(run.status == 0 and len(dumps) == 1, "the recording plays", run)
    played = Run(program, ["show", copy, "--json"])
    checks.that(played.status == 0 and played.json() == hand, "it stores what was labelled by hand", played)


def main():
    program, workstation = sys.argv[1:3]
    lacking = missing_programs()
    if lacking:
        skip(f"{' and '.join(lacking)} cannot be found")
    checks = Checks()
    with tempfile.TemporaryDirectory(prefix="vertana-e2e-") as temporary:
        root = pathlib.Path(temporary)
        shots = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else root / "shots"
        shots.mkdir(parents=True, exist_ok=True)
        study = phantom(program, root / "study", "--region", "lumbar")
        for copy in ("first", "second", "third"):
            shutil.copytree(study, root / copy)
        run, curve = scripted(program, root / "first", LINE)
        checks.that(run.status == 0, "the script plays", run)
        vertex = curve[2]

        environment = dict(os.environ, XDG_CONFIG_HOME=str(root / "config"), XDG_DATA_HOME=str(root / "data"),
                           XDG_RUNTIME_DIR=str(root))
        screen = Screen()
        try:
            session = root / "session.json"
            window = screen.start([workstation, "--record", session, study], environment)
            line, target = label_by_hand(screen, checks, shots, vertex, [vertex[0] + 12, vertex[1]])
            checks.that(window.wait(60) == 0, "the program ends well")

            run, _ = scripted(program, root / "second", line, target)
            checks.that(run.status == 0, "the script with the drag plays", run)
            by_hand = Run(program, ["show", study, "--json"])
            by_script = Run(program, ["show", root / "second", "--json"])
            checks.that(by_hand.status == 0 and by_script.status == 0, "both studies hold a labelling", by_hand)
            hand = by_hand.json()
            header = pydicom.dcmread(study / "SE01" / "IM0001.dcm", stop_before_pixels=True)
            check_with_script(checks, hand, by_script.json(), min(map(float, header.PixelSpacing)))
            check_recording(program, checks, session, study, root / "third", hand)

            window = screen.start([workstation, study], environment)
            frame = screen.until(lambda picture: picture.box_of(FRONT_FRAME))
            again = screen.settled()
            again.save(shots / "7-again.png")
            found = screen.until(
                lambda picture: picture.count((frame[0], frame[1], picture.width - 1, frame[3]), is_label) > 60, 20)
            checks.that(found, "started again, the window shows the labels")
            quit_program(screen)
            checks.that(window.wait(60) == 0, "the program ends well again")
        finally:
            screen.close()
    checks.finish()


main()
