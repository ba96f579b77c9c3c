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


def scripted(program, study, moved_vertex=None):
    """The labelling that a session script makes, and the curve after its last step."""
    steps = [{"do": "openViewer", "path": str(study), "series": 1}, {"do": "scroll", "viewer": 0, "slice": SLICE},
             {"do": "menu", "viewer": 0, "title": "Labels"},
             {"do": "draw", "viewer": 0, "type": "line", "points": LINE}]
    if moved_vertex:
        steps.append({"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 2, "to": moved_vertex})
    steps.append({"do": "dump"})
    run, dumps = play(program, study, {"steps": steps})
    return run, dumps[0]["plugin"]["openPolygonROI"]["points"]


def distance_mm(a, b):
    return math.dist(a["point"], b["point"])


def label_by_hand(screen, checks, shots, vertex, target):
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

    screen.drag(points_between(image.on_screen(LINE[0]), image.on_screen(LINE[1])))
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
        run, curve = scripted(program, root / "first")
        checks.that(run.status == 0, "the script plays", run)
        vertex = curve[2]
        target = [vertex[0] + 12, vertex[1]]
        run, _ = scripted(program, root / "second", target)
        checks.that(run.status == 0, "the script with the drag plays", run)

        environment = dict(os.environ, XDG_CONFIG_HOME=str(root / "config"), XDG_DATA_HOME=str(root / "data"),
                           XDG_RUNTIME_DIR=str(root))
        screen = Screen()
        try:
            session = root / "session.json"
            window = screen.start([workstation, "--record", session, study], environment)
            label_by_hand(screen, checks, shots, vertex, target)
            checks.that(window.wait(60) == 0, "the program ends well")

            by_hand = Run(program, ["show", study, "--json"])
            by_script = Run(program, ["show", root / "second", "--json"])
            checks.that(by_hand.status == 0 and by_script.status == 0, "both studies hold a labelling", by_hand)
            hand, script = by_hand.json(), by_script.json()
            names = [plane["name"] for plane in script["intervertebralPlanes"]]
            checks.that([plane["name"] for plane in hand["intervertebralPlanes"]] == names and len(names) == 6,
                        f"the hand names the discs as the script does: {names}", by_hand)
            farthest = max(map(distance_mm, hand["intervertebralPlanes"], script["intervertebralPlanes"]))
            print(f"the planes' points lie at most {farthest:.2f} mm apart")
            # A pixel of the phantom's sagittal slices is 0.875 mm wide; the corner of one is 1.24 mm from its middle.
            checks.that(farthest < 1.24, f"the planes lie within a pixel of each other, not {farthest} mm apart")
            levels = [[each["name"] for each in result["slices"]] for result in (hand, script)]
            differing = sum(a != b for a, b in zip(*levels))
            checks.that(differing <= len(levels[0]) // 20, f"{differing} of {len(levels[0])} slices differ")

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
