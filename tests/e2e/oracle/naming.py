#!/usr/bin/python3
"""The level of every axial slice of a phantom, computed from its truth alone.

Written from the naming rule and apart from the program that it judges: it shares no code with it and runs on
the standard library and pydicom (Debian package python3-pydicom).

  naming.py polygon FOLDER             the true disc centres as a polygon on the middle sagittal slice: X0,Y0,X1,Y1,...
  naming.py series FOLDER              the Series Number of the series that this polygon belongs to
  naming.py check FOLDER LABEL_JSON    compares each name that `vertana label --json` printed with the rule's
  naming.py discs FOLDER LABEL_JSON    every slice that truly cuts a disc of the region must carry that disc's name
  naming.py names FOLDER               the rule's names, in the form of `vertana label --json`
  naming.py selftest                   cases worked out by hand

FOLDER holds truth.json and the DICOM files. Exit status: 0 agreement, 1 differences, 2 wrong usage, 3 unreadable input.
"""
import json
import math
import os
import struct
import sys


# Single precision -----------------------------------------------------------------------------------------------------

def f32(value):
    """The nearest single-precision number."""
    return struct.unpack("<f", struct.pack("<f", value))[0]


def vector32(values):
    return tuple(f32(v) for v in values)


def sub32(a, b):
    return tuple(f32(x - y) for x, y in zip(a, b))


def dot32(a, b):
    products = [f32(x * y) for x, y in zip(a, b)]
    return f32(f32(products[0] + products[1]) + products[2])


# Plane geometry -------------------------------------------------------------------------------------------------------

def segment_meets_plane(start, end, normal, on_plane):
    """Where a segment crosses a plane, both ends included; None where it does not or runs along the plane."""
    direction = sub32(end, start)
    along = dot32(normal, direction)
    if abs(along) < 1e-08:
        return None
    share = f32(-dot32(normal, sub32(start, on_plane)) / along)
    if share < 0 or share > 1:
        return None
    return tuple(f32(s + share * d) for s, d in zip(start, direction))


def distance_and_foot(point, on_plane, normal):
    """Unsigned distance from a point to a plane, and the point's projection onto it."""
    square = sum(n * n for n in normal)
    if square == 0:
        return 0.0, point
    offset = sum(n * (p - o) for n, p, o in zip(normal, point, on_plane)) / square
    foot = vector32(p - offset * n for p, n in zip(point, normal))
    return f32(abs(offset) * math.sqrt(square)), foot


def angle_between(a, b):
    """Unsigned angle, 0 .. pi; 0 where one of the vectors is zero."""
    lengths = math.sqrt(sum(x * x for x in a)) * math.sqrt(sum(x * x for x in b))
    if lengths == 0:
        return 0.0
    return f32(math.acos(max(-1.0, min(1.0, sum(x * y for x, y in zip(a, b)) / lengths))))


# The rule -------------------------------------------------------------------------------------------------------------

class Names:
    """The names of a region's discs and vertebrae, head to foot, and of the vertebrae just beyond both ends."""

    ENDS = {0: ("C0", "T1"), 1: ("C7", "L1"), 2: ("T12", "S1")}

    def __init__(self, discs, vertebrae, upper, lower):
        self.discs = discs
        self.vertebrae = vertebrae
        self.upper = upper
        self.lower = lower


