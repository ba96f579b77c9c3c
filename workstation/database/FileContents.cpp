#include "workstation/database/FileContents.h"

#include <exception>
#include <utility>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/database/ReportShelf.h"
#include "workstation/dicom/StudyReader.h"
#include "workstation/model/Points.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

bool isLabelling(const ObjectHeader& header) {
  return header.isStructuredReport() && header.seriesNumber == labellingSeriesNumber &&
         header.seriesDescription == labellingSeriesDescription;
}

DecodedLabelling readLabelling(const fs::path& file) {
  const Result<StoredReport> report = readReport(file);
  if (report) return decodeLabelling(*report);
  DecodedLabelling decoded;
  decoded.problem = asPhrase(report.problem);
  return decoded;
}

void readObject(const fs::path& file, FileContents& contents) {
  contents.kind = FileKind::object;
  contents.header = readObjectHeader(file, contents.reason);
  if (!contents.header)
    contents.kind = FileKind::unreadable;
  else if (isLabelling(*contents.header))
    contents.labelling = readLabelling(file);
}

}  // namespace

std::string asPhrase(std::string sentence) {
  while (!sentence.empty() && sentence.back() == '.') sentence.pop_back();
  return sentence;
}

DecodedLabelling decodeLabelling(const StoredReport& report) {
  DecodedLabelling decoded;
  if (report.archive.empty()) {
    decoded.fromContent = true;
    decoded.labelling = report.content;
    if (!decoded.labelling) decoded.problem = "it has no archive, and its content tells no labelling";
    return decoded;
  }
  PatientPointClass points;
  const Result<pelmar::Value> root = readPaddedArchive(report.archive, points);
  if (!root) {
    decoded.problem = asPhrase(root.problem);
    return decoded;
  }
  decoded.labelling = labellingFromValue(*root);
  if (!decoded.labelling) decoded.problem = "its archive holds something else than a labelling";
  return decoded;
}

FileContents readFileContents(const fs::path& file) {
  FileContents contents;
  ReadResult read;
  readImageFile(file, read);
  if (!read.images.empty()) {
    contents.kind = FileKind::image;
    contents.images = std::move(read.images);
  } else if (!read.unreadable.empty()) {
    contents.kind = FileKind::unreadable;
    contents.reason = read.unreadable.front().reason;
  } else if (!read.otherObjects.empty()) {
    readObject(file, contents);
  } else if (!read.directories.empty()) {
    contents.kind = FileKind::directory;
  }
  return contents;
}

}  // namespace workstation
