#!/usr/bin/python3
"""Works out the expected dumps of the scripts in this folder, and writes them beside the scripts.

usage: expected.py VERTANA [NAME...]

Written from the rules and apart from the program: the geometry of the slices is read from the phantom's files, curve,
planes and names of slices come from the naming oracle of the end-to-end tests, and everything else is arithmetic on
these. Run it when a script changes; the program is asked for nothing but the phantom.
"""
import json
import pathlib
import subprocess
import sys
import tempfile

import compare
import states
from states import LUMBAR, PLUGIN_OWN, Labelled, dump, plugin, roi, viewer

HERE = pathlib.Path(__file__).parent


# --- the scripts -----------------------------------------------------------------------------------------------------

PHANTOM = {"phantom": "lumbar", "options": ["--region", "lumbar"]}


def viewers(_):
    mine = {"mine": [1, 2.5, "three", True, {"deep": -4}]}
    opened = [viewer(0, 1), viewer(1, 2), viewer(2, 3, front=True)]
    moved = [viewer(0, 1, slice=7, scale=3.5, origin=[10.5, -4], rotation=350, flips=[True, False]),
             viewer(1, 2, tool=2, flips=[False, True], front=True),
             viewer(2, 3, tool=9, roiTool=10)]
    # Another series begins anew; a new viewer takes the place that has become free.
    switched = [viewer(0, 3), viewer(2, 3, tool=9, roiTool=10), viewer(3, 2, place=1, front=True)]
    return [dump("opened", opened, defaults=mine), dump("moved", moved, defaults=mine),
            dump(None, switched, defaults=mine), dump("restarted", [], defaults=mine),
            dump("crashed", [viewer(1, 2, front=True)], defaults=mine)]


ACTIVE = {"isActive": True, "isEditingActive": True, "workflow": 1, "anatomicalRegion": 2, "study": LUMBAR,
          "savedDictionary": {}}
# The image's first pixel lies in the view at (320 - 159.5 * 1.875, 300 + 159.5 * 1.875), and the view at (0, 600) of
# the screen; the palette, 240 x 212, hangs from there.
PALETTE = {"visible": True, "frame": [20.9375, 1199.0625 - 212, 240, 212]}
LEARNT = {"kVertanaCustomStudyDescriptionSearchTerms": [
    {"anatomicalRegion": 0, "terms": []}, {"anatomicalRegion": 1, "terms": []},
    {"anatomicalRegion": 2, "terms": ["MRI lumbar spine (phantom)"]}]}


def labelled_viewers(labelled, names):
    return [viewer(0, 1, slice=7, tool=9, roiTool=5, front=True, rois=labelled.sagittal_rois()),
            viewer(1, 2, rois=labelled.coronal_rois()), viewer(2, 3, rois=list(labelled.axial_rois()) if names else [])]


def line(phantom):
    """Drawn from the feet to the head, the curve still begins at the head; a lumbar line has five equal parts. Axial
    slices get their names when the curve is edited or one looks at them, not while it is drawn."""
    straight = [(160 + k, 40 + 50 * k) for k in range(6)]
    bent = straight[:2] + [(150, 130)] + straight[3:]
    dumps = []
    for name, vertices in [("drawn", straight), ("bent", bent), ("undone", straight), ("done again", bent)]:
        labelled = Labelled(phantom, vertices, 7)
        state = plugin(**ACTIVE, openPolygonROI=labelled.curve(), intervertebralPlanes=labelled.plane_records())
        dumps.append(dump(name, labelled_viewers(labelled, name != "drawn"), plugin=state, palette=PALETTE))
    # Closed, the labels stay, the construction goes, the tools are back and the study holds the labelling.
    left = [viewer(0, 1, slice=7, roiTool=5, front=True, rois=list(labelled.labels(labelled.sagittal, bent))),
            viewer(1, 2, rois=labelled.coronal_rois()), viewer(2, 3, rois=list(labelled.axial_rois()))]
    state = plugin(anatomicalRegion=2, workflow=-1, intervertebralPlanes=labelled.plane_records(),
                   savedDictionary=labelled.state())
    kept = {LUMBAR: stored("#report", labelled.state())}
    dumps.append(dump("closed", left, plugin=state, stored=kept, defaults=LEARNT))
    # A program that starts anew shows what the study holds. Another region than the one at the start was loaded, which
    # resets and so keeps an empty state waiting, and no palette that could close.
    state = plugin(isActive=True, anatomicalRegion=2, study=LUMBAR, intervertebralPlanes=labelled.plane_records(),
                   savedDictionary={})
    kept = {LUMBAR: {**kept[LUMBAR], "held": True}}
    labelled.slice_index = 0
    again = [viewer(0, 1, rois=labelled.labels_only(labelled.sagittal)), viewer(1, 2, rois=labelled.coronal_rois()),
             viewer(2, 3, front=True, rois=list(labelled.axial_rois()))]
    dumps.append(dump("started anew", again, plugin=state, stored=kept, defaults=LEARNT))
    return dumps


