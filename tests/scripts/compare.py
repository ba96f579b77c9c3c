"""Compares what a script printed with what is expected of it, field by field.

In what is expected
  "*"        stands for anything,
  "#NAME"    for a value that is the same wherever the name stands, and, for names that begin with "#id", nowhere else,
  {"...": true, ...}  for an object that may have more keys.
Numbers may differ by a millionth of themselves; what should be 0 may be off by what rounding leaves of coordinates of
some hundreds. Keys must come in the expected order.
"""
import math

TOLERANCE = 1e-6
TOLERANCE_AT_ZERO = 1e-9


class Comparison:
    def __init__(self):
        self.bound = {}
        self.differences = []

    def differ(self, where, expected, found):
        self.differences.append(f"{where}: {shortened(found)}, expected {shortened(expected)}")

    def compare(self, where, expected, found):
        if expected == "*":
            return
        if isinstance(expected, str) and expected.startswith("#"):
            self.compare_bound(where, expected, found)
        elif isinstance(expected, dict):
            self.compare_objects(where, expected, found)
        elif isinstance(expected, list):
            self.compare_lists(where, expected, found)
        elif is_number(expected) and is_number(found):
            if not math.isclose(expected, found, rel_tol=TOLERANCE, abs_tol=TOLERANCE_AT_ZERO):
                self.differ(where, expected, found)
        elif type(expected) is not type(found) or expected != found:
            self.differ(where, expected, found)

    def compare_bound(self, where, name, found):
        if name in self.bound:
            self.compare(where, self.bound[name], found)
            return
        if name.startswith("#id") and any(found == value for key, value in self.bound.items() if key[:3] == "#id"):
            self.differ(where, f"a value of its own for {name}", found)
        if found is None or (isinstance(found, str) and found[:1] in ("*", "#")):
            self.differ(where, f"a value for {name}", found)
            return
        self.bound[name] = found

    def compare_objects(self, where, expected, found):
        if not isinstance(found, dict):
            self.differ(where, expected, found)
            return
        keys = [key for key in expected if key != "..."]
        for key in keys:
            if key in found:
                self.compare(f"{where}.{key}", expected[key], found[key])
            else:
                self.differ(f"{where}.{key}", expected[key], "no such key")
        if "..." not in expected:
            for key in found:
                if key not in expected:
                    self.differ(f"{where}.{key}", "no such key", found[key])
        order = [key for key in found if key in expected]
        if order != [key for key in keys if key in found]:
            self.differ(f"{where} (order of keys)", keys, order)

    def compare_lists(self, where, expected, found):
        if not isinstance(found, list):
            self.differ(where, expected, found)
            return
        if len(expected) != len(found):
            self.differ(f"{where} (length)", len(expected), len(found))
        for index, (one, other) in enumerate(zip(expected, found)):
            self.compare(f"{where}[{index}]", one, other)


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


def shortened(value):
    text = repr(value)
    return text if len(text) < 300 else text[:300] + "..."


# Every dump has these keys, in this order, whatever else is expected of it.
TOP = ["name", "plugin", "palette", "alerts", "openedAddresses", "defaults", "stored", "viewers"]
PLUGIN = ["isActive", "isEditingActive", "displayLabels", "additionalVertebra", "previousTool", "previousROITool",
          "workflow", "drawMode", "anatomicalRegion", "study", "inputLengthROI", "inputOpenPolygonROI",
          "openPolygonROI", "intervertebralPlanes", "savedDictionary"]
PLANE = ["name", "point", "vector"]
STORED = ["objects", "counting", "state", "held", "unsaved"]
VIEWER = ["viewer", "series", "stack", "study", "orientation", "slice", "slices", "tool", "roiTool", "front", "frame",
          "scale", "origin", "rotation", "flips", "rois"]
ROI = ["id", "type", "mode", "name", "points", "rect", "tags", "colour", "thickness", "selectable", "textualData",
       "aliased", "originalIndex", "inKeyImages", "savesWindow", "slices"]


def misshapen(dump):
    """Where a dump does not have the keys that every dump has, or breaks a rule that holds in every dump."""
    parts = [("dump", dump, TOP), ("plugin", dump["plugin"], PLUGIN)]
    parts += [(f"plugin.{key}", dump["plugin"][key], ROI) for key in PLUGIN if key.endswith("ROI")]
    parts += [(f"planes[{i}]", plane, PLANE) for i, plane in enumerate(dump["plugin"]["intervertebralPlanes"] or [])]
    parts += [(f"stored.{study}", state, STORED) for study, state in dump["stored"].items()]
    parts += [("palette", dump["palette"], ["visible", "frame"])]
    parts += [(f"alerts[{i}]", alert, ["kind", "title", "message", "buttons"])
              for i, alert in enumerate(dump["alerts"])]
    for viewer in dump["viewers"]:
        where = f"viewers[{viewer['viewer']}]"
        parts.append((where, viewer, VIEWER))
        parts += [(f"{where}.rois[{i}]", roi, ROI) for i, roi in enumerate(viewer["rois"])]
        ids = [roi["id"] for roi in viewer["rois"]]
        if len(ids) != len(set(ids)):
            yield f"{where}: an annotation is printed twice: {ids}"
        for roi in viewer["rois"]:
            if not roi["slices"] or roi["slices"] != sorted(set(roi["slices"])) or roi["tags"] != sorted(roi["tags"]):
                yield f"{where}: annotation {roi['id']} has slices {roi['slices']} and tags {roi['tags']}"
    if dump["viewers"] and sum(viewer["front"] for viewer in dump["viewers"]) != 1:
        yield "not exactly one viewer is in front"
    for where, part, keys in parts:
        if part is not None and list(part) != keys:
            yield f"{where} has the keys {list(part)}, expected {keys}"
