#include "workstation/database/IndexColumns.h"

#include <algorithm>

namespace workstation::columns {
namespace {

std::vector<std::string> splitAtBackslashes(const std::string& text) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end = text.find('\\'); end != std::string::npos; end = text.find('\\', begin)) {
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  parts.push_back(text.substr(begin));
  return parts;
}

ImageGeometry geometryOf(const std::array<double, 11>& numbers) {
  ImageGeometry geometry;
  std::copy_n(numbers.begin(), 3, geometry.position.begin());
  std::copy_n(numbers.begin() + 3, 3, geometry.row.begin());
  std::copy_n(numbers.begin() + 6, 3, geometry.column.begin());
  geometry.spacingX = numbers[9];
  geometry.spacingY = numbers[10];
  return geometry;
}

std::optional<DecodedLabelling> labellingOf(SQLite::Statement& row) {
  if (row.isColumnNull(18)) return std::nullopt;
  DecodedLabelling decoded;
  decoded.fromContent = row.getColumn(20).getInt() != 0;
  if (!row.isColumnNull(19)) {
    decoded.problem = row.getColumn(19).getString();
    return decoded;
  }
  SavedLabelling& labelling = decoded.labelling.emplace();
  labelling.anatomicalRegion = optionalInt(row, 21);
  if (const std::optional<int> extra = optionalInt(row, 22)) labelling.additionalVertebra = *extra != 0;
  if (!row.isColumnNull(objectLevelCount)) labelling.levels.emplace();
  return decoded;
}

}  // namespace

ImageRecord seriesOf(SQLite::Statement& row) {
  ImageRecord image;
  image.studyInstanceUid = row.getColumn(1).getString();
  image.studyDescription = optionalText(row, 2);
  image.studyDate = row.getColumn(3).getString();
  image.patientName = row.getColumn(4).getString();
  image.patientId = row.getColumn(5).getString();
  image.seriesInstanceUid = row.getColumn(6).getString();
  image.seriesNumber = optionalInt(row, 7);
  image.seriesDescription = row.getColumn(8).getString();
  image.modality = row.getColumn(9).getString();
  image.bodyPartExamined = optionalText(row, 10);
  return image;
}

void readImage(SQLite::Statement& row, ImageRecord& image) {
  image.frame = row.getColumn(3).getInt();
  image.sopClassUid = row.getColumn(4).getString();
  image.sopInstanceUid = row.getColumn(5).getString();
  image.instanceNumber = optionalInt(row, 6);
  if (!row.isColumnNull(7)) image.imageType = splitAtBackslashes(row.getColumn(7).getString());
  image.frameOfReferenceUid = row.getColumn(8).getString();
  if (!row.isColumnNull(9)) image.geometry = geometryOf(unpacked<11>(row, 9));
  image.geometryProblem = row.getColumn(10).getString();
  image.rows = row.getColumn(11).getInt();
  image.columns = row.getColumn(12).getInt();
  image.colour = row.getColumn(13).getInt() != 0;
  image.pixelAspect = row.getColumn(14).getDouble();
}

IndexedObject objectOf(SQLite::Statement& row) {
  IndexedObject object;
  object.file = stamp(row, 0);
  ObjectHeader& header = object.header;
  header.studyInstanceUid = row.getColumn(2).getString();
  header.studyDescription = optionalText(row, 3);
  header.studyDate = row.getColumn(4).getString();
  header.patientName = row.getColumn(5).getString();
  header.patientId = row.getColumn(6).getString();
  header.seriesInstanceUid = row.getColumn(7).getString();
  header.seriesNumber = optionalInt(row, 8);
  header.seriesDescription = row.getColumn(9).getString();
  header.modality = row.getColumn(10).getString();
  header.sopClassUid = row.getColumn(11).getString();
  header.sopInstanceUid = row.getColumn(12).getString();
  header.instanceNumber = optionalInt(row, 13);
  header.contentDate = row.getColumn(14).getString();
  header.contentTime = row.getColumn(15).getString();
  object.isReport = row.getColumn(16).getInt() != 0;
  object.labelling = labellingOf(row);
  return object;
}

SavedLevel levelOf(SQLite::Statement& row) {
  const std::array<double, 6> plane = unpacked<6>(row, 1);
  SavedLevel level;
  level.name = row.getColumn(0).getString();
  std::copy_n(plane.begin(), 3, level.point.begin());
  std::copy_n(plane.begin() + 3, 3, level.vector.begin());
  return level;
}

}  // namespace workstation::columns
