#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace phantom {

/// Which study is written.
struct PhantomOptions {
  int region = 2;  ///< 0 cervical, 1 thoracic, 2 lumbar
  std::uint64_t seed = 1;
  bool extraVertebra = false;  ///< C8, T13 or L6
  bool angledAxials = false;   ///< also a series of axial blocks tilted to the discs
  bool ct = false;             ///< a CT with 512 thin axial slices, instead of an MR
  std::filesystem::path outDir;
  int imageSize = 0;  ///< rows and columns of every image, 16 .. 1024; 0: the usual 320 (vertical) and 256 (axial)
  /// Called on the calling thread before each image with the number of images written and of all; false cancels.
  std::function<bool(int done, int total)> progress;
};

/// How it ended.
struct PhantomResult {
  bool written = false;
  bool cancelled = false;
  std::string problem;           ///< a whole sentence when not written and not cancelled
  int images = 0;                ///< files of images written; 0 unless `written`
  std::filesystem::path truth;   ///< the file with the truth
  std::string studyInstanceUid;  ///< of the study that the options determine
};

/// Writes a synthetic spine study with known truth into `outDir`, which is made if it does not exist and must be empty
/// if it does: DICOM files SE01/IM0001.dcm and so on, one study in one frame of reference, and truth.json.
///
/// The same options give the same bytes. When the study cannot be written whole or is cancelled, nothing of it stays.
/// Uses two threads.
///
/// truth.json holds one object:
///   "anatomicalRegion" 0..2, "additionalVertebra", "frameOfReference" (UID),
///   "discs": [{"name", "centre": [x,y,z], "normal": [x,y,z]}] head to foot, mm, LPS; the normal is the unit vector
///            along the spine's centre line towards the feet,
///   "vertebrae": [{"name", "centre"}] head to foot, atlas and axis as one "C1-C2",
///   "slices": [{"sop", "frame", "level"}] for each axial slice the disc or vertebra, of the whole spine, in which the
///             centre line crosses it.
PhantomResult writePhantom(const PhantomOptions& options);

}  // namespace phantom
