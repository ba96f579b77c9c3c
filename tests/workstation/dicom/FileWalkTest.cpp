#include "workstation/dicom/FileWalk.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "DicomFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> namesIn(const fs::path& folder, std::vector<UnreadableFile>& unreadable) {
  std::vector<std::string> names;
  for (const fs::path& file : filesIn(folder, unreadable)) names.push_back(fs::relative(file, folder).string());
  return names;
}

TEST(FileWalk, FindsFilesAtAnyDepthInOrderOfTheirPaths) {
  const TemporaryFolder folder;
  std::string deep;
  for (int level = 0; level < 200; ++level) deep += "d/";
  for (const std::string& name : {std::string("b"), std::string("a/z"), deep + "image", std::string("a/y.dcm")})
    writeText(folder.file(name), "x");
  std::vector<UnreadableFile> unreadable;
  EXPECT_EQ(namesIn(folder.path(), unreadable), (std::vector<std::string>{"a/y.dcm", "a/z", "b", deep + "image"}));
  EXPECT_TRUE(unreadable.empty());
}

TEST(FileWalk, EndsWhereLinksGoInCircles) {
  const TemporaryFolder folder;
  writeText(folder.file("a/file"), "x");
  fs::create_directory_symlink(folder.path(), folder.path() / "a" / "up");
  fs::create_directory_symlink(folder.path() / "a", folder.path() / "a" / "self");
  fs::create_symlink("loop", folder.path() / "loop");
  std::vector<UnreadableFile> unreadable;
  EXPECT_EQ(namesIn(folder.path(), unreadable), std::vector<std::string>{"a/file"});
  ASSERT_EQ(unreadable.size(), 1U);
  EXPECT_EQ(unreadable[0].file, folder.path() / "loop");
}

TEST(FileWalk, TakesAFileOnceThoughALinkLeadsToIt) {
  const TemporaryFolder folder;
  const TemporaryFolder elsewhere;
  writeText(folder.file("b"), "x");
  fs::create_symlink(folder.path() / "b", folder.path() / "a");
  writeText(elsewhere.file("far"), "x");
  fs::create_directory_symlink(elsewhere.path(), folder.path() / "linked");
  std::vector<UnreadableFile> unreadable;
  const std::vector<fs::path> files = filesIn(folder.path(), unreadable);
  EXPECT_EQ(files, (std::vector<fs::path>{folder.path() / "a", folder.path() / "linked" / "far"}));
}

TEST(FileWalk, DoesNotWaitForAPipe) {
  const TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
  std::vector<UnreadableFile> unreadable;
  EXPECT_TRUE(filesIn(folder.path(), unreadable).empty());
}

TEST(FileWalk, NamesAPathThatDoesNotExist) {
  std::vector<UnreadableFile> unreadable;
  EXPECT_TRUE(filesIn("/no/such/folder", unreadable).empty());
  ASSERT_EQ(unreadable.size(), 1U);
  EXPECT_NE(unreadable[0].reason.find("does not exist"), std::string::npos) << unreadable[0].reason;
}

}  // namespace
}  // namespace workstation::test
