#pragma once
// Folders with studies and reports.

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/workstation/dicom/DicomFixtures.h"
#include "workstation/database/StudyDatabase.h"

namespace workstation::test {

/// The UID of the study that writeStudy writes.
const std::string& studyUid();
/// Sagittal slices 1 .. `images` as <folder>/sag/1.dcm and so on.
void writeStudy(const std::filesystem::path& folder, int images = 3);

/// Lumbar, with one level through (x, 2, 3).
SavedLabelling lumbarAt(double x);
/// The bytes of a report on the study of an image. `number` gives it its UID, its instance number and its time: a
/// larger one is later.
pelmar::Bytes reportOn(const std::filesystem::path& image, const SavedLabelling& labelling, int number);
/// The UID that reportOn gives.
std::string reportUid(int number);

/// Every file, folder and link below a folder with its bytes and times.
std::map<std::string, std::string> photographOf(const std::filesystem::path& folder);

/// The database, which is made where there is none; the test fails when it cannot be opened.
std::unique_ptr<StudyDatabase> openInPlace(const std::filesystem::path& folderOrFile, const OpenOptions& options = {});
std::unique_ptr<StudyDatabase> openAsDatabase(const std::filesystem::path& folder, const OpenOptions& options = {});
/// Options that count how many files an opening reads.
OpenOptions countingReads(std::size_t& reads);

/// Writes a report on the study beside its first image; the test fails when it is refused.
std::filesystem::path store(StudyDatabase& database, const SavedLabelling& labelling, int number);

/// All that is known of a slice, as text.
std::string described(const ImageRecord& image);
std::vector<std::string> described(const std::vector<ImageRecord>& images);

/// The x of the level of each labelling, in order of the reports' numbers.
std::vector<double> levelsIn(StudyDatabase& database, const std::string& uid = studyUid());

/// Runs something in a process of its own; true when it answers true and ends well there.
bool inChild(const std::function<bool()>& work);
pid_t startChild(const std::function<bool()>& work);
bool endsWell(pid_t child);

/// Sets a folder's time back by an hour, so that a change shows at once.
void makeOld(const std::filesystem::path& path);

}  // namespace workstation::test
