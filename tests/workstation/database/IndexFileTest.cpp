// Indexes that are damaged, foreign, older or newer: a folder opens all the same, and says so.

#include "workstation/database/IndexFile.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <functional>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

void execute(const fs::path& file, const std::string& sql) {
  SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
  database.exec(sql);
}

int versionOf(const fs::path& file) {
  SQLite::Database database(file.string(), SQLite::OPEN_READONLY);
  return database.execAndGet("PRAGMA user_version").getInt();
}

/// What is done to an index, and what is said of it.
struct Mishap {
  const char* name;
  std::function<void(const fs::path&)> happen;
  const char* said;
};

void makeForeign(const fs::path& file) {
  fs::remove(file);
  execute(file, "CREATE TABLE recipes (name TEXT)");
}

void fillWithGarbage(const fs::path& file, std::uintmax_t from) {
  std::vector<std::uint8_t> bytes = bytesOf(file);
  for (std::size_t i = from; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(37 * i + 11);
  writeBytes(file, bytes);
}

const std::vector<Mishap>& mishaps() {
  static const std::vector<Mishap> all = {
      {"garbage", [](const fs::path& file) { fillWithGarbage(file, 0); }, "cannot be used because"},
      {"garbage after the first page", [](const fs::path& file) { fillWithGarbage(file, 4096); },
       "cannot be used because"},
      {"cut short", [](const fs::path& file) { truncate(file, fs::file_size(file) / 2); }, "cannot be used because"},
      {"cut to half a header", [](const fs::path& file) { truncate(file, 50); }, "cannot be used because"},
      {"no bytes", [](const fs::path& file) { truncate(file, 0); }, "because it is empty"},
      {"a table is missing", [](const fs::path& file) { execute(file, "DROP TABLE level; DROP TABLE imported"); },
       "cannot be used because"},
      {"no version", [](const fs::path& file) { execute(file, "PRAGMA user_version = 0"); }, "its version is missing"},
      {"of another program", &makeForeign, "the database of another program"}};
  return all;
}

TEST(IndexFileTest, FolderInPlaceWithAUselessIndexIsReadFromItsFiles) {
  for (const Mishap& mishap : mishaps()) {
    SCOPED_TRACE(mishap.name);
    const TemporaryFolder folder;
    writeStudy(folder.path());
    store(*openInPlace(folder.path()), lumbarAt(1), 1);
    const fs::path index = folder.path() / ".vertana/index.sqlite";
    mishap.happen(index);
    const auto before = photographOf(folder.path());
    {
      const auto database = openInPlace(folder.path());
      ASSERT_EQ(database->notices().size(), 1U);
      EXPECT_NE(database->notices()[0].find(mishap.said), std::string::npos) << database->notices()[0];
      EXPECT_NE(database->notices()[0].find(index.string()), std::string::npos) << database->notices()[0];
      EXPECT_EQ(database->images(studyUid()).size(), 3U);
      EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
      EXPECT_EQ(photographOf(folder.path()), before);
      store(*database, lumbarAt(2), 2);
    }
    std::size_t reads = 0;
    const auto database = openInPlace(folder.path(), countingReads(reads));
    EXPECT_TRUE(database->notices().empty());
    EXPECT_EQ(reads, 0U);
    EXPECT_EQ(levelsIn(*database), (std::vector<double>{1, 2}));
  }
}

TEST(IndexFileTest, DatabaseWithAUselessIndexIsRebuiltAndTheOldOneSetAside) {
  for (const Mishap& mishap : mishaps()) {
    SCOPED_TRACE(mishap.name);
    const TemporaryFolder source;
    const TemporaryFolder folder;
    writeStudy(source.path());
    EXPECT_EQ(openAsDatabase(folder.path())->importFiles({source.path()}).imported, 3U);
    const fs::path index = folder.path() / "index.sqlite";
    mishap.happen(index);
    const std::vector<std::uint8_t> old = bytesOf(index);
    {
      std::size_t reads = 0;
      const auto database = openAsDatabase(folder.path(), countingReads(reads));
      EXPECT_EQ(reads, 3U);
      ASSERT_EQ(database->notices().size(), 1U);
      EXPECT_NE(database->notices()[0].find(mishap.said), std::string::npos) << database->notices()[0];
      EXPECT_EQ(database->images(studyUid()).size(), 3U);
    }
    EXPECT_EQ(bytesOf(folder.path() / "index.sqlite.set-aside-1"), old);
    std::size_t reads = 0;
    EXPECT_TRUE(openAsDatabase(folder.path(), countingReads(reads))->notices().empty());
    EXPECT_EQ(reads, 0U);
  }
}

TEST(IndexFileTest, MissingIndexOfADatabaseIsRebuilt) {
  const TemporaryFolder folder;
  EXPECT_TRUE(openAsDatabase(folder.path())->notices().empty()) << "a new database lacks nothing";
  writeStudy(folder.path() / "studies/x");
  fs::remove(folder.path() / "index.sqlite");
  const auto database = openAsDatabase(folder.path());
  ASSERT_EQ(database->notices().size(), 1U);
  EXPECT_NE(database->notices()[0].find("was missing"), std::string::npos);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
}

TEST(IndexFileTest, IndexOfALaterVersionIsLeftAlone) {
  const TemporaryFolder folder;
  writeStudy(folder.path());
  store(*openInPlace(folder.path()), lumbarAt(1), 1);
  const fs::path index = folder.path() / ".vertana/index.sqlite";
  execute(index, "PRAGMA user_version = " + std::to_string(Index::latestVersion() + 1));
  const std::vector<std::uint8_t> before = bytesOf(index);
  const auto database = openInPlace(folder.path());
  ASSERT_EQ(database->notices().size(), 1U);
  EXPECT_NE(database->notices()[0].find("later version"), std::string::npos);
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  store(*database, lumbarAt(2), 2);
  EXPECT_EQ(levelsIn(*database), (std::vector<double>{1, 2}));
  EXPECT_EQ(bytesOf(index), before);
}

TEST(IndexFileTest, IndexOfALaterVersionOfADatabaseIsLeftAlone) {
  const TemporaryFolder source;
  const TemporaryFolder folder;
  writeStudy(source.path());
  openAsDatabase(folder.path());
  const fs::path index = folder.path() / "index.sqlite";
  execute(index, "PRAGMA user_version = " + std::to_string(Index::latestVersion() + 1));
  const std::vector<std::uint8_t> before = bytesOf(index);
  const auto database = openAsDatabase(folder.path());
  ASSERT_EQ(database->notices().size(), 1U);
  EXPECT_EQ(database->importFiles({source.path()}).imported, 3U);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
  EXPECT_EQ(bytesOf(index), before);
}

/// Takes out what the third version added.
void downgradeToSecond(const fs::path& index) {
  execute(index, "ALTER TABLE image DROP COLUMN pixel_aspect; PRAGMA user_version = 2");
}

/// Takes out what came after the first version.
void downgrade(const fs::path& index) {
  downgradeToSecond(index);
  execute(index,
          "DROP TABLE level; DROP TABLE labelling; DROP TABLE imported; DROP TABLE object; PRAGMA user_version = 1");
}

TEST(IndexFileTest, FirstVersionIsUpgradedAndOnlyObjectsAreReadAgain) {
  const TemporaryFolder folder;
  writeStudy(folder.path());
  store(*openInPlace(folder.path()), lumbarAt(1), 1);
  const fs::path index = folder.path() / ".vertana/index.sqlite";
  downgrade(index);
  const auto before = photographOf(folder.path());
  std::size_t reads = 0;
  const auto database = openInPlace(folder.path(), countingReads(reads));
  EXPECT_EQ(reads, 1U) << "the report";
  EXPECT_TRUE(database->notices().empty());
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
  EXPECT_EQ(photographOf(folder.path()), before);
  store(*database, lumbarAt(2), 2);
  EXPECT_EQ(versionOf(index), Index::latestVersion());
}

TEST(IndexFileTest, SecondVersionIsUpgradedAndOnlyImagesWithoutGeometryAreReadAgain) {
  const TemporaryFolder folder;
  writeStudy(folder.path());
  edit(folder.path() / "sag/2.dcm", [](DcmDataset& data) {
    data.findAndDeleteElement(DCM_PixelSpacing);
    data.putAndInsertString(DCM_PixelAspectRatio, "5\\4");
  });
  store(*openInPlace(folder.path()), lumbarAt(1), 1);
  downgradeToSecond(folder.path() / ".vertana/index.sqlite");
  std::size_t reads = 0;
  const auto database = openInPlace(folder.path(), countingReads(reads));
  EXPECT_EQ(reads, 1U);
  EXPECT_TRUE(database->notices().empty());
  const auto images = database->images(studyUid());
  ASSERT_EQ(images.size(), 3U);
  EXPECT_EQ(images[1].pixelAspect, 1.25);
  EXPECT_FALSE(images[1].geometry);
}

TEST(IndexFileTest, ThirdVersionIsUpgradedAndOnlyUnreadableFilesAreReadAgain) {
  const TemporaryFolder folder;
  writeStudy(folder.path());
  truncate(folder.path() / "sag/2.dcm", 300);
  store(*openInPlace(folder.path()), lumbarAt(1), 1);
  execute(folder.path() / ".vertana/index.sqlite", "PRAGMA user_version = 3");
  std::size_t reads = 0;
  const auto database = openInPlace(folder.path(), countingReads(reads));
  EXPECT_EQ(reads, 1U);
  EXPECT_TRUE(database->notices().empty());
  EXPECT_EQ(database->images(studyUid()).size(), 2U);
  EXPECT_EQ(database->unreadableFiles().size(), 1U);
}

TEST(IndexFileTest, FirstVersionOfADatabaseIsUpgradedInItsPlace) {
  const TemporaryFolder source;
  const TemporaryFolder folder;
  writeStudy(source.path());
  writeBytes(source.file("r"), reportOn(source.path() / "sag/1.dcm", lumbarAt(1), 1));
  openAsDatabase(folder.path())->importFiles({source.path()});
  downgrade(folder.path() / "index.sqlite");
  std::size_t reads = 0;
  const auto database = openAsDatabase(folder.path(), countingReads(reads));
  EXPECT_EQ(reads, 1U);
  EXPECT_TRUE(database->notices().empty());
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  EXPECT_EQ(versionOf(folder.path() / "index.sqlite"), Index::latestVersion());
}

TEST(IndexFileTest, SharedIndexIsWrittenAheadWithForeignKeys) {
  const TemporaryFolder folder;
  const auto database = openAsDatabase(folder.path());
  SQLite::Database look((folder.path() / "index.sqlite").string(), SQLite::OPEN_READONLY);
  EXPECT_EQ(look.execAndGet("PRAGMA journal_mode").getString(), "wal");
  EXPECT_EQ(look.execAndGet("PRAGMA application_id").getInt(), Index::applicationId);
  EXPECT_EQ(look.execAndGet("SELECT count(*) FROM pragma_foreign_key_list('image')").getInt(), 2);
}

}  // namespace
}  // namespace workstation::test
