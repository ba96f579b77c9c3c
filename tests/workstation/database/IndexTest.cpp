#include "workstation/database/Index.h"

#include <gtest/gtest.h>

#include <cmath>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

ImageRecord someImage(const std::string& sopUid) {
  ImageRecord image;
  image.sopClassUid = "1.2.840.10008.5.1.4.1.1.4";
  image.sopInstanceUid = sopUid;
  image.studyInstanceUid = "1.2";
  image.seriesInstanceUid = "1.2.3";
  image.modality = "MR";
  image.rows = 7;
  image.columns = 9;
  return image;
}

FileToIndex imageFile(const std::string& folder, const std::string& name, std::vector<ImageRecord> images) {
  FileToIndex file{{folder, name, 100, 5}, {}};
  file.contents.kind = FileKind::image;
  file.contents.images = std::move(images);
  return file;
}

FileToIndex reportFile(const std::string& name, const DecodedLabelling& decoded) {
  FileToIndex file{{"", name, 100, 5}, {}};
  file.contents.kind = FileKind::object;
  file.contents.header.emplace();
  file.contents.header->studyInstanceUid = "1.2";
  file.contents.header->sopInstanceUid = name;
  file.contents.header->modality = "SR";
  file.contents.labelling = decoded;
  return file;
}

TEST(IndexTest, EveryFieldOfASliceComesBack) {
  ImageRecord full = someImage("1");
  full.instanceNumber = -4;
  full.imageType = {"ORIGINAL", "", "LOCALIZER"};
  full.studyDescription = "Wirbels\xc3\xa4ule";
  full.studyDate = "20240229";
  full.patientName = "O'Hara^\xe5\xb1\xb1";
  full.patientId = "7";
  full.seriesNumber = 12;
  full.seriesDescription = "T2 \"sag\"";
  full.bodyPartExamined = "LSPINE";
  full.frameOfReferenceUid = "9";
  full.geometry = ImageGeometry{{1.0 / 3, -0.0, 1e-310}, {1, 0, 0}, {0, 0.6, 0.8}, 0.1, 0.2};
  full.colour = true;
  ImageRecord bare = someImage("2");  // the same series, with most of it absent
  bare.studyDescription = "";
  bare.geometryProblem = "Pixel Spacing is 0";
  bare.pixelAspect = 4.0 / 3;

  Index index;
  index.change({}, {imageFile("a", "1", {full}), imageFile("a", "2", {bare})});
  full.file = "/root/a/1";
  bare.file = "/root/a/2";
  EXPECT_EQ(described(index.images("/root", "1.2")), described({full, bare}));
  EXPECT_TRUE(std::signbit(index.images("/root")[0].geometry->position[1])) << "of a zero, too";
}

TEST(IndexTest, SlicesComeInOrderOfPathsAndFrames) {
  Index index;
  std::vector<ImageRecord> frames(3, someImage("1"));
  for (int frame = 1; frame <= 3; ++frame) frames[static_cast<std::size_t>(frame - 1)].frame = frame;
  index.change({}, {imageFile("a-b", "1", {someImage("3")}), imageFile("a", "2", {someImage("2")}),
                    imageFile("a", "1", frames)});
  std::vector<std::string> found;
  for (const ImageRecord& image : index.images("r"))
    found.push_back(image.file.string() + " " + std::to_string(image.frame));
  EXPECT_EQ(found, (std::vector<std::string>{"r/a/1 1", "r/a/1 2", "r/a/1 3", "r/a/2 1", "r/a-b/1 1"}));
}

TEST(IndexTest, EveryEntryOfALabellingComesBack) {
  SavedLabelling noLevels = lumbarAt(1);
  noLevels.levels.reset();
  SavedLabelling noRegion;
  noRegion.additionalVertebra = true;
  noRegion.levels.emplace();
  SavedLabelling exact = lumbarAt(1.0 / 3);
  exact.levels->push_back({"L5-S1", {-0.0, 1e300, 5e-324}, {1, 2, 3}});
  Index index;
  const std::vector<SavedLabelling> labellings = {{}, noLevels, noRegion, exact};
  for (std::size_t i = 0; i < labellings.size(); ++i)
    index.change({}, {reportFile(std::to_string(i), {labellings[i], i == 3, ""})});
  const std::vector<IndexedObject> objects = index.objects("1.2");
  ASSERT_EQ(objects.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(objects[i].labelling->labelling, labellings[i]) << i;
    EXPECT_EQ(objects[i].labelling->fromContent, i == 3) << i;
  }
  EXPECT_TRUE(std::signbit(objects[3].labelling->labelling->levels->at(1).point[0]));
}

TEST(IndexTest, UnreadableLabellingKeepsItsReason) {
  Index index;
  index.change({}, {reportFile("bad", {std::nullopt, false, "its archive is cut short"})});
  ASSERT_TRUE(index.objects("1.2")[0].labelling);
  EXPECT_FALSE(index.objects("1.2")[0].labelling->labelling);
  EXPECT_EQ(index.objects("1.2")[0].labelling->problem, "its archive is cut short");
}

TEST(IndexTest, FileIsReplacedUnderItsName) {
  Index index;
  index.change({}, {imageFile("a", "1", {someImage("1")})});
  index.change({}, {reportFile("x", {lumbarAt(1), false, ""})});
  ImageRecord other = someImage("2");
  other.studyInstanceUid = "5.6";
  index.change({}, {imageFile("a", "1", {other})});
  EXPECT_TRUE(index.images("r", "1.2").empty());
  ASSERT_EQ(index.images("r", "5.6").size(), 1U);
  EXPECT_EQ(index.series().size(), 1U) << "the series without images is gone";
}

TEST(IndexTest, ForgettingAFileForgetsWhatItHeld) {
  Index index;
  index.change({}, {imageFile("a", "1", {someImage("1")}), reportFile("x", {lumbarAt(1), false, ""})});
  std::vector<std::int64_t> all;
  for (const IndexedFile& file : index.files()) all.push_back(file.id);
  index.change(all, {});
  EXPECT_TRUE(index.images("r").empty());
  EXPECT_TRUE(index.objects().empty());
  EXPECT_FALSE(index.holdsStudy("1.2"));
}

TEST(IndexTest, ObjectInTwoFilesCountsOnce) {
  Index index;
  std::vector<ImageRecord> frames(2, someImage("1"));
  frames[1].frame = 2;
  index.change({}, {imageFile("a", "1", frames), imageFile("b", "1", frames), imageFile("b", "2", {someImage("2")})});
  ASSERT_EQ(index.series().size(), 1U);
  EXPECT_EQ(index.series()[0].objects, 2U);
  EXPECT_EQ(index.series()[0].slices, 3U);
}

}  // namespace
}  // namespace workstation::test