def part(order, **fields):
    """An object of which only these fields are expected."""
    return {"...": True, **{key: fields[key] for key in order if key in fields}}


def stored(counting, state, objects=1, held=False, unsaved=False):
    return {"objects": objects, "counting": counting, "state": state, "held": held, "unsaved": unsaved}


def stage(name, plugin=None, viewers=None, **fields):
    """A dump of which only these fields are expected; `viewers`: the annotations of each viewer in turn."""
    if plugin is not None:
        fields["plugin"] = part(compare.PLUGIN, **plugin)
    if viewers is not None:
        fields["viewers"] = [{"...": True, "rois": rois} for rois in viewers]
    return part(compare.TOP, name=name, **fields)


def straight(phantom, x=160, y=40, slice_index=7):
    return Labelled(phantom, [(x, y + 50 * k) for k in range(6)], slice_index)


def own(_):
    first = roi(5, id=0, mode=2, points=[[10, 20], [30.5, 40]], slices=[4])
    second = roi(10, id=1, mode=2, points=[[50, 60], [70, 80], [90, 60]], slices=[4])
    third = roi(5, id=2, mode=1, points=[[1, 2], [3, 4]], slices=[5])
    shows = lambda *rois: [viewer(0, 3, front=True, slice=4, tool=9, roiTool=10, rois=list(rois))]
    return [dump("one deleted", shows(second)), dump("back", shows(first, second)),
            dump("polygon not drawn", shows(first)), dump("nothing drawn", shows()),
            dump("all done again", shows(second)),
            dump("drawing", [viewer(0, 3, front=True, slice=5, tool=9, roiTool=5, rois=[first, second, third])]),
            dump("a person's own come back",
                 [viewer(1, 3, place=0, front=True, rois=[first, second, {**third, "mode": 2}])])]


def polygon(phantom):
    drawn = [[160, 290], [160, 165], [160, 40]]
    held = roi(10, id="#idInput", mode=1, points=drawn, textualData=False, slices=[0], **PLUGIN_OWN)
    even = straight(phantom, slice_index=0)
    given = Labelled(phantom, [(160 + k, 40 + 50 * k) for k in range(6)], 0)
    nothing = {"inputOpenPolygonROI": None, "openPolygonROI": None, "intervertebralPlanes": None}
    mode = {"VertanaDrawMode-2": 1}
    cleared = [viewer(0, 1, tool=9, roiTool=10, front=True), viewer(1, 2), viewer(2, 3)]
    empty = plugin(**{**ACTIVE, **nothing, "drawMode": 1})
    return [
        # While it is drawn the curve has the person's own points in the person's order.
        stage("drawing", plugin={"drawMode": 1, "inputOpenPolygonROI": held,
                                 "openPolygonROI": {**even.curve(), "mode": 0, "points": drawn}}, defaults=mode),
        stage("released", plugin={"inputOpenPolygonROI": None, "openPolygonROI": even.curve(),
                                  "intervertebralPlanes": even.plane_records()}),
        dump("deleted", cleared, plugin=empty, palette=PALETTE, defaults=mode),
        dump("too short to be anything", cleared, plugin=empty, palette=PALETTE, defaults=mode),
        stage("a point a disc", plugin={"openPolygonROI": {**given.curve(), "id": "#idNewCurve"},
                                        "intervertebralPlanes": given.plane_records()})]


