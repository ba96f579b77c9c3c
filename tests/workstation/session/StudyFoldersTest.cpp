#include "workstation/session/StudyFolders.h"

#include <chrono>
#include <fstream>
#include <memory>

#include "phantom/Phantom.h"
#include "tests/support/NotRoot.h"
#include "tests/support/TemporaryFolder.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

class AtHand : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder() = std::make_unique<testsupport::TemporaryFolder>();
    for (const std::uint64_t seed : {1U, 2U}) {
      phantom::PhantomOptions options;
      options.outDir = root() / ("study" + std::to_string(seed));
      options.imageSize = 16;
      options.seed = seed;
      const auto written = phantom::writePhantom(options);
      ASSERT_TRUE(written.written) << written.problem;
      uids().push_back(written.studyInstanceUid);
    }
    fs::copy(root() / "study1", root() / "copy1", fs::copy_options::recursive);
  }
  static void TearDownTestSuite() { folder().reset(); }
  static const fs::path& root() { return folder()->path(); }
  static std::unique_ptr<testsupport::TemporaryFolder>& folder() {
    static std::unique_ptr<testsupport::TemporaryFolder> ofSuite;
    return ofSuite;
  }
  static std::vector<std::string>& uids() {
    static std::vector<std::string> all;
    return all;
  }
  void add(const std::string& name) {
    auto opened = StudyDatabase::openFolder(root() / name);
    ASSERT_TRUE(opened) << opened.problem;
    folders.add(std::move(*opened), root() / name);
  }

  /// A copy of a study, as if nothing had happened there for an hour.
  void addSettledCopy(const std::string& name) {
    fs::copy(root() / "study1", root() / name, fs::copy_options::recursive);
    const auto hourAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const auto& entry : fs::recursive_directory_iterator(root() / name)) {
      if (entry.is_directory()) fs::last_write_time(entry, hourAgo);
    }
    fs::last_write_time(root() / name, hourAgo);
    add(name);
  }
  std::vector<ImageRecord> images() { return folders.images(uids()[0]); }

  StudyFolders folders;
};

TEST_F(AtHand, NothingIsAtHandAtFirst) {
  EXPECT_TRUE(folders.studies().empty());
  EXPECT_TRUE(folders.images(uids().front()).empty());
  EXPECT_FALSE(folders.holds(root() / "study1"));
}

TEST_F(AtHand, StudiesOfSeveralFoldersAreOneList) {
  add("study1");
  add("study2");
  EXPECT_EQ(folders.studies().size(), 2U);
  EXPECT_EQ(folders.studiesIn(root() / "study2"), std::vector<std::string>{uids()[1]});
  for (const auto& image : folders.images(uids()[1]))
    EXPECT_EQ(image.file.string().rfind((root() / "study2").string(), 0), 0U);
  EXPECT_FALSE(folders.images(uids()[0]).empty());
}

TEST_F(AtHand, AStudyThatLiesTwiceIsListedOnceAndBelongsToTheFirst) {
  add("study1");
  add("copy1");
  EXPECT_EQ(folders.studies().size(), 1U);
  for (const auto& image : folders.images(uids()[0]))
    EXPECT_EQ(image.file.string().rfind((root() / "study1").string(), 0), 0U);
}

TEST_F(AtHand, AFolderIsKnownUnderEachOfItsNames) {
  add("study1");
  EXPECT_TRUE(folders.holds(root() / "study1"));
  EXPECT_TRUE(folders.holds(root() / "study2" / ".." / "study1"));
  EXPECT_FALSE(folders.holds(root()));
}

TEST_F(AtHand, TheSearchLooksInAll) {
  add("study1");
  add("study2");
  EXPECT_EQ(folders.studies("no such word").size(), 0U);
  const auto entry = folders.studies().front();
  EXPECT_GE(folders.studies(entry.patientId).size(), 1U);
}

TEST_F(AtHand, AStudyIsFoundWhereItAloneLies) {
  add("study1");
  const auto place = fs::canonical(root() / "study1");
  EXPECT_EQ(folders.placeOf(uids()[0]), place);
  EXPECT_EQ(folders.ownFolder(uids()[0]), place);
  EXPECT_EQ(folders.placeOf(uids()[1]), fs::path());
  EXPECT_EQ(folders.ownFolder(uids()[1]), fs::path());
}