def name_of_slice(centre, normal, planes, names):
    """The level of the slice through `centre` with `normal`, and a line that tells the distances it came from.

    `planes` are (point, vector) in single precision, head to foot.
    """
    if not planes:
        return None, "no planes"
    query = centre
    best = None
    for k, (point, vector) in enumerate(planes):
        if k + 1 < len(planes):
            crossing = segment_meets_plane(point, planes[k + 1][0], normal, centre)
            if crossing is not None:
                query = crossing  # kept for the planes that follow
        distance, foot = distance_and_foot(query, point, vector)
        if best is None or distance < best[1]:
            best = (k, distance, foot)
    b, d_b, foot_b = best
    own = names.discs[b]
    to_best = sub32(foot_b, query)

    def neighbour(k):
        distance, foot = distance_and_foot(query, *planes[k])
        return distance, angle_between(to_best, sub32(foot, query))

    previous = neighbour(b - 1) if b >= 1 else None
    following = neighbour(b + 1) if b < len(planes) - 1 else None
    told = "nearest %s at %.6f mm" % (own, d_b)
    if previous:
        told += ", previous at %.6f mm (%.6f rad)" % previous
    if following:
        told += ", next at %.6f mm (%.6f rad)" % following

    if previous and following:
        other, step = (previous, -1) if previous[1] > following[1] else (following, 1)
    elif previous:
        if not previous[1] > math.pi / 2:
            return beyond_end(own, d_b, f32(previous[0] - d_b), names.lower), told
        other, step = previous, -1
    elif following:
        if not following[1] > math.pi / 2:
            return beyond_end(own, d_b, f32(following[0] - d_b), names.upper), told
        other, step = following, 1
    else:
        return own, told
    return between(b, step, d_b, other[0], names), told


def between(b, step, d_b, d_o, names):
    third = f32(d_b + d_o) / 3
    if d_b <= third:
        result = names.discs[b]
    elif d_o <= third:
        result = names.discs[b + step]
    else:
        # In the middle third only a slice whose nearest plane comes first takes the vertebra's name.
        result = names.vertebrae[b] if step == 1 else names.discs[b]
        if d_b > f32(d_b + d_o):
            result = names.vertebrae[b + step]
    return result


def beyond_end(own, d_b, gap, end):
    if d_b < gap / 3:
        return own
    return None if d_b > 2 * gap / 3 else end


# The curve and its planes ---------------------------------------------------------------------------------------------

def spline_samples(vertices, scale):
    """The centripetal Catmull-Rom spline through the vertices: samples, and for each the segment it lies on.

    Beyond its ends the spline sees the neighbouring vertex mirrored.
    """
    ghosts = [tuple(2 * a - b for a, b in zip(vertices[0], vertices[1]))]
    ghosts += list(vertices)
    ghosts += [tuple(2 * a - b for a, b in zip(vertices[-1], vertices[-2]))]
    samples, segments = [], []
    for i in range(len(vertices) - 1):
        control = ghosts[i:i + 4]
        fine = [catmull_rom(control, t / 200) for t in range(201)]
        length = sum(math.dist(a, b) for a, b in zip(fine, fine[1:]))
        count = max(2, math.ceil(length * scale - 1e-6))
        samples += [catmull_rom(control, t / count) for t in range(count)]
        segments += [i] * count
    samples.append(tuple(vertices[-1]))
    segments.append(len(vertices) - 2)
    return samples, segments


def catmull_rom(control, share):
    """Barry and Goldman's pyramid with knots at the square roots of the chords; 0 the second point, 1 the third."""
    if share == 0:
        return tuple(control[1])
    knots = [0.0]
    for a, b in zip(control, control[1:]):
        knots.append(knots[-1] + math.sqrt(math.dist(a, b)))
    t = knots[1] + share * (knots[2] - knots[1])

    def blend(p, q, low, high):
        return tuple(((high - t) * a + (t - low) * b) / (high - low) for a, b in zip(p, q))

    first = [blend(control[k], control[k + 1], knots[k], knots[k + 1]) for k in range(3)]
    second = [blend(first[k], first[k + 1], knots[k], knots[k + 2]) for k in range(2)]
    return blend(second[0], second[1], knots[1], knots[2])


def planes_of(vertices, disc_count, to_patient):
    """(point, vector) of each disc, from the curve's vertices in pixels."""
    samples, segments = spline_samples(vertices, 5.0)
    last = len(vertices) - 1
    planes = []
    for i in range(min(len(vertices), disc_count)):
        p = vertices[i]
        q = vertices[i - 1] if i == last else vertices[i + 1]
        if len(vertices) > 3 and i in segments:
            j = segments.index(i)
            p = samples[max(j - 1, 0)]
            q = samples[min(j + 1, len(samples) - 1)]
        point = to_patient(p)
        direction = sub32(to_patient(q), point)
        if i == last:
            direction = tuple(-x for x in direction)
        length = math.sqrt(sum(x * x for x in direction))
        planes.append((point, vector32(x / length for x in direction) if length > 0 else direction))
    return planes


