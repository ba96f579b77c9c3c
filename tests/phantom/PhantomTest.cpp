#include "phantom/Phantom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "tests/support/FileSizeLimit.h"
#include "tests/support/Requirements.h"
#include "tests/support/TemporaryFolder.h"

namespace phantom {
namespace {

namespace fs = std::filesystem;
using testsupport::textOf;

class PhantomStudy : public ::testing::Test {
 protected:
  void TearDown() override {
    std::error_code ignored;
    fs::permissions(folder_, fs::perms::owner_all, ignored);
  }

  PhantomOptions options(const std::string& name, int region = 2) const {
    PhantomOptions result;
    result.region = region;
    result.imageSize = 32;
    result.outDir = folder_ / name;
    return result;
  }

  testsupport::TemporaryFolder temporary_;
  const fs::path folder_ = temporary_.path();
};

std::map<std::string, std::string> filesIn(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files[fs::relative(entry.path(), folder).string()] = textOf(entry.path());
  }
  return files;
}

int imagesIn(const fs::path& folder) {
  int count = 0;
  for (const auto& entry : fs::directory_iterator(folder)) count += entry.path().extension() == ".dcm" ? 1 : 0;
  return count;
}

nlohmann::json truthOf(const fs::path& folder) { return nlohmann::json::parse(textOf(folder / "truth.json")); }

TEST_F(PhantomStudy, SameOptionsGiveTheSameBytes) {
  auto first = options("first");
  auto second = options("second");
  first.angledAxials = second.angledAxials = true;
  ASSERT_TRUE(writePhantom(first).written);
  ASSERT_TRUE(writePhantom(second).written);
  EXPECT_EQ(filesIn(first.outDir), filesIn(second.outDir));
}

TEST_F(PhantomStudy, AnotherSeedIsAnotherStudyAndAnotherSpine) {
  auto first = options("first");
  auto second = options("second");
  second.seed = 2;
  const auto a = writePhantom(first);
  const auto b = writePhantom(second);
  ASSERT_TRUE(a.written && b.written);
  EXPECT_NE(a.studyInstanceUid, b.studyInstanceUid);
  EXPECT_NE(truthOf(first.outDir)["discs"], truthOf(second.outDir)["discs"]);
}

TEST_F(PhantomStudy, MrHasAFolderASeriesAndReportsItsImages) {
  auto wanted = options("study");
  wanted.angledAxials = true;
  int calls = 0;
  int total = 0;
  wanted.progress = [&](int done, int all) {
    EXPECT_EQ(done, calls++);
    total = all;
    return true;
  };
  const auto result = writePhantom(wanted);
  ASSERT_TRUE(result.written) << result.problem;
  EXPECT_EQ(result.problem, "");
  EXPECT_EQ(imagesIn(wanted.outDir / "SE01"), 15);
  EXPECT_EQ(imagesIn(wanted.outDir / "SE02"), 15);
  EXPECT_GT(imagesIn(wanted.outDir / "SE03"), 40);
  EXPECT_EQ(imagesIn(wanted.outDir / "SE04"), 25);
  EXPECT_TRUE(fs::exists(wanted.outDir / "SE01" / "IM0001.dcm"));
  EXPECT_EQ(result.images, calls);
  EXPECT_EQ(result.images, total);
  EXPECT_EQ(result.truth, wanted.outDir / "truth.json");
}

TEST_F(PhantomStudy, CtHas512AxialSlices) {
  auto wanted = options("ct");
  wanted.ct = true;
  const auto result = writePhantom(wanted);
  ASSERT_TRUE(result.written) << result.problem;
  EXPECT_EQ(imagesIn(wanted.outDir / "SE03"), 512);
  EXPECT_EQ(imagesIn(wanted.outDir / "SE01"), 15);
  EXPECT_EQ(truthOf(wanted.outDir)["slices"].size(), 512U);
}

TEST_F(PhantomStudy, TruthNamesTheDiscsAndVertebraeOfTheRegion) {
  auto wanted = options("study", 0);
  wanted.extraVertebra = true;
  ASSERT_TRUE(writePhantom(wanted).written);
  const auto truth = truthOf(wanted.outDir);
  EXPECT_EQ(truth["anatomicalRegion"], 0);
  EXPECT_EQ(truth["additionalVertebra"], true);
  EXPECT_FALSE(truth["frameOfReference"].get<std::string>().empty());
  ASSERT_EQ(truth["discs"].size(), 8U);
  ASSERT_EQ(truth["vertebrae"].size(), 7U);
  EXPECT_EQ(truth["discs"][7]["name"], "C8-T1");
  EXPECT_EQ(truth["vertebrae"][0]["name"], "C1-C2");
  for (std::size_t i = 0; i < 7; ++i) {
    const double above = truth["discs"][i]["centre"][2];
    const double below = truth["discs"][i + 1]["centre"][2];
    const double vertebra = truth["vertebrae"][i]["centre"][2];
    EXPECT_GT(above, vertebra);
    EXPECT_GT(vertebra, below);
  }
}

TEST_F(PhantomStudy, PolygonThroughTheDiscsIsLongerThanSevenCentimetres) {
  for (int region = 0; region <= 2; ++region) {
    auto wanted = options("region" + std::to_string(region), region);
    ASSERT_TRUE(writePhantom(wanted).written);
    const auto truth = truthOf(wanted.outDir);
    double lengthMm = 0;
    for (std::size_t i = 1; i < truth["discs"].size(); ++i) {
      double square = 0;
      for (std::size_t axis = 1; axis < 3; ++axis) {
        const double step =
            truth["discs"][i]["centre"][axis].get<double>() - truth["discs"][i - 1]["centre"][axis].get<double>();
        square += step * step;
      }
      lengthMm += std::sqrt(square);
    }
    EXPECT_GT(lengthMm, 90) << region;
  }
}

// The middle slice of each tilted block goes through its disc; straight slices meet every level of the region in order.
TEST_F(PhantomStudy, SlicesKnowTheLevelThatTheyCut) {
  auto wanted = options("study");
  wanted.angledAxials = true;
  ASSERT_TRUE(writePhantom(wanted).written);
  const auto truth = truthOf(wanted.outDir);
  const auto& slices = truth["slices"];
  const auto straight = static_cast<std::size_t>(imagesIn(wanted.outDir / "SE03"));
  ASSERT_EQ(slices.size(), straight + 25);

  std::set<std::string> sops;
  for (const auto& slice : slices) {
    sops.insert(slice["sop"].get<std::string>());
    EXPECT_EQ(slice["frame"], 1);
  }
  EXPECT_EQ(sops.size(), slices.size());

  for (std::size_t block = 0; block < 5; ++block) {
    EXPECT_EQ(slices[straight + 5 * block + 2]["level"], truth["discs"][block + 1]["name"]);
  }
  std::vector<std::string> met;
  for (std::size_t i = 0; i < straight; ++i) {
    const std::string level = slices[i]["level"];
    if (met.empty() || met.back() != level) met.push_back(level);
  }
  const std::vector<std::string> expected{"T12",   "T12-L1", "L1",    "L1-L2", "L2",    "L2-L3", "L3",
                                          "L3-L4", "L4",     "L4-L5", "L5",    "L5-S1", "S1"};
  const auto start = std::find(met.begin(), met.end(), "T12");
  ASSERT_GE(met.end() - start, static_cast<std::ptrdiff_t>(expected.size()));
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), start));
}

