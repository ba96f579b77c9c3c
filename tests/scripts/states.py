"""What a dump holds in a given state, worked out from the rules and the phantom's geometry; see expected.py."""
import math
import pathlib
import sys

HERE = pathlib.Path(__file__).parent
sys.path[:0] = [str(HERE), str(HERE.parent / "e2e" / "oracle")]
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