# The phantom on disk --------------------------------------------------------------------------------------------------

class Slice:
    def __init__(self, data):
        self.sop = str(data.SOPInstanceUID)
        self.series = int(data.SeriesNumber)
        self.position = [float(v) for v in data.ImagePositionPatient]
        cosines = [float(v) for v in data.ImageOrientationPatient]
        self.row, self.column = cosines[:3], cosines[3:]
        self.spacing_y, self.spacing_x = (float(v) for v in data.PixelSpacing)
        self.rows, self.columns = int(data.Rows), int(data.Columns)
        r, c = self.row, self.column
        self.normal = [r[1] * c[2] - r[2] * c[1], r[2] * c[0] - r[0] * c[2], r[0] * c[1] - r[1] * c[0]]

    def axis(self):
        """0 sagittal, 1 coronal, 2 axial: the largest component of the normal."""
        return max(range(3), key=lambda k: abs(self.normal[k]))

    def to_patient(self, pixel):
        x, y = f32(pixel[0]) * self.spacing_x, f32(pixel[1]) * self.spacing_y
        return vector32(o + x * r + y * c for o, r, c in zip(self.position, self.row, self.column))

    def to_pixel(self, patient):
        offset = [p - o for p, o in zip(patient, self.position)]
        return (sum(a * b for a, b in zip(offset, self.row)) / self.spacing_x,
                sum(a * b for a, b in zip(offset, self.column)) / self.spacing_y)

    def centre(self):
        return self.to_patient((f32(self.columns * 0.5), f32(self.rows * 0.5)))


class Phantom:
    def __init__(self, folder):
        with open(os.path.join(folder, "truth.json"), encoding="utf-8") as file:
            self.truth = json.load(file)
        self.slices = list(read_slices(folder))
        sagittal = [s for s in self.slices if s.axis() == 0]
        if not sagittal:
            raise ValueError("%s holds no sagittal series." % folder)
        self.vertical_series = min(s.series for s in sagittal)
        stack = sorted((s for s in sagittal if s.series == self.vertical_series), key=lambda s: s.position[0])
        self.vertical_slice = len(stack) // 2
        self.vertical = stack[self.vertical_slice]
        self.axial = sorted((s for s in self.slices if s.axis() == 2), key=lambda s: (s.series, -s.position[2]))
        upper, lower = Names.ENDS[self.truth["anatomicalRegion"]]
        self.names = Names([d["name"] for d in self.truth["discs"]], [v["name"] for v in self.truth["vertebrae"]],
                           upper, lower)

    def polygon(self):
        """Pixels to a thousandth, so that what is printed is exactly what is computed with."""
        return [tuple(round(v, 3) for v in self.vertical.to_pixel(d["centre"])) for d in self.truth["discs"]]

    def planes(self):
        vertices = self.polygon()
        if self.vertical.to_patient(vertices[0])[2] < self.vertical.to_patient(vertices[-1])[2]:
            vertices.reverse()
        return planes_of(vertices, len(self.names.discs), self.vertical.to_patient)

    def named_slices(self):
        planes = self.planes()
        for each in self.axial:
            yield (each, *name_of_slice(each.centre(), vector32(each.normal), planes, self.names))


def read_slices(folder):
    import pydicom
    for directory, _, files in sorted(os.walk(folder)):
        for file in sorted(files):
            if not file.endswith(".dcm"):
                continue
            data = pydicom.dcmread(os.path.join(directory, file), stop_before_pixels=True)
            if "ImageOrientationPatient" in data:
                yield Slice(data)


# Commands -------------------------------------------------------------------------------------------------------------

