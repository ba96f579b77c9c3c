#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// A file that cannot be used, and why.
struct UnreadableFile {
  std::filesystem::path file;
  std::string reason;  ///< a phrase that follows "because": "it is empty", "it has no pixel data"
};

/// A file that holds the same image as another one.
struct CopiedFile {
  std::filesystem::path file;
  std::filesystem::path original;  ///< the file whose image is used
};

/// What a folder of files holds. Everything in order of the files' paths, frames in order of their number.
struct ReadResult {
  /// A record a slice: one for a single-frame file, one for each frame of a multi-frame file. A slice whose position,
  /// orientation or spacing cannot be used is here too, with the reason in geometryProblem.
  std::vector<ImageRecord> images;
  /// Files that are, or by their name claim to be, DICOM images but cannot be shown.
  std::vector<UnreadableFile> unreadable;
  /// Images that the same study holds in an earlier file already; they are not in `images`.
  std::vector<CopiedFile> copies;
  /// DICOM objects that are no images: structured reports, segmentations, plans, waveforms ...
  std::vector<std::filesystem::path> otherObjects;
  /// Files that are not DICOM and do not claim to be.
  std::vector<std::filesystem::path> notDicom;
  /// DICOMDIR files: the images are found by looking at the files themselves.
  std::vector<std::filesystem::path> directories;
  bool cancelled = false;  ///< the progress callback said so; what was read by then is in the lists
  std::string warning;     ///< a whole sentence when the DICOM toolkit is not set up as it should be; else empty
};

struct ReadOptions {
  /// Called before each file with the number done and the number in all, and once at the end. False stops reading.
  std::function<bool(std::size_t done, std::size_t total)> progress;
};

/// Reads what is known of the images in a folder, at any depth, or in one file; no pixel is read. Links are followed,
/// each file and folder is visited once. A file is recognised by its contents, never by its name, but a name can show
/// that a file was meant to be one: an empty file, or a file named *.dcm that is not DICOM, is unreadable, not skipped.
/// An image that a study holds in several files is taken from the first of them by path.
/// Never throws for anything that the files contain; a path that does not exist is an unreadable file.
ReadResult readImages(const std::filesystem::path& folderOrFile, const ReadOptions& options = {});

/// Reads one file into the lists of `result`, as readImages does, but for copies, which it does not look for.
void readImageFile(const std::filesystem::path& file, ReadResult& result);

}  // namespace workstation
