#include "cli/export/ExportFile.h"

#include <cerrno>

#include "tests/support/TemporaryFolder.h"

namespace cli::test {
namespace {

namespace fs = std::filesystem;
using testsupport::putText;
using testsupport::textOf;

class Exported : public testing::Test {
 protected:
  std::ptrdiff_t filesInFolder() const {
    return std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator());
  }
  /// The sentence of the refusal, which names the file.
  std::string refusal(const fs::path& file, const workstation::DiskCalls& disk = {}) const {
    const auto written = writeExport(file, "new", disk);
    EXPECT_FALSE(written);
    const auto sentence = written.problem.value_or("");
    EXPECT_NE(sentence.find(file.string()), std::string::npos) << sentence;
    return sentence;
  }

  testsupport::TemporaryFolder folder_;
  const fs::path file_ = folder_ / "levels.json";
};

TEST_F(Exported, FileIsWrittenWithoutATrace) {
  ASSERT_TRUE(writeExport(file_, std::string("a\0b", 3)));
  EXPECT_EQ(textOf(file_), std::string("a\0b", 3));
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(Exported, FileReplacesAnEarlierOne) {
  putText(file_, "a much longer text");
  ASSERT_TRUE(writeExport(file_, "new"));
  EXPECT_EQ(textOf(file_), "new");
}

TEST_F(Exported, FileGoesWhereALinkLeads) {
  putText(folder_ / "target", "old");
  fs::create_symlink("target", file_);
  ASSERT_TRUE(writeExport(file_, "new"));
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(textOf(folder_ / "target"), "new");
}

TEST_F(Exported, FileThatCannotBeFinishedLeavesTheEarlierOne) {
  putText(file_, "old");
  workstation::DiskCalls full;
  full.write = [](int, const void*, std::size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_NE(refusal(file_, full).find("cannot be written"), std::string::npos);
  workstation::DiskCalls broken;
  broken.sync = [](int) {
    errno = EIO;
    return -1;
  };
  refusal(file_, broken);
  workstation::DiskCalls stuck;
  stuck.rename = [](const char*, const char*) {
    errno = EACCES;
    return -1;
  };
  refusal(file_, stuck);
  EXPECT_EQ(textOf(file_), "old");
  EXPECT_EQ(filesInFolder(), 1) << "nothing is left over";
}

TEST_F(Exported, FileNeverReplacesADicomFile) {
  const auto image = std::string(128, '\0') + "DICM" + std::string(200, 'x');
  putText(file_, image);
  EXPECT_NE(refusal(file_).find("is a DICOM file, which an export never replaces: give --out another name."),
            std::string::npos);
  EXPECT_EQ(textOf(file_), image);
  // A data set without a preamble: SOP Class UID, explicit VR, and an element that follows.
  const auto headerless = std::string(
      "\x08\0\x16\0UI\x04\0"
      "1.2\0\x08\0\x18\0UI\x04\0"
      "1.3\0",
      24);
  putText(file_, headerless);
  EXPECT_NE(refusal(file_).find("is a DICOM file, which an export never replaces: give --out another name."),
            std::string::npos);
  EXPECT_EQ(textOf(file_), headerless);
}

TEST_F(Exported, FileIsNoFolderAndNoDevice) {
  EXPECT_NE(refusal(folder_.path()).find("is a folder: give --out the name of a file."), std::string::npos);
  EXPECT_NE(refusal("/dev/null").find("no ordinary file"), std::string::npos);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Exported, FileNeedsItsFolder) {
  EXPECT_NE(refusal(folder_ / "nowhere" / "levels.json").find("cannot be written"), std::string::npos);
}

}  // namespace
}  // namespace cli::test
