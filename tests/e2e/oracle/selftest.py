"""Cases of the naming rule worked out by hand; run by `naming.py selftest`."""

import math

import naming

DOWN = (0.0, 0.0, -1.0)
UP = (0.0, 0.0, 1.0)
BACK = (0.0, 1.0, 0.0)

# Three parallel discs A, B, C, 30 mm apart; vertebra v0 between A and B, v1 between B and C; U above, W below.
NAMES = naming.Names(["A", "B", "C"], ["v0", "v1"], "U", "W")
PARALLEL = [((0.0, 0.0, 0.0), DOWN), ((0.0, 0.0, -30.0), DOWN), ((0.0, 0.0, -60.0), DOWN)]

# z of a horizontal slice, its name, why.
PARALLEL_CASES = [
    (0, "A", "on the first disc"),
    (-9, "A", "within the first third of the gap"),
    (-10, "A", "exactly one third still carries the disc"),
    (-11, "v0", "middle third, the nearest disc comes first"),
    (-15, "v0", "equal distances: the first disc is the best"),
    (-16, "B", "middle third, the nearest disc comes second: it keeps the disc's name"),
    (-19, "B", "the same, up to the last third"),
    (-20, "B", "one third from the second disc"),
    (-30, "B", "on the second disc"),
    (-40, "B", "one third beyond the second disc"),
    (-41, "v1", "middle third of the second gap"),
    (-45, "v1", "middle of the second gap"),
    (-46, "C", "nearer to the last disc"),
    (-60, "C", "on the last disc"),
    # Beyond an end the gap is the difference of the distances to the last two discs: 30 mm, whatever the slice.
    (9, "A", "less than a third above the first disc"),
    (10, "U", "exactly a third above: no longer the disc"),
    (15, "U", "half a gap above"),
    (20, "U", "exactly two thirds above"),
    (21, None, "more than two thirds above"),
    (-69, "C", "less than a third below the last disc"),
    (-70, "W", "exactly a third below"),
    (-80, "W", "exactly two thirds below"),
    (-81, None, "more than two thirds below"),
]

# Planes, slice centre, name, why: the slice is horizontal and its centre lies 50 mm behind the discs.
TILTED_CASES = [
    # A stands upright, 50 mm from the slice's centre, and contains the crossing of B and C at (0, 0, -45). Measured from
    # the centre, A is 50 mm away, B and C 15 mm: B is the best. From the crossing A is 0 mm away, with no direction
    # (angle 0), and C lies opposite (angle pi): next, middle third, vertebra 1.
    ([((0.0, 0.0, 0.0), BACK), PARALLEL[1], PARALLEL[2]], (0.0, 50.0, -45.0), "v1",
     "discs before the crossing are measured from the slice's centre"),
    # The slice crosses from A to B at (0, 0, -12). C stands upright and contains that point: 0 mm, so it is the best;
    # without direction the slice lies beyond the last disc, the gap is 18 mm (to B), and 0 < 6.
    ([PARALLEL[0], PARALLEL[1], ((0.0, 0.0, -60.0), BACK)], (0.0, 50.0, -12.0), "C",
     "discs after the crossing are measured from the crossing"),
    (PARALLEL[:1], (0.0, 50.0, -400.0), "A", "a single disc names every slice"),
    ([], (0.0, 0.0, 0.0), None, "no discs, no name"),
]

# Segment start and end, plane's height, crossing's height, why.
SEGMENT_CASES = [
    (0, -30, -12, -12, "inside"),
    (0, -30, 0, 0, "at its start"),
    (0, -30, -30, -30, "at its end"),
    (0, -30, 1, None, "above its start"),
    (0, -30, -31, None, "below its end"),
    (-5, -5, -5, None, "without length"),
]


def run():
    failures = []
    count = 0

    def expect(found, wanted, why):
        nonlocal count
        count += 1
        if found != wanted:
            failures.append("%s: %r, expected %r" % (why, found, wanted))

    for normal in (UP, DOWN):
        for z, wanted, why in PARALLEL_CASES:
            found, _ = naming.name_of_slice((0.0, 0.0, float(z)), normal, PARALLEL, NAMES)
            expect(found, wanted, "z %d, %s" % (z, why))
    for planes, centre, wanted, why in TILTED_CASES:
        expect(naming.name_of_slice(centre, UP, planes, NAMES)[0], wanted, why)
    for start, end, height, wanted, why in SEGMENT_CASES:
        found = naming.segment_meets_plane((0.0, 0.0, float(start)), (0.0, 0.0, float(end)), UP, (7.0, 8.0, float(height)))
        expect(found and found[2] if found is not None else None, wanted, "segment met " + why)
    expect(naming.distance_and_foot((1.0, 2.0, 5.0), (9.0, 9.0, 2.0), (0.0, 0.0, -2.0)), (3.0, (1.0, 2.0, 2.0)),
           "distance and foot, normal of length 2")
    expect(naming.angle_between((1.0, 0.0, 0.0), (0.0, 3.0, 0.0)), naming.f32(math.pi / 2), "right angle")
    expect(naming.angle_between((0.0, 0.0, 0.0), (0.0, 3.0, 0.0)), 0.0, "no direction")
    expect_curve(expect)
    for failure in failures:
        print(failure)
    print("%d of %d cases failed" % (len(failures), count) if failures else "%d cases hold" % count)
    return 1 if failures else 0


def expect_curve(expect):
    """A straight curve of four vertices 10 pixels apart, a pixel being 2 mm and y running down the patient."""
    vertices = [(5.0, 10.0 * k) for k in range(4)]
    samples, segments = naming.spline_samples(vertices, 5.0)
    expect([segments.index(k) for k in range(3)], [0, 50, 100], "five samples a pixel, a vertex starts its segment")
    expect(len(samples), 151, "the last vertex is a sample")
    expect([samples[0], samples[50], samples[100], samples[150]], vertices, "the spline goes through its vertices")
    expect(segments[-1], 2, "the last sample belongs to the last segment")
    expect(segments.count(0), 50, "samples of the first segment")
    short, of = naming.spline_samples([(0.0, 0.0), (0.0, 0.1), (0.0, 0.2)], 5.0)
    expect((len(short), of), (5, [0, 0, 1, 1, 1]), "at least two samples a segment")

    def to_patient(pixel):
        return naming.vector32((0.0, 2.0 * pixel[0], -2.0 * pixel[1]))

    planes = naming.planes_of(vertices, 4, to_patient)
    # A disc's point is the sample before its vertex, 0.2 pixels or 0.4 mm above it; the first and last are the vertices.
    expect([round(p[0][2], 4) for p in planes], [0.0, -19.6, -39.6, -60.0], "points")
    expect([tuple(round(v, 5) for v in p[1]) for p in planes], [DOWN] * 4, "vectors point on along the curve")
    # Three vertices do without the spline.
    expect([round(p[0][2], 4) for p in naming.planes_of(vertices[:3], 3, to_patient)], [0.0, -20.0, -40.0], "three points")
    # More labels than vertices, and fewer.
    expect(len(naming.planes_of(vertices, 6, to_patient)), 4, "more discs than vertices")
    expect(len(naming.planes_of(vertices, 2, to_patient)), 2, "fewer discs than vertices")
