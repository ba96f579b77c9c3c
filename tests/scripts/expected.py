#!/usr/bin/python3
"""Works out the expected dumps of the scripts in this folder, and writes them beside the scripts.

usage: expected.py VERTANA [NAME...]

Written from the rules and apart from the program: the geometry of the slices is read from the phantom's files, curve,
planes and names of slices come from the naming oracle of the end-to-end tests, and everything else is arithmetic on
these. Run it when a script changes; the program is asked for nothing but the phantom.
"""
import json
import math
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).parent
sys.path[:0] = [str(HERE), str(HERE.parent / "e2e" / "oracle")]
import compare  # noqa: E402
import naming  # noqa: E402

LUMBAR = "2.25.299423083254647492173258479796316060774"  # the study of the lumbar phantom with seed 1
DEFAULT_COLOUR = [1, 0.8, 0.2, 1]
NO_RECT = [0, 0, 0, 0]
ALL = list(range(15))
LUMBAR_DISCS = ["T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"]
LUMBAR_VERTEBRAE = ["L1", "L2", "L3", "L4", "L5"]


def samples(vertices, scale):
    """The oracle's curve with the workstation's number of samples a segment: the nearest whole number."""
    ghosts = [tuple(2 * a - b for a, b in zip(vertices[0], vertices[1])), *vertices,
              tuple(2 * a - b for a, b in zip(vertices[-1], vertices[-2]))]
    points, segments = [], []
    for i in range(len(vertices) - 1):
        fine = [naming.catmull_rom(ghosts[i:i + 4], t / 2000) for t in range(2001)]
        count = max(2, round(scale * sum(math.dist(a, b) for a, b in zip(fine, fine[1:]))))
        points += [naming.catmull_rom(ghosts[i:i + 4], t / count) for t in range(count)]
        segments += [i] * count
    return points + [tuple(vertices[-1])], segments + [len(vertices) - 2]


naming.spline_samples = samples


# --- the state where nothing has happened ----------------------------------------------------------------------------

def plugin(**changed):
    state = {"isActive": False, "isEditingActive": False, "displayLabels": True, "additionalVertebra": False,
             "previousTool": 0, "previousROITool": 0, "workflow": 0, "drawMode": 0, "anatomicalRegion": 0,
             "study": None, "inputLengthROI": None, "inputOpenPolygonROI": None, "openPolygonROI": None,
             "intervertebralPlanes": None, "savedDictionary": None}
    return {**state, **changed}


def dump(name, viewers, **changed):
    state = {"name": name, "plugin": plugin(), "palette": None, "alerts": [], "openedAddresses": [], "defaults": {},
             "stored": {LUMBAR: None}, "viewers": viewers}
    return {**state, **changed}