TEST_F(AtHand, AStudyAmongOthersHasTheFolderThatIsItsOwn) {
  add(".");
  EXPECT_EQ(folders.placeOf(uids()[1]), fs::canonical(root()));
  EXPECT_EQ(folders.ownFolder(uids()[1]), fs::canonical(root() / "study2"));
}

TEST_F(AtHand, StudiesThatLieTogetherHaveNoFolderOfTheirOwn) {
  fs::create_directory(root() / "mixed");
  for (const std::string name : {"study1", "study2"}) {
    int number = 0;
    for (const auto& file : fs::recursive_directory_iterator(root() / name)) {
      if (file.path().extension() == ".dcm")
        fs::copy_file(file.path(), root() / "mixed" / (name + "-" + std::to_string(++number) + ".dcm"));
    }
  }
  add("mixed");
  ASSERT_EQ(folders.studies().size(), 2U);
  EXPECT_EQ(folders.placeOf(uids()[0]), fs::canonical(root() / "mixed"));
  EXPECT_EQ(folders.ownFolder(uids()[0]), fs::path());
  fs::remove_all(root() / "mixed");
}

TEST_F(AtHand, FilesThatBecameUnreadableInTheirPlaceAreToldOnceAndTheRestStays) {
  addSettledCopy("damaged");
  const auto whole = images();
  ASSERT_GT(whole.size(), 2U);
  EXPECT_TRUE(folders.lookAgain().empty());
  const fs::path file = whole[1].file;
  fs::copy(file, root() / "kept");
  for (const bool isFirstTime : {true, false}) {
    fs::resize_file(file, 60);
    const auto told = folders.lookAgain();
    ASSERT_EQ(told.size(), 1U) << isFirstTime;
    EXPECT_EQ(told[0].file, file);
    EXPECT_NE(told[0].reason.find("truncated"), std::string::npos) << told[0].reason;
    ASSERT_EQ(images().size(), whole.size() - 1);
    EXPECT_EQ(images()[0].file, whole[0].file);
    EXPECT_EQ(images()[1].file, whole[2].file);
    EXPECT_TRUE(folders.lookAgain().empty()) << "it is known now";
    fs::copy(root() / "kept", file, fs::copy_options::overwrite_existing);
    EXPECT_TRUE(folders.lookAgain().empty());
    EXPECT_EQ(images().size(), whole.size()) << "it is back";
  }
}

TEST_F(AtHand, WhatWasUnusableWhenAFolderWasAddedIsNotToldAgainButWhatCameIs) {
  fs::copy(root() / "study1", root() / "bad", fs::copy_options::recursive);
  std::ofstream(root() / "bad" / "old.dcm").flush();
  add("bad");
  EXPECT_EQ(folders.unreadableFilesIn(root() / "bad").size(), 1U);
  EXPECT_TRUE(folders.lookAgain().empty());
  std::ofstream(root() / "bad" / "new.dcm").flush();
  folders.refresh();
  const auto told = folders.lookAgain();
  ASSERT_EQ(told.size(), 1U) << "also where something else has noticed it before";
  EXPECT_EQ(told[0].file, root() / "bad" / "new.dcm");
}

TEST_F(AtHand, AFileThatMayNotBeReadAnyMoreIsTold) {
  addSettledCopy("locked");
  const fs::path file = images()[0].file;
  const auto count = images().size();
  fs::permissions(root(), fs::perms(0755));
  fs::permissions(file, fs::perms::none);
  {
    const testsupport::NotRoot person;
    const auto told = folders.lookAgain();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].file, file);
    EXPECT_EQ(images().size(), count - 1);
  }
  fs::permissions(file, fs::perms(0644));
  EXPECT_TRUE(folders.lookAgain().empty());
  EXPECT_EQ(images().size(), count);
}

TEST_F(AtHand, AFolderThatHasGoneIsTold) {
  addSettledCopy("gone");
  fs::remove_all(root() / "gone");
  const auto told = folders.lookAgain();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].file, root() / "gone");
  EXPECT_TRUE(images().empty());
}

}  // namespace
}  // namespace workstation::test
