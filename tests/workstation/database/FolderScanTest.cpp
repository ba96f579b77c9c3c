#include "workstation/database/FolderScan.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> namesIn(const FolderListing& listing) {
  std::vector<std::string> names;
  for (const FileStamp& file : listing.files)
    names.push_back(file.folder.empty() ? file.name : file.folder + "/" + file.name);
  std::sort(names.begin(), names.end());
  return names;
}

/// A folder with a/1, a/b/2 and 3, changed long ago.
class FolderScanTest : public ::testing::Test {
 protected:
  FolderScanTest() {
    for (const char* name : {"a/1", "a/b/2", "3"}) writeText(folder_.file(name), name);
    for (const char* name : {"a/b", "a", ""}) makeOld(folder_.path() / name);
  }

  TemporaryFolder folder_;
};

using Names = std::vector<std::string>;

TEST_F(FolderScanTest, ListsFilesAtAnyDepthWithTheirSizes) {
  FolderScan scan(folder_.path());
  const FolderListing listing = scan.all();
  EXPECT_TRUE(listing.complete);
  EXPECT_EQ(namesIn(listing), (Names{"3", "a/1", "a/b/2"}));
  for (const FileStamp& file : listing.files)
    EXPECT_EQ(file.size, static_cast<std::int64_t>(fs::file_size(scan.pathOf(file))));
}

TEST_F(FolderScanTest, PassesOverHiddenIndexAndFilesBeingWritten) {
  writeText(folder_.file(".vertana/index.sqlite"), "index");
  writeText(folder_.file("a/.vertana/index.sqlite"), "index");
  writeText(folder_.file("a/.vertana-0123456789abcdef.tmp"), "half");
  EXPECT_EQ(namesIn(FolderScan(folder_.path()).all()), (Names{"3", "a/1", "a/b/2"}));
}

TEST_F(FolderScanTest, NothingIsListedAgainWhileNothingHappens) {
  FolderScan scan(folder_.path());
  scan.all();
  EXPECT_TRUE(scan.changed().folders.empty());
}

TEST_F(FolderScanTest, NewFileShowsInItsFolderOnly) {
  FolderScan scan(folder_.path());
  scan.all();
  writeText(folder_.file("a/4"), "new");
  const FolderListing listing = scan.changed();
  EXPECT_FALSE(listing.complete);
  EXPECT_EQ(listing.folders, Names{"a"});
  EXPECT_EQ(namesIn(listing), (Names{"a/1", "a/4"}));
}

TEST_F(FolderScanTest, FolderListedJustAfterAChangeIsListedAgain) {
  FolderScan scan(folder_.path());
  writeText(folder_.file("a/4"), "new");  // a file that comes within the same tick leaves the folder's time as it is
  scan.all();
  EXPECT_EQ(scan.changed().folders, Names{"a"});
}

TEST_F(FolderScanTest, DeletedFolderIsListedWithoutFiles) {
  FolderScan scan(folder_.path());
  scan.all();
  fs::remove_all(folder_.path() / "a/b");
  const FolderListing listing = scan.changed();
  EXPECT_EQ(namesIn(listing), Names{"a/1"});
  EXPECT_EQ(std::count(listing.folders.begin(), listing.folders.end(), "a/b"), 1);
}

TEST_F(FolderScanTest, NewFolderIsListedWithAllBelowIt) {
  FolderScan scan(folder_.path());
  scan.all();
  writeText(folder_.file("a/c/d/5"), "new");
  EXPECT_EQ(namesIn(scan.changed()), (Names{"a/1", "a/c/d/5"}));
}

TEST_F(FolderScanTest, LinksToWhatIsListedAddNothing) {
  fs::create_symlink(folder_.path(), folder_.path() / "a/loop");
  fs::create_symlink("a", folder_.path() / "0");  // by its name it would come first
  fs::create_symlink("3", folder_.path() / "copy");
  EXPECT_EQ(namesIn(FolderScan(folder_.path()).all()), (Names{"3", "a/1", "a/b/2"}));
}

TEST_F(FolderScanTest, LinkOutOfTheFolderIsFollowedOnce) {
  const TemporaryFolder elsewhere;
  writeText(elsewhere.file("x/6"), "six");
  fs::create_symlink(elsewhere.path(), folder_.path() / "out");
  fs::create_symlink(elsewhere.path() / "x", folder_.path() / "out2");
  fs::create_symlink(elsewhere.path() / "x/6", folder_.path() / "six");
  EXPECT_EQ(namesIn(FolderScan(folder_.path()).all()), (Names{"3", "a/1", "a/b/2", "out/x/6"}));
}

TEST_F(FolderScanTest, LinkToNowhereIsNamed) {
  fs::create_symlink("nothing", folder_.path() / "broken");
  FolderScan scan(folder_.path());
  EXPECT_EQ(namesIn(scan.all()), (Names{"3", "a/1", "a/b/2"}));
  ASSERT_EQ(scan.unlisted().size(), 1U);
  EXPECT_EQ(scan.unlisted()[0].file, folder_.path() / "broken");
  EXPECT_NE(scan.unlisted()[0].reason.find("does not exist"), std::string::npos);
}

TEST_F(FolderScanTest, OneFileIsSeenWithTheReportsBesideIt) {
  writeText(folder_.file("vertana-2.25.1.dcm"), "report");
  FolderScan scan(folder_.path(), "3");
  EXPECT_EQ(namesIn(scan.all()), (Names{"3", "vertana-2.25.1.dcm"}));
}

TEST(FolderScanOrder, AgreesWithThePathsOfTheStandardLibrary) {
  const Names paths = {"a", "a/b", "a-b", "a.b", "a/b/c", "a/b-c", "b", "a\x7f", "a/\xc3\xa4", "ab", "a b/c"};
  for (const std::string& left : paths)
    for (const std::string& right : paths)
      EXPECT_EQ(isPathBefore(left, right), fs::path(left) < fs::path(right)) << left << " and " << right;
}

}  // namespace
}  // namespace workstation::test