TEST_F(PhantomStudy, EveryKindOfImageConformsToItsStorageClass) {
  SKIP_WITHOUT_TOOL("dciodvfy", "dicom3tools");
  for (const bool ct : {false, true}) {
    auto wanted = options(ct ? "ct" : "mr");
    wanted.ct = ct;
    wanted.angledAxials = true;
    wanted.extraVertebra = ct;
    ASSERT_TRUE(writePhantom(wanted).written);
    for (const char* series : {"SE01", "SE02", "SE03", "SE04"}) {
      const fs::path file = wanted.outDir / series / "IM0002.dcm";
      const fs::path report = folder_ / "report.txt";
      const std::string command = "dciodvfy '" + file.string() + "' > '" + report.string() + "' 2>&1";
      ASSERT_NE(std::system(command.c_str()), -1);
      const std::string text = textOf(report);
      EXPECT_NE(text.find(ct ? "CTImage" : "MRImage"), std::string::npos) << text;
      EXPECT_EQ(text.find("Error"), std::string::npos) << file << "\n" << text;
    }
  }
}

TEST_F(PhantomStudy, CancellingLeavesNothingBehind) {
  auto wanted = options("study");
  wanted.progress = [](int done, int) { return done < 20; };
  const auto result = writePhantom(wanted);
  EXPECT_FALSE(result.written);
  EXPECT_TRUE(result.cancelled);
  EXPECT_EQ(result.problem, "");
  EXPECT_FALSE(fs::exists(wanted.outDir));
}

