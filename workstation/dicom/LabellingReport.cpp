#include "workstation/dicom/LabellingReport.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcostrmb.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/dcmsr/dsrdoc.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "workstation/dicom/AttributeWriter.h"
#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/ParsedFile.h"
#include "workstation/dicom/PrivateBlock.h"
#include "workstation/dicom/ReportContent.h"
#include "workstation/dicom/SpineCodes.h"
#include "workstation/dicom/Uid.h"

namespace workstation {
namespace {

/// Attributes of the patient and the study (PS3.3 C.7.1.1, C.7.2.1, C.7.2.2, C.12.1.1) that a report shares with the
/// images: those that it must have, with or without a value, and those that it has when the images have them. Not their
/// time zone: the report's own times are of this machine's.
const std::array requiredTags = {
    DCM_PatientName,     DCM_PatientID, DCM_PatientBirthDate,       DCM_PatientSex,      DCM_StudyDate, DCM_StudyTime,
    DCM_AccessionNumber, DCM_StudyID,   DCM_ReferringPhysicianName, DCM_StudyInstanceUID};
const std::array optionalTags = {DCM_SpecificCharacterSet,  DCM_StudyDescription, DCM_IssuerOfPatientID,
                                 DCM_PatientBirthTime,      DCM_PatientAge,       DCM_PatientSize,
                                 DCM_PatientWeight,         DCM_EthnicGroup,      DCM_PatientIdentityRemoved,
                                 DCM_DeidentificationMethod};
const std::array optionalSequences = {DCM_DeidentificationMethodCodeSequence, DCM_IssuerOfPatientIDQualifiersSequence,
                                      DCM_IssuerOfAccessionNumberSequence, DCM_OtherPatientIDsSequence};

bool isUid(std::string_view text) {
  const auto allowed = [](char c) { return c == '.' || std::isdigit(static_cast<unsigned char>(c)); };
  return !text.empty() && text.size() <= 64 && std::all_of(text.begin(), text.end(), allowed);
}

/// Why the report's own attributes cannot be written, or an empty string.
std::string problemOf(const ReportToWrite& report) {
  if (!isUid(report.sopInstanceUid)) return "its identifier is none: \"" + report.sopInstanceUid + "\"";
  if (!isUid(report.seriesInstanceUid)) return "its series' identifier is none: \"" + report.seriesInstanceUid + "\"";
  const auto allowed = [](char c) { return c >= ' ' && c < '~' && c != '\\'; };
  if (report.seriesDescription.size() > 64 ||
      !std::all_of(report.seriesDescription.begin(), report.seriesDescription.end(), allowed))
    return "the series description \"" + report.seriesDescription + "\" cannot be stored";
  const OFString date(report.contentTime.date);
  const OFString time(report.contentTime.time);
  if (DcmDate::checkStringValue(date, "1").bad() || date.empty() || DcmTime::checkStringValue(time, "1").bad() ||
      time.empty())
    return "its date and time are none: \"" + report.contentTime.date + "\", \"" + report.contentTime.time + "\"";
  if (report.archive.empty()) return "it has no archive";
  if (report.archive.size() > longestArchive) return "its archive is longer than 16 MB";
  return {};
}

/// The bytes of the values stay as they are, and so does the character set that says how to read them. What a report
/// says besides is in the default repertoire, which every character set contains.
void copyPatientAndStudy(DcmItem& image, AttributeWriter& writer) {
  const Attributes attributes(image);
  for (const DcmTagKey& tag : requiredTags) writer.text(tag, attributes.bytes(tag).value_or(""));
  for (const DcmTagKey& tag : optionalTags)
    if (const auto value = attributes.bytes(tag)) writer.text(tag, *value);
  for (const DcmTagKey& tag : optionalSequences) {
    DcmSequenceOfItems* sequence = nullptr;
    if (image.findAndGetSequence(tag, sequence).good() && sequence != nullptr && sequence->card() > 0)
      writer.element(new DcmSequenceOfItems(*sequence));
  }
}

void putOwnAttributes(const ReportToWrite& report, AttributeWriter& writer) {
  writer.text(DCM_SOPInstanceUID, report.sopInstanceUid);
  writer.text(DCM_SeriesInstanceUID, report.seriesInstanceUid);
  writer.text(DCM_SeriesNumber, std::to_string(report.seriesNumber));
  writer.text(DCM_SeriesDescription, report.seriesDescription);
  writer.text(DCM_InstanceNumber, std::to_string(report.instanceNumber));
  for (const DcmTagKey& tag : {DCM_InstanceCreationDate, DCM_ContentDate}) writer.text(tag, report.contentTime.date);
  for (const DcmTagKey& tag : {DCM_InstanceCreationTime, DCM_ContentTime}) writer.text(tag, report.contentTime.time);
  writer.text(DCM_InstanceCreatorUID, makeUid("Vertana, the creator of instances"));
  writer.text(DCM_Manufacturer, "Vertana");
  writer.text(DCM_ManufacturerModelName, "Vertana");
  writer.text(DCM_SoftwareVersions, VERTANA_VERSION);
}

DcmTag blockTag(std::uint16_t element, DcmEVR representation) {
  return DcmTag(blockGroup, static_cast<Uint16>(0x1000U | element), DcmVR(representation));
}

/// The block, and the declaration that whoever de-identifies the report may keep it (PS3.3 C.12.1.1.7, PS3.15 E.3.10).
void putPrivateBlock(const ReportToWrite& report, AttributeWriter& writer) {
  const OFString creator(blockCreator.data(), blockCreator.size());
  auto* creatorElement = new DcmLongString(DcmTag(blockGroup, 0x0010, DcmVR(EVR_LO)));
  creatorElement->putOFStringArray(creator);
  writer.element(creatorElement);
  auto* format = new DcmLongString(blockTag(blockFormat, EVR_LO));
  format->putOFStringArray(OFString(archiveFormat.data(), archiveFormat.size()));
  writer.element(format);
  auto* archive = new DcmOtherByteOtherWord(blockTag(blockArchive, EVR_OB));
  archive->putUint8Array(report.archive.data(), report.archive.size());
  writer.element(archive);

  DcmItem* declaration = writer.newItem(DCM_PrivateDataElementCharacteristicsSequence);
  if (declaration == nullptr) return;
  AttributeWriter declared(*declaration);
  declared.shortInteger(DCM_PrivateGroupReference, blockGroup);
  declared.text(DCM_PrivateCreatorReference, blockCreator);
  declared.text(DCM_BlockIdentifyingInformationStatus, "SAFE");
}

/// Lists every image that the content refers to.
void putEvidence(const ReportToWrite& report, const std::string& studyUid, DSRDocument& document) {
  const auto add = [&](const ImageReference& image, const std::string& series) {
    document.getCurrentRequestedProcedureEvidence().addItem(studyUid, series, image.sopClassUid, image.sopInstanceUid,
                                                            OFFalse);
  };
  for (const ImageReference& image : report.context.verticalImages)
    add(image, image.seriesInstanceUid.empty() ? report.context.verticalSeriesUid : image.seriesInstanceUid);
  for (const SliceLevel& slice : report.context.sliceLevels) add(slice.image, slice.image.seriesInstanceUid);
}

/// Everything that the toolkit's document knows of; the rest of the attributes comes afterwards.
OFCondition writeDocument(const ReportToWrite& report, const std::string& studyUid, const DSRDocumentTree& tree,
                          DcmItem& dataset) {
  DSRDocument document(DSRTypes::DT_Comprehensive3DSR);
  OFCondition outcome = document.setTree(tree);
  if (outcome.bad()) return outcome;
  document.createNewSeriesInStudy(studyUid, OFFalse);
  DSRCodingSchemeIdentificationList& schemes = document.getCodingSchemeIdentification();
  schemes.addItem(OFString(privateScheme.data(), privateScheme.size()));
  schemes.setCodingSchemeName("Vertana spine labelling");
  schemes.setCodingSchemeResponsibleOrganization("Vertana");
  if (!report.labelling.isEmpty()) putEvidence(report, studyUid, document);
  outcome = document.completeDocument();
  return outcome.good() ? document.write(dataset) : outcome;
}

Result<pelmar::Bytes> encoded(DcmFileFormat& format) {
  pelmar::Bytes bytes;
  std::array<Uint8, 65536> chunk{};
  DcmOutputBufferStream stream(chunk.data(), chunk.size());
  const auto take = [&] {
    void* data = nullptr;
    offile_off_t length = 0;
    stream.flushBuffer(data, length);
    const auto* begin = static_cast<const Uint8*>(data);
    bytes.insert(bytes.end(), begin, begin + length);
  };
  format.transferInit();
  OFCondition outcome = EC_StreamNotifyClient;
  while (outcome == EC_StreamNotifyClient) {
    outcome = format.write(stream, EXS_LittleEndianExplicit, EET_UndefinedLength, nullptr);
    take();
  }
  format.transferEnd();
  if (outcome.good()) return Result<pelmar::Bytes>::of(std::move(bytes));
  return Result<pelmar::Bytes>::refused(outcome.text());
}

Result<pelmar::Bytes> refused(const std::string& phrase) {
  return Result<pelmar::Bytes>::refused("The report of the labelling could not be made: " + phrase + ".");
}

}  // namespace

Result<pelmar::Bytes> encodeReport(const ReportToWrite& report) {
  std::string problem = problemOf(report);
  if (!problem.empty()) return refused(problem);
  ParsedFile image;
  if (!image.parse(report.patientImage, problem))
    return refused("the patient and the study cannot be read from " + report.patientImage.string() + ", because " +
                   problem);
  const std::string studyUid = Attributes(image.dataset()).code(DCM_StudyInstanceUID);
  if (!isUid(studyUid))
    return refused("the image " + report.patientImage.string() + " does not say to which study it belongs");

  DSRDocumentTree tree(DSRTypes::DT_Comprehensive3DSR);
  if (!buildContent(report, tree, problem)) return refused(problem);
  DcmFileFormat format;
  DcmDataset& dataset = *format.getDataset();
  const OFCondition outcome = writeDocument(report, studyUid, tree, dataset);
  if (outcome.bad()) return refused(std::string("its content could not be encoded (") + outcome.text() + ")");
  AttributeWriter writer(dataset);
  copyPatientAndStudy(image.dataset(), writer);
  putOwnAttributes(report, writer);
  putPrivateBlock(report, writer);
  if (!writer.problem().empty()) return refused(writer.problem());
  Result<pelmar::Bytes> bytes = encoded(format);
  return bytes ? std::move(bytes) : refused("it could not be encoded (" + bytes.problem + ")");
}

}  // namespace workstation
