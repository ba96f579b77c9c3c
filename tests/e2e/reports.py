"""Reads the reports of labellings apart from the program: their content with pydicom, their archive with plistlib."""
import plistlib

import pydicom

BLOCK_GROUP, BLOCK_CREATOR, BLOCK_ARCHIVE = 0x7321, "VERTANA", 0x03
LEVEL_OF, DISC = "Level of ", " intervertebral disc"
OTHER_MEANINGS = {"C1 and C2 vertebrae": "C1-C2", "Structure of body of thirteenth thoracic vertebra": "T13"}


def report_files(folder):
    """The structured reports of a folder, the oldest first."""
    found = []
    for path in folder.rglob("*.dcm"):
        data = pydicom.dcmread(path, stop_before_pixels=True)
        if data.Modality == "SR":
            found.append((data.ContentDate, data.ContentTime, path))
    return [path for _, _, path in sorted(found)]


def archive_of(report):
    return bytes(report.private_block(BLOCK_GROUP, BLOCK_CREATOR)[BLOCK_ARCHIVE].value)


def unarchived(archive):
    """The root of a keyed archive; points become lists of three numbers."""
    plist = plistlib.loads(archive)
    objects = plist["$objects"]

    def value(uid):
        found = objects[uid.data]
        if not isinstance(found, dict):
            return found
        name = objects[found["$class"].data]["$classname"]
        if name == "NSDictionary":
            return {value(key): value(held) for key, held in zip(found["NS.keys"], found["NS.objects"])}
        if name == "NSArray":
            return [value(held) for held in found["NS.objects"]]
        assert name == "Point3D", name
        return [found["x"], found["y"], found["z"]]

    return value(plist["$top"]["root"])


def _name(item):
    return item.ConceptNameCodeSequence[0].CodeMeaning if "ConceptNameCodeSequence" in item else ""


def _meaning(item):
    return item.ConceptCodeSequence[0].CodeMeaning


def _children(item, name):
    return [child for child in item.get("ContentSequence", []) if _name(child) == name]


def _level(finding):
    """"L4-L5" of "Level of L4/L5 intervertebral disc", "L4" of "L4 vertebra"."""
    meaning = _meaning(finding)
    if meaning.startswith(LEVEL_OF):
        return meaning[len(LEVEL_OF):].removesuffix(DISC).removesuffix(" junction").replace("/", "-")
    return OTHER_MEANINGS.get(meaning, meaning.split(" ")[0])


def content_of(report):
    """What the standard content says: region, extra vertebra, planes, and the level of slices by object and frame."""
    said = {"planes": [], "slices": {}}
    evaluations = _children(report, "Qualitative Evaluations")[0]
    for item in evaluations.ContentSequence:
        said[_name(item)] = _meaning(item) if item.ValueType == "CODE" else item.TextValue
    for measurements in _children(report, "Imaging Measurements"):
        for group in _children(measurements, "Measurement Group"):
            level = _level(_children(group, "Finding")[0])
            regions = _children(group, "Image Region")
            if regions:
                normal = [_children(group, "Normal, component to the " + side)[0].MeasuredValueSequence[0]
                          for side in ("left", "back", "head")]
                said["planes"].append({"name": level, "tracked": _children(group, "Tracking Identifier")[0].TextValue,
                                       "point": list(regions[0].GraphicData),
                                       "vector": [float(one.FloatingPointValue) for one in normal]})
            else:
                image = _children(group, "Source")[0].ReferencedSOPSequence[0]
                frame = int(image.get("ReferencedFrameNumber", 1))
                said["slices"][(image.ReferencedSOPInstanceUID, frame)] = level
    return said
