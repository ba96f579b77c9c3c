#include "workstation/database/Index.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "workstation/database/IndexColumns.h"
#include "workstation/database/Schema.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

using Statement = SQLite::Statement;

/// Sorts by folder and name; rows of one file stay in their order.
template <class Row, class StampOf>
void sortByPath(std::vector<Row>& rows, StampOf stampOf) {
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
    const FileStamp& left = stampOf(a);
    const FileStamp& right = stampOf(b);
    if (left.folder == right.folder) return left.name < right.name;
    return isPathBefore(left.folder + "/" + left.name, right.folder + "/" + right.name);
  });
}

std::vector<IndexedFile> filesOf(Statement& query) {
  std::vector<IndexedFile> files;
  while (query.executeStep())
    files.push_back({query.getColumn(0).getInt64(), columns::stamp(query, 1, query.getColumn(3), query.getColumn(4))});
  return files;
}

constexpr std::string_view placeQuery = "SELECT folder, name, coalesce(reason, '') FROM file WHERE ";

std::vector<IndexedPlace> placesOf(Statement& query) {
  std::vector<IndexedPlace> places;
  while (query.executeStep()) places.push_back({columns::stamp(query, 0), query.getColumn(2).getString()});
  sortByPath(places, [](const IndexedPlace& place) -> const FileStamp& { return place.file; });
  return places;
}

}  // namespace

int Index::latestVersion() { return static_cast<int>(schemaUpgrades().size()); }

void upgradeSchema(SQLite::Database& database) {
  database.exec("PRAGMA foreign_keys = ON");
  SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
  const std::vector<std::string_view>& upgrades = schemaUpgrades();
  const int version = database.execAndGet("PRAGMA user_version").getInt();
  for (std::size_t next = static_cast<std::size_t>(std::max(version, 0)); next < upgrades.size(); ++next)
    database.exec(std::string(upgrades[next]));
  if (version < Index::latestVersion()) {
    database.exec("PRAGMA user_version = " + std::to_string(upgrades.size()));
    database.exec("PRAGMA application_id = " + std::to_string(Index::applicationId));
  }
  transaction.commit();
}

Index::Index()
    : database_(std::make_unique<SQLite::Database>(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)) {
  upgradeSchema(*database_);
}

Index::Index(std::unique_ptr<SQLite::Database> database) : database_(std::move(database)) {}

Index::~Index() = default;

std::vector<IndexedFile> Index::files() {
  Statement query(*database_, "SELECT id, folder, name, size, mtime_ns FROM file");
  return filesOf(query);
}

std::vector<IndexedFile> Index::files(const std::vector<std::string>& folders) {
  std::vector<IndexedFile> files;
  Statement query(*database_, "SELECT id, folder, name, size, mtime_ns FROM file WHERE folder = ?");
  for (const std::string& folder : folders) {
    query.reset();
    query.bind(1, folder);
    std::vector<IndexedFile> found = filesOf(query);
    std::move(found.begin(), found.end(), std::back_inserter(files));
  }
  return files;
}

std::vector<ImageRecord> Index::imagesWhere(const fs::path& root, const std::string* studyUid) {
  std::unordered_map<std::int64_t, ImageRecord> series;  // what the images of a series have in common
  Statement common(*database_, std::string(columns::seriesQuery) + (studyUid ? " WHERE study_uid = ?" : ""));
  if (studyUid) common.bind(1, *studyUid);
  while (common.executeStep()) series.emplace(common.getColumn(0).getInt64(), columns::seriesOf(common));

  struct Row {
    FileStamp file;
    ImageRecord image;
  };
  std::vector<Row> rows;
  Statement query(*database_, std::string(columns::imageQuery) + (studyUid ? columns::ofStudy : ""));
  if (studyUid) query.bind(1, *studyUid);
  while (query.executeStep()) {
    const auto found = series.find(query.getColumn(2).getInt64());
    if (found == series.end()) continue;
    rows.push_back({columns::stamp(query, 0), found->second});
    columns::readImage(query, rows.back().image);
  }
  sortByPath(rows, [](const Row& row) -> const FileStamp& { return row.file; });
  std::vector<ImageRecord> images;
  images.reserve(rows.size());
  for (Row& row : rows) {
    row.image.file = (row.file.folder.empty() ? root : root / row.file.folder) / row.file.name;
    images.push_back(std::move(row.image));
  }
  return images;
}

std::vector<ImageRecord> Index::images(const fs::path& root, const std::string& studyUid) {
  return imagesWhere(root, &studyUid);
}

std::vector<ImageRecord> Index::images(const fs::path& root) { return imagesWhere(root, nullptr); }

std::optional<FileStamp> Index::firstImage(const std::string& studyUid) {
  Statement query(*database_,
                  "SELECT DISTINCT folder, name FROM series JOIN image ON image.series_id = series.id "
                  "JOIN file ON file.id = image.file_id WHERE study_uid = ?");
  query.bind(1, studyUid);
  std::vector<FileStamp> files;
  while (query.executeStep()) files.push_back(columns::stamp(query, 0));
  sortByPath(files, [](const FileStamp& file) -> const FileStamp& { return file; });
  return files.empty() ? std::nullopt : std::optional(files.front());
}

