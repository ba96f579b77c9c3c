#include "workstation/database/FileContents.h"

#include <exception>
#include <utility>

#include "workstation/archive/KeyedArchive.h"
#include "workstation/database/ReportShelf.h"
#include "workstation/dicom/AnyFile.h"
#include "workstation/model/Points.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

bool isLabelling(const ObjectHeader& header) {
  return header.isStructuredReport() && header.seriesNumber == labellingSeriesNumber &&
         header.seriesDescription == labellingSeriesDescription;
}

DecodedLabelling decode(const Result<StoredReport>& report) {
  if (report) return decodeLabelling(*report);
  DecodedLabelling decoded;
  decoded.problem = asPhrase(report.problem);
  return decoded;
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
    // Who tells of it says already that it cannot be read.
    if (decoded.problem.starts_with(archiveRefusal)) decoded.problem.erase(0, archiveRefusal.size());
    return decoded;
  }
  decoded.labelling = labellingFromValue(*root);
  if (!decoded.labelling) decoded.problem = "its archive holds something else than a labelling";
  return decoded;
}

FileContents readFileContents(const fs::path& file) {
  FileContents contents;
  AnyFile any = readAnyFile(file, &isLabelling);
  ReadResult& read = any.lists;
  if (!read.images.empty()) {
    contents.kind = FileKind::image;
    contents.images = std::move(read.images);
  } else if (!read.unreadable.empty()) {
    contents.kind = FileKind::unreadable;
    contents.reason = read.unreadable.front().reason;
  } else if (any.header) {
    contents.kind = FileKind::object;
    contents.header = std::move(any.header);
    contents.reason = std::move(any.damage);
    if (any.report) {
      contents.labelling = decode(*any.report);
      if (*any.report) contents.report = *std::move(*any.report);
    }
  } else if (!read.directories.empty()) {
    contents.kind = FileKind::directory;
  }
  return contents;
}

}  // namespace workstation