TEST_F(PhantomStudy, CancellingKeepsAnEmptyFolderThatWasThere) {
  auto wanted = options("study");
  fs::create_directory(wanted.outDir);
  wanted.progress = [](int done, int) { return done < 3; };
  EXPECT_TRUE(writePhantom(wanted).cancelled);
  EXPECT_TRUE(fs::is_empty(wanted.outDir));
}

TEST_F(PhantomStudy, FolderThatIsNotEmptyIsRefusedAndLeftAlone) {
  auto wanted = options("study");
  fs::create_directory(wanted.outDir);
  std::ofstream(wanted.outDir / "mine.txt") << "mine";
  const auto result = writePhantom(wanted);
  EXPECT_FALSE(result.written);
  EXPECT_NE(result.problem.find(wanted.outDir.string()), std::string::npos);
  EXPECT_NE(result.problem.find("not empty"), std::string::npos);
  EXPECT_EQ(filesIn(wanted.outDir), (std::map<std::string, std::string>{{"mine.txt", "mine"}}));
}

TEST_F(PhantomStudy, FileInThePlaceOfTheFolderIsRefused) {
  auto wanted = options("study");
  std::ofstream(wanted.outDir) << "a file";
  const auto result = writePhantom(wanted);
  EXPECT_FALSE(result.written);
  EXPECT_NE(result.problem.find(wanted.outDir.string()), std::string::npos);
  EXPECT_EQ(textOf(wanted.outDir), "a file");
  wanted.outDir = wanted.outDir / "below" / "deeper";
  EXPECT_NE(writePhantom(wanted).problem.find("cannot be made"), std::string::npos);
}

TEST_F(PhantomStudy, FolderThatCannotBeMadeIsReported) {
  auto wanted = options("study");
  wanted.outDir = folder_ / std::string(300, 'x');  // no file system of Linux takes a name of more than 255 bytes
  const auto result = writePhantom(wanted);
  EXPECT_FALSE(result.written);
  EXPECT_NE(result.problem.find(wanted.outDir.string() + " cannot be made"), std::string::npos) << result.problem;
}

TEST_F(PhantomStudy, DiskThatFillsUpAtTheImagesLeavesNothingBehind) {
  const auto wanted = options("study");
  const auto result = [&] {
    const testsupport::FileSizeLimit limit(1000);
    return writePhantom(wanted);
  }();
  EXPECT_FALSE(result.written);
  EXPECT_EQ(result.images, 0);
  EXPECT_NE(result.problem.find("IM0001.dcm"), std::string::npos) << result.problem;
  EXPECT_FALSE(fs::exists(wanted.outDir));
}

TEST_F(PhantomStudy, DiskThatFillsUpAtTheTruthLeavesNothingBehind) {
  auto wanted = options("study");
  wanted.imageSize = 16;
  const auto result = [&] {
    const testsupport::FileSizeLimit limit(4000);  // enough for an image, not for the truth
    return writePhantom(wanted);
  }();
  EXPECT_FALSE(result.written);
  EXPECT_NE(result.problem.find("truth.json cannot be written"), std::string::npos) << result.problem;
  EXPECT_FALSE(fs::exists(wanted.outDir));
}

TEST_F(PhantomStudy, OptionsOutOfRangeAreRefusedWithASentence) {
  auto wanted = options("study");
  wanted.region = 3;
  EXPECT_NE(writePhantom(wanted).problem.find("region 3"), std::string::npos);
  wanted.region = 2;
  wanted.imageSize = 4;
  EXPECT_NE(writePhantom(wanted).problem.find("image size of 4"), std::string::npos);
  wanted.imageSize = 0;
  wanted.outDir.clear();
  EXPECT_NE(writePhantom(wanted).problem.find("No folder"), std::string::npos);
  EXPECT_TRUE(fs::is_empty(folder_));
}

}  // namespace
}  // namespace phantom