def input_held(_):
    line = roi(5, id="#idLine", mode=2, points=[[100, 40], [100, 240]], textualData=False, slices=[7], **PLUGIN_OWN)
    dragged = {**line, "points": [[100, 40], [110, 250]]}
    dumps = []
    for name, held, mode in [("a line is held in polygon mode", line, 1), ("and can be dragged", dragged, 1),
                             ("another mode throws it away", None, 0)]:
        shown = viewer(0, 1, slice=7, tool=9, roiTool=5, front=True, rois=[held] if held else [])
        dumps.append(dump(name, [shown, viewer(1, 2), viewer(2, 3)], palette=PALETTE,
                          plugin=plugin(**ACTIVE, inputLengthROI=held) | {"drawMode": mode},
                          defaults={"VertanaDrawMode-2": mode}))
    return dumps


def measured(_):
    """What was measured before is no line along the spine, also when it comes back while the palette is open."""
    line = roi(5, id=0, mode=2, points=[[100, 40], [100, 240]], slices=[7])
    shown = [viewer(0, 1, slice=7, tool=9, roiTool=5, front=True, rois=[line])]
    state = plugin(**ACTIVE, previousTool=9, previousROITool=5)  # those of the measuring, before the palette opened
    return [dump("drawn again", shown, plugin=state, palette=PALETTE),
            dump("put back", shown, plugin=state, palette=PALETTE),
            stage("stopped", plugin={"intervertebralPlanes": None, "openPolygonROI": None}, viewers=[[line]],
                  stored={LUMBAR: None})]


def events(phantom):
    labelled = straight(phantom)
    sagittal, coronal = labelled.sagittal_rois(), labelled.coronal_rois()
    names = lambda *place: list(labelled.axial_rois(*place))
    state = {LUMBAR: stored("#report", labelled.state())}
    gone = {"isActive": False, "study": None, "openPolygonROI": None, "intervertebralPlanes": None}
    return [
        stage("one name a look", viewers=[sagittal, coronal, [r for r in names() if r["slices"] == [20]]]),
        stage("zoomed", viewers=[sagittal, coronal, names(4)]),
        stage("panned", viewers=[sagittal, coronal, names(4, (8, -16))]),
        stage("another series", viewers=[sagittal, coronal, coronal]),
        stage("one viewer left", viewers=[sagittal], palette=PALETTE, stored={LUMBAR: None}),
        # The workflow ends as with the palette; what the study then holds is shown in the series that follows.
        dump("the only viewer changed", [viewer(0, 3, roiTool=5, front=True, rois=names())], stored=state,
             defaults=LEARNT, plugin=plugin(isActive=True, workflow=-1, anatomicalRegion=2, study=LUMBAR,
                                            intervertebralPlanes=labelled.plane_records(),
                                            savedDictionary=labelled.state())),
        stage("all closed", viewers=[], palette=None, plugin=gone, stored=state)]


def palette(_):
    learnt = [{"anatomicalRegion": 0, "terms": ["MRI lumbar spine (phantom)"]},
              {"anatomicalRegion": 1, "terms": []}, {"anatomicalRegion": 2, "terms": []}]
    changed = {"additionalVertebra": True, "drawMode": 1, "anatomicalRegion": 0}
    shows = lambda **first: [viewer(0, 1, front=True, **first), viewer(1, 2), viewer(2, 3)]
    return [dump("another entry", shows(), plugin=plugin(workflow=-1, study=LUMBAR)),
            dump("set", shows(tool=9, roiTool=10), plugin=plugin(**{**ACTIVE, **changed, "displayLabels": False}),
                 palette=PALETTE, openedAddresses=["https://vertana.example/manual/"],
                 defaults={"VertanaDrawMode-0": 1}),
            dump("stopped", shows(roiTool=10), plugin=plugin(**changed, workflow=-1, savedDictionary={}),
                 defaults={"VertanaDrawMode-0": 1, "kVertanaCustomStudyDescriptionSearchTerms": learnt})]