bool Index::holdsStudy(const std::string& studyUid) {
  Statement query(*database_,
                  "SELECT EXISTS (SELECT 1 FROM series WHERE study_uid = ?1) OR "
                  "EXISTS (SELECT 1 FROM object WHERE study_uid = ?1)");
  query.bind(1, studyUid);
  return query.executeStep() && query.getColumn(0).getInt() != 0;
}

std::vector<IndexedSeries> Index::series() {
  // A frame of an object is one slice however many files hold the object.
  Statement query(*database_,
                  "SELECT study_uid, study_description, study_date, patient_name, patient_id, series_uid, modality, "
                  "count(DISTINCT sop_uid), count(DISTINCT sop_uid || ' ' || frame) "
                  "FROM series JOIN image ON image.series_id = series.id GROUP BY series.id");
  std::vector<IndexedSeries> list;
  while (query.executeStep()) {
    IndexedSeries series;
    series.studyUid = query.getColumn(0).getString();
    series.studyDescription = columns::optionalText(query, 1);
    series.studyDate = query.getColumn(2).getString();
    series.patientName = query.getColumn(3).getString();
    series.patientId = query.getColumn(4).getString();
    series.seriesUid = query.getColumn(5).getString();
    series.modality = query.getColumn(6).getString();
    series.objects = static_cast<std::size_t>(query.getColumn(7).getInt64());
    series.slices = static_cast<std::size_t>(query.getColumn(8).getInt64());
    list.push_back(std::move(series));
  }
  return list;
}

std::vector<IndexedObject> Index::objectsWhere(const std::string* studyUid) {
  std::vector<IndexedObject> objects;
  Statement query(*database_, std::string(columns::objectQuery) + (studyUid ? " WHERE study_uid = ?" : ""));
  if (studyUid) query.bind(1, *studyUid);
  while (query.executeStep()) {
    IndexedObject object = columns::objectOf(query);
    if (object.labelling && object.labelling->labelling && object.labelling->labelling->levels)
      readLevels(query.getColumn(columns::objectFileId).getInt64(),
                 query.getColumn(columns::objectLevelCount).getInt64(), *object.labelling);
    objects.push_back(std::move(object));
  }
  sortByPath(objects, [](const IndexedObject& object) -> const FileStamp& { return object.file; });
  return objects;
}

void Index::readLevels(std::int64_t fileId, std::int64_t count, DecodedLabelling& decoded) {
  Statement query(*database_, "SELECT name, plane FROM level WHERE file_id = ? ORDER BY position");
  query.bind(1, fileId);
  std::vector<SavedLevel>& levels = *decoded.labelling->levels;
  while (query.executeStep()) levels.push_back(columns::levelOf(query));
  if (static_cast<std::int64_t>(levels.size()) != count)
    throw SQLite::Exception("a labelling lacks levels", SQLITE_CORRUPT);
}

std::vector<IndexedObject> Index::objects(const std::string& studyUid) { return objectsWhere(&studyUid); }

std::vector<IndexedObject> Index::objects() { return objectsWhere(nullptr); }

std::vector<IndexedPlace> Index::places(FileKind kind) {
  Statement query(*database_, std::string(placeQuery) + "kind = ?");
  query.bind(1, static_cast<int>(kind));
  return placesOf(query);
}

std::vector<IndexedPlace> Index::places(FileKind kind, const std::string& folder) {
  Statement query(*database_, std::string(placeQuery) + "folder = ? AND kind = ?");
  query.bind(1, folder);
  query.bind(2, static_cast<int>(kind));
  return placesOf(query);
}

bool Index::isImported(const FileStamp& source) {
  Statement query(*database_, "SELECT 1 FROM imported WHERE source = ? AND size = ? AND mtime_ns = ?");
  query.bind(1, source.folder + "/" + source.name);
  query.bind(2, source.size);
  query.bind(3, source.mtimeNs);
  return query.executeStep();
}

std::optional<FileStamp> Index::fileOf(const std::string& studyUid, const std::string& sopInstanceUid) {
  Statement query(*database_,
                  "SELECT folder, name, size, mtime_ns FROM series JOIN image ON image.series_id = series.id "
                  "JOIN file ON file.id = image.file_id WHERE study_uid = ?1 AND sop_uid = ?2 UNION ALL "
                  "SELECT folder, name, size, mtime_ns FROM object JOIN file ON file.id = object.file_id "
                  "WHERE study_uid = ?1 AND sop_uid = ?2 AND reason IS NULL LIMIT 1");
  query.bind(1, studyUid);
  query.bind(2, sopInstanceUid);
  if (!query.executeStep()) return std::nullopt;
  return columns::stamp(query, 0, query.getColumn(2), query.getColumn(3));
}

pelmar::Bytes Index::serialized() {
  sqlite3_int64 length = 0;
  const std::unique_ptr<unsigned char, void (*)(void*)> bytes(
      sqlite3_serialize(database_->getHandle(), "main", &length, 0), &sqlite3_free);
  if (!bytes) throw SQLite::Exception("there is not enough memory to copy it", SQLITE_NOMEM);
  return {bytes.get(), bytes.get() + length};
}

}  // namespace workstation