def labelled_names(path):
    """The printed object and its names by SOP Instance UID."""
    with open(path, encoding="utf-8") as file:
        label = json.load(file)
    names = {}
    for each in label["slices"]:
        if each["sop"] in names:
            raise ValueError("%s lists the slice %s twice." % (path, each["sop"]))
        names[each["sop"]] = each["name"]
    return label, names


def check(folder, path):
    phantom = Phantom(folder)
    label, found = labelled_names(path)
    differences = list(setting_differences(phantom, label))
    agreed = 0
    for each, expected, told in phantom.named_slices():
        where = "series %d, z %.2f mm, %s" % (each.series, each.position[2], each.sop)
        if each.sop not in found:
            differences.append("%s: not listed; the rule says %s (%s)" % (where, expected, told))
            continue
        name = found.pop(each.sop)
        if name == expected:
            agreed += 1
        else:
            differences.append("%s: named %s, the rule says %s (%s)" % (where, name, expected, told))
    differences += ["%s: listed, but no axial slice of the phantom" % sop for sop in found]
    if agreed == 0:
        differences.append("not one slice agrees")
    return report(differences, "%d slices agree" % agreed)


def setting_differences(phantom, label):
    for key in ("anatomicalRegion", "additionalVertebra"):
        if label[key] != phantom.truth[key]:
            yield "%s is %s, in truth %s" % (key, label[key], phantom.truth[key])
    vertical = label.get("vertical") or {}
    for key, expected in (("series", phantom.vertical_series), ("slice", phantom.vertical_slice)):
        if vertical.get(key) != expected:
            yield "the polygon is meant for %s %s, but was drawn on %s" % (key, expected, vertical.get(key))


def discs(folder, path):
    phantom = Phantom(folder)
    _, found = labelled_names(path)
    series_of = {each.sop: each.series for each in phantom.axial}
    differences, agreed, met = [], {}, set()
    for each in phantom.truth["slices"]:
        if each["level"] not in phantom.names.discs:
            continue
        name = found.get(each["sop"])
        number = series_of[each["sop"]]
        if name == each["level"]:
            agreed[number] = agreed.get(number, 0) + 1
            met.add(name)
        else:
            differences.append("series %d, %s: named %s, truly %s" % (number, each["sop"], name, each["level"]))
    differences += ["no slice shows %s" % disc for disc in phantom.names.discs if disc not in met]
    counts = ", ".join("%d of series %d" % (agreed[number], number) for number in sorted(agreed))
    return report(differences, "disc slices agree: %s" % counts)


def report(differences, agreement):
    for each in differences:
        print(each)
    print("%d differences; %s" % (len(differences), agreement) if differences else agreement)
    return 1 if differences else 0


def names(folder):
    phantom = Phantom(folder)
    slices = [{"series": each.series, "sop": each.sop, "frame": 1, "name": name}
              for each, name, _ in phantom.named_slices()]
    print(json.dumps({"anatomicalRegion": phantom.truth["anatomicalRegion"],
                      "additionalVertebra": phantom.truth["additionalVertebra"],
                      "vertical": {"series": phantom.vertical_series, "stack": 0, "slice": phantom.vertical_slice},
                      "slices": slices}, indent=1))
    return 0


def polygon(folder):
    print(",".join("%.3f,%.3f" % vertex for vertex in Phantom(folder).polygon()))
    return 0


def series(folder):
    print(Phantom(folder).vertical_series)
    return 0


def main(arguments):
    commands = {"polygon": (polygon, 1), "series": (series, 1), "check": (check, 2), "discs": (discs, 2),
                "names": (names, 1)}
    if arguments == ["selftest"]:
        import selftest
        return selftest.run()
    if not arguments or arguments[0] not in commands or len(arguments) - 1 != commands[arguments[0]][1]:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        return commands[arguments[0]][0](*arguments[1:])
    except (OSError, ValueError, KeyError, TypeError) as error:
        print("naming.py: %s" % (error if str(error) else repr(error)), file=sys.stderr)
        return 3


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