def alert(kind, title, message):
    return [{"kind": kind, "title": title, "message": message, "buttons": ["OK"]}]


def no_vertical(_):
    state = {**ACTIVE, "isEditingActive": False}
    told = dump("told", [viewer(0, 3, front=True)], plugin=plugin(**state),
                alerts=alert("modal", "", "Coronal or Sagittal series needed"))
    return [told, {**told, "name": "told once", "alerts": []}]


def unsaved(phantom):
    """The program ends with a labelling that it could not store anywhere."""
    return [stage("kept in memory",
                  stored={LUMBAR: stored("#kept", straight(phantom).state(), objects=0, unsaved=True)})]


def refused(title, code, reason, remedy):
    return [dump(None, [viewer(0, 1, front=True)], plugin=plugin(displayLabels=False),
                 alerts=alert("critical", title, f"VertanaFilterError ({code})\n{reason}\n{remedy}"),
                 openedAddresses=["https://pelmar.example/"])]


def lacking(_):
    """The first requirement that fails is told; the tool of annotations is none."""
    return refused("Required API unavailable.", 2,
                   "DCMPix instances do not respond to selector -[DCMPix bodyPartExamined].",
                   "Update Pelmar and this plugin to the latest versions.")


def lacking_archive(_):
    """Of all that is missing, the archiving of points is looked for first."""
    return refused("Required API unavailable.", 1, "Point3D does not conforms to NSCoding protocol.",
                   "Update Pelmar and this plugin to the latest versions.")


def old_host(_):
    return refused("This version of Pelmar is not compatible.", 4, "Pelmar 9.0 or higher is required.",
                   "Update to Pelmar 9.0 or higher.")


def reset_sticks(phantom):
    labelled = straight(phantom)
    first = stored("#first", labelled.state())
    reset = {LUMBAR: stored("#second", {}, objects=2)}
    shown = {"intervertebralPlanes": labelled.plane_records()}
    return [stage("drawn, nothing stored", stored={LUMBAR: None}),
            stage("stored at once", stored={LUMBAR: first}),
            stage("looking adds nothing", stored={LUMBAR: first}),
            stage("reset, waiting", stored={LUMBAR: {**first, "held": True}}, plugin={"intervertebralPlanes": None},
                  viewers=[[], [], []]),
            stage("a crash leaves what was there", stored={LUMBAR: {**first, "held": True}}, plugin=shown),
            stage("so does a restart without a palette", stored={LUMBAR: first}),
            stage("quitting closes the palette", stored=reset),
            stage("reset for good", stored=reset, viewers=[[], [], []],
                  plugin={"isActive": True, "intervertebralPlanes": None, "savedDictionary": {}})]


def colleague(phantom):
    mine, other = straight(phantom), straight(phantom, 150, 50)
    state = stored("#mine", mine.state())
    theirs = {LUMBAR: stored("#younger", other.state(), objects=4)}
    return [stage("an older one does not count", stored={LUMBAR: {**state, "objects": 2}}),
            stage("an unreadable one does not count", stored={LUMBAR: {**state, "objects": 3}}),
            stage("looking does not overwrite the colleague's", stored=theirs),
            stage("the colleague's is shown", plugin={"intervertebralPlanes": other.plane_records()},
                  stored={LUMBAR: {**theirs[LUMBAR], "held": True}})]


def full_disk(phantom):
    labelled = straight(phantom)
    kept = lambda name: {LUMBAR: stored(name, labelled.state(), objects=0, unsaved=True)}
    return [stage("kept in memory", stored=kept("#kept")),
            stage("counts for the plug-in", stored=kept("#kept"),
                  plugin={"intervertebralPlanes": labelled.plane_records()}),
            stage("a crash loses it", stored={LUMBAR: None}),
            stage("kept again", stored=kept("#keptAgain")),
            stage("saved on quitting", stored={LUMBAR: stored("#keptAgain", labelled.state())})]


NECK = "#neck"


