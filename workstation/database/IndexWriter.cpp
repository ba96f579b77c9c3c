#include <SQLiteCpp/SQLiteCpp.h>

#include <unordered_map>

#include "workstation/database/IndexColumns.h"

namespace workstation {
namespace {

using Statement = SQLite::Statement;

/// Binds values one after the other.
class Row {
 public:
  explicit Row(Statement& statement) : statement_(statement) {
    statement_.reset();
    statement_.clearBindings();
  }
  Row& operator<<(const std::string& text) { return statement_.bind(++column_, text), *this; }
  Row& operator<<(std::int64_t number) { return statement_.bind(++column_, number), *this; }
  Row& operator<<(int number) { return statement_.bind(++column_, number), *this; }
  Row& operator<<(double number) { return statement_.bind(++column_, number), *this; }
  Row& operator<<(bool yes) { return statement_.bind(++column_, yes ? 1 : 0), *this; }
  template <class Value>
  Row& operator<<(const std::optional<Value>& value) {
    if (value) return *this << *value;
    ++column_;  // NULL
    return *this;
  }
  Row& blob(const std::string& bytes) {
    statement_.bind(++column_, bytes.data(), static_cast<int>(bytes.size()));
    return *this;
  }
  Row& null() { return ++column_, *this; }
  void execute() { statement_.exec(); }

 private:
  Statement& statement_;
  int column_ = 0;
};

std::optional<std::string> joined(const std::vector<std::string>& values) {
  if (values.empty()) return std::nullopt;
  std::string text = values.front();
  for (std::size_t i = 1; i < values.size(); ++i) text += "\\" + values[i];
  return text;
}

std::array<double, 11> numbersOf(const ImageGeometry& plane) {
  return {plane.position[0], plane.position[1], plane.position[2], plane.row[0],   plane.row[1],  plane.row[2],
          plane.column[0],   plane.column[1],   plane.column[2],   plane.spacingX, plane.spacingY};
}

/// A text that is the same for images whose series rows are the same. Lengths keep the parts apart.
std::string seriesKey(const ImageRecord& image) {
  std::string key;
  const auto add = [&](const std::optional<std::string>& part) {
    key += part ? std::to_string(part->size()) + ":" + *part : std::string("-");
  };
  add(image.studyInstanceUid);
  add(image.studyDescription);
  add(image.studyDate);
  add(image.patientName);
  add(image.patientId);
  add(image.seriesInstanceUid);
  add(image.seriesNumber ? std::optional(std::to_string(*image.seriesNumber)) : std::nullopt);
  add(image.seriesDescription);
  add(image.modality);
  add(image.bodyPartExamined);
  return key;
}

}  // namespace

/// Enters files.
class Index::Writer {
 public:
  explicit Writer(SQLite::Database& database)
      : database_(database),
        removal_(database, "DELETE FROM file WHERE folder = ? AND name = ?"),
        file_(database, "INSERT INTO file (folder, name, size, mtime_ns, kind, reason) VALUES (?,?,?,?,?,?)"),
        series_(database,
                "INSERT INTO series (study_uid, study_description, study_date, patient_name, patient_id, series_uid, "
                "series_number, description, modality, body_part) VALUES (?,?,?,?,?,?,?,?,?,?)"),
        image_(database, "INSERT INTO image VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?)"),
        object_(database, "INSERT INTO object VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"),
        labelling_(database, "INSERT INTO labelling VALUES (?,?,?,?,?,?)"),
        level_(database, "INSERT INTO level VALUES (?,?,?,?)") {
    Statement known(database, std::string(columns::seriesQuery));
    while (known.executeStep()) seriesIds_.emplace(seriesKey(columns::seriesOf(known)), known.getColumn(0).getInt64());
  }

  void add(const FileToIndex& file) {
    const FileStamp& stamp = file.stamp;
    const FileContents& contents = file.contents;
    (Row(removal_) << stamp.folder << stamp.name).execute();
    Row row(file_);
    row << stamp.folder << stamp.name << stamp.size << stamp.mtimeNs << static_cast<int>(contents.kind);
    (contents.reason.empty() ? row.null() : row << contents.reason).execute();
    const std::int64_t id = database_.getLastInsertRowid();
    for (const ImageRecord& image : contents.images) addImage(id, image);
    if (contents.header) addObject(id, *contents.header);
    if (contents.labelling) addLabelling(id, *contents.labelling);
  }

