#pragma once
// Rows of the index as values. Internal to this folder.

#include <SQLiteCpp/SQLiteCpp.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workstation/database/Index.h"

namespace workstation::columns {

/// The columns that seriesOf reads.
inline constexpr std::string_view seriesQuery =
    "SELECT id, study_uid, study_description, study_date, patient_name, patient_id, series_uid, series_number, "
    "description, modality, body_part FROM series";
/// The columns that stamp (at 0) and readImage read.
inline constexpr std::string_view imageQuery =
    "SELECT folder, name, series_id, frame, sop_class, sop_uid, instance_number, image_type, frame_of_reference, "
    "geometry, geometry_problem, row_count, column_count, colour, pixel_aspect "
    "FROM file JOIN image ON image.file_id = file.id";
inline constexpr const char* ofStudy = " WHERE series_id IN (SELECT id FROM series WHERE study_uid = ?)";
/// The columns that objectOf reads.
inline constexpr std::string_view objectQuery =
    "SELECT folder, name, study_uid, study_description, study_date, patient_name, patient_id, series_uid, "
    "series_number, description, modality, sop_class, sop_uid, instance_number, content_date, content_time, is_report, "
    "object.file_id, labelling.file_id, problem, from_content, region, extra_vertebra, level_count "
    "FROM object JOIN file ON file.id = object.file_id LEFT JOIN labelling ON labelling.file_id = object.file_id";
inline constexpr int objectFileId = 17;
inline constexpr int objectLevelCount = 23;

inline std::optional<std::string> optionalText(SQLite::Statement& row, int column) {
  if (row.isColumnNull(column)) return std::nullopt;
  return row.getColumn(column).getString();
}

inline std::optional<int> optionalInt(SQLite::Statement& row, int column) {
  if (row.isColumnNull(column)) return std::nullopt;
  return row.getColumn(column).getInt();
}

/// Folder and name from `column` on.
inline FileStamp stamp(SQLite::Statement& row, int column, std::int64_t size = 0, std::int64_t mtimeNs = 0) {
  return {row.getColumn(column).getString(), row.getColumn(column + 1).getString(), size, mtimeNs};
}

/// Doubles as they lie in memory, little endian: a number that is stored as such may lose the sign of its zero.
template <std::size_t count>
std::string packed(const std::array<double, count>& numbers) {
  std::string bytes;
  bytes.reserve(8 * count);
  for (const double number : numbers) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    for (int shift = 0; shift < 64; shift += 8) bytes.push_back(static_cast<char>(bits >> shift & 0xff));
  }
  return bytes;
}

/// Throws when the column does not hold that many numbers.
template <std::size_t count>
std::array<double, count> unpacked(SQLite::Statement& row, int column) {
  const SQLite::Column value = row.getColumn(column);
  if (value.getBytes() != static_cast<int>(8 * count)) throw SQLite::Exception("a row is damaged", 11);
  const auto* bytes = static_cast<const unsigned char*>(value.getBlob());
  std::array<double, count> numbers{};
  for (std::size_t i = 0; i < count; ++i) {
    std::uint64_t bits = 0;
    for (std::size_t byte = 0; byte < 8; ++byte) bits |= std::uint64_t{bytes[8 * i + byte]} << (8 * byte);
    std::memcpy(&numbers[i], &bits, sizeof bits);
  }
  return numbers;
}

ImageRecord seriesOf(SQLite::Statement& row);
void readImage(SQLite::Statement& row, ImageRecord& image);
IndexedObject objectOf(SQLite::Statement& row);
SavedLevel levelOf(SQLite::Statement& row);

}  // namespace workstation::columns
