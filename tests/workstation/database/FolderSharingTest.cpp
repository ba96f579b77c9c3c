// Several databases, in one process and in several, on one folder.

#include <gtest/gtest.h>

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>
#include <stdexcept>
#include <thread>
#include <utility>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// Opens a folder with one study in one of the two ways.
class FolderSharingTest : public ::testing::TestWithParam<bool> {
 protected:
  FolderSharingTest() {
    writeStudy(source_.path());
    if (GetParam())
      openAsDatabase(folder_.path())->importFiles({source_.path()});
    else
      writeStudy(folder_.path());
  }
  std::unique_ptr<StudyDatabase> open(const OpenOptions& options = {}) const {
    return GetParam() ? openAsDatabase(folder_.path(), options) : openInPlace(folder_.path(), options);
  }

  TemporaryFolder source_;
  TemporaryFolder folder_;
};

TEST_P(FolderSharingTest, EachSeesWhatTheOtherStores) {
  const auto one = open();
  const auto two = open();
  EXPECT_TRUE(two->labellings(studyUid()).empty());
  store(*one, lumbarAt(1), 1);
  EXPECT_EQ(levelsIn(*two), std::vector<double>{1});
  store(*two, lumbarAt(2), 2);
  EXPECT_EQ(levelsIn(*one), (std::vector<double>{1, 2}));
  EXPECT_TRUE(one->notices().empty());
  EXPECT_TRUE(two->notices().empty());
}

TEST(BelievedIndex, SeesWhatIsStoredThroughItButDoesNotLookAtTheFiles) {
  TemporaryFolder source;
  TemporaryFolder folder;
  writeStudy(source.path());
  const auto other = openAsDatabase(folder.path());
  other->importFiles({source.path()});
  std::size_t reads = 0;
  OpenOptions options = countingReads(reads);
  options.indexIsCurrent = true;
  const auto image = other->anyImage(studyUid());
  fs::copy_file(image, image.parent_path() / "by-hand.dcm");

  const auto database = openAsDatabase(folder.path(), options);
  EXPECT_EQ(reads, 0U);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
  EXPECT_TRUE(database->holdsStudy(studyUid()));
  EXPECT_EQ(database->contents().copies.size(), 0U);
  store(*other, lumbarAt(1), 1);
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  EXPECT_EQ(openAsDatabase(folder.path())->contents().copies.size(), 1U) << "the usual way looks";
}

TEST(BelievedIndex, ThatIsNotThereIsBuiltFromTheFiles) {
  TemporaryFolder source;
  TemporaryFolder folder;
  writeStudy(source.path());
  openAsDatabase(folder.path())->importFiles({source.path()});
  fs::remove(folder.path() / "index.sqlite");
  OpenOptions options;
  options.indexIsCurrent = true;
  const auto database = openAsDatabase(folder.path(), options);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
  EXPECT_EQ(database->notices().size(), 1U);
}

TEST_P(FolderSharingTest, ReportOfAnotherProcessIsSeen) {
  const auto database = open();
  EXPECT_TRUE(database->labellings(studyUid()).empty());
  EXPECT_TRUE(inChild([&] {
    store(*open(), lumbarAt(1), 1);
    return true;
  }));
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  EXPECT_TRUE(database->studies()[0].holdsLabelling);
}

TEST_P(FolderSharingTest, ProcessesThatStoreAtTheSameTimeLoseNothing) {
  constexpr int each = 8;
  std::vector<pid_t> children;
  for (const int first : {100, 200, 300}) {
    children.push_back(startChild([&] {
      const auto database = open();
      for (int i = 0; i < each; ++i) store(*database, lumbarAt(first + i), first + i);
      return database->notices().empty();
    }));
  }
  const auto database = open();
  for (int i = 0; i < each; ++i) store(*database, lumbarAt(400 + i), 400 + i);
  for (const pid_t child : children) EXPECT_TRUE(endsWell(child));
  std::vector<double> expected;
  for (const int first : {100, 200, 300, 400})
    for (int i = 0; i < each; ++i) expected.push_back(first + i);
  EXPECT_EQ(levelsIn(*database), expected);
  EXPECT_TRUE(database->notices().empty());
  const auto again = open();
  EXPECT_EQ(levelsIn(*again), expected);
  EXPECT_TRUE(again->notices().empty());
}

TEST_P(FolderSharingTest, ProcessThatDiesWithoutClosingLeavesASoundFolder) {
  EXPECT_TRUE(inChild([&] {
    auto database = open();
    store(*database, lumbarAt(1), 1);
    database.release();  // never closed: the process ends at once
    return true;
  }));
  std::size_t reads = 0;
  const auto database = open(countingReads(reads));
  EXPECT_EQ(reads, 0U);
  EXPECT_TRUE(database->notices().empty());
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
}

INSTANTIATE_TEST_SUITE_P(Ways, FolderSharingTest, ::testing::Bool(),
                         [](const auto& row) { return row.param ? "Database" : "InPlace"; });