 private:
  std::int64_t seriesOf(const ImageRecord& image) {
    const auto [place, isNew] = seriesIds_.try_emplace(seriesKey(image), 0);
    if (isNew) {
      (Row(series_) << image.studyInstanceUid << image.studyDescription << image.studyDate << image.patientName
                    << image.patientId << image.seriesInstanceUid << image.seriesNumber << image.seriesDescription
                    << image.modality << image.bodyPartExamined)
          .execute();
      place->second = database_.getLastInsertRowid();
    }
    return place->second;
  }

  void addImage(std::int64_t file, const ImageRecord& image) {
    const std::int64_t series = seriesOf(image);
    Row row(image_);
    row << file << image.frame << series << image.sopClassUid << image.sopInstanceUid << image.instanceNumber
        << joined(image.imageType) << image.frameOfReferenceUid;
    if (image.geometry)
      row.blob(columns::packed(numbersOf(*image.geometry)));
    else
      row.null();
    (row << image.geometryProblem << image.rows << image.columns << image.colour << image.pixelAspect).execute();
  }

  void addObject(std::int64_t file, const ObjectHeader& header) {
    (Row(object_) << file << header.studyInstanceUid << header.studyDescription << header.studyDate
                  << header.patientName << header.patientId << header.seriesInstanceUid << header.seriesNumber
                  << header.seriesDescription << header.modality << header.sopClassUid << header.sopInstanceUid
                  << header.instanceNumber << header.contentDate << header.contentTime << header.isStructuredReport())
        .execute();
  }

  void addLabelling(std::int64_t file, const DecodedLabelling& decoded) {
    Row row(labelling_);
    row << file;
    if (!decoded.labelling) {
      (row << decoded.problem << decoded.fromContent).null().null().null().execute();
      return;
    }
    const SavedLabelling& labelling = *decoded.labelling;
    row.null() << decoded.fromContent << labelling.anatomicalRegion << labelling.additionalVertebra;
    if (!labelling.levels) {
      row.null().execute();
      return;
    }
    (row << static_cast<std::int64_t>(labelling.levels->size())).execute();
    std::int64_t position = 0;
    for (const SavedLevel& level : *labelling.levels) {
      const std::array<double, 6> plane = {level.point[0],  level.point[1],  level.point[2],
                                           level.vector[0], level.vector[1], level.vector[2]};
      (Row(level_) << file << position++ << level.name).blob(columns::packed(plane)).execute();
    }
  }

  SQLite::Database& database_;
  Statement removal_;
  Statement file_;
  Statement series_;
  Statement image_;
  Statement object_;
  Statement labelling_;
  Statement level_;
  std::unordered_map<std::string, std::int64_t> seriesIds_;
};

void Index::change(const std::vector<std::int64_t>& gone, const std::vector<FileToIndex>& fresh) {
  SQLite::Transaction transaction(*database_, SQLite::TransactionBehavior::IMMEDIATE);
  Statement removal(*database_, "DELETE FROM file WHERE id = ?");
  for (const std::int64_t id : gone) (Row(removal) << id).execute();
  if (!fresh.empty()) {
    Writer writer(*database_);
    for (const FileToIndex& file : fresh) writer.add(file);
  }
  database_->exec("DELETE FROM series WHERE NOT EXISTS (SELECT 1 FROM image WHERE series_id = series.id)");
  transaction.commit();
}

void Index::rememberSources(const std::vector<ImportedFile>& copies) {
  SQLite::Transaction transaction(*database_, SQLite::TransactionBehavior::IMMEDIATE);
  Statement entry(*database_,
                  "INSERT OR REPLACE INTO imported SELECT ?, ?, ?, id FROM file WHERE folder = ? AND name = ?");
  for (const auto& [source, file] : copies)
    (Row(entry) << source.folder + "/" + source.name << source.size << source.mtimeNs << file.folder << file.name)
        .execute();
  transaction.commit();
}

}  // namespace workstation
