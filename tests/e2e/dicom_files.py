"""Reads DICOM files and stores them in other ways, for the end-to-end tests."""
import pydicom
from pydicom.dataset import Dataset
from pydicom.sequence import Sequence
from pydicom.uid import generate_uid

ENHANCED_CT = "1.2.840.10008.5.1.4.1.1.2.1"
ENHANCED_MR = "1.2.840.10008.5.1.4.1.1.4.1"


def headers(folder):
    return [pydicom.dcmread(path) for path in sorted(folder.iterdir())]


def save(header, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    header.save_as(path)


def item(**values):
    dataset = Dataset()
    for keyword, value in values.items():
        setattr(dataset, keyword, value)
    return dataset


def one(**values):
    """A functional group: a sequence of one item."""
    return Sequence([item(**values)])


def enhanced(slices, sop_class):
    """One enhanced image with a frame a slice, in this order; pixels, places and spacing as in the slices.

    What all frames have in common stands in the shared functional groups, the rest in each frame's own
    (PS3.3 C.7.6.16).
    """
    image = pydicom.dcmread(slices[0].filename)
    image.SOPClassUID = image.file_meta.MediaStorageSOPClassUID = sop_class
    image.SOPInstanceUID = image.file_meta.MediaStorageSOPInstanceUID = generate_uid()
    image.NumberOfFrames = len(slices)
    image.PixelData = b"".join(header.PixelData for header in slices)
    shared = item(PixelMeasuresSequence=one(PixelSpacing=slices[0].PixelSpacing,
                                            SliceThickness=slices[0].SliceThickness))
    if "RescaleSlope" in slices[0]:
        shared.PixelValueTransformationSequence = one(RescaleIntercept=slices[0].RescaleIntercept,
                                                      RescaleSlope=slices[0].RescaleSlope, RescaleType="HU")
    frames = [item(PlanePositionSequence=one(ImagePositionPatient=header.ImagePositionPatient)) for header in slices]
    parallel = all(header.ImageOrientationPatient == slices[0].ImageOrientationPatient for header in slices)
    for groups, header in [(shared, slices[0])] if parallel else zip(frames, slices):
        groups.PlaneOrientationSequence = one(ImageOrientationPatient=header.ImageOrientationPatient)
    for keyword in ("ImagePositionPatient", "ImageOrientationPatient", "PixelSpacing", "SliceThickness", "RescaleSlope",
                    "RescaleIntercept", "RescaleType"):
        if keyword in image:
            delattr(image, keyword)
    image.SharedFunctionalGroupsSequence = Sequence([shared])
    image.PerFrameFunctionalGroupsSequence = Sequence(frames)
    return image
