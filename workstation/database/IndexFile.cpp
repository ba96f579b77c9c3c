#include "workstation/database/IndexFile.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>

#include <array>
#include <fstream>
#include <system_error>
#include <utility>

namespace workstation {
namespace {

namespace fs = std::filesystem;

constexpr int busyTimeoutMs = 10'000;

constexpr const char* tooNewReason = "it was made by a later version of this program";

/// What SQLite keeps beside a database.
constexpr std::array<const char*, 3> companions = {"-wal", "-shm", "-journal"};

OpenedIndex refused(IndexCondition condition, std::string reason) { return {nullptr, condition, std::move(reason)}; }

OpenedIndex refusedBy(const SQLite::Exception& exception) {
  const bool isDamaged = exception.getErrorCode() == SQLITE_NOTADB || exception.getErrorCode() == SQLITE_CORRUPT ||
                         exception.getErrorCode() == SQLITE_ERROR;
  return refused(isDamaged ? IndexCondition::damaged : IndexCondition::unusable, exception.what());
}

/// What the first bytes of a database file say (SQLite file format, section 1.3).
struct DatabaseHeader {
  bool isDatabase = false;
  std::int64_t version = 0;
  std::int64_t application = 0;
  bool isTooNew() const { return application == Index::applicationId && version > Index::latestVersion(); }
};

DatabaseHeader headerOf(const fs::path& file) {
  std::array<char, 100> bytes{};
  std::ifstream stream(file, std::ios::binary);
  if (!stream.read(bytes.data(), bytes.size())) return {};
  const auto number = [&](std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return static_cast<std::int32_t>(value);
  };
  return {std::string_view(bytes.data(), 16) == std::string_view("SQLite format 3\0", 16), number(60), number(68)};
}

/// What kind of database it is, by its header and its tables.
OpenedIndex inspect(SQLite::Database& database) {
  const int application = database.execAndGet("PRAGMA application_id").getInt();
  const int version = database.execAndGet("PRAGMA user_version").getInt();
  if (application == Index::applicationId) {
    if (version > Index::latestVersion()) return refused(IndexCondition::tooNew, tooNewReason);
    if (version < 1) return refused(IndexCondition::damaged, "its version is missing");
    return {nullptr, IndexCondition::usable, ""};
  }
  const int tables = database.execAndGet("SELECT count(*) FROM sqlite_master").getInt();
  if (application == 0 && version == 0 && tables == 0) return refused(IndexCondition::damaged, "it is empty");
  return refused(IndexCondition::foreign, "it is the database of another program");
}

/// Takes an inspected database over. Every table is looked at, so that damage shows now and not later.
OpenedIndex takeOver(std::unique_ptr<SQLite::Database> database) {
  upgradeSchema(*database);
  const std::string found = database->execAndGet("PRAGMA quick_check(1)").getString();
  if (found != "ok") return refused(IndexCondition::damaged, found);
  OpenedIndex opened{std::make_unique<Index>(std::move(database)), IndexCondition::usable, ""};
  opened.index->objects("");
  opened.index->images("", "");
  opened.index->isImported({});
  return opened;
}

bool isMissing(const fs::path& file) {
  std::error_code error;
  return !fs::exists(fs::symlink_status(file, error));
}

void makeShared(const fs::path& file) {
  SQLite::Database database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, busyTimeoutMs);
  database.exec("PRAGMA journal_mode = WAL");
  upgradeSchema(database);
}

/// A file's bytes in memory that SQLite may take over.
struct LoadedFile {
  std::unique_ptr<unsigned char, void (*)(void*)> bytes{nullptr, &sqlite3_free};
  sqlite3_int64 length = 0;  ///< 0: it is empty or cannot be read
};

LoadedFile load(const fs::path& file) {
  LoadedFile loaded;
  std::error_code error;
  const std::uintmax_t length = fs::file_size(file, error);
  std::ifstream stream(file, std::ios::binary);
  if (error || length == 0 || !stream) return loaded;
  loaded.bytes.reset(static_cast<unsigned char*>(sqlite3_malloc64(length)));
  if (!loaded.bytes) throw SQLite::Exception("there is not enough memory for it", SQLITE_NOMEM);
  stream.read(reinterpret_cast<char*>(loaded.bytes.get()), static_cast<std::streamsize>(length));
  loaded.length = stream.gcount();  // less when another process has replaced it by a shorter one meanwhile
  return loaded;
}

std::unique_ptr<SQLite::Database> inMemory(LoadedFile file) {
  auto database = std::make_unique<SQLite::Database>(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
  // The bytes belong to the database from here on, also when it refuses them.
  database->check(sqlite3_deserialize(database->getHandle(), "main", file.bytes.release(), file.length, file.length,
                                      SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE));
  return database;
}

}  // namespace

OpenedIndex openSharedIndex(const fs::path& file, bool create) {
  try {
    if (isMissing(file)) {
      if (!create) return refused(IndexCondition::missing, "it is missing");
      makeShared(file);
    }
    if (headerOf(file).isTooNew()) return refused(IndexCondition::tooNew, tooNewReason);  // not even opened
    auto database = std::make_unique<SQLite::Database>(file.string(), SQLite::OPEN_READWRITE, busyTimeoutMs);
    OpenedIndex found = inspect(*database);
    if (found.condition != IndexCondition::usable) return found;
    if (sqlite3_db_readonly(database->getHandle(), "main") == 1)
      return refused(IndexCondition::unusable, "it is write-protected");
    database->exec("PRAGMA journal_mode = WAL");
    database->exec("PRAGMA synchronous = NORMAL");  // a power cut may cost the last entries, never the index
    return takeOver(std::move(database));
  } catch (const SQLite::Exception& exception) {
    return refusedBy(exception);
  }
}

OpenedIndex loadIndex(const fs::path& file) {
  try {
    if (isMissing(file)) return refused(IndexCondition::missing, "it is missing");
    LoadedFile loaded = load(file);
    if (loaded.length == 0) return refused(IndexCondition::damaged, "it is empty or cannot be read");
    std::unique_ptr<SQLite::Database> database = inMemory(std::move(loaded));
    OpenedIndex found = inspect(*database);
    return found.condition == IndexCondition::usable ? takeOver(std::move(database)) : std::move(found);
  } catch (const SQLite::Exception& exception) {
    return refusedBy(exception);
  }
}

Outcome saveIndex(Index& index, const fs::path& file, const DiskCalls& disk) {
  const DatabaseHeader there = headerOf(file);
  if (there.isTooNew()) return Outcome::done();
  if (there.isDatabase && there.application != Index::applicationId) {
    if (Outcome aside = setAside(file); !aside) return aside;
  }
  std::error_code error;
  fs::create_directories(file.parent_path(), error);
  if (error)
    return Outcome::refused("The folder " + file.parent_path().string() + " cannot be made: " + error.message() +
                            "; check that the folder above it may be written.");
  removeLeftovers(file.parent_path());
  return writeAtomically(file, index.serialized(), disk);
}

Outcome setAside(const fs::path& file) {
  std::error_code error;
  fs::path name;
  for (int number = 1; name.empty() || fs::exists(name, error); ++number)
    name = file.string() + ".set-aside-" + std::to_string(number);
  for (const char* companion : companions) fs::rename(file.string() + companion, name.string() + companion, error);
  fs::rename(file, name, error);
  if (!error) return Outcome::done();
  return Outcome::refused("The file " + file.string() + " cannot be renamed: " + error.message() +
                          "; remove it or move it away.");
}

IndexLock::IndexLock(const fs::path& folder)
    : file_(::open((folder / "index.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  while (file_.isOpen() && ::flock(file_.number(), LOCK_EX) != 0 && errno == EINTR) {
  }
}

}  // namespace workstation