def no_leak(phantom):
    labelled = straight(phantom)
    on_slice = sorted((s for s in phantom.slices if s.series == 2), key=lambda s: s.position[1])[1]
    nothing = {"openPolygonROI": None, "intervertebralPlanes": None}
    empty = [[], [], []]
    return [stage("nothing on the other study", plugin={"isActive": False, "study": None, **nothing},
                  viewers=["*"] * 3 + empty, stored={LUMBAR: stored("#report", labelled.state()), "...": True}),
            stage("nor with the palette", plugin={"study": NECK, "anatomicalRegion": 0, **nothing},
                  viewers=["*"] * 3 + empty),
            stage("the first study's own come back",
                  plugin={"study": LUMBAR, "intervertebralPlanes": labelled.plane_records()},
                  viewers=["*", labelled.labels_only(on_slice), "*"] + empty)]


def database(phantom):
    labelled = straight(phantom)
    return [stage("from the database", plugin={"intervertebralPlanes": labelled.plane_records()},
                  stored={LUMBAR: stored("#mine", labelled.state(), objects=2, held=True)})]


def no_viewer(_):
    return [dump("before", [viewer(0, 1), viewer(1, 2), viewer(2, 3, front=True)])]


OTHERS = [{"copy": "lumbar", "to": "other"}, {"play": "label_other"}, {"takeReport": "other", "as": "older.dcm"},
          {"moveReport": "older.dcm", "days": -400}]
ALL_REPORTS = OTHERS + [{"copy": "older.dcm", "to": "younger.dcm"}, {"moveReport": "younger.dcm", "days": 401},
                        {"copy": "older.dcm", "to": "broken.dcm"}, {"moveReport": "broken.dcm", "days": 402},
                        {"spoilReport": "broken.dcm"}]
# Script: its dumps, and what there is beside them.
SCRIPTS = {
    "viewers": (viewers, {}), "line": (line, {}), "polygon": (polygon, {}), "input": (input_held, {}),
    "measured": (measured, {}),
    "own": (own, {"status": 1, "messages": ["Step 23 of 23, \"redo\": There is nothing to redo."]}),
    "events": (events, {}), "no_vertical": (no_vertical, {}), "lacking": (lacking, {}),
    "palette": (palette, {"messages": ["The plug-in has no menu entry \"Other\", but \"Labels\": "
                                       "it was called all the same."]}),
    "lacking_archive": (lacking_archive, {}),
    "old_host": (old_host, {}), "reset_sticks": (reset_sticks, {}),
    "colleague": (colleague, {"before": ALL_REPORTS, "messages": ["broken.dcm", "broken.dcm"]}),
    "full_disk": (full_disk, {"messages": ["is not yet saved", "is not yet saved"]}),
    "unsaved": (unsaved, {"status": 1, "untouched": ["lumbar"],
                          "messages": ["is not yet saved", f"The labelling of the study {LUMBAR} could not be stored: "]}),
    "no_leak": (no_leak, {"before": [{"phantom": "neck", "options": ["--region", "cervical", "--seed", "2"]}]}),
    "database": (database, {"before": OTHERS, "untouched": ["lumbar"]}),
    "no_viewer": (no_viewer, {"status": 1,
                              "messages": ["Step 3 of 4, \"scroll\": No viewer with the number 5 is open."]}),
}


def main():
    program, *names = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="vertana-expected-") as temporary:
        folder = pathlib.Path(temporary) / "study"
        subprocess.run([program, "phantom", "--region", "lumbar", "--out", folder], check=True, capture_output=True)
        phantom = states.naming.Phantom(str(folder))
    for name in names or sorted(SCRIPTS):
        dumps, beside = SCRIPTS[name]
        beside = {**beside, "before": [PHANTOM, *beside.get("before", [])]}
        lines = ",\n  ".join(json.dumps(each) for each in dumps(phantom))
        text = json.dumps(beside)[:-1] + ', "dumps": [\n  ' + lines + "\n]}\n"
        json.loads(text)
        (HERE / f"{name}.expected.json").write_text(text, encoding="utf-8")


main()