def viewer(number, series, place=None, **changed):
    """The phantom's series: 1 sagittal, 2 coronal (15 slices of 320 x 320 pixels), 3 axial (52 of 256 x 256).

    Viewers lie in a grid of three by two on a screen of 1920 x 1200 points, from the upper left, in the first free
    place; the image fits into the height of 600 points.
    """
    place = number if place is None else place
    size, slices = (256, 52) if series == 3 else (320, 15)
    state = {"viewer": number, "series": series, "stack": 0, "study": LUMBAR, "orientation": {1: 0, 2: 2, 3: 4}[series],
             "slice": 0, "slices": slices, "tool": 0, "roiTool": 0, "front": False,
             "frame": [640 * (place % 3), 600 * (1 - place // 3), 640, 600], "scale": 600 / size, "origin": [0, 0],
             "rotation": 0, "flips": [False, False], "rois": []}
    return {**state, **changed}


# --- annotations -----------------------------------------------------------------------------------------------------

def roi(kind, **changed):
    state = {"id": "*", "type": kind, "mode": 0, "name": "", "points": [], "rect": NO_RECT, "tags": [],
             "colour": DEFAULT_COLOUR, "thickness": 2, "selectable": True, "textualData": True, "aliased": False,
             "originalIndex": 0, "inKeyImages": True, "savesWindow": True, "slices": []}
    return {**state, **changed}


PLUGIN_OWN = {"inKeyImages": False, "savesWindow": False}


def difference(a, b):
    return [p - q for p, q in zip(a, b)]


def unit(vector):
    length = naming.f32(math.hypot(*vector))
    return [v / length for v in vector]


class Labelled:
    """What stands in the viewers when the curve has these vertices, drawn on a slice of the sagittal series."""

    def __init__(self, phantom, vertices, slice_index):
        self.slice_index = slice_index
        self.phantom = phantom
        series = lambda number, axis: sorted((s for s in phantom.slices if s.series == number),
                                             key=lambda s: s.position[axis])
        self.sagittal = series(1, 0)[slice_index]
        self.coronal = series(2, 1)[0]
        self.axial = list(reversed(series(3, 2)))
        self.vertices = vertices
        self.planes = naming.planes_of(vertices, 6, self.sagittal.to_patient)

    def curve(self):
        return roi(10, id="#idCurve", mode=2, points=[list(v) for v in self.vertices],
                   tags=["kConstructionOpenPolygonStringTag"], colour=[0, 1, 0, 1], thickness=1, textualData=False,
                   aliased=True, originalIndex=self.slice_index, slices=ALL, **PLUGIN_OWN)

    def plane_records(self):
        return [{"name": name, "point": list(point), "vector": list(vector)}
                for name, (point, vector) in zip(LUMBAR_DISCS, self.planes)]

    def state(self):
        return {"VertanaAnatomicalRegion": 2, "intervertebralPlanes": self.plane_records(),
                "kAdditionalVertebra": False}

    def normal(self, where, plane):
        point, vector = plane
        ahead = naming.vector32(p + v for p, v in zip(point, vector))
        return unit(difference(where.to_pixel(ahead), where.to_pixel(point)))

    def plane_lines(self):
        for plane in self.planes:
            x, y = self.sagittal.to_pixel(plane[0])
            nx, ny = self.normal(self.sagittal, plane)
            half = 0.5 * naming.f32(30 / self.sagittal.spacing_x)
            yield roi(5, points=[[x + half * ny, y - half * nx], [x - half * ny, y + half * nx]],
                      tags=["VertanaFilterPlane", "VertanaFilterTemporayROI"], colour=[0.8] * 4, selectable=False,
                      textualData=False, aliased=True, originalIndex=self.slice_index, slices=ALL, **PLUGIN_OWN)

    def label_places(self, where, anchors):
        """Middle of each vertebra and the point of its label: 30 mm from it, in front of the spine."""
        for i, _ in enumerate(LUMBAR_VERTEBRAE):
            middle = [(a + b) / 2 for a, b in zip(anchors[i], anchors[i + 1])]
            normals = [self.normal(where, plane) for plane in self.planes[i:i + 2]]
            nx, ny = [(a + b) / 2 for a, b in zip(*normals)]
            yield middle, [middle[0] - ny * 30 / where.spacing_x, middle[1] + nx * 30 / where.spacing_y]

    def labels(self, where, anchors):
        for name, (_, place) in zip(LUMBAR_VERTEBRAE, self.label_places(where, anchors)):
            yield roi(13, name=name, rect=place + [0, 0], tags=["VertanaFilterLabel"], thickness=15, aliased=True,
                      originalIndex=7, slices=ALL, **PLUGIN_OWN)

    def connectors(self):
        for name, (middle, place) in zip(LUMBAR_VERTEBRAE, self.label_places(self.sagittal, self.vertices)):
            end = [m + 0.8 * (p - m) for m, p in zip(middle, place)]
            yield roi(5, points=[end, middle], tags=["VertanaFilterTemporayROI", "kLabelsLinesTagPrefix " + name],
                      colour=[1, 1, 0, 0.2], selectable=False, textualData=False, slices=[self.slice_index],
                      **PLUGIN_OWN)

    def sagittal_rois(self):
        return [self.curve(), *self.labels(self.sagittal, self.vertices), *self.plane_lines(), *self.connectors()]

    def labels_only(self, where):
        return list(self.labels(where, [where.to_pixel(point) for point, _ in self.planes]))

    def coronal_rois(self):
        return self.labels_only(self.coronal)

    def axial_rois(self, scale=600 / 256, moved=(0, 0)):
        """Names at the top of the view: its centre, 40 points below its upper edge."""
        place = [127.5 - moved[0] / scale, 127.5 - (600 / 2 - 40 - moved[1]) / scale]
        for index, each in enumerate(self.axial):
            name, _ = naming.name_of_slice(each.centre(), naming.vector32(each.normal), self.planes, self.phantom.names)
            if name is not None:
                yield roi(13, name=name, rect=place + [0, 0], tags=["VertanaFilterAxialLabel"], thickness=20,
                          slices=[index], **PLUGIN_OWN)


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


def refused(title, code, reason, remedy):
    return [dump(None, [viewer(0, 1, front=True)], plugin=plugin(displayLabels=False),
                 alerts=alert("critical", title, f"VertanaFilterError ({code})\n{reason}\n{remedy}"),
                 openedAddresses=["https://pelmar.example/"])]


def lacking(_):
    """The first requirement that fails is told; the tool of annotations is none."""
    return refused("Required API unavailable.", 2,
                   "DCMPix instances do not respond to selector -[DCMPix bodyPartExamined].",
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
    "own": (own, {"status": 1, "messages": ["Step 23 of 23, \"redo\": There is nothing to redo."]}),
    "events": (events, {}), "palette": (palette, {}), "no_vertical": (no_vertical, {}), "lacking": (lacking, {}),
    "old_host": (old_host, {}), "reset_sticks": (reset_sticks, {}),
    "colleague": (colleague, {"before": ALL_REPORTS, "messages": ["broken.dcm", "broken.dcm"]}),
    "full_disk": (full_disk, {"messages": ["is not yet saved", "is not yet saved"]}),
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
        phantom = naming.Phantom(str(folder))
    for name in names or sorted(SCRIPTS):
        dumps, beside = SCRIPTS[name]
        beside = {**beside, "before": [PHANTOM, *beside.get("before", [])]}
        lines = ",\n  ".join(json.dumps(each) for each in dumps(phantom))
        text = json.dumps(beside)[:-1] + ', "dumps": [\n  ' + lines + "\n]}\n"
        json.loads(text)
        (HERE / f"{name}.expected.json").write_text(text, encoding="utf-8")


main()
