#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <fstream>

#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/ContentSkip.h"
#include "workstation/dicom/LabellingReport.h"
#include "workstation/dicom/ParsedObjects.h"
#include "workstation/dicom/PrivateBlock.h"
#include "workstation/dicom/ReportContent.h"

namespace workstation {
namespace {

/// A report with a thousand levels and ten thousand slices has less than a tenth of this.
constexpr std::uintmax_t longestReport = std::uintmax_t{64} << 20;
constexpr const char* tooLong = "it is longer than 64 MB, as no structured report is";

/// The bytes of an element that holds nothing but bytes, whatever representation it has after its journeys: unknown
/// ones in implicit VR become UN, and some programs make words of bytes. Nothing when it is missing, empty or too long.
pelmar::Bytes rawBytes(DcmItem& item, const DcmTagKey& tag) {
  DcmElement* element = nullptr;
  if (item.findAndGetElement(tag, element).bad() || element == nullptr || !element->isLeaf()) return {};
  const Uint32 length = element->getLength();
  if (length == 0 || length == DCM_UndefinedLength || length > longestArchive) return {};
  Uint8* bytes = nullptr;
  if (element->getUint8Array(bytes).good() && bytes != nullptr) return {bytes, bytes + length};
  Uint16* words = nullptr;
  if (element->getUint16Array(words).bad() || words == nullptr) return {};
  pelmar::Bytes result;
  for (Uint32 i = 0; i < length / 2; ++i) {
    result.push_back(static_cast<std::uint8_t>(words[i] & 0xFFU));
    result.push_back(static_cast<std::uint8_t>(words[i] >> 8U));
  }
  return result;
}

/// The archive, out of the block that its creator reserved (PS3.5 7.8.1), else out of Encapsulated Document.
pelmar::Bytes archiveIn(DcmItem& dataset) {
  const Attributes attributes(dataset);
  for (Uint16 block = 0x10; block <= 0xFF; ++block) {
    if (attributes.code(DcmTagKey(blockGroup, block)) != blockCreator) continue;
    const auto element = static_cast<Uint16>((static_cast<unsigned>(block) << 8U) | blockArchive);
    pelmar::Bytes bytes = rawBytes(dataset, DcmTagKey(blockGroup, element));
    if (!bytes.empty()) return bytes;
  }
  return rawBytes(dataset, DCM_EncapsulatedDocument);
}

/// Every class of structured reports has this root; others, that encapsulate one, are of its modality (PS3.3 A.35).
bool isReport(const StoredReport& report, const std::string& modality) {
  return modality == "SR" || report.sopClassUid.starts_with("1.2.840.10008.5.1.4.1.1.88.");
}

Result<StoredReport> headerIn(ParsedFile& file) {
  const Attributes attributes(file.dataset());
  StoredReport report;
  report.studyInstanceUid = attributes.code(DCM_StudyInstanceUID);
  report.seriesInstanceUid = attributes.code(DCM_SeriesInstanceUID);
  report.seriesNumber = attributes.integer(DCM_SeriesNumber).value_or(0);
  report.seriesDescription = attributes.text(DCM_SeriesDescription).value_or("");
  report.sopClassUid = attributes.code(DCM_SOPClassUID);
  report.sopInstanceUid = attributes.code(DCM_SOPInstanceUID);
  report.instanceNumber = attributes.integer(DCM_InstanceNumber).value_or(0);
  report.contentTime = {attributes.code(DCM_ContentDate), attributes.code(DCM_ContentTime)};
  if (!isReport(report, attributes.code(DCM_Modality)))
    return Result<StoredReport>::refused("it is not a structured report");
  return Result<StoredReport>::of(std::move(report));
}

/// Empty when it cannot be read.
pelmar::Bytes contentOf(const std::filesystem::path& file, std::uintmax_t length) {
  pelmar::Bytes bytes(static_cast<std::size_t>(length));
  std::ifstream stream(file, std::ios::binary);
  const bool isRead =
      static_cast<bool>(stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size())));
  return isRead ? bytes : pelmar::Bytes();
}

}  // namespace

Result<StoredReport> reportIn(ParsedFile& file, std::uintmax_t length) {
  if (length > longestReport) return Result<StoredReport>::refused(tooLong);
  Result<StoredReport> report = headerIn(file);
  if (!report) return report;
  report->archive = archiveIn(file.dataset());
  if (std::optional<ReportContent> content = parseContent(file.dataset())) {
    report->content = std::move(content->labelling);
    report->context = std::move(content->context);
  }
  return report;
}

Result<StoredReport> readReport(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t length = std::filesystem::file_size(file, error);
  if (error) return Result<StoredReport>::refused("it cannot be opened (" + error.message() + ")");
  if (length > longestReport) return Result<StoredReport>::refused(tooLong);
  ParsedFile parsed;
  std::string problem;
  if (!parsed.parse(file, problem)) return Result<StoredReport>::refused(problem);
  return reportIn(parsed, length);
}

Result<StoredReport> readReport(const pelmar::Bytes& file) {
  if (file.size() > longestReport) return Result<StoredReport>::refused(tooLong);
  ParsedFile parsed;
  std::string problem;
  if (!parsed.parse(file, problem)) return Result<StoredReport>::refused(problem);
  return reportIn(parsed, file.size());
}

Result<StoredReport> readReportForArchive(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t length = std::filesystem::file_size(file, error);
  if (error || length > longestReport) return readReport(file);
  const auto bare = withoutContent(contentOf(file, length));
  ParsedFile parsed;
  std::string problem;
  if (!bare || !parsed.parse(*bare, problem)) return readReport(file);
  Result<StoredReport> report = headerIn(parsed);
  if (report) report->archive = archiveIn(parsed.dataset());
  return report && !report->archive.empty() ? report : readReport(file);
}

}  // namespace workstation