TEST(FolderSharing, ManyProcessesMayMakeOneDatabase) {
  const TemporaryFolder folder;
  writeStudy(folder.path() / "studies/x");
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i)
    children.push_back(startChild([&] { return openAsDatabase(folder.path())->images(studyUid()).size() == 3; }));
  for (const pid_t child : children) EXPECT_TRUE(endsWell(child));
  EXPECT_TRUE(openAsDatabase(folder.path())->notices().empty());
  EXPECT_FALSE(fs::exists(folder.path() / "index.sqlite.set-aside-1"));
}

/// Numbers that processes share: those that are started by this one while the object lives.
class SharedNumbers {
 public:
  struct Numbers {
    std::atomic<std::size_t> arrived{0};
    std::atomic<std::size_t> copied{0};
  };
  SharedNumbers()
      : memory_(::mmap(nullptr, sizeof(Numbers), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::runtime_error("no memory can be shared");
    numbers_ = new (memory_) Numbers;
  }
  ~SharedNumbers() { ::munmap(memory_, sizeof(Numbers)); }
  SharedNumbers(const SharedNumbers&) = delete;
  SharedNumbers& operator=(const SharedNumbers&) = delete;
  Numbers* operator->() const { return numbers_; }

 private:
  void* memory_;
  Numbers* numbers_;
};

TEST(FolderSharing, ProcessesThatImportTheSameFilesAtTheSameTimeCopyEachOnce) {
  constexpr std::size_t files = 5;
  constexpr std::size_t processes = 3;
  const TemporaryFolder source;
  const TemporaryFolder folder;
  writeStudy(source.path(), files);
  openAsDatabase(folder.path());
  const SharedNumbers numbers;
  const auto importAll = [&] {
    const auto database = openAsDatabase(folder.path());
    const auto patience = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    bool isHere = false;
    // Whoever has looked at all files goes on when each of the others has done so too, or waits.
    const auto meet = [&](std::size_t done, std::size_t total) {
      if (done != total || std::exchange(isHere, true)) return true;
      ++numbers->arrived;
      while (numbers->arrived < processes && std::chrono::steady_clock::now() < patience) std::this_thread::yield();
      return true;
    };
    const ImportResult result = database->importFiles({source.path()}, meet);
    numbers->copied += result.imported;
    return result.problem.empty() && result.unreadable.empty() && result.imported + result.known == files;
  };
  std::vector<pid_t> children;
  for (std::size_t i = 0; i < processes; ++i) children.push_back(startChild(importAll));
  for (const pid_t child : children) EXPECT_TRUE(endsWell(child));
  EXPECT_EQ(numbers->arrived, processes);
  EXPECT_EQ(numbers->copied, files);
  const fs::path study = folder.path() / "studies" / studyUid();
  EXPECT_EQ(static_cast<std::size_t>(std::distance(fs::directory_iterator(study), {})), files);
  const auto database = openAsDatabase(folder.path());
  EXPECT_EQ(database->images(studyUid()).size(), files);
  EXPECT_TRUE(database->contents().copies.empty());
}

TEST(FolderSharing, ImportThatWaitsForAnotherCanBeCancelledAndHoldsNobodyUp) {
  const TemporaryFolder source;
  const TemporaryFolder folder;
  writeStudy(source.path());
  const auto database = openAsDatabase(folder.path());
  const Descriptor other(::open((folder.path() / "import.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  ASSERT_EQ(::flock(other.number(), LOCK_EX), 0);
  std::size_t asked = 0;
  const ImportResult result = database->importFiles({source.path()}, [&](std::size_t, std::size_t total) {
    EXPECT_EQ(total, 0U);
    return ++asked < 3;
  });
  EXPECT_TRUE(result.cancelled);
  EXPECT_EQ(asked, 3U);
  EXPECT_TRUE(fs::is_empty(folder.path() / "studies"));
  EXPECT_TRUE(openAsDatabase(folder.path())->studies().empty()) << "opening does not wait";
}

TEST(FolderSharing, ImportThatCannotBeLockedIsRefused) {
  const TemporaryFolder source;
  const TemporaryFolder folder;
  writeStudy(source.path());
  const auto database = openAsDatabase(folder.path());
  fs::create_directory(folder.path() / "import.lock");
  const ImportResult result = database->importFiles({source.path()});
  EXPECT_NE(result.problem.find("import.lock cannot be opened: "), std::string::npos) << result.problem;
  EXPECT_EQ(result.imported, 0U);
  EXPECT_TRUE(fs::is_empty(folder.path() / "studies"));
}

TEST(FolderSharing, IndexThatFailsWhileItIsOpenIsReplacedByTheFiles) {
  const TemporaryFolder folder;
  writeStudy(folder.path() / "studies/x");
  const auto database = openAsDatabase(folder.path());
  {
    SQLite::Database other((folder.path() / "index.sqlite").string(), SQLite::OPEN_READWRITE);
    other.exec("PRAGMA foreign_keys = OFF; DROP TABLE image");
  }
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
  ASSERT_EQ(database->notices().size(), 2U) << "after the one that the new index was missing";
  EXPECT_NE(database->notices()[1].find("cannot be used any longer"), std::string::npos);
  store(*database, lumbarAt(1), 1);
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
}

}  // namespace
}  // namespace workstation::test
