#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/Database.h"
#include "tests/double/CallLog.h"

namespace testhost {

class TestHost;

/// The host's files: path to content.
using Files = std::map<std::string, pelmar::Bytes>;

class TestStore : public pelmar::PersistentStore {};

class TestObjectID : public pelmar::ObjectID {
 public:
  pelmar::Ref<TestStore> store = pelmar::makeRef<TestStore>();
  bool isEqual(const pelmar::Ref<pelmar::ObjectID>& other) const override { return other.get() == this; }
  pelmar::Ref<pelmar::PersistentStore> persistentStore() const override { return store; }
};

class TestStoredImage : public pelmar::DicomImage {
 public:
  std::optional<std::string> path;
  std::string studyUID;
  std::optional<std::string> completePathResolved() const override { return path; }
};

class TestSeries : public pelmar::DicomSeries {
 public:
  std::optional<std::string> description;
  long number = 0;
  std::optional<std::string> uid;
  std::optional<std::vector<pelmar::Ref<pelmar::DicomImage>>> stored;

  std::optional<std::string> name() const override { return description; }
  long id() const override { return number; }
  std::optional<std::string> seriesDICOMUID() const override { return uid; }
  std::optional<std::vector<pelmar::Ref<pelmar::DicomImage>>> images() const override { return stored; }
};

/// A report that an import added to a study.
struct ImportedReport {
  long seriesNumber = 0;
  std::string seriesDescription;
  std::string seriesUID;
  pelmar::Ref<pelmar::DicomImage> image;
};

class TestStudy : public pelmar::DicomStudy {
 public:
  std::optional<std::string> uid;
  std::optional<std::string> description;
  pelmar::Ref<TestObjectID> identity = pelmar::makeRef<TestObjectID>();
  std::optional<std::vector<pelmar::Ref<pelmar::DicomSeries>>> ordinarySeries;
  std::optional<std::vector<pelmar::Ref<pelmar::DicomSeries>>> reportSeries{std::in_place};
  std::vector<ImportedReport> reports;  ///< oldest first; the newest that fits is the one that counts

  /// Appends a series of reports to reportSeries.
  pelmar::Ref<TestSeries> addReportSeries(std::optional<std::string> name, long number, std::string seriesUID);

  std::optional<std::string> studyInstanceUID() const override { return uid; }
  std::optional<std::string> studyName() const override { return description; }
  pelmar::Ref<pelmar::ObjectID> objectID() const override { return identity; }
  std::optional<std::vector<pelmar::Ref<pelmar::DicomSeries>>> series() const override { return ordinarySeries; }
  std::optional<std::vector<pelmar::Ref<pelmar::DicomSeries>>> PelmarSRSeries() const override { return reportSeries; }
  pelmar::Ref<pelmar::DicomImage> SRImageWithSeriesID(long seriesID, std::string_view seriesDescription) const override;
};

/// The database; its independent twin shares everything but the name in the log.
class TestDatabase : public pelmar::DicomDatabase {
 public:
  TestDatabase() = default;
  TestDatabase(TestHost& host, std::string name) : host_(&host), name_(std::move(name)) {}

  std::optional<std::string> uniquePathForNewDataFileWithExtension(
      std::string_view extension, const pelmar::Ref<pelmar::PersistentStore>& forStore) override;
  pelmar::Ref<pelmar::DicomDatabase> independentDatabase() const override;
  void addFilesAtPaths(const std::vector<std::string>& paths, bool postNotifications, bool dicomOnly,
                       bool rereadExistingItems, bool generatedByPelmar) override;

 private:
  void import(const std::string& path);
  TestHost* host_ = nullptr;
  std::string name_;
};

class TestBrowser : public pelmar::BrowserController {
 public:
  pelmar::Ref<TestDatabase> held;
  pelmar::Ref<pelmar::DicomDatabase> database() const override { return held; }
};

class TestBrowserClass : public pelmar::BrowserControllerClass {
 public:
  pelmar::Ref<TestBrowser> current;  ///< nil: no database window
  pelmar::Ref<pelmar::BrowserController> currentBrowser() override { return current; }
};

/// What a structured report holds. Its file is four lines of text (study, series UID, series number, series
/// description) and then the data as they are.
struct ReportContent {
  std::string studyUID;
  std::string seriesUID;  ///< empty: an import starts a new series
  long seriesNumber = 0;
  std::string seriesDescription;
  std::optional<pelmar::Bytes> data;

  pelmar::Bytes encoded() const;
  /// False when the bytes are not a report; then the content is of no use.
  bool decode(const pelmar::Bytes& file);
};

class TestReport : public pelmar::SRAnnotation {
 public:
  TestHost* host = nullptr;
  ReportContent content;
  std::optional<std::string> path;
  pelmar::Ref<pelmar::DicomImage> forImage;

  void setSeriesInstanceUID(const std::optional<std::string>& newUID) override;
  bool writeToFileAtPath(const std::string& toPath) override;
  std::optional<pelmar::Bytes> dataEncapsulated() const override { return content.data; }
};

class TestReportClass : public pelmar::SRAnnotationClass {
 public:
  explicit TestReportClass(TestHost& host) : host_(host) {}

  bool writes = true;         ///< false: writeToFileAtPath fails and writes nothing
  bool padsOddLength = true;  ///< what is read from a file has an even number of bytes, as DICOM values have
  std::vector<pelmar::Ref<TestReport>> made;  ///< every report made from data, oldest first

  pelmar::Ref<pelmar::SRAnnotation> initWithData(const std::optional<pelmar::Bytes>& data,
                                                 const std::optional<std::string>& path,
                                                 const pelmar::Ref<pelmar::DicomImage>& forImage, long seriesNumber,
                                                 std::string_view seriesDescription) override;
  pelmar::Ref<pelmar::SRAnnotation> initWithContentsOfFile(const std::string& path) override;

 private:
  TestHost& host_;
};

}  // namespace testhost
