// The database, its records and its reports, as the plug-in sees them.
#include "workstation/database/LabellingStoreInterior.h"
#include "workstation/model/StoredObjects.h"

namespace workstation {
namespace {

using pelmar::Bytes;
using pelmar::Ref;
using Interior = LabellingStore::Interior;

class StoreOfStudy final : public pelmar::PersistentStore {
 public:
  explicit StoreOfStudy(std::string studyUid) : studyUid_(std::move(studyUid)) {}
  const std::string& studyUid() const { return studyUid_; }

 private:
  std::string studyUid_;
};

/// The same object serves every thread.
class Database final : public pelmar::DicomDatabase, public std::enable_shared_from_this<Database> {
 public:
  explicit Database(Interior& store) : store_(store) {}

  std::optional<std::string> uniquePathForNewDataFileWithExtension(
      std::string_view extension, const Ref<pelmar::PersistentStore>& forStore) override {
    const auto store = ref_cast<StoreOfStudy>(forStore);
    if (!store) return std::nullopt;
    const std::lock_guard lock(store_.mutex_);
    return store_.handOutPath(store.get()->studyUid(), extension);
  }
  Ref<pelmar::DicomDatabase> independentDatabase() const override {
    return Ref<pelmar::DicomDatabase>(std::const_pointer_cast<Database>(shared_from_this()));
  }
  void addFilesAtPaths(const std::vector<std::string>& paths, bool, bool, bool, bool) override {
    const std::lock_guard lock(store_.mutex_);
    for (const std::string& path : paths) store_.import(path);
  }

 private:
  Interior& store_;
};

class Browser final : public pelmar::BrowserController {
 public:
  explicit Browser(Interior& store) : database_(pelmar::makeRef<Database>(store)) {}
  Ref<pelmar::DicomDatabase> database() const override { return database_; }

 private:
  Ref<pelmar::DicomDatabase> database_;
};

/// A report that is being made.
class NewReport final : public pelmar::SRAnnotation {
 public:
  NewReport(Interior& store, MadeReport report) : store_(store), report_(std::move(report)) {}

  void setSeriesInstanceUID(const std::optional<std::string>& uid) override {
    if (uid) report_.seriesUid = *uid;
  }
  bool writeToFileAtPath(const std::string& path) override {
    const std::lock_guard lock(store_.mutex_);
    return store_.write(report_, path);
  }
  std::optional<Bytes> dataEncapsulated() const override { return report_.archive; }

 private:
  Interior& store_;
  MadeReport report_;
};

/// A report that was read. It is where it is: writing it elsewhere answers false.
class ReadReport final : public pelmar::SRAnnotation {
 public:
  explicit ReadReport(std::optional<Bytes> archive) : archive_(std::move(archive)) {}
  std::optional<Bytes> dataEncapsulated() const override { return archive_; }

 private:
  std::optional<Bytes> archive_;
};

class Annotations final : public pelmar::SRAnnotationClass {
 public:
  explicit Annotations(Interior& store) : store_(store) {}

  Ref<pelmar::SRAnnotation> initWithData(const std::optional<Bytes>& data, const std::optional<std::string>&,
                                         const Ref<pelmar::DicomImage>& forImage, long seriesNumber,
                                         std::string_view seriesDescription) override {
    const std::lock_guard lock(store_.mutex_);
    MadeReport report;
    report.archive = data.value_or(Bytes());
    report.patientImage = forImage->completePathResolved().value_or("");
    report.seriesNumber = static_cast<int>(seriesNumber);
    report.seriesDescription = seriesDescription;
    report.seriesUid = store_.parts_.freshUid();
    report.sopUid = store_.parts_.freshUid();
    return pelmar::makeRef<NewReport>(store_, std::move(report));
  }

  Ref<pelmar::SRAnnotation> initWithContentsOfFile(const std::string& path) override {
    const std::lock_guard lock(store_.mutex_);
    if (const MadeReport* report = store_.inMemory(path)) return pelmar::makeRef<ReadReport>(report->archive);
    const auto report = store_.readForArchive(path);
    if (!report) return {};
    store_.hasRead(*report);
    return pelmar::makeRef<ReadReport>(store_.archiveOf(*report, path));
  }

 private:
  Interior& store_;
};

}  // namespace

Ref<pelmar::BrowserController> makeBrowser(Interior& store) { return pelmar::makeRef<Browser>(store); }
std::unique_ptr<pelmar::SRAnnotationClass> makeAnnotationClass(Interior& store) {
  return std::make_unique<Annotations>(store);
}
Ref<pelmar::PersistentStore> makeStore(const std::string& studyUid) { return pelmar::makeRef<StoreOfStudy>(studyUid); }
Ref<pelmar::DicomSeries> makeReportSeries(const ReportSeries& series) {
  return makeStoredSeries(
      {series.seriesInstanceUid, series.seriesNumber, series.description, {series.files.begin(), series.files.end()}});
}

}  // namespace workstation
