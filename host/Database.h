#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Ref.h"

namespace pelmar {

/// Bytes of a file or an archive.
using Bytes = std::vector<std::uint8_t>;

/// A store of the host's database on disk. Opaque to the plug-in.
class PersistentStore : public HostObject {};

/// Identity of a record in the host's database.
class ObjectID : public HostObject {
 public:
  /// The same record. Nil receiver or argument: false.
  virtual bool isEqual(const Ref<ObjectID>&) const { return false; }
  /// The store that holds the record. Nil: nil.
  virtual Ref<PersistentStore> persistentStore() const { return {}; }
};

/// One stored image (or report) of the database.
class DicomImage : public HostObject {
 public:
  /// Path of its file. Nil: absent.
  virtual std::optional<std::string> completePathResolved() const { return std::nullopt; }
};

/// One series of the database.
class DicomSeries : public HostObject {
 public:
  /// Series Description (0008,103E). Nil: absent.
  virtual std::optional<std::string> name() const { return std::nullopt; }
  /// Series Number (0020,0011). Nil: 0.
  virtual long id() const { return 0; }
  /// Series Instance UID (0020,000E). Nil: absent.
  virtual std::optional<std::string> seriesDICOMUID() const { return std::nullopt; }
  /// Its images, in no particular order. Nil: absent.
  virtual std::optional<std::vector<Ref<DicomImage>>> images() const { return std::nullopt; }
};

/// A study record of the host's database.
class DicomStudy : public HostObject {
 public:
  /// Study Instance UID (0020,000D). Nil: absent.
  virtual std::optional<std::string> studyInstanceUID() const { return std::nullopt; }
  /// Study Description (0008,1030): absent when the study has none, empty when it is there but empty. Nil: absent.
  virtual std::optional<std::string> studyName() const { return std::nullopt; }
  /// Identity of the record. Nil: nil.
  virtual Ref<ObjectID> objectID() const { return {}; }
  /// Its series, in no particular order. Nil: absent.
  virtual std::optional<std::vector<Ref<DicomSeries>>> series() const { return std::nullopt; }
  /// Its series of structured reports, in the host's order. Nil: absent.
  virtual std::optional<std::vector<Ref<DicomSeries>>> PelmarSRSeries() const { return std::nullopt; }
  /// The report with that series number and series description that counts, or nil. Nil: nil.
  virtual Ref<DicomImage> SRImageWithSeriesID(long /*seriesID*/, std::string_view /*seriesDescription*/) const {
    return {};
  }
};

/// The host's database of studies.
class DicomDatabase : public HostObject {
 public:
  /// A fresh path inside the store, with the extension (without its dot); nothing is written yet. Nil: absent.
  virtual std::optional<std::string> uniquePathForNewDataFileWithExtension(std::string_view /*extension*/,
                                                                           const Ref<PersistentStore>& /*forStore*/) {
    return std::nullopt;
  }
  /// The database as an object that may be used off the main thread; this operation may be called there. Nil: nil.
  virtual Ref<DicomDatabase> independentDatabase() const { return {}; }
  /// Imports files: those that are not DICOM are passed over when `dicomOnly`, known ones are read again when
  /// `rereadExistingItems`. Of the main object: main thread only. Nil: nothing.
  virtual void addFilesAtPaths(const std::vector<std::string>& /*paths*/, bool /*postNotifications*/,
                               bool /*dicomOnly*/, bool /*rereadExistingItems*/, bool /*generatedByPelmar*/) {}
};

/// The host's database window.
class BrowserController : public HostObject {
 public:
  /// The database that the window shows; lives at least as long as the window. Nil: nil.
  virtual Ref<DicomDatabase> database() const { return {}; }
};

/// The class operations of BrowserController.
class BrowserControllerClass {
 public:
  virtual ~BrowserControllerClass() = default;
  /// The database window, or nil.
  virtual Ref<BrowserController> currentBrowser() = 0;
};

/// A structured report that can carry an opaque block of bytes.
class SRAnnotation : public HostObject {
 public:
  /// The series that the report joins; one of its own unless this is called. Absent: as if not called. Nil: nothing.
  virtual void setSeriesInstanceUID(const std::optional<std::string>&) {}
  /// Whether the file was written. Nil: false.
  virtual bool writeToFileAtPath(const std::string& /*path*/) { return false; }
  /// The block that the report carries. Nil: absent.
  virtual std::optional<Bytes> dataEncapsulated() const { return std::nullopt; }
};

/// Making structured reports.
class SRAnnotationClass {
 public:
  virtual ~SRAnnotationClass() = default;
  /// A new report that carries the data, with patient and study taken from an image of the study. Nothing is written.
  virtual Ref<SRAnnotation> initWithData(const std::optional<Bytes>& data, const std::optional<std::string>& path,
                                         const Ref<DicomImage>& forImage, long seriesNumber,
                                         std::string_view seriesDescription) = 0;
  /// The report in a file; nil when the file cannot be read as one.
  virtual Ref<SRAnnotation> initWithContentsOfFile(const std::string& path) = 0;
};

}  // namespace pelmar
